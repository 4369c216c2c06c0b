#pragma once

#include "snapshot.hpp"

#include <boost/optional/optional.hpp>

#include <string>

namespace tools
{

/// A scope given by its span in the recording; updates at exactly one of its ends belong to it.
struct ScopeSpan
{
  std::string name;
  Duration from{0};              ///< since the start of the recording
  boost::optional<Duration> to;  ///< since the start of the recording; without it, to the end
};

/// Reads "NAME=FROM..TO", the times in seconds since the start of the recording; either of them may be left out.
///
/// \throws std::invalid_argument which says what is wrong with the text.
ScopeSpan parseScopeSpan(const std::string& text);

}  // namespace tools
