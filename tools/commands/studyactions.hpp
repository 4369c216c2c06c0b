#pragma once

#include "cli/exitstatus.hpp"
#include "cli/messages.hpp"

#include <skeigiot/session/studyplan.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::tools
{

/// The arguments of all actions on a study.
struct StudyArguments
{
  std::vector<std::string> paths;  ///< a folder, a study file, or result files; none: the current folder
  std::string output;              ///< empty: the usual one of the action
  session::StudyShard shard;
  std::size_t jobs = 1;  ///< sessions at a time
  bool anew = false;
  bool force = false;
  bool quiet = false;
  std::string table;  ///< to export; empty: all
};

/// Writes a study file.
///
/// \throws Error, OutputRefused, WriteError
ExitStatus initStudy(const StudyArguments& arguments, Messages& messages);

/// Lists the problems of a study.
///
/// \throws Error
ExitStatus checkStudyFiles(const StudyArguments& arguments, Messages& messages);

/// Plays the sessions that are missing.
///
/// \throws Error
ExitStatus runStudyFile(const StudyArguments& arguments, Messages& messages);

/// Writes tables as CSV.
///
/// \throws Error, OutputRefused, WriteError
ExitStatus exportResults(const StudyArguments& arguments, Messages& messages);

/// Writes a page with figures of the results.
///
/// \throws Error, OutputRefused, WriteError
ExitStatus reportResults(const StudyArguments& arguments, Messages& messages);

}  // namespace KV::tools
