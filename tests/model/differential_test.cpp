// The library and the model get the same random observations, and must never differ in a bit.
//
// The number of observations of all tests together is a compile definition: a million in an optimised build, a part of
// them in builds with sanitizers, coverage counters or debug information, where each one is slow (see CMakeLists.txt).
// The environment variable SKEIGIOT_DIFFERENTIAL_OBSERVATIONS sets another number for a longer run.

#include "model/comparison.hpp"
#include "model/model.hpp"
#include "model/randomobservations.hpp"
#include "model/translation.hpp"

#include <skeigiot/person.hpp>

#include <ko/log.hpp>
#include <ko/systemclock.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

using model::Nanoseconds;

constexpr std::uint64_t seed = 20240229;
constexpr Nanoseconds start = 1700000000000 * model::millisecond;

std::int64_t observationsInAllTests()
{
  const char* wanted = std::getenv("SKEIGIOT_DIFFERENTIAL_OBSERVATIONS");
  return wanted != nullptr ? std::stoll(wanted) : SKEIGIOT_DIFFERENTIAL_OBSERVATIONS;
}

class LibraryAgainstModel : public ::testing::Test
{
protected:
  LibraryAgainstModel() : _silence(ko::log::addHandler([](const ko::log::Record&) {})) {}
  ~LibraryAgainstModel() override { ko::log::removeHandler(_silence); }

  /// Runs `percent` of the observations of all tests.
  template <typename Life>
  void expectAgreement(int percent)
  {
    Life life(seed);
    ko::ManualClock clock(model::toTimePoint(start));
    const ko::ScopedClockSource scope(clock);
    KV::Person library;
    model::Person person;

    const std::int64_t observations = observationsInAllTests() * percent / 100;
    Nanoseconds now = start;
    const model::Clock modelClock = [&now] { return now; };
    for (std::int64_t observed = 0, step = 0; observed < observations; ++step)
    {
      now += life.step();
      clock.set(model::toTimePoint(now));
      if (life.isSomebodyElse())
      {
        library = KV::Person();
        person = model::Person();
      }
      if (life.isUnseen())
      {
        library.decreaseSinceNotSeen();
        person.decreaseSinceNotSeen();
      }
      else
      {
        const model::Observation observation = life.next(now);
        library.update(model::toLibrary(observation));
        person.update(observation, modelClock);
        ++observed;
      }
      const std::string difference = model::firstDifference(library, person);
      ASSERT_EQ("", difference) << "seed " << seed << ", step " << step << ", at " << now << " ns";
    }
  }

private:
  ko::log::HandlerId _silence;  // many observations are old here, so their warnings are expected
};

// The shares add up to 100 percent; the life with the longest memory is slowest and has the smallest share.

TEST_F(LibraryAgainstModel, AgreesOnSparseReadings)
{
  expectAgreement<model::SparseReadings>(20);
}

TEST_F(LibraryAgainstModel, AgreesOnThirtyFramesASecond)
{
  expectAgreement<model::ThirtyHertz>(2);
}

TEST_F(LibraryAgainstModel, AgreesOnAllSensorsTogether)
{
  expectAgreement<model::AllSensors>(2);
}

TEST_F(LibraryAgainstModel, AgreesOnTimesInDisorder)
{
  expectAgreement<model::DisorderedTimes>(6);
}

TEST_F(LibraryAgainstModel, AgreesOnASteppedClock)
{
  expectAgreement<model::SteppedClock>(6);
}

TEST_F(LibraryAgainstModel, AgreesOnFewSenses)
{
  expectAgreement<model::FewSenses>(15);
}

TEST_F(LibraryAgainstModel, AgreesOnTheBoundsOfTheRules)
{
  expectAgreement<model::Boundaries>(28);
}

TEST_F(LibraryAgainstModel, AgreesOnTiedScores)
{
  expectAgreement<model::TiedScores>(4);
}

TEST_F(LibraryAgainstModel, AgreesOnBrokenNumbers)
{
  expectAgreement<model::BrokenNumbers>(12);
}

/// A clock that advances whenever it is read, sometimes little, sometimes much, and sometimes goes back.
class RestlessClock : public ko::ClockSource
{
public:
  RestlessClock() : _random(seed) {}

  Nanoseconds read()
  {
    ++_readings;
    _now += _random.chance(0.01) ? _random.between(-200 * model::millisecond, 400 * model::millisecond)
                                 : _random.between(0, 20000);
    return _now;
  }

  ko::SystemClock::time_point now() override { return model::toTimePoint(read()); }
  Nanoseconds shown() const { return _now; }
  std::int64_t readings() const { return _readings; }

private:
  model::Random _random;
  Nanoseconds _now = start;
  std::int64_t _readings = 0;
};

// One reading of the clock too many, too few or in another order gives other ages from there on.
TEST_F(LibraryAgainstModel, AgreesOnEveryReadingOfTheClock)
{
  model::AllSensors all(seed);
  model::SparseReadings sparse(seed);
  RestlessClock libraryClock;
  RestlessClock modelClock;
  const ko::ScopedClockSource scope(libraryClock);
  KV::Person library;
  model::Person person;

  const std::int64_t observations = observationsInAllTests() / 200;
  for (std::int64_t observed = 0; observed < observations; ++observed)
  {
    const bool isFull = observed / 100 % 2 == 0;
    const Nanoseconds now = modelClock.shown();
    const model::Observation observation = isFull ? all.next(now) : sparse.next(now);
    library.update(model::toLibrary(observation));
    person.update(observation, [&modelClock] { return modelClock.read(); });
    ASSERT_EQ(modelClock.readings(), libraryClock.readings()) << "observation " << observed;
    ASSERT_EQ("", model::firstDifference(library, person)) << "seed " << seed << ", observation " << observed;
  }
}

TEST_F(LibraryAgainstModel, AgreesOnCyclesWithoutThePerson)
{
  expectAgreement<model::UnseenCycles>(5);
}

}  // namespace
