#pragma once

#include "model/model.hpp"
#include "model/random.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace model
{

constexpr Nanoseconds millisecond = 1000000;

enum class Sensor
{
  Face,
  Microphone,
  Touch,
  Context,
  RobotHead
};

/// A random life of persons in front of a robot. Derived classes change its character.
///
/// Unchanged: ten cycles a second, half of the readings there, all values in their ranges.
class RandomObservations
{
public:
  explicit RandomObservations(std::uint64_t seed) : random(seed) {}
  RandomObservations(const RandomObservations&) = delete;
  RandomObservations& operator=(const RandomObservations&) = delete;
  virtual ~RandomObservations() = default;

  /// How far the clock moves before the next cycle.
  virtual Nanoseconds step() { return 100 * millisecond; }
  /// Whether another, unknown person is observed from now on.
  virtual bool isSomebodyElse() { return random.chance(1.0 / 500.0); }
  /// Whether the person is not seen in this cycle.
  virtual bool isUnseen() { return false; }

  Observation next(Nanoseconds now);

protected:
  virtual double presence(Sensor) { return 0.5; }
  virtual Nanoseconds timeOfReading(Nanoseconds now) { return now - random.between(0, 50 * millisecond); }
  virtual float angle(float last);
  virtual float score() { return random.uniform(0.f, 1.f); }
  virtual float metres() { return random.uniform(0.5f, 2.5f); }
  virtual float lifetimeInSeconds() { return random.uniform(0.1f, 15.f); }
  virtual float speechValence() { return random.uniform(-1.f, 1.f); }
  virtual int emotion() { return random.oneOf({-1, 0, 1}); }

  Random random;

private:
  template <typename T, typename Value>
  void _read(std::optional<Reading<T>>& reading, Sensor sensor, Value value);
  Scored _scored() { return {score(), score()}; }
  Expressions _expressions();
  FacialPoints _facialPoints();
  Gaze _nextGaze();
  HeadPosture _nextHead();
  RobotHeadPosture _nextRobotHead();

  Nanoseconds _now = 0;
  Gaze _gaze;
  HeadPosture _head;
  RobotHeadPosture _robotHead;
};

/// Few readings, at long and uneven intervals.
class SparseReadings : public RandomObservations
{
public:
  using RandomObservations::RandomObservations;
  Nanoseconds step() override { return random.between(0, 2000 * millisecond); }

protected:
  double presence(Sensor) override { return 0.15; }
};

/// A camera at 30 frames a second, and now and then another sensor.
class ThirtyHertz : public RandomObservations
{
public:
  using RandomObservations::RandomObservations;
  Nanoseconds step() override { return 33333333; }
  bool isSomebodyElse() override { return random.chance(1.0 / 2000.0); }

protected:
  double presence(Sensor sensor) override;
  float angle(float last) override;
};

/// Every reading in every cycle.
class AllSensors : public RandomObservations
{
public:
  using RandomObservations::RandomObservations;

protected:
  double presence(Sensor) override { return 1.0; }
};

/// Readings that come late, twice, or from the future.
class DisorderedTimes : public RandomObservations
{
public:
  using RandomObservations::RandomObservations;

protected:
  Nanoseconds timeOfReading(Nanoseconds now) override;

private:
  Nanoseconds _usedTime = 0;
};

/// A clock that is set forwards and backwards, and stops at times.
class SteppedClock : public RandomObservations
{
public:
  using RandomObservations::RandomObservations;
  Nanoseconds step() override;
};

/// Persons of whom only a sensor or two report, and these rarely, with a clock that is set.
class FewSenses : public SteppedClock
{
public:
  using SteppedClock::SteppedClock;
  Nanoseconds step() override { return random.chance(0.1) ? 15000 * millisecond : SteppedClock::step(); }
  bool isSomebodyElse() override;

protected:
  double presence(Sensor sensor) override { return _presences[static_cast<std::size_t>(sensor)]; }

private:
  std::array<double, 5> _presences{};  // by Sensor, chosen anew for each person
};

/// Angles, ages and lifetimes exactly on the bounds of the rules, or one step beside them.
class Boundaries : public RandomObservations
{
public:
  explicit Boundaries(std::uint64_t seed);
  Nanoseconds step() override;

protected:
  Nanoseconds timeOfReading(Nanoseconds now) override;
  float angle(float last) override;
  float score() override { return beside(random.oneOf({0.f, 0.2f, 0.4f, 0.6f, 0.9f, 1.f})); }
  float metres() override { return beside(random.oneOf({0.f, 1.3f, 1.4f, 1.5f, 1.8f, 1.9f, 2.f})); }
  float lifetimeInSeconds() override;
  float speechValence() override { return beside(random.oneOf({0.f, -0.f, 1.f, -1.f})); }
  int emotion() override;

private:
  float beside(float bound);

  // If a rule has its bound in a number computed from an angle, the angle for it.
  const float _attentiveGaze;
  const float _decidingHeadYaw;
  const float _robotYawAtRest;
  const float _robotPitchAtRest;
};

/// Scores so large that the mood classes reach 0 or 1 together.
class TiedScores : public RandomObservations
{
public:
  using RandomObservations::RandomObservations;

protected:
  float score() override { return random.oneOf({0.f, 0.f, 0.5f, 1.f, 7.f, -7.f, 50.f, -50.f, 1000.f, -1000.f}); }
};

/// Sensors that report NaN, infinities and the ends of the floating-point range.
class BrokenNumbers : public RandomObservations
{
public:
  using RandomObservations::RandomObservations;
  bool isSomebodyElse() override { return random.chance(1.0 / 20.0); }  // a NaN stays with a person for good

protected:
  float angle(float last) override { return broken(RandomObservations::angle(last)); }
  float score() override { return broken(RandomObservations::score()); }
  float metres() override { return broken(RandomObservations::metres()); }
  float lifetimeInSeconds() override { return broken(RandomObservations::lifetimeInSeconds()); }
  float speechValence() override { return broken(RandomObservations::speechValence()); }

private:
  float broken(float value);
};

/// Persons who are out of sight half of the time.
class UnseenCycles : public RandomObservations
{
public:
  using RandomObservations::RandomObservations;
  bool isUnseen() override { return random.chance(0.5); }
};

}  // namespace model
