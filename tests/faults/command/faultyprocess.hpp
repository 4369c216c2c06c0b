#pragma once

#include <sys/resource.h>

#include <cstddef>
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
  std::optional<rlim_t> greatestFile;            ///< [bytes] the size that no file may exceed
  std::string output;                            ///< file for standard output; empty: it is kept
  bool readerLeaves = false;                     ///< standard output is a pipe, whose reader leaves after one line
};

/// The result of the run.
struct ProcessResult
{
  int status = -1;       ///< exit status, or minus the signal that ended it
  bool faulted = false;  ///< whether the allocation failed, or the process was killed
  std::string output;
  std::string errors;
};

/// Runs the command with these arguments in a process of its own, without standard input.
ProcessResult runCommand(const std::vector<std::string>& arguments, const ProcessFault& fault = {});

}  // namespace faults
