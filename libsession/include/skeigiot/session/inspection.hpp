#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <ko/systemclock.hpp>

#include <boost/chrono/duration.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace KV::session
{

/// Count, range and mean of one number in a recording.
struct SKEIGIOT_API NumberRange
{
  std::size_t count = 0;                                       ///< of what is a number
  double least = std::numeric_limits<double>::infinity();      ///< infinity if there was no number
  double greatest = -std::numeric_limits<double>::infinity();  ///< minus infinity if there was no number
  double sum = 0.;                                             ///< of all numbers

  /// Adds a value; NaN is left out.
  void add(double value);
  /// Returns the mean; NaN if there was no number.
  double mean() const { return sum / static_cast<double>(count); }
};

/// The steps of a recording about one person.
struct SKEIGIOT_API PersonSpan
{
  std::string name;                   ///< what the recording calls the person; empty if they have no name
  std::size_t seen = 0;               ///< steps in which the person was observed
  std::size_t notSeen = 0;            ///< steps that say that the person was not
  ko::SystemClock::time_point first;  ///< time of the first step about the person
  ko::SystemClock::time_point last;   ///< time of the last step about the person
};

/// The content of a recording.
class SKEIGIOT_API Inspection
{
public:
  using TimePoint = ko::SystemClock::time_point;  ///< on the clock of the recording
  using Duration = ko::SystemClock::duration;     ///< [ns]

  /// The least time between two steps that counts as a gap.
  static constexpr Duration shortestGap = boost::chrono::seconds(1);

  /// Stretches without a step, of shortestGap or more.
  struct Gaps
  {
    std::size_t count = 0;  ///< how many there are
    Duration longest{0};    ///< [ns] the longest of them; 0 without gaps
    Duration at{0};         ///< since the first step, where the longest begins
  };

  /// Adds the next step.
  void add(const recordings::Step& step);

  /// Returns how many steps were added.
  std::size_t steps() const { return _steps; }
  /// Returns the time of the first step; 1970 without steps.
  TimePoint first() const { return _first; }
  /// Returns the time from the first step to the last; 0 without steps.
  Duration length() const { return _last - _first; }

  /// Returns how many different times there are a second, gaps left out; 0 if that is unknown.
  double timesPerSecond() const;

  /// Returns the gaps between steps.
  const Gaps& gaps() const { return _gaps; }
  /// Returns all persons of the steps, by their numbers.
  const std::map<std::int32_t, PersonSpan>& persons() const { return _persons; }

  /// Returns the range of each number, named as in JSON Lines: "headPosture.yaw"; truths count as 0 and 1.
  const std::map<std::string, NumberRange>& numbers() const { return _numbers; }

  /// Returns the names of the scopes that are started.
  const std::map<std::string, std::size_t>& scopes() const { return _scopes; }

private:
  void _addTime(TimePoint time);
  void _addPerson(const recordings::Step& step);

  std::size_t _steps = 0;
  std::size_t _times = 0;
  TimePoint _first;
  TimePoint _last;
  Gaps _gaps;
  Duration _timeInGaps{0};
  std::map<std::int32_t, PersonSpan> _persons;
  std::map<std::string, NumberRange> _numbers;
  std::map<std::string, std::size_t> _scopes;
};

/// Says in a sentence how far estimates of this recording can be trusted: how often persons were seen, how strong their
/// expressions get, where their heads point on average, which readings are missing, and the effect of that.
SKEIGIOT_API std::string trustIn(const Inspection& inspection);

}  // namespace KV::session
