#include "faultyprocess.hpp"

#include "../allocationfault.hpp"
#include "support/temporaryfolder.hpp"

#include <fcntl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <limits>
#include <stdexcept>

int commandMain(int argc, char** argv);  // the name of the command's main()

namespace
{

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
std::size_t callsUntilKilled = never;

void countCall()
{
  if (callsUntilKilled == never)
    return;
  if (callsUntilKilled-- == 0)
    std::raise(SIGKILL);
}

}  // namespace

// The linker redirects every call that changes files to here: see CMakeLists.txt.
extern "C" {
ssize_t __real_write(int file, const void* bytes, size_t count);
int __real_rename(const char* from, const char* to);
int __real_mkostemp(char* pattern, int flags);
int __real_fsync(int file);
int __real_fchmod(int file, mode_t mode);
int __real_unlink(const char* path);
int __real_close(int file);

ssize_t __wrap_write(int file, const void* bytes, size_t count)
{
  countCall();
  return __real_write(file, bytes, count);
}
int __wrap_rename(const char* from, const char* to)
{
  countCall();
  return __real_rename(from, to);
}
int __wrap_mkostemp(char* pattern, int flags)
{
  countCall();
  return __real_mkostemp(pattern, flags);
}
int __wrap_fsync(int file)
{
  countCall();
  return __real_fsync(file);
}
int __wrap_fchmod(int file, mode_t mode)
{
  countCall();
  return __real_fchmod(file, mode);
}
int __wrap_unlink(const char* path)
{
  countCall();
  return __real_unlink(path);
}
int __wrap_close(int file)
{
  countCall();
  return __real_close(file);
}
}

namespace faults
{

namespace
{

constexpr int allocationFailed = 100;  // added to the exit status of the child, which is small

void redirect(int descriptor, const std::string& path, int flags)
{
  const int file = ::open(path.c_str(), flags, 0600);
  if (file < 0 || ::dup2(file, descriptor) < 0)
    ::_exit(99);
  __real_close(file);
}

/// Runs in the child; its result is the exit status.
int runFaulty(std::vector<std::string> arguments, const ProcessFault& fault)
{
  std::vector<char*> pointers;
  for (std::string& argument : arguments)
    pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  if (fault.greatestFile)
  {
    const rlimit limit{*fault.greatestFile, *fault.greatestFile};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }

  const int argc = static_cast<int>(arguments.size());
  callsUntilKilled = fault.killedAtCall.value_or(never);
  if (!fault.failingAllocation)
    return commandMain(argc, pointers.data());
  const AllocationFault failing(*fault.failingAllocation);
  const int status = commandMain(argc, pointers.data());
  return status + (failing.happened() ? allocationFailed : 0);
}

std::string readOneLine(int pipe)
{
  std::string line;
  std::array<char, 1> character{};
  while (::read(pipe, character.data(), 1) == 1)
  {
    line += character[0];
    if (character[0] == '\n')
      break;
  }
  return line;
}

ProcessResult resultOf(int waited)
{
  if (WIFSIGNALED(waited))
    return {-WTERMSIG(waited), WTERMSIG(waited) == SIGKILL, "", ""};
  const int status = WEXITSTATUS(waited);
  return {status % allocationFailed, status >= allocationFailed, "", ""};
}

}  // namespace

ProcessResult runCommand(const std::vector<std::string>& arguments, const ProcessFault& fault)
{
  const replaytests::TemporaryFolder folder;
  std::vector<std::string> all{"skeigiot"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  const std::string output = fault.output.empty() ? folder.path("output") : fault.output;
  std::array<int, 2> pipe{-1, -1};
  if (fault.readerLeaves && ::pipe(pipe.data()) != 0)
    throw std::runtime_error("no pipe");

  const pid_t child = ::fork();
  if (child < 0)
    throw std::runtime_error("no process");
  if (child == 0)
  {
    redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    redirect(STDERR_FILENO, folder.path("errors"), O_WRONLY | O_CREAT);
    if (fault.readerLeaves)
    {
      ::dup2(pipe[1], STDOUT_FILENO);
      __real_close(pipe[0]);
      __real_close(pipe[1]);
    }
    else
      redirect(STDOUT_FILENO, output, O_WRONLY | O_CREAT);
    ::_exit(runFaulty(all, fault));
  }

  std::string line;
  if (fault.readerLeaves)
  {
    ::close(pipe[1]);
    line = readOneLine(pipe[0]);
    ::close(pipe[0]);
  }
  int waited = 0;
  ::waitpid(child, &waited, 0);
  ProcessResult result = resultOf(waited);
  result.output = fault.readerLeaves ? line : fault.output.empty() ? folder.read("output") : "";
  result.errors = folder.read("errors");
  return result;
}

}  // namespace faults
