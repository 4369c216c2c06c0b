#pragma once

#include <sys/resource.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace faults
{

/// The fault while the command runs.
struct ProcessFault
{
  std::optional<std::size_t> failingAllocation;  ///< the allocation with this number fails, from 0
  std::optional<std::size_t> killedAtCall;       ///< killed before the call that changes files with this number, from 0
  std::optional<std::size_t> fullAtCall;         ///< the disk is full from the call that needs room with this number on
  std::optional<rlim_t> greatestFile;            ///< [bytes] the size that no file may exceed
  std::string input;                             ///< file for standard input; empty: it is empty
  std::string output;                            ///< file for standard output; empty: it is kept
  bool readerLeaves = false;                     ///< standard output is a pipe, whose reader leaves after one line
};

/// The result of the run.
struct ProcessResult
{
  int status = -1;       ///< exit status, or minus the signal that ended it
  bool faulted = false;  ///< whether the allocation failed, the disk was full, or the process was killed
  std::string output;
  std::string errors;
};

/// Runs the command with these arguments in a process of its own.
///
/// Calls that change files are those of the command and its libraries, and of SQLite. A call needs room if it makes a
/// file or writes behind the end of one.
ProcessResult runCommand(const std::vector<std::string>& arguments, const ProcessFault& fault = {});

/// Runs the function in a process of its own; its result is the exit status, which is less than 100.
ProcessResult runInProcess(const std::function<int()>& function, const ProcessFault& fault = {});

}  // namespace faults
