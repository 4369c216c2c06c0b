#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <boost/optional/optional.hpp>

#include <string>

namespace KV::session
{

/// A scope given by its span in the recording; updates at exactly one of its ends belong to it.
struct SKEIGIOT_API ScopeSpan
{
  std::string name;              ///< under which it is judged
  Duration from{0};              ///< since the start of the recording
  boost::optional<Duration> to;  ///< since the start of the recording; without it, to the end
};

/// Reads "NAME=FROM..TO", the times in seconds since the start of the recording; either of them may be left out.
///
/// \throws std::invalid_argument which says what is wrong with the text.
SKEIGIOT_API ScopeSpan parseScopeSpan(const std::string& text);

}  // namespace KV::session
