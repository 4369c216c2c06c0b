#include "support/childprocess.hpp"

#include "support/sanitizeroptions.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace livetests
{

namespace
{

constexpr int patience = 20'000;  // [ms] no test takes that long: it is for a program that hangs

struct Pipe
{
  Pipe()
  {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
      throw std::runtime_error("cannot make a pipe");
    readEnd = ends[0];
    writeEnd = ends[1];
  }

  int readEnd = -1;
  int writeEnd = -1;
};

void closeOnce(int& fileDescriptor)
{
  if (fileDescriptor >= 0)
    close(fileDescriptor);
  fileDescriptor = -1;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments)
{
  std::signal(SIGPIPE, SIG_IGN);  // the tests look at what write() returns
  const Pipe input;
  const Pipe output;
  std::vector<std::string> texts{SKEIGIOT_COMMAND};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  std::string options = sanitizerOptions();
  std::array<char*, 2> environment{options.data(), nullptr};

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.readEnd, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.writeEnd, STDOUT_FILENO);
  const int failed = posix_spawn(&_process, SKEIGIOT_COMMAND, &actions, nullptr, pointers.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  close(input.readEnd);
  close(output.writeEnd);
  _input = input.writeEnd;
  _output = output.readEnd;
  if (failed != 0)
    throw std::runtime_error("cannot run " SKEIGIOT_COMMAND);
}

ChildProcess::~ChildProcess()
{
  closeInput();
  closeOutput();
  if (_process != 0)
  {
    kill(_process, SIGKILL);
    waitpid(_process, nullptr, 0);
  }
}

void ChildProcess::write(std::string_view text) const
{
  while (!text.empty())
  {
    const ssize_t written = ::write(_input, text.data(), text.size());
    if (written < 0)
      throw std::runtime_error("the program takes no input any more");
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string ChildProcess::readLine()
{
  std::size_t end = _read.find('\n');
  while (end == std::string::npos)
  {
    pollfd descriptor{_output, POLLIN, 0};
    if (poll(&descriptor, 1, patience) <= 0)
      throw std::runtime_error("the program does not answer; so far: " + _read);
    std::array<char, 4096> piece{};
    const ssize_t count = read(_output, piece.data(), piece.size());
    if (count <= 0)
      return std::exchange(_read, {});
    _read.append(piece.data(), static_cast<std::size_t>(count));
    end = _read.find('\n');
  }
  std::string line = _read.substr(0, end);
  _read.erase(0, end + 1);
  return line;
}

bool ChildProcess::hasOutput() const
{
  pollfd descriptor{_output, POLLIN, 0};
  return !_read.empty() || poll(&descriptor, 1, 0) > 0;
}

void ChildProcess::closeInput()
{
  closeOnce(_input);
}

void ChildProcess::closeOutput()
{
  closeOnce(_output);
}

void ChildProcess::signal(int number) const
{
  kill(_process, number);
}

int ChildProcess::wait()
{
  int status = 0;
  waitpid(_process, &status, 0);
  _process = 0;
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace livetests
