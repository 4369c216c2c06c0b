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

/// A question about an estimate, and its recording.
struct SKEIGIOT_API Inquiry
{
  Player::Open open;                             ///< opens the recording
  std::string name;                              ///< of the recording, in messages
  boost::optional<std::int32_t> person;          ///< whose updates are explained; without one, of the only person
  std::string personName = {};                   ///< what the caller calls the person, for messages
  bool skipBad = false;                          ///< read on behind a line that cannot be used
  Cycle cycle = {};                              ///< how often persons are updated
  std::function<void(const std::string&)> note;  ///< takes warnings of the reader and of the library; may be empty
  Player::GoOn goOn;                             ///< see Player
};

/// Returns the last update of the person at that time since the start or before it.
///
/// The recording is read no further than needed; to its end if the inquiry names no person.
///
/// \throws Error if it cannot be read, ends before, has no such update, or has several persons and the inquiry names
/// none.
SKEIGIOT_API Explanation explainMoment(const Inquiry& inquiry, Duration at);

/// Returns the update of the person that changed valence or attention most; of several, the first.
///
/// A change from an estimate that was unknown does not count, unless there is no other.
///
/// \throws Error if the recording cannot be read, has no update of the person, or has several persons and the inquiry
/// names none.
SKEIGIOT_API Explanation explainGreatestChange(const Inquiry& inquiry);

/// Returns all updates of the person in that span, both ends included. Without `to`, the span ends with the recording.
///
/// \throws Error if the recording cannot be read, ends before the span, has no update of the person in it, or has
/// several persons and the inquiry names none.
SKEIGIOT_API SpanExplanation explainSpan(const Inquiry& inquiry, Duration from, const boost::optional<Duration>& to);

}  // namespace KV::session
