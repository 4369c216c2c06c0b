#pragma once

#include "clocktest.hpp"
#include "estimate.hpp"

#include "diagnostictext.hpp"
#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include <skeigiot/personmemory.hpp>
#include <skeigiot/personobservation.hpp>

#include <ko/systemclock.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

/// \file
/// For tests of one update of a person state: a state, an observation and memories, each filled on its own, and the
/// expected effects on the estimate at the end of an update.

namespace support
{

/// An age in the form that the weights need.
inline float inSeconds(milliseconds age)
{
  return static_cast<float>(age.count()) * 0.001f;
}

inline float headMagnitude(float yaw, float pitch)
{
  const double x = 2.0 * static_cast<double>(yaw) / 3.0;
  const double y = static_cast<double>(pitch) / 3.0;
  return static_cast<float>(std::sqrt(x * x + y * y));
}

inline float gazeMagnitude(float yaw, float pitch)
{
  const auto x = static_cast<double>(yaw);
  const auto y = static_cast<double>(pitch);
  return static_cast<float>(std::sqrt(x * x + y * y));
}

/// The trust in the sensor at a distance, or a head height, with the limit at `center`.
inline float sensorRamp(float x, float center)
{
  const float steepness = 4.f / 0.2f;
  return ((1.f - std::tanh((x - center) * steepness)) * 1.f) * 0.5f;
}

/// The count for the silence of a group of sources without any reading.
constexpr float neverHeard = 0.01f;

/// The effect of an update on the valence without any source of it.
inline void driftToNeutral(Estimate& expected, float silence)
{
  expected.pullValence(0.f, (1.f - silence) * 0.65f);
  expected.pullValenceConfidence(0.f, 0.7f);
}

/// The effect of an update on the attention without any source of it.
inline void loseAttention(Estimate& expected, float silence)
{
  expected.pullAttention(0.f, (1.f - silence) * 0.65f);
  expected.pullAttentionConfidence(0.f, 0.7f);
}

/// The effect of an update with a source of valence on the confidence in it.
inline void limitValence(Estimate& expected, float distance = 0.f, float height = 0.f)
{
  expected.pullValenceConfidence(sensorRamp(distance, 1.4f), 0.175f);
  expected.pullValenceConfidence(sensorRamp(height, 1.9f), 0.175f);
}

/// The same with a source of attention, for a near face, before a robot whose head is at rest.
inline void attend(Estimate& expected, float target)
{
  expected.pullAttentionConfidence(1.f, 0.7f);
  expected.pullAttention(target, 0.65f);
}

/// Returns twelve points of that confidence each.
inline KV::FacialPoints facialPoints(float confidence)
{
  KV::FacialPoints points;
  for (int i = 0; i < 12; ++i)
    points.setFacialPoint(static_cast<KV::PointDescription>(i), {{1.f, 2.f}, confidence});
  return points;
}

/// A state with an estimate in which no number is 0, an empty observation and empty memories.
class StateUpdateTest : public ClockTest
{
protected:
  StateUpdateTest()
  {
    state.valence = {0.3f, 0.8f};
    state.unsmoothedValence = {-0.2f, 0.6f};
    state.attention = {0.5f, 0.7f};
  }

  /// Runs one update and returns its trace.
  std::string update()
  {
    KV::DiagnosticText trace;
    state.__update(observation, memory, trace);
    return trace.text();
  }

  /// Runs one update on the calling thread, by the test's clock.
  void updateOnThisThread()
  {
    const ko::ScopedClockSource here(clock);
    state.__update(observation, memory);
  }

  Estimate estimate() const { return estimateOf(state); }

  KV::PersonMemoryPrivate& memories() { return *memory._p; }

  /// Makes a reading of that age.
  template <typename T>
  static KV::Timestamped<T> aged(milliseconds age, const T& value)
  {
    return KV::Timestamped<T>(ko::SystemClock::now() - age, value);
  }

  /// Makes a reading of the present time.
  template <typename T>
  static KV::Timestamped<T> fresh(const T& value)
  {
    return aged(milliseconds(0), value);
  }

  KV::PersonStatePrivate state;
  KV::PersonMemory memory;
  KV::PersonObservation observation;
};

/// As StateUpdateTest, for tables of cases.
template <typename Case>
class StateUpdateTestWithParam : public StateUpdateTest, public ::testing::WithParamInterface<Case>
{};

/// The age whose weight among angles is exactly 1: the mean of a single reading is then the reading itself.
inline const milliseconds weighsOne(-5000);

}  // namespace support
