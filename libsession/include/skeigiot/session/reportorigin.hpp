#pragma once

#include <skeigiot/api.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace KV::session
{

/// The head of a report: files, the way in which they were read, options, version and date.
struct SKEIGIOT_API ReportOrigin
{
  /// A file that was read.
  struct File
  {
    std::string path;                      ///< as the user gave it
    boost::optional<std::uint64_t> bytes;  ///< size on the disk; none where that is unknown, as of a pipe
    std::string format;                    ///< name of the format; empty if it is unknown
  };

  std::vector<File> files;           ///< the inputs of the session
  std::vector<std::string> options;  ///< how the user wanted it read and estimated other than by default, as given
  std::vector<std::string> notes;    ///< warnings and errors
  std::string version;               ///< of the program that made the report
  std::string made;                  ///< when it was made, as a text
};

}  // namespace KV::session
