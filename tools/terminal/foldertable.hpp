#pragma once

#include "terminal/terminal.hpp"

#include <skeigiot/session/duration.hpp>

#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace KV::tools
{

/// One recording in the table of a folder.
struct FileOverview
{
  static constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

  std::string file;
  bool opened = false;
  session::Duration length{0};
  std::size_t persons = 0;
  double seen = unknown;       ///< mean over the persons of the share of the time in which they were seen
  double valence = unknown;    ///< mean over the persons whose valence is known
  double attention = unknown;  ///< mean over the persons whose attention is known
  std::map<std::string, std::size_t> verdicts;  ///< on the whole recording: the number of persons with each verdict
  std::size_t warnings = 0;
  bool cut = false;  ///< an error ended it early
};

/// Returns a table with a line for each recording.
std::string folderTable(const std::vector<FileOverview>& files, const Style& style);

}  // namespace KV::tools
