#include <skeigiot/session/personcourse.hpp>

#include <skeigiot/personstate.hpp>

#include <algorithm>

namespace KV::session
{

namespace
{

constexpr double longestHold = 1.;      // [s]
constexpr double holdOfASingle = 1e-3;  // [s]; any time may be used if there is no other to compare it with

}  // namespace

void PersonCourse::add(const Snapshot& snapshot)
{
  const double time = static_cast<double>(snapshot.sinceStart.count()) * 1e-9;
  if (_last)
  {
    _lastInterval = time - _last->from;
    _endLast(time);
  }
  const float confident = KV::PersonState::getBinaryBoundaryConfidence();
  _last.emplace();
  _last->from = time;
  _last->valence = snapshot.valence.value;
  _last->attention = snapshot.attention.value;
  _last->seen = snapshot.seen;
  _last->valenceKnown = snapshot.valence.confidence >= confident;
  _last->attentionKnown = snapshot.attention.confidence >= confident;
  _last->pleasure = snapshot.pleasure;
  _last->zone = snapshot.zone;
  _last->engaged = snapshot.attention.value >= KV::PersonState::getBinaryBoundaryLookingAtRobot();
}

void PersonCourse::finish()
{
  if (!_last)
    return;
  const bool single = _pieces.empty();
  _endLast(_last->from + (single ? holdOfASingle : _lastInterval));
  _last.reset();
}

void PersonCourse::_endLast(double to)
{
  _last->to = std::min(to, _last->from + longestHold);
  if (_last->to > _last->from)
    _pieces.push_back(*_last);
}

}  // namespace KV::session
