#include "support/terminalprocess.hpp"

#include "support/sanitizeroptions.hpp"

#include <gtest/gtest.h>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace livetests
{

namespace
{

constexpr int patience = 20'000;  // [ms] no test takes that long: it is for a program that hangs

[[noreturn]] void become(const std::vector<std::string>& arguments)
{
  std::vector<char*> words;
  std::string command = "skeigiot";
  words.push_back(command.data());
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));  // NOLINT(*-const-cast): execve() changes none
  words.push_back(nullptr);
  std::array<char, 11> term{"TERM=xterm"};
  std::string options = sanitizerOptions();
  std::array<char*, 3> variables{term.data(), options.data(), nullptr};
  execve(SKEIGIOT_COMMAND, words.data(), variables.data());
  _exit(127);
}

}  // namespace

TerminalProcess::TerminalProcess(const std::vector<std::string>& arguments, Input input)
{
  std::array<int, 2> ends{};
  EXPECT_EQ(0, pipe2(ends.data(), O_CLOEXEC));
  winsize size{24, 120, 0, 0};
  _process = forkpty(&_terminal, nullptr, nullptr, &size);
  if (_process == 0)
  {
    if (input == Input::Pipe)
      dup2(ends[0], STDIN_FILENO);
    become(arguments);
  }
  close(ends[0]);
  _input = ends[1];
  tcgetattr(_terminal, &_before);
}

TerminalProcess::~TerminalProcess()
{
  closeInput();
  if (_process != 0)
  {
    kill(_process, SIGKILL);
    waitpid(_process, nullptr, 0);
  }
  close(_terminal);
}

void TerminalProcess::write(const std::string& text) const
{
  EXPECT_EQ(static_cast<ssize_t>(text.size()), ::write(_input, text.data(), text.size()));
}

void TerminalProcess::closeInput()
{
  if (_input >= 0)
    close(_input);
  _input = -1;
}

void TerminalProcess::press(const std::string& keys) const
{
  EXPECT_EQ(static_cast<ssize_t>(keys.size()), ::write(_terminal, keys.data(), keys.size()));
}

void TerminalProcess::signal(int number) const
{
  kill(_process, number);
}

void TerminalProcess::resize(unsigned short columns) const
{
  const winsize size{24, columns, 0, 0};
  ioctl(_terminal, TIOCSWINSZ, &size);
}

bool TerminalProcess::sees(const std::string& text)
{
  while (_drawn.find(text) == std::string::npos)
  {
    if (!_readPiece())
      return false;
  }
  _drawn.erase(0, _drawn.find(text) + text.size());
  return true;
}

bool TerminalProcess::_readPiece()
{
  pollfd descriptor{_terminal, POLLIN, 0};
  std::array<char, 4096> piece{};
  if (poll(&descriptor, 1, patience) <= 0)
    return false;
  const ssize_t count = read(_terminal, piece.data(), piece.size());
  if (count <= 0)  // at the end of the process
    return false;
  _drawn.append(piece.data(), static_cast<std::size_t>(count));
  return true;
}

bool TerminalProcess::_endsInTime() const
{
  const int process = static_cast<int>(syscall(SYS_pidfd_open, _process, 0));
  pollfd end{process, POLLIN, 0};
  const bool hasEnded = poll(&end, 1, patience) == 1;
  close(process);
  return hasEnded;
}

int TerminalProcess::status()
{
  while (_readPiece())
    ;
  if (!_endsInTime())
  {
    ADD_FAILURE() << "the program hangs";
    kill(_process, SIGKILL);
  }
  int waited = 0;
  waitpid(_process, &waited, 0);
  _process = 0;
  return WIFSIGNALED(waited) ? -WTERMSIG(waited) : WEXITSTATUS(waited);
}

bool TerminalProcess::isRestored() const
{
  termios now{};
  tcgetattr(_terminal, &now);
  return now.c_lflag == _before.c_lflag && now.c_iflag == _before.c_iflag && now.c_oflag == _before.c_oflag;
}

}  // namespace livetests
