#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/step.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// Text that is not the JSON of a step of a recording.
class SKEIGIOT_API MemberError : public std::runtime_error
{
public:
  /// `member` is the path of the member that the message is about; empty if the text is no JSON object at all.
  MemberError(const std::string& member, const std::string& message) : std::runtime_error(message), _member(member) {}

  /// Returns the path of the member, such as "observation.smile.value"; empty if the text is no JSON object.
  const std::string& member() const { return _member; }
  /// Returns whether the text is no JSON object at all, as the last line of a file that was cut.
  bool isSyntax() const { return _member.empty(); }

private:
  std::string _member;
};

/// Returns the step as a JSON object on one line, without a line end.
///
/// Numbers read back to the same bits; members that say nothing (a default, a reading's time that is the step's) are
/// left out. A NaN is written as "NaN" whatever its bits.
SKEIGIOT_API std::string stepToJson(const Step& entry);

/// Reads what stepToJson() writes.
///
/// \throws MemberError if the text is no JSON object, or has an unknown or doubled member, a wrong type, a number out
/// of
///   range, or lacks a member.
SKEIGIOT_API Step stepFromJson(std::string_view text);

/// The boundaries of the library that a line of a live stream sets.
struct SKEIGIOT_API BoundarySettings
{
  boost::optional<float> positive;                ///< for KV::PersonState::setBinaryBoundaryPositive()
  boost::optional<float> negative;                ///< for KV::PersonState::setBinaryBoundaryNegative()
  boost::optional<float> confidence;              ///< for KV::PersonState::setBinaryBoundaryConfidence()
  boost::optional<float> lookingAtRobot;          ///< for KV::PersonState::setBinaryBoundaryLookingAtRobot()
  boost::optional<float> strictlyLookingAtRobot;  ///< for KV::PersonState::setBinaryBoundaryStrictlyLookingAtRobot()
  boost::optional<float> excited;                 ///< for KV::AmbianceState::setBinaryBoundaryExcited()
};

/// A line of a live stream: a step of a recording, and what is asked besides.
struct SKEIGIOT_API StreamLine
{
  BoundarySettings boundaries;        ///< those that the line sets; set before the step takes effect
  std::vector<std::int32_t> leaving;  ///< persons to forget
  Step entry;                         ///< the step; only its time if the line has no step
};

/// Reads a line of a live stream, which may have the members "boundaries" and "leave" besides those of a step.
///
/// \param arrival replaces a missing time; without it, the time is required.
/// \throws MemberError as stepFromJson() does.
SKEIGIOT_API StreamLine streamLineFromJson(std::string_view text, boost::optional<ko::SystemClock::time_point> arrival);

}  // namespace KV::recordings
