#pragma once

#include "goodperson.hpp"

#include "support/clocktest.hpp"
#include "support/estimate.hpp"

#include <skeigiot/person.hpp>

#include <cmath>
#include <functional>

/// \file
/// How long a bad reading shows in an estimate.

namespace hostile
{

/// Changes one observation for the worse.
using Disturb = std::function<void(KV::PersonObservation&)>;

constexpr int undisturbedFrames = 110;  // before the bad reading
constexpr int followedFrames = 600;     // after it

/// As good as the same, for all that is done with an estimate; two NaN are not.
inline bool isClose(const support::Estimate& left, const support::Estimate& right)
{
  const auto close = [](float a, float b) { return std::fabs(a - b) <= 0.01f; };
  return close(left.valence, right.valence) && close(left.unsmoothedValence, right.unsmoothedValence) &&
         close(left.valenceConfidence, right.valenceConfidence) &&
         close(left.unsmoothedConfidence, right.unsmoothedConfidence) && close(left.attention, right.attention) &&
         close(left.attentionConfidence, right.attentionConfidence);
}

/// What became of a person who was disturbed once, beside one who was not.
struct Recovery
{
  int frames = 0;          ///< how many frames showed a difference, up to the last of them
  bool isExact = false;    ///< whether the two ended with the same bits
  bool stayedNan = false;  ///< whether an estimate ended as NaN
};

/// Lets two persons live through the same good readings, one of them with one disturbed observation.
inline Recovery recoveryFrom(const Disturb& disturb)
{
  support::TestClock time;
  KV::Person undisturbed;
  KV::Person disturbed;
  Recovery recovery;
  for (int frame = 0; frame < undisturbedFrames + followedFrames; ++frame)
  {
    KV::PersonObservation observation = goodObservation(frame, ko::SystemClock::now());
    undisturbed.update(observation);
    if (frame == undisturbedFrames)
      disturb(observation);
    disturbed.update(observation);

    if (!isClose(support::estimateOf(*undisturbed.personState._p), support::estimateOf(*disturbed.personState._p)))
      recovery.frames = frame - undisturbedFrames + 1;
    time.clock.advance(frameTime);
  }
  const support::Estimate end = support::estimateOf(*disturbed.personState._p);
  recovery.isExact = end == support::estimateOf(*undisturbed.personState._p);
  recovery.stayedNan = std::isnan(end.valence) || std::isnan(end.unsmoothedValence) || std::isnan(end.attention);
  return recovery;
}

}  // namespace hostile
