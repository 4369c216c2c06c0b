#pragma once

#include "goodperson.hpp"

#include "support/clocktest.hpp"
#include "support/estimate.hpp"

#include <skeigiot/person.hpp>

#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

/// \file
/// How long a bad reading shows in an estimate.

namespace hostile
{

/// Makes one observation worse.
using Disturb = std::function<void(KV::PersonObservation&)>;

constexpr int undisturbedFrames = 110;  // before the bad reading
constexpr int followedFrames = 240;     // after it: the longest memory is one of 20 s

/// Nearly equal, so that no use of an estimate sees the difference; two NaN are not.
inline bool isClose(const support::Estimate& left, const support::Estimate& right)
{
  const auto close = [](float a, float b) { return std::fabs(a - b) <= 0.01f; };
  return close(left.valence, right.valence) && close(left.unsmoothedValence, right.unsmoothedValence) &&
         close(left.valenceConfidence, right.valenceConfidence) &&
         close(left.unsmoothedConfidence, right.unsmoothedConfidence) && close(left.attention, right.attention) &&
         close(left.attentionConfidence, right.attentionConfidence);
}

/// The estimates of a person who was disturbed once, compared with those of one who was not.
struct Recovery
{
  int frames = 0;          ///< the number of frames up to the last difference
  bool isExact = false;    ///< whether the two ended with the same bits
  bool stayedNan = false;  ///< whether an estimate ended as NaN
};

using Estimates = std::vector<support::Estimate>;  ///< after each frame of a life

/// A life of good readings, of which one may be disturbed.
inline Estimates lifeWith(const Disturb& disturb)
{
  support::TestClock time;
  KV::Person person;
  Estimates estimates;
  for (int frame = 0; frame < undisturbedFrames + followedFrames; ++frame)
  {
    KV::PersonObservation observation = goodObservation(frame, ko::SystemClock::now());
    if (frame == undisturbedFrames)
      disturb(observation);
    person.update(observation);
    estimates.push_back(support::estimateOf(*person.personState._p));
    time.clock.advance(frameTime);
  }
  return estimates;
}

/// Compares a life with one disturbed reading with the same life without.
inline Recovery recoveryFrom(const Disturb& disturb)
{
  static const Estimates undisturbed = lifeWith([](KV::PersonObservation&) {});
  const Estimates disturbed = lifeWith(disturb);

  Recovery recovery;
  for (int frame = undisturbedFrames; frame < undisturbedFrames + followedFrames; ++frame)
    if (const auto i = static_cast<std::size_t>(frame); !isClose(undisturbed[i], disturbed[i]))
      recovery.frames = frame - undisturbedFrames + 1;
  const support::Estimate& end = disturbed.back();
  recovery.isExact = end == undisturbed.back();
  recovery.stayedNan = std::isnan(end.valence) || std::isnan(end.unsmoothedValence) || std::isnan(end.attention);
  return recovery;
}

}  // namespace hostile
