#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/reportoverview.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace KV::session
{

/// A recording in an index of reports.
struct SKEIGIOT_API IndexedRecording
{
  std::string file;          ///< what the index calls it
  std::string page;          ///< address of its report, relative to the index; empty if it has none
  ReportOverview overview;   ///< what its report shows
  std::size_t warnings = 0;  ///< how many there were
  std::string error;         ///< what ended it early, or kept it from beginning; empty if nothing did
};

/// Writes a page that leads to the reports of several recordings, with a small picture of each person.
///
/// \throws std::logic_error if the library was built without the page.
SKEIGIOT_API void writeReportIndex(std::ostream& stream, const std::vector<IndexedRecording>& recordings);

}  // namespace KV::session
