#pragma once

#include "inspection.hpp"
#include "recording.hpp"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace tools
{

/// Everything that there is to say of a recording.
struct InspectionReport
{
  std::string path;
  std::string format;                    ///< its name
  std::vector<std::string> description;  ///< how it is read
  RecordingColumns columns;
  Inspection contents;
  std::vector<std::string> warnings;  ///< the first few
  std::size_t moreWarnings = 0;
  std::size_t badLines = 0;
  std::string firstBadLine;
  std::string error;  ///< why it was not read to its end
};

/// Reads all of the recording.
///
/// \throws RecordingError if it cannot be opened.
InspectionReport inspect(const std::string& path, const std::string& format, const ReadingOptions& options);

/// Writes the report for people, in lines of that width where that can be.
void writeAsText(std::ostream& stream, const InspectionReport& report, int width);

/// Writes the report as a JSON object; times in seconds, the first since 1970, others since the first.
void writeAsJson(std::ostream& stream, const InspectionReport& report);

}  // namespace tools
