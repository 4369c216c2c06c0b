#include "tunable.hpp"

#include "support/capturedlog.hpp"
#include "support/clocktest.hpp"
#include "support/restoredboundaries.hpp"
#include "support/tablename.hpp"

#include <skeigiot/personstate.hpp>

#include <ko/log.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace
{

using KV::PersonState;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

// Any tunable

constexpr KV::TunableInterval interval{-2.f, 3.f, "minus two and three"};
constexpr KV::WarningSource source{"a category", "a file", "aSetter", 42};

struct AcceptedCase
{
  const char* name;
  float value;
};
class AcceptedTunable : public ::testing::TestWithParam<AcceptedCase>
{};

TEST_P(AcceptedTunable, IsStoredWithoutAWord)
{
  const support::CapturedLog log;
  KV::Tunable tunable(0.5f);

  KV::setTunable(tunable, GetParam().value, interval, source);

  EXPECT_EQ(GetParam().value, tunable.get());
  EXPECT_TRUE(log.empty());
}

INSTANTIATE_TEST_SUITE_P(InsideTheInterval, AcceptedTunable,
                         ::testing::Values(AcceptedCase{"JustAboveTheLowerEnd", std::nextafter(-2.f, 0.f)},
                                           AcceptedCase{"Zero", 0.f},
                                           AcceptedCase{"JustBelowTheUpperEnd", std::nextafter(3.f, 0.f)}),
                         support::RowName());

struct RefusedCase
{
  const char* name;
  float value;
  const char* written;
};
class RefusedTunable : public support::ClockTestWithParam<RefusedCase>
{};

TEST_P(RefusedTunable, IsReportedAndNotStored)
{
  const support::CapturedLog log;
  KV::Tunable tunable(0.5f);

  KV::setTunable(tunable, GetParam().value, interval, source);

  EXPECT_EQ(0.5f, tunable.get());
  ASSERT_EQ(1U, log.size());
  const ko::log::Record record = log.records().front();
  EXPECT_EQ(std::string("aSetter failed: ") + GetParam().written + " is not between minus two and three.",
            record.message);
  EXPECT_EQ(ko::log::Level::Warning, record.level);
  EXPECT_EQ("a category", record.category);
  EXPECT_EQ("a file", record.file);
  EXPECT_EQ("aSetter", record.function);
  EXPECT_EQ(42, record.line);
  EXPECT_EQ(support::start, record.time);
}

INSTANTIATE_TEST_SUITE_P(OutsideTheInterval, RefusedTunable,
                         ::testing::Values(RefusedCase{"MinusInfinity", -infinity, "-inf"},
                                           RefusedCase{"JustBelowTheLowerEnd", std::nextafter(-2.f, -3.f), "-2.000000"},
                                           RefusedCase{"TheLowerEnd", -2.f, "-2.000000"},
                                           RefusedCase{"TheUpperEnd", 3.f, "3.000000"},
                                           RefusedCase{"JustAboveTheUpperEnd", std::nextafter(3.f, 4.f), "3.000000"},
                                           RefusedCase{"SixDecimals", 12.3456789f, "12.345679"},
                                           RefusedCase{"Infinity", infinity, "inf"}, RefusedCase{"Nan", nan, "nan"}),
                         support::RowName());

// The boundaries of the person state

struct BoundaryCase
{
  const char* name;
  void (*set)(float);
  float (*get)();
  float byDefault;
  float lower;
  const char* function;
  const char* words;
};
class Boundary : public ::testing::TestWithParam<BoundaryCase>
{
protected:
  static void set(float value) { GetParam().set(value); }
  static float get() { return GetParam().get(); }

  support::CapturedLog log;

private:
  support::RestoredBoundaries _restored;
};

TEST_P(Boundary, HasItsDefault)
{
  EXPECT_EQ(GetParam().byDefault, get());
}

TEST_P(Boundary, TakesWhatLiesStrictlyInsideItsInterval)
{
  for (const float value : {std::nextafter(GetParam().lower, 2.f), 0.3f, 0.5f, std::nextafter(1.f, 0.f)})
  {
    set(value);
    EXPECT_EQ(value, get());
  }
  EXPECT_TRUE(log.empty());
}

TEST_P(Boundary, RefusesItsEndsAndWhatLiesBeyond)
{
  for (const float value : {GetParam().lower, std::nextafter(GetParam().lower, -2.f), 1.f, std::nextafter(1.f, 2.f),
                            1.5f, -7.f, infinity, -infinity, nan})
  {
    set(value);
    EXPECT_EQ(GetParam().byDefault, get()) << "set to " << value;
  }
  EXPECT_EQ(9U, log.size());
}

TEST_P(Boundary, ReportsWhatItRefuses)
{
  set(1.5f);

  ASSERT_EQ(1U, log.size());
  const ko::log::Record record = log.records().front();
  EXPECT_EQ(std::string(GetParam().function) + " failed: 1.500000 is not between " + GetParam().words + ".",
            record.message);
  EXPECT_EQ(ko::log::Level::Warning, record.level);
  EXPECT_EQ("kvmood.emotionalstate", record.category);
  EXPECT_EQ("libemotion/src/personstate", record.file);
  EXPECT_EQ(GetParam().function, record.function);
  EXPECT_GT(record.line, 0);
}

TEST_P(Boundary, LeavesTheOthersAlone)
{
  set(0.55f);

  std::vector<float> boundaries = {PersonState::getBinaryBoundaryPositive(), PersonState::getBinaryBoundaryNegative(),
                                   PersonState::getBinaryBoundaryLookingAtRobot(),
                                   PersonState::getBinaryBoundaryStrictlyLookingAtRobot(),
                                   PersonState::getBinaryBoundaryConfidence()};
  std::vector<float> expected = {0.2f, -0.2f, 0.6f, 0.9f, 0.4f};
  *std::find(expected.begin(), expected.end(), GetParam().byDefault) = 0.55f;
  EXPECT_EQ(expected, boundaries);
}

TEST_P(Boundary, MayBeSetAndReadFromSeveralThreads)
{
  constexpr int threadCount = 4;
  constexpr int roundCount = 500;
  const auto valueOf = [](int thread) { return 0.1f + 0.2f * static_cast<float>(thread); };
  std::atomic<int> strangeReadings{0};
  set(valueOf(0));

  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread)
    threads.emplace_back([&, thread] {
      for (int round = 0; round < roundCount; ++round)
      {
        GetParam().set(valueOf(thread));
        GetParam().set(7.f);  // refused, and reported
        const float read = GetParam().get();
        if (read != valueOf(0) && read != valueOf(1) && read != valueOf(2) && read != valueOf(3))
          ++strangeReadings;
      }
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(0, strangeReadings);
  EXPECT_EQ(static_cast<std::size_t>(threadCount * roundCount), log.size());
}

INSTANTIATE_TEST_SUITE_P(OfThePersonState, Boundary,
                         ::testing::Values(BoundaryCase{"Positive", PersonState::setBinaryBoundaryPositive,
                                                        PersonState::getBinaryBoundaryPositive, 0.2f, -1.f,
                                                        "setBinaryBoundaryPositive", "-1.0 and 1.0"},
                                           BoundaryCase{"Negative", PersonState::setBinaryBoundaryNegative,
                                                        PersonState::getBinaryBoundaryNegative, -0.2f, -1.f,
                                                        "setBinaryBoundaryNegative", "-1.0 and 1.0"},
                                           BoundaryCase{"LookingAtRobot", PersonState::setBinaryBoundaryLookingAtRobot,
                                                        PersonState::getBinaryBoundaryLookingAtRobot, 0.6f, 0.f,
                                                        "setBinaryBoundaryLookingAtRobot", "0.0 and 1.0"},
                                           BoundaryCase{"StrictlyLookingAtRobot",
                                                        PersonState::setBinaryBoundaryStrictlyLookingAtRobot,
                                                        PersonState::getBinaryBoundaryStrictlyLookingAtRobot, 0.9f, 0.f,
                                                        "setBinaryBoundaryStrictlyLookingAtRobot", "0.0 and 1.0"},
                                           BoundaryCase{"Confidence", PersonState::setBinaryBoundaryConfidence,
                                                        PersonState::getBinaryBoundaryConfidence, 0.4f, 0.f,
                                                        "setBinaryBoundaryConfidence", "0.0 and 1.0"}),
                         support::RowName());

TEST(Boundaries, OfConfidenceAreReportedAtBothEnds)
{
  const support::RestoredBoundaries restored;
  const support::CapturedLog log;

  PersonState::setBinaryBoundaryConfidence(1.f);
  PersonState::setBinaryBoundaryConfidence(0.f);

  EXPECT_EQ(0.4f, PersonState::getBinaryBoundaryConfidence());
  EXPECT_THAT(log.messages(),
              ::testing::ElementsAre("setBinaryBoundaryConfidence failed: 1.000000 is not between 0.0 and 1.0.",
                                     "setBinaryBoundaryConfidence failed: 0.000000 is not between 0.0 and 1.0."));
}

TEST(Boundaries, AreNotCheckedAgainstEachOther)
{
  const support::RestoredBoundaries restored;
  PersonState::setBinaryBoundaryNegative(0.9f);
  PersonState::setBinaryBoundaryPositive(-0.9f);

  EXPECT_EQ(0.9f, PersonState::getBinaryBoundaryNegative());
  EXPECT_EQ(-0.9f, PersonState::getBinaryBoundaryPositive());
}

}  // namespace
