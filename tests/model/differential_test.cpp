// The library and the model live through the same random lives, and must never differ in a bit.
//
// How many observations all tests together take is a compile definition: a million in an optimised build, a part of
// them where sanitizers, coverage counters or a debug build make each one dear (see CMakeLists.txt). The environment
// variable SKEIGIOT_DIFFERENTIAL_OBSERVATIONS sets another number for a longer run.

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

  /// Lives through `percent` of the observations of all tests.
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
        person.update(observation, now);
        ++observed;
      }
      const std::string difference = model::firstDifference(library, person);
      ASSERT_EQ("", difference) << "seed " << seed << ", step " << step << ", at " << now << " ns";
    }
  }

private:
  ko::log::HandlerId _silence;  // old observations are many here, and their warnings expected
};

// The shares add up to 100 percent; what remembers most takes longest and has the smallest.

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

TEST_F(LibraryAgainstModel, AgreesOnCyclesWithoutThePerson)
{
  expectAgreement<model::UnseenCycles>(5);
}

}  // namespace
