#include <skeigiot/session/engagement.hpp>

#include <algorithm>
#include <cstddef>

namespace KV::session
{

namespace
{

constexpr double nanosecondsPerSecond = 1e9;

const Duration windowLength(static_cast<std::int64_t>(Engagement::window* nanosecondsPerSecond));

}  // namespace

EngagementLevel Engagement::update(const Snapshot& snapshot)
{
  const bool isAtRobot = snapshot.seen && snapshot.zone == ko::human::AttentionState::LookingAtRobot;
  if (_level == EngagementLevel::Unknown)
  {
    if (!isAtRobot && !snapshot.isAttentionKnown())
      return _level;
    _now = snapshot.time;
  }
  _now = std::max(_now, snapshot.time);
  _add(_now, isAtRobot);
  _value = _mean();
  _level = _next();
  return _level;
}

void Engagement::_add(TimePoint time, bool isAtRobot)
{
  if (_looks.empty() || _looks.back().isAtRobot != isAtRobot)
    _looks.push_back({time, isAtRobot});
  while (_looks.size() > 1 && time - _looks[1].time >= windowLength)
    _looks.pop_front();
}

double Engagement::_mean() const
{
  Duration atRobot(0);
  for (std::size_t i = 0; i < _looks.size(); ++i)
  {
    if (!_looks[i].isAtRobot)
      continue;
    const TimePoint end = i + 1 < _looks.size() ? _looks[i + 1].time : _now;
    atRobot += end - std::max(_looks[i].time, _now - windowLength);
  }
  const Duration elsewhere = windowLength - atRobot;  // and before the first update
  return static_cast<double>((atRobot - elsewhere).count()) / static_cast<double>(windowLength.count());
}

EngagementLevel Engagement::_next() const
{
  switch (_level)
  {
    case EngagementLevel::Unknown:
      return EngagementLevel::Disengaged;
    case EngagementLevel::Disengaged:
      return _value > begins ? EngagementLevel::Engaging : _level;
    case EngagementLevel::Engaging:
      if (_value < isGivenUp)
        return EngagementLevel::Disengaged;
      return _value > isReached ? EngagementLevel::Engaged : _level;
    case EngagementLevel::Engaged:
      return _value < ends ? EngagementLevel::Disengaging : _level;
    default:
      if (_value < isLost)
        return EngagementLevel::Disengaged;
      return _value > isReachedAgain ? EngagementLevel::Engaged : _level;
  }
}

}  // namespace KV::session
