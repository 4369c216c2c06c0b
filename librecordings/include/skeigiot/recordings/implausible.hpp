#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/step.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <string>

/// \file
/// Numbers that were given in another unit than they are read in. The estimate would take them for what they are not,
/// without a word.

namespace KV::recordings
{

/// A number that cannot be meant as it stands.
struct SKEIGIOT_API Implausible
{
  std::string member;   ///< which number: "time", or one of an observation such as "expressions.joy.value"
  std::string message;  ///< what is wrong with it, what was expected, and what helps
};

/// Finds a score or confidence in the step that looks like percent: above 2, and at most 100; what is slightly above 1
/// is left alone, since front ends round so. Or a reading of a step of our time, whose own time is implausibleTime().
SKEIGIOT_API boost::optional<Implausible> implausibleReading(const Step& step);

/// Returns whether a time looks like seconds, milliseconds or microseconds since 1970 that were taken for nanoseconds.
///
/// Ask it of the first time of a recording, or of times that are known to be of today: a recording that counts from 0
/// passes through all of them.
SKEIGIOT_API boost::optional<Implausible> implausibleTime(ko::SystemClock::time_point time);

/// Returns what goes on behind a message if so many seconds since 1970 look like milliseconds, microseconds or
/// nanoseconds, such as "; it looks like milliseconds: divide it by 1000"; empty if they do not.
SKEIGIOT_API std::string adviceOnSeconds(double seconds);

}  // namespace KV::recordings
