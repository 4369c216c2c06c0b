#pragma once

namespace KV::tools
{

/// The exit status of the command.
enum ExitStatus : int
{
  Success = 0,
  Failure = 1,  ///< something else went wrong: an export cannot be written
  BadInput = 2  ///< a recording or the command line cannot be used
};

/// Returns the graver of two: bad input outweighs success, failure outweighs both.
inline ExitStatus graver(ExitStatus left, ExitStatus right)
{
  if (left == Failure || right == Failure)
    return Failure;
  return left == BadInput || right == BadInput ? BadInput : Success;
}

}  // namespace KV::tools
