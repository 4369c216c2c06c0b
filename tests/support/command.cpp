#include "command.hpp"

#include "temporaryfolder.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace replaytests
{

namespace
{

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
  std::vector<char*> pointers;
  for (std::string& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int exitStatusOf(int waited)
{
  return WIFSIGNALED(waited) ? -WTERMSIG(waited) : WEXITSTATUS(waited);
}

/// Runs the program; `output` is where its standard output goes. Standard error goes to a file, so that it cannot
/// block.
CommandResult run(std::vector<std::string> arguments, int output)
{
  const TemporaryFolder folder;
  std::vector<std::string> environment{"PATH=/usr/bin:/bin", "TERM=xterm", "skeigiot=" SKEIGIOT_COMMAND};

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, folder.path("errors").c_str(), O_WRONLY | O_CREAT, 0600);
  pid_t process = 0;
  const int failed = posix_spawn(&process, arguments.front().c_str(), &actions, nullptr, pointersTo(arguments).data(),
                                 pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  close(output);
  if (failed != 0)
    throw std::runtime_error("cannot run " + arguments.front());

  int waited = 0;
  waitpid(process, &waited, 0);
  return {exitStatusOf(waited), "", folder.read("errors")};
}

/// Runs the program with its standard output going to a file, so that it cannot block.
CommandResult runAndKeepOutput(const std::vector<std::string>& arguments)
{
  const TemporaryFolder folder;
  CommandResult result = run(arguments, open(folder.path("output").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  result.output = folder.read("output");
  return result;
}

std::vector<std::string> commandWith(const std::vector<std::string>& arguments)
{
  std::vector<std::string> all{SKEIGIOT_COMMAND};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return all;
}

}  // namespace

CommandResult runCommand(const std::vector<std::string>& arguments)
{
  return runAndKeepOutput(commandWith(arguments));
}

CommandResult runCommandIntoClosedPipe(const std::vector<std::string>& arguments)
{
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0)
    throw std::runtime_error("cannot make a pipe");
  close(ends[0]);
  return run(commandWith(arguments), ends[1]);
}

CommandResult runShell(const std::string& script, const std::vector<std::string>& arguments)
{
  std::vector<std::string> all{"/bin/sh", "-c", script, "sh"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return runAndKeepOutput(all);
}

}  // namespace replaytests
