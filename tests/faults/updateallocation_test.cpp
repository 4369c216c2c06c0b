#include "everyallocation.hpp"
#include "everyreading.hpp"
#include "scopedhandler.hpp"
#include "soundness.hpp"

#include "support/clocktest.hpp"
#include "support/estimate.hpp"
#include "support/tablename.hpp"

#include <skeigiot/person.hpp>

#include <boost/smart_ptr/make_shared.hpp>

#include <gtest/gtest.h>

#include <future>

namespace
{

using faults::failEveryAllocation;
using faults::ObservationCase;
using faults::Outcome;
using support::milliseconds;

/// A person who was observed before, so often that the memories are full at some of these counts.
struct Subject
{
  KV::Person person{7};
  std::vector<faults::Times> former;
};

class UpdateWithoutMemory : public support::ClockTestWithParam<ObservationCase>
{
protected:
  UpdateWithoutMemory() { clock.advance(milliseconds(100 * cycles)); }

  static constexpr int cycles = 9;

  ko::SystemClock::time_point timeOf(int cycle) const { return support::start + milliseconds(100 * cycle); }

  Subject observedBefore(int times) const
  {
    Subject subject;
    for (int i = 0; i < times; ++i)
      subject.person.update(faults::observed(GetParam(), timeOf(i)));
    subject.former = faults::rememberedTimes(subject.person);
    return subject;
  }
};

/// Runs on another thread, which would wait for ever if a lock was still held.
void updateElsewhere(KV::Person& person, const KV::PersonObservation& observation, ko::ClockSource& clock)
{
  std::async(std::launch::async, [&] {
    const ko::ScopedClockSource elsewhere(clock);
    person.update(observation);
  }).get();
}

TEST_P(UpdateWithoutMemory, KeepsWhatWasFiledAndIsTakenUpByTheNextUpdate)
{
  const faults::ScopedHandler silenced(&faults::ignoreRecord);
  const KV::PersonObservation observation = faults::observed(GetParam(), timeOf(cycles));
  for (int times = 0; times < cycles; ++times)
  {
    SCOPED_TRACE(std::to_string(times) + " observations before");
    Subject neverFailed = observedBefore(times);
    neverFailed.person.update(observation);

    failEveryAllocation(
        [&] { return observedBefore(times); }, [&](Subject& subject) { subject.person.update(observation); },
        [&](Subject& subject, Outcome) {
          faults::expectSound(subject.person);
          faults::expectRemembers(subject.person, subject.former);
          updateElsewhere(subject.person, observation, clock);
          EXPECT_EQ(faults::rememberedTimes(neverFailed.person), faults::rememberedTimes(subject.person));
          faults::expectSound(subject.person);
        });
  }
}

TEST_P(UpdateWithoutMemory, FilesTheReadingsBeforeTheOneThatDoesNotFit)
{
  const KV::PersonObservation observation = faults::observed(GetParam(), timeOf(cycles));
  failEveryAllocation([&] { return observedBefore(0); },
                      [&](Subject& subject) { subject.person.updateMemory(observation); },
                      [&](Subject& subject, Outcome outcome) {
                        EXPECT_EQ(Outcome::Threw, outcome);
                        faults::expectSound(subject.person);
                        subject.person.updateMemory(observation);
                        faults::expectSound(subject.person);
                      });
}

INSTANTIATE_TEST_SUITE_P(Of, UpdateWithoutMemory, ::testing::ValuesIn(faults::observationCases()), support::RowName());

class StateWithoutMemory : public support::ClockTest
{};

/// Only a person who was never observed has nothing to lose: readings stored before an update fails stay stored.
TEST_F(StateWithoutMemory, LeavesTheEstimateUntouchedIfNothingCouldBeFiled)
{
  KV::PersonObservation observation;
  observation.distance.emplace(support::start, 1.f);
  const std::size_t failures = failEveryAllocation(
      [] { return KV::Person(); }, [&](KV::Person& person) { person.update(observation); },
      [&](KV::Person& person, Outcome outcome) {
        EXPECT_EQ(Outcome::Threw, outcome);
        const KV::Person untouched;
        EXPECT_EQ(support::estimateOf(*untouched.personState._p), support::estimateOf(*person.personState._p));
        EXPECT_EQ(faults::rememberedTimes(untouched), faults::rememberedTimes(person));
      });
  EXPECT_EQ(1U, failures);
}

TEST_F(StateWithoutMemory, AgesAPersonWithoutAny)
{
  const auto failures =
      failEveryAllocation([] { return KV::Person(); }, [](KV::Person& person) { person.decreaseSinceNotSeen(); },
                          [](KV::Person&, Outcome) {});
  EXPECT_EQ(0U, failures);
}

TEST_F(StateWithoutMemory, TakesUpARecordThatTheTypeSystemCloned)
{
  const KV::PersonObservation observation = faults::observed(faults::observationCases().back(), support::start);
  const faults::ScopedHandler silenced(&faults::ignoreRecord);
  const auto cloned = [] {
    KV::Person person;
    person.personState._p = boost::make_shared<KV::PersonStatePrivate>(*person.personState._p);
    return person;
  };
  const std::size_t failures = failEveryAllocation(
      cloned, [&](KV::Person& person) { person.update(observation); },
      [&](KV::Person& person, Outcome) {
        person.update(observation);
        faults::expectSound(person);
      });
  EXPECT_GT(failures, 15U);  // one for each memory at least
}

TEST_F(StateWithoutMemory, MakesNoPersonOfWhomAPartIsMissing)
{
  const std::size_t failures = failEveryAllocation([] { return 0; }, [](int) { const KV::Person person(3); },
                                                   [](int, Outcome outcome) { EXPECT_EQ(Outcome::Threw, outcome); });
  EXPECT_GE(failures, 4U);  // the records of state, body language and memories, and the vectors of the state
}

TEST_F(StateWithoutMemory, ReportsWhatItKnowsOrThrows)
{
  const KV::PersonState state(0.5f, 1.f, 0.5f, 1.f);
  const std::size_t failures = failEveryAllocation([] { return std::string("former"); },
                                                   [&](std::string& text) { text = state.emotionLogMessage(); },
                                                   [&](std::string& text, Outcome) { EXPECT_EQ("former", text); });
  EXPECT_GT(failures, 0U);
}

TEST_F(StateWithoutMemory, LeavesABoundaryThatCannotBeRefusedAloud)
{
  const faults::ScopedHandler silenced(&faults::ignoreRecord);
  const float former = KV::PersonState::getBinaryBoundaryPositive();
  const std::size_t failures =
      failEveryAllocation([] { return 0; }, [](int) { KV::PersonState::setBinaryBoundaryPositive(1.5f); },
                          [&](int, Outcome) { EXPECT_EQ(former, KV::PersonState::getBinaryBoundaryPositive()); });
  EXPECT_GT(failures, 3U);
}

TEST(ObservationWithoutMemory, IsCopiedWithoutAny)
{
  const KV::PersonObservation observation = faults::observed(faults::observationCases().back(), support::start);
  const std::size_t before = faults::allocationCount();
  const KV::PersonObservation copy = observation;
  EXPECT_EQ(before, faults::allocationCount());
  EXPECT_EQ(observation.contextEmotion->value.valence, copy.contextEmotion->value.valence);
}

}  // namespace
