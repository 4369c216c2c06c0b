#pragma once

#include <string>
#include <vector>

namespace replaytests
{

/// The result of a run of the built command.
struct CommandResult
{
  int status = -1;  ///< exit status, or minus the signal that ended it
  std::string output;
  std::string errors;
};

/// Runs `skeigiot` with these arguments, in an environment without settings of the user.
CommandResult runCommand(const std::vector<std::string>& arguments);

/// As runCommand(), but the reader of the output has closed it.
CommandResult runCommandIntoClosedPipe(const std::vector<std::string>& arguments);

/// Runs a shell command, in which $skeigiot is the built command and $1, $2, ... are the arguments.
CommandResult runShell(const std::string& script, const std::vector<std::string>& arguments = {});

}  // namespace replaytests
