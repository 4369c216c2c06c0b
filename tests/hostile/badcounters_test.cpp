// A machine whose counter or clock jumps: the wall clock follows the machine's own, or reads it.

#include "extrapolatedclock.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>

namespace
{

constexpr std::int64_t millisecond = 1000000;
constexpr std::int64_t year = millisecond * 1000 * 3600 * 24 * 365;

/// The present time of the machine; it does not advance while it is read.
struct Machine
{
  std::uint64_t ticks = 1000000000000;
  std::int64_t time = 50 * year;

  void pass(std::int64_t nanoseconds)
  {
    time += nanoseconds;
    ticks += static_cast<std::uint64_t>(nanoseconds) * 2;
  }
};

struct Look
{
  std::uint64_t counter() const { return machine->ticks; }
  std::int64_t systemTime() const { return machine->time; }

  const Machine* machine = nullptr;
};

std::int64_t errorOf(ko::ExtrapolatedClock<Look>& clock, const Machine& machine)
{
  return std::llabs(clock.now() - machine.time);
}

TEST(BadCounters, AreNotTrustedIfTheyGoBackAllTheTime)
{
  Machine machine;
  ko::ExtrapolatedClock<Look> clock(Look{&machine});
  for (int i = 0; i < 1000; ++i)
  {
    machine.time += millisecond;
    --machine.ticks;
    ASSERT_EQ(0, errorOf(clock, machine)) << "look " << i;
  }
}

TEST(BadCounters, AreNotTrustedIfTheyDoNotChange)
{
  Machine machine;
  ko::ExtrapolatedClock<Look> clock(Look{&machine});
  clock.now();
  for (int i = 0; i < 1000; ++i)
  {
    machine.time += 2 * millisecond;
    machine.ticks += i % 100 == 99 ? 1 : 0;
    ASSERT_LE(errorOf(clock, machine), 2 * millisecond) << "look " << i;
  }
}

// After the machine is normal again, it takes three milliseconds until its clock is trusted to the microsecond.
TEST(BadCounters, AreOvercomeThreeMillisecondsAfterAnyJump)
{
  for (const unsigned int seed : {1U, 2U, 3U})
  {
    std::mt19937_64 random(seed);
    Machine machine;
    ko::ExtrapolatedClock<Look> clock(Look{&machine});
    for (int jump = 0; jump < 200; ++jump)
    {
      machine.time = 50 * year + std::uniform_int_distribution<std::int64_t>(-20 * year, 20 * year)(random);
      if (jump % 2 == 0)
        machine.ticks = random();
      for (int step = 0; step < 600; ++step)
      {
        machine.pass(millisecond / 100);
        const std::int64_t error = errorOf(clock, machine);
        ASSERT_TRUE(step <= 300 || error <= 1000)
            << error << " ns, seed " << seed << ", jump " << jump << ", step " << step;
      }
    }
  }
}

}  // namespace
