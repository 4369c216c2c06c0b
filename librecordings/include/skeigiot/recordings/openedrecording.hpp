#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/reader.hpp>
#include <skeigiot/recordings/readingoptions.hpp>

#include <iosfwd>
#include <memory>
#include <string>

namespace KV::recordings
{

/// A recording that was opened.
struct SKEIGIOT_API OpenedRecording
{
  std::unique_ptr<Reader> reader;  ///< reads it; never null
  std::string format;              ///< name of its format, as given or detected
};

/// As openRecording() of a stream, and says which format was found.
///
/// \throws Error as openRecording() does.
SKEIGIOT_API OpenedRecording openDetected(std::istream& stream, const std::string& name, const std::string& format,
                                          const ReadingOptions& options);

}  // namespace KV::recordings
