#include <skeigiot/session/personsummary.hpp>

#include <skeigiot/personstate.hpp>

#include <algorithm>
#include <limits>

namespace KV::session
{

namespace
{

constexpr double longestHold = 1.;      // [s]
constexpr double holdOfASingle = 1e-3;  // [s]; any time may be used if there is no other to compare it with

double secondsOf(Duration duration)
{
  return static_cast<double>(duration.count()) * 1e-9;
}

}  // namespace

void PersonSummary::add(const Snapshot& snapshot)
{
  if (_last)
  {
    _lastInterval = secondsOf(snapshot.sinceStart - _last->sinceStart);
    _countLast(_lastInterval);
  }
  else
    _from = snapshot.sinceStart;
  _last = snapshot;
  ++_updates;
}

void PersonSummary::finish()
{
  if (!_last)
    return;
  const bool single = _time == 0.;
  _countLast(single ? holdOfASingle : _lastInterval);
}

double PersonSummary::share(ko::human::AttentionState zone) const
{
  return _zones.at(static_cast<std::size_t>(zone)) / _time;
}

double PersonSummary::share(KV::PleasureState pleasure) const
{
  return _pleasures.at(static_cast<std::size_t>(pleasure)) / _time;
}

double PersonSummary::_ifAttentionKnown(double share) const
{
  return isAttentionKnown() ? share : std::numeric_limits<double>::quiet_NaN();
}

void PersonSummary::_countLast(double seconds)
{
  const double held = std::min(seconds, longestHold);
  _time += held;
  if (_last->isValenceKnown())
  {
    _valenceKnown += held;
    _valence += held * static_cast<double>(_last->valence.value);
    _valenceConfidence += held * static_cast<double>(_last->valence.confidence);
  }
  if (_last->isAttentionKnown())
  {
    _attentionKnown += held;
    _attention += held * static_cast<double>(_last->attention.value);
    _attentionConfidence += held * static_cast<double>(_last->attention.confidence);
  }
  _pleasures.at(static_cast<std::size_t>(_last->pleasure)) += held;
  if (!_last->seen)
    return;
  _seen += held;
  const bool isKnown = _last->isAttentionKnown();
  if (isKnown && _last->attention.value >= KV::PersonState::getBinaryBoundaryLookingAtRobot())
    _lookingAtRobot += held;
  if (isKnown && _last->attention.value >= KV::PersonState::getBinaryBoundaryStrictlyLookingAtRobot())
    _strictlyLookingAtRobot += held;
  _zones.at(static_cast<std::size_t>(_last->zone)) += held;
}

}  // namespace KV::session
