#include "everyreading.hpp"
#include "soundness.hpp"

#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/clocktest.hpp"
#include "support/scriptedclock.hpp"
#include "support/tablename.hpp"

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/person.hpp>
#include <skeigiot/socialgraph.hpp>

#include <gtest/gtest.h>

#include <future>
#include <stdexcept>

namespace
{

using faults::ObservationCase;
using support::milliseconds;

/// The exceptions that a clock source may throw.
enum class Thrown
{
  Exception,
  Anything  ///< no std::exception
};

class FailingClock : public support::ClockTestWithParam<ObservationCase>
{
protected:
  static constexpr int cycles = 4;

  ko::SystemClock::time_point timeOf(int cycle) const { return support::start + milliseconds(100 * cycle); }

  /// Observed several times before, from the oldest to the newest.
  KV::Person observedBefore()
  {
    KV::Person person;
    for (int i = 0; i < cycles; ++i)
    {
      clock.set(timeOf(i));
      person.update(faults::observed(GetParam(), timeOf(i)));
    }
    return person;
  }

  /// Calls `operate(person)` with a clock that throws at its first, second, ... reading, until there is no such
  /// reading; then `check(person)`. Returns how many readings there were.
  template <typename Operate, typename Check>
  int failEveryReading(Thrown thrown, Operate operate, Check check)
  {
    for (int which = 0;; ++which)
    {
      SCOPED_TRACE("reading " + std::to_string(which) + " failed");
      KV::Person person = observedBefore();
      const std::vector<faults::Times> former = faults::rememberedTimes(person);
      support::ScriptedClock failing([&](int reading) {
        if (reading == which && thrown == Thrown::Exception)
          throw std::runtime_error("no time");
        if (reading == which)
          throw 42;
        return timeOf(cycles);
      });
      {
        const ko::ScopedClockSource inner(failing);
        try
        {
          operate(person);
        }
        catch (const std::runtime_error&)
        {}
        catch (int)
        {}
      }
      if (failing.readings() <= which)
        return which;
      faults::expectSound(person);
      faults::expectRemembers(person, former);
      check(person);
    }
  }

  const support::CapturedStandardOutput complaints;  // of memories that could not be pruned
  const support::CapturedLog log;
};

TEST_P(FailingClock, LeavesAPersonSoundWhenAnUpdateFails)
{
  const KV::PersonObservation observation = faults::observed(GetParam(), timeOf(cycles));
  for (const Thrown thrown : {Thrown::Exception, Thrown::Anything})
  {
    const int readings = failEveryReading(
        thrown, [&](KV::Person& person) { person.update(observation); },
        [&](KV::Person& person) {
          std::async(std::launch::async, [&] {
            const ko::ScopedClockSource elsewhere(clock);
            person.update(observation);
          }).get();
          faults::expectSound(person);
        });
    EXPECT_GT(readings, 2);
  }
}

TEST_P(FailingClock, LeavesTheGraphUnlockedWhenAnUpdateFails)
{
  const KV::PersonObservation observation = faults::observed(GetParam(), timeOf(cycles));
  KV::SocialGraph graph;
  support::ScriptedClock failing([](int) -> ko::SystemClock::time_point { throw std::runtime_error("no time"); });
  {
    const ko::ScopedClockSource inner(failing);
    EXPECT_THROW(graph.updateOrCreate(5, [&](KV::Person& person) { person.update(observation); }), std::runtime_error);
  }
  EXPECT_EQ(1U, std::async(std::launch::async, [&graph] { return graph.persons().size(); }).get());
}

TEST_P(FailingClock, LeavesAPersonSoundWhenItFailsForAnObserver)
{
  const KV::PersonObservation observation = faults::observed(GetParam(), timeOf(cycles));
  failEveryReading(
      Thrown::Exception,
      [&](KV::Person& person) {
        const KV::ScopedForceObserver watched([](const KV::Force&) {}, [](const KV::ZoneChange&) {});
        person.update(observation);
      },
      [](KV::Person&) {});
}

INSTANTIATE_TEST_SUITE_P(Of, FailingClock, ::testing::ValuesIn(faults::observationCases()), support::RowName());

/// Times that go back and forth, so that the young ones move over the old ones.
TEST(FailingClockInAMemory, KeepsTheRecordsInTheirOrderWhateverIsThrown)
{
  const support::CapturedStandardOutput complaints;
  for (const Thrown thrown : {Thrown::Exception, Thrown::Anything})
    for (int which = 0; which < 8; ++which)
    {
      KV::ShortTermMemory<float> memory(milliseconds(7000));
      {
        ko::ManualClock clock(support::start);
        const ko::ScopedClockSource elsewhere(clock);
        for (int i = 0; i < 8; ++i)
          memory.record({support::start - milliseconds(i), static_cast<float>(i)});
      }
      const auto former = memory.records();
      support::ScriptedClock failing([&](int reading) {
        if (reading == which && thrown == Thrown::Exception)
          throw std::runtime_error("no time");
        if (reading == which)
          throw 42;
        return reading % 2 == 0 ? support::start + support::hours(1) : support::start;  // old, young, old, ...
      });
      const ko::ScopedClockSource scope(failing);
      if (thrown == Thrown::Exception)
        EXPECT_NO_THROW(memory._forgetOld());
      else
        EXPECT_THROW(memory._forgetOld(), int);
      ASSERT_EQ(former.size(), memory.records().size());
      EXPECT_TRUE(std::equal(former.begin(), former.end(), memory.records().begin(),
                             [](const auto& l, const auto& r) { return l.time == r.time && l.value == r.value; }))
          << "reading " << which;
    }
}

}  // namespace
