#include "faultyprocess.hpp"

#include "../allocationfault.hpp"
#include "support/temporaryfolder.hpp"

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <limits>
#include <stdexcept>

int commandMain(int argc, char** argv);  // the name of the command's main()

namespace
{

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> callsUntilKilled{never};
std::atomic<std::size_t> callsUntilFull{never};
std::atomic<bool> wasFull{false};

void countCall()
{
  if (callsUntilKilled != never && callsUntilKilled-- == 0)
    std::raise(SIGKILL);
}

/// Counts a call that needs room on the disk; returns whether there is any.
bool hasRoom()
{
  // Threads that write at the same time each count a call of their own: none counts below 0.
  std::size_t left = callsUntilFull;
  while (left > 0 && left != never)
    if (callsUntilFull.compare_exchange_weak(left, left - 1))
      return true;
  if (left == never)
    return true;
  wasFull = true;
  errno = ENOSPC;
  return false;
}

/// As above, for a call that writes up to this place: a full disk can still be overwritten.
bool hasRoomUpTo(int file, off_t end)
{
  struct stat status = {};
  const bool isRegular = file > STDERR_FILENO && ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
  return !isRegular || end <= status.st_size || hasRoom();
}

}  // namespace

// The linker redirects every call that changes files to here: see CMakeLists.txt.
extern "C" {
ssize_t __real_write(int file, const void* bytes, size_t count);
ssize_t __real_pwrite(int file, const void* bytes, size_t count, off_t place);
int __real_rename(const char* from, const char* to);
int __real_mkostemp(char* pattern, int flags);
int __real_fsync(int file);
int __real_fchmod(int file, mode_t mode);
int __real_unlink(const char* path);
int __real_close(int file);

ssize_t __wrap_write(int file, const void* bytes, size_t count)
{
  countCall();
  const off_t place = ::lseek(file, 0, SEEK_CUR);
  return hasRoomUpTo(file, place + static_cast<off_t>(count)) ? __real_write(file, bytes, count) : -1;
}
ssize_t __wrap_pwrite(int file, const void* bytes, size_t count, off_t place)
{
  countCall();
  return hasRoomUpTo(file, place + static_cast<off_t>(count)) ? __real_pwrite(file, bytes, count, place) : -1;
}
int __wrap_rename(const char* from, const char* to)
{
  countCall();
  return hasRoom() ? __real_rename(from, to) : -1;
}
int __wrap_mkostemp(char* pattern, int flags)
{
  countCall();
  return hasRoom() ? __real_mkostemp(pattern, flags) : -1;
}
int __wrap_fsync(int file)
{
  countCall();
  return hasRoom() ? __real_fsync(file) : -1;
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

constexpr int faultHappened = 100;  // added to the exit status of the child, which is small

void redirect(int descriptor, const std::string& path, int flags)
{
  const int file = ::open(path.c_str(), flags, 0600);
  if (file < 0 || ::dup2(file, descriptor) < 0)
    ::_exit(99);
  __real_close(file);
}

/// SQLite is a library of its own, which the linker does not redirect. It calls the system through a table.
void redirectSqlite()
{
  static auto* const vfs = sqlite3_vfs_find(nullptr);
  static const auto truncate = reinterpret_cast<int (*)(int, off_t)>(vfs->xGetSystemCall(vfs, "ftruncate"));
  const auto replace = [](const char* name, auto* function) {
    if (vfs->xGetSystemCall(vfs, name) != nullptr)
      vfs->xSetSystemCall(vfs, name, reinterpret_cast<sqlite3_syscall_ptr>(function));
  };
  replace("write", &__wrap_write);
  replace("pwrite", &__wrap_pwrite);
  replace("pwrite64", &__wrap_pwrite);
  replace("unlink", &__wrap_unlink);
  replace(
      "ftruncate", +[](int file, off_t size) {
        countCall();
        return truncate(file, size);
      });
}

/// Runs in the child; its result is the exit status.
int runFaulty(const std::function<int()>& function, const ProcessFault& fault)
{
  if (fault.greatestFile)
  {
    const rlimit limit{*fault.greatestFile, *fault.greatestFile};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }

  redirectSqlite();
  callsUntilKilled = fault.killedAtCall.value_or(never);
  callsUntilFull = fault.fullAtCall.value_or(never);
  if (!fault.failingAllocation)
  {
    const int status = function();
    return status + (wasFull ? faultHappened : 0);
  }
  const AllocationFault failing(*fault.failingAllocation);
  const int status = function();
  return status + (failing.happened() ? faultHappened : 0);
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
  return {status % faultHappened, status >= faultHappened, "", ""};
}

}  // namespace

ProcessResult runCommand(const std::vector<std::string>& arguments, const ProcessFault& fault)
{
  std::vector<std::string> all{"skeigiot"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& argument : all)
    pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  return runInProcess([&pointers] { return commandMain(static_cast<int>(pointers.size()) - 1, pointers.data()); },
                      fault);
}

ProcessResult runInProcess(const std::function<int()>& function, const ProcessFault& fault)
{
  const replaytests::TemporaryFolder folder;
  const std::string output = fault.output.empty() ? folder.path("output") : fault.output;
  std::array<int, 2> pipe{-1, -1};
  if (fault.readerLeaves && ::pipe(pipe.data()) != 0)
    throw std::runtime_error("no pipe");

  const pid_t child = ::fork();
  if (child < 0)
    throw std::runtime_error("no process");
  if (child == 0)
  {
    redirect(STDIN_FILENO, fault.input.empty() ? "/dev/null" : fault.input, O_RDONLY);
    redirect(STDERR_FILENO, folder.path("errors"), O_WRONLY | O_CREAT);
    if (fault.readerLeaves)
    {
      ::dup2(pipe[1], STDOUT_FILENO);
      __real_close(pipe[0]);
      __real_close(pipe[1]);
    }
    else
      redirect(STDOUT_FILENO, output, O_WRONLY | O_CREAT);
    ::_exit(runFaulty(function, fault));
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
