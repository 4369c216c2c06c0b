#include "extrapolatedclock.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>

namespace
{

constexpr std::int64_t microsecond = 1000;
constexpr std::int64_t millisecond = 1000 * microsecond;
constexpr std::int64_t second = 1000 * millisecond;
constexpr std::int64_t hour = 3600 * second;

/// A machine whose time passes only while it is read, or when the test advances it.
struct World
{
  double now = 0.;                  // [ns] the true time
  double ticksPerNanosecond = 2.4;  // of the counter
  std::uint64_t firstTick = 7000000000000000;
  double ticks = 0.;  // on the counter since then
  std::int64_t firstSystemTime = 1700000000 * second;
  double systemElapsed = 0.;  // [ns] on the system's clock since then
  double systemRate = 1.;     // of the system's clock against the true time, while it is slewed
  double interruption = 0.;   // [ns] how long each of the next readings of the system's clock is interrupted
  int interruptedLooks = 0;   // the number of these readings
  int looksAtTheSystem = 0;

  std::uint64_t counter() const { return firstTick + static_cast<std::uint64_t>(ticks); }
  std::int64_t systemTime() const { return firstSystemTime + static_cast<std::int64_t>(systemElapsed); }

  void pass(double nanoseconds)
  {
    now += nanoseconds;
    ticks += nanoseconds * ticksPerNanosecond;
    systemElapsed += nanoseconds * systemRate;
  }
};

class SimulatedHardware
{
public:
  SimulatedHardware() = default;
  explicit SimulatedHardware(World& world) : _world(&world) {}

  std::uint64_t counter() const
  {
    _world->pass(10.);
    return _world->counter();
  }

  std::int64_t systemTime() const
  {
    ++_world->looksAtTheSystem;
    _world->pass(10.);
    if (_world->interruptedLooks > 0)
    {
      --_world->interruptedLooks;
      _world->pass(_world->interruption);
    }
    const std::int64_t time = _world->systemTime();
    _world->pass(10.);
    return time;
  }

private:
  World* _world = nullptr;
};

class ExtrapolatedClock : public ::testing::Test
{
protected:
  std::int64_t read() { return _clock.now(); }
  std::int64_t systemTime() const { return world.systemTime(); }
  std::int64_t error() { return read() - systemTime(); }

  /// Reads the clock every 100 us for `duration`.
  void run(std::int64_t duration)
  {
    for (std::int64_t passed = 0; passed < duration; passed += 100 * microsecond)
    {
      world.pass(100 * microsecond);
      read();
    }
  }

  /// Returns whether a reading works without the system's clock.
  bool countsOn()
  {
    const int looks = world.looksAtTheSystem;
    read();
    return world.looksAtTheSystem == looks;
  }

  World world;

private:
  ko::ExtrapolatedClock<SimulatedHardware> _clock{SimulatedHardware(world)};
};

TEST_F(ExtrapolatedClock, ReadsTheSystemUntilItKnowsTheRateOfTheCounter)
{
  EXPECT_FALSE(countsOn());
  EXPECT_FALSE(countsOn());
  EXPECT_LE(std::abs(error()), 150);  // as long as the readings take

  run(5 * millisecond);

  EXPECT_TRUE(countsOn());
}

TEST_F(ExtrapolatedClock, LooksAtTheSystemOnceAMillisecond)
{
  run(10 * millisecond);
  const int looks = world.looksAtTheSystem;

  run(100 * millisecond);

  constexpr int readingsPerAnchor = 3;
  EXPECT_GE(world.looksAtTheSystem - looks, 85 * readingsPerAnchor);
  EXPECT_LE(world.looksAtTheSystem - looks, 101 * readingsPerAnchor);
}

TEST_F(ExtrapolatedClock, StaysWithinAMicrosecondForMinutes)
{
  constexpr std::uint32_t seed = 17;
  std::mt19937 random(seed);
  run(10 * millisecond);

  std::int64_t latest = read();
  while (world.now < 3. * 60. * static_cast<double>(second))
  {
    // Bursts of readings, as an update makes them, between pauses of up to 40 ms.
    world.pass(static_cast<double>(random() % (40 * millisecond)));
    for (int i = 0; i < 20; ++i)
    {
      world.pass(static_cast<double>(random() % (200 * microsecond)));
      const std::int64_t shown = read();
      ASSERT_LE(std::abs(shown - systemTime()), microsecond) << "at " << world.now << " ns";
      ASSERT_GE(shown, latest) << "at " << world.now << " ns";
      latest = shown;
    }
  }
}

TEST_F(ExtrapolatedClock, ShowsAStepOfTheSystemWithinAMillisecond)
{
  for (const std::int64_t step : {hour, -hour, 30 * second, -2 * millisecond, 2 * microsecond, -2 * microsecond})
  {
    run(20 * millisecond);
    world.firstSystemTime += step;
    world.pass(static_cast<double>(millisecond + 10 * microsecond));
    for (int i = 0; i < 1000; ++i)
    {
      world.pass(10. * microsecond);
      ASSERT_LE(std::abs(error()), microsecond) << "step " << step << ", reading " << i;
    }
  }
}

TEST_F(ExtrapolatedClock, FollowsASystemThatIsSlewed)
{
  for (const double rate : {1.0005, 0.9995, 1.})
  {
    run(20 * millisecond);
    world.systemRate = rate;
    for (int i = 0; i < 2000; ++i)
    {
      world.pass(10. * microsecond);
      ASSERT_LE(std::abs(error()), microsecond) << "rate " << rate << ", reading " << i;
    }
  }
}

TEST_F(ExtrapolatedClock, SurvivesACounterThatJumps)
{
  for (const std::int64_t jump : {-1000000000000000L, 1000000000000L, -5000000L, 5000000L})
  {
    run(20 * millisecond);
    world.firstTick += static_cast<std::uint64_t>(jump);
    world.pass(static_cast<double>(millisecond + 10 * microsecond));
    for (int i = 0; i < 1000; ++i)
    {
      world.pass(10. * microsecond);
      ASSERT_LE(std::abs(error()), microsecond) << "jump " << jump << ", reading " << i;
    }
  }
}

TEST_F(ExtrapolatedClock, LearnsANewRateOfTheCounter)
{
  run(20 * millisecond);
  world.ticksPerNanosecond = 1.9;
  run(2 * millisecond);

  for (int i = 0; i < 2000; ++i)
  {
    world.pass(10. * microsecond);
    ASSERT_LE(std::abs(error()), microsecond) << "reading " << i;
  }
  EXPECT_TRUE(countsOn());
}

TEST_F(ExtrapolatedClock, NeverCountsWithACounterAtAnAbsurdRateHoweverSteady)
{
  for (const double rate : {2000., 0.000005})
  {
    world.ticksPerNanosecond = rate;
    for (int i = 0; i < 5; ++i)
    {
      world.pass(100. * second);
      EXPECT_LE(std::abs(error()), 150) << "at " << rate << " ticks per nanosecond";
      EXPECT_FALSE(countsOn()) << "at " << rate << " ticks per nanosecond";
    }
  }
}

TEST_F(ExtrapolatedClock, TrustsNoLookAtTheSystemThatWasInterrupted)
{
  run(20 * millisecond);
  world.pass(static_cast<double>(2 * millisecond));
  world.interruption = 300. * microsecond;
  world.interruptedLooks = 1;  // the two readings after it are better

  EXPECT_LE(std::abs(error()), microsecond);
  EXPECT_TRUE(countsOn());
}

TEST_F(ExtrapolatedClock, CountsOnFromNoAnchorWhoseLooksWereAllInterrupted)
{
  run(20 * millisecond);
  world.pass(static_cast<double>(2 * millisecond));
  world.interruption = 0.5 * microsecond;  // too little to count as a new rate of the counter
  world.interruptedLooks = 3;

  EXPECT_LE(std::abs(error()), 2 * microsecond);
  EXPECT_FALSE(countsOn());
  run(5 * millisecond);
  EXPECT_TRUE(countsOn());
}

TEST_F(ExtrapolatedClock, WaitsRatherThanGoBackWhereTheSystemIsSetBackALittle)
{
  run(20 * millisecond);
  world.firstSystemTime -= 300;

  std::int64_t latest = read();
  for (int i = 0; i < 20000; ++i)
  {
    world.pass(100.);
    const std::int64_t shown = read();
    ASSERT_GE(shown, latest) << "reading " << i;
    latest = shown;
  }
  EXPECT_LE(std::abs(error()), microsecond);
}

TEST_F(ExtrapolatedClock, FindsTheRateAfterAStepBackThatCameBeforeItKnewOne)
{
  read();
  world.firstSystemTime -= hour;
  EXPECT_LE(std::abs(error()), 150);  // as long as the readings take

  run(5 * millisecond);

  EXPECT_TRUE(countsOn());
}

}  // namespace
