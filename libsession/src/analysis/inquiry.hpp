#pragma once

#include "explainer.hpp"
#include "explanation.hpp"
#include "messages.hpp"
#include "recording.hpp"
#include "spanexplanation.hpp"

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <string>

namespace tools
{

/// What is asked, and of which recording.
struct Inquiry
{
  RecordingReader& reader;
  std::string name;  ///< of the recording, in messages
  std::int32_t person = 0;
  bool skipBad = false;  ///< read on behind a line that cannot be used
  Messages& messages;    ///< for warnings of the reader and of the library
};

/// Returns the last update of the person at that time since the start or before it.
///
/// The recording is read no further than needed.
///
/// \throws RecordingError if it cannot be read, ends before, or has no such update.
Explanation explainMoment(const Inquiry& inquiry, Duration at);

/// Returns all updates of the person in that span, both ends included; without an end it is that of the recording.
///
/// \throws RecordingError likewise.
SpanExplanation explainSpan(const Inquiry& inquiry, Duration from, const boost::optional<Duration>& to);

}  // namespace tools
