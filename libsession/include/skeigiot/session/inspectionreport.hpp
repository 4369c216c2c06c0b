#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/inspection.hpp>
#include <skeigiot/session/player.hpp>

#include <cstddef>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace KV::session
{

/// Everything that there is to say of a recording.
struct SKEIGIOT_API InspectionReport
{
  std::string path;                      ///< of the recording
  std::string format;                    ///< its name
  std::vector<std::string> description;  ///< how it is read
  std::vector<std::string> learned;      ///< what was learned of the faces at rest, see recordings::Reader
  recordings::Columns columns;           ///< read and ignored; empty where the format has none
  Inspection contents;                   ///< content of its steps
  bool isDated = true;                   ///< whether its times have a date, see recordings::Reader
  std::vector<std::string> warnings;     ///< the first few
  std::size_t moreWarnings = 0;          ///< how many warnings followed
  std::size_t badLines = 0;              ///< how many lines cannot be used
  std::string firstBadLine;              ///< the message on the first of them; empty without bad lines
  std::string error;                     ///< why it was not read to its end
};

/// Reads all of the recording, over bad lines.
///
/// \param goOn see Player
/// \throws Error if it cannot be opened.
SKEIGIOT_API InspectionReport inspect(const std::string& path, const std::string& format,
                                      const recordings::ReadingOptions& options, const Player::GoOn& goOn = {});

/// As inspect() of a path, of a recording that comes from a stream; `name` is used in place of the path.
///
/// \throws Error if it cannot be opened.
SKEIGIOT_API InspectionReport inspect(std::istream& stream, const std::string& name, const std::string& format,
                                      const recordings::ReadingOptions& options, const Player::GoOn& goOn = {});

/// Writes the report as a JSON object; times in seconds, the first since 1970 or null if there is no date, others since
/// the first.
SKEIGIOT_API void writeAsJson(std::ostream& stream, const InspectionReport& report);

}  // namespace KV::session
