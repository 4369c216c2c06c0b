#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <cstdint>
#include <deque>

namespace KV::session
{

/// How far a person is engaged with the robot; the numbers are those of hri_msgs/msg/EngagementLevel.
enum class EngagementLevel : std::uint8_t
{
  Unknown = 0,      ///< the attention was never known
  Disengaged = 1,   ///< the person does not attend to the robot
  Engaging = 2,     ///< the person begins to attend to the robot
  Engaged = 3,      ///< the person attends to the robot
  Disengaging = 4,  ///< the person begins to attend to something else
};

/// Follows the engagement of one person, with hysteresis, from where the person looks.
///
/// The value v is the mean, over the last 2 seconds, of +1 while the person is seen and the attention zone is the
/// robot, and -1 otherwise; the time before the first update counts as -1. Each update changes the level by one step at
/// most:
///
///     Unknown      to Disengaged    at the first update with a known attention
///     Disengaged   to Engaging      if v > -0.4
///     Engaging     to Engaged       if v > 0.5,   to Disengaged  if v < -0.6
///     Engaged      to Disengaging   if v < 0.4
///     Disengaging  to Engaged       if v > 0.6,   to Disengaged  if v < -0.5
///
/// So a person who looks at the robot and did not before is Engaging after 0.6 s and Engaged after 1.5 s. A person who
/// looks away after at least 2 s is Disengaging after 0.6 s and Disengaged after 1.5 s.
///
/// \par Thread safety
///   Not synchronised.
class SKEIGIOT_API Engagement
{
public:
  static constexpr double window = 2.;           ///< [s] of the mean
  static constexpr double begins = -0.4;         ///< above: Disengaged becomes Engaging
  static constexpr double isReached = 0.5;       ///< above: Engaging becomes Engaged
  static constexpr double isGivenUp = -0.6;      ///< below: Engaging becomes Disengaged
  static constexpr double ends = 0.4;            ///< below: Engaged becomes Disengaging
  static constexpr double isReachedAgain = 0.6;  ///< above: Disengaging becomes Engaged
  static constexpr double isLost = -0.5;         ///< below: Disengaging becomes Disengaged

  /// Takes an update of the person, and returns the level. An update before the one before it counts as at its time.
  EngagementLevel update(const Snapshot& snapshot);

  /// Returns the level after the last update.
  EngagementLevel level() const { return _level; }

  /// Returns the value v after the last update, in [-1, 1].
  double value() const { return _value; }

private:
  struct Look
  {
    TimePoint time;
    bool isAtRobot = false;
  };

  void _add(TimePoint time, bool isAtRobot);
  double _mean() const;
  EngagementLevel _next() const;

  std::deque<Look> _looks;  // changes of the last 2 seconds, and one before them
  TimePoint _now;
  double _value = -1.;
  EngagementLevel _level = EngagementLevel::Unknown;
};

}  // namespace KV::session
