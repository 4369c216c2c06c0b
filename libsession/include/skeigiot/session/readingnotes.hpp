#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::session
{

/// Problems of a recording that was read: the first few in full, the others counted, so that memory is bounded.
struct SKEIGIOT_API ReadingNotes
{
  std::vector<std::string> warnings;         ///< of the reader, the first ten
  std::size_t moreWarnings = 0;              ///< how many warnings followed
  std::size_t badLines = 0;                  ///< lines that were skipped
  std::string firstBadLine;                  ///< the error of the first skipped line
  boost::optional<recordings::Error> error;  ///< the error that ended the recording early

  /// Returns the warnings, and how many more there were, a line each.
  std::vector<std::string> warningLines() const;

  /// Returns how many lines were skipped and the error of the first one; empty if none was skipped.
  std::string skippedText() const;
};

}  // namespace KV::session
