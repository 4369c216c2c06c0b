#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/explanation.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/spanexplanation.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <functional>
#include <string>

namespace KV::session
{

/// What is asked, and of which recording.
struct SKEIGIOT_API Inquiry
{
  Player::Open open;                             ///< opens the recording
  std::string name;                              ///< of the recording, in messages
  std::int32_t person = 0;                       ///< whose updates are explained
  bool skipBad = false;                          ///< read on behind a line that cannot be used
  Cycle cycle = {};                              ///< how often persons are updated
  std::function<void(const std::string&)> note;  ///< takes warnings of the reader and of the library
  Player::GoOn goOn;                             ///< see Player
};

/// Returns the last update of the person at that time since the start or before it.
///
/// The recording is read no further than needed.
///
/// \throws Error if it cannot be read, ends before, or has no such update.
SKEIGIOT_API Explanation explainMoment(const Inquiry& inquiry, Duration at);

/// Returns all updates of the person in that span, both ends included. Without `to`, the span ends with the recording.
///
/// \throws Error if the recording cannot be read, ends before the span, or has no update of the person in it.
SKEIGIOT_API SpanExplanation explainSpan(const Inquiry& inquiry, Duration from, const boost::optional<Duration>& to);

}  // namespace KV::session
