#include "support/capturedlog.hpp"
#include "support/clocktest.hpp"
#include "support/heldmutex.hpp"
#include "support/revealedmutex.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/ambiancestate.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace support
{

boost::mutex& mutexOf(KV::AmbianceState& state);
template struct RevealedMutex<KV::AmbianceState, &KV::AmbianceState::_mutex>;

}  // namespace support

namespace
{

using KV::AmbianceState;
using ::testing::ElementsAre;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

AmbianceState stateOf(float agitation, float calm, float movements)
{
  AmbianceState state;
  state.agitationLevel = agitation;
  state.calmLevel = calm;
  state.movementCount = movements;
  return state;
}

void expectState(float agitation, float calm, float movements, const AmbianceState& state)
{
  EXPECT_EQ(agitation, state.agitationLevel);
  EXPECT_EQ(calm, state.calmLevel);
  EXPECT_EQ(movements, state.movementCount);
}

std::string written(const AmbianceState& state)
{
  std::ostringstream stream;
  stream << state;
  return stream.str();
}

TEST(AmbianceDescription, NumbersTheLevels)
{
  EXPECT_EQ(0, KV::AmbianceActivity);
  EXPECT_EQ(1, KV::AmbianceCalm);
}

TEST(ExcitationState, NumbersTheStates)
{
  EXPECT_EQ(0, KV::ExcitationUnknown);
  EXPECT_EQ(1, KV::AmbianceNotExcited);
  EXPECT_EQ(2, KV::AmbianceExcited);
}

TEST(AmbianceState, IsNeitherAgitatedNorCalmAtFirst)
{
  expectState(0.f, 0.f, 0.f, AmbianceState());
}

// Copies

TEST(AmbianceState, CopiesItsThreeValues)
{
  const AmbianceState original = stateOf(0.25f, 0.5f, 3.f);

  expectState(0.25f, 0.5f, 3.f, AmbianceState(original));
}

TEST(AmbianceState, IsIndependentOfItsCopy)
{
  AmbianceState original = stateOf(0.25f, 0.75f, 0.f);
  AmbianceState copy(original);

  copy.incrementMovementDetected();
  copy.updateAmbiance(1.f);

  expectState(0.25f, 0.75f, 0.f, original);
}

TEST(AmbianceState, TakesThreeValuesByAssignment)
{
  const AmbianceState source = stateOf(0.25f, 0.5f, 3.f);
  AmbianceState state = stateOf(1.f, 2.f, 4.f);

  AmbianceState& result = (state = source);

  EXPECT_EQ(&state, &result);
  expectState(0.25f, 0.5f, 3.f, state);
}

TEST(AmbianceState, MayBeAssignedToItself)
{
  AmbianceState state = stateOf(0.25f, 0.5f, 3.f);
  const AmbianceState& itself = state;

  AmbianceState& result = (state = itself);

  EXPECT_EQ(&state, &result);
  expectState(0.25f, 0.5f, 3.f, state);
}

TEST(AmbianceState, ReleasesItsMutexAfterEachOperation)
{
  AmbianceState state;
  state = stateOf(0.f, 0.f, 0.f);
  state.incrementMovementDetected();
  state.excitationState();
  state.updateAmbiance(0.f);
  state.incrementMovementDetected();

  EXPECT_EQ(1.f, state.movementCount);
}

// Updates

TEST(AmbianceStateUpdate, SmoothsTenTimesTheActivity)
{
  AmbianceState state;

  state.updateAmbiance(0.05f);
  expectState(0.1f, 0.9f, 0.f, state);

  state.updateAmbiance(0.05f);
  EXPECT_FLOAT_EQ(0.18f, state.agitationLevel);
  EXPECT_FLOAT_EQ(0.82f, state.calmLevel);
}

TEST(AmbianceStateUpdate, ApproachesTenTimesTheActivity)
{
  AmbianceState state;

  for (int i = 0; i < 200; ++i)
    state.updateAmbiance(0.05f);

  EXPECT_NEAR(0.5f, state.agitationLevel, 1e-6f);  // the last steps are below single precision
  EXPECT_EQ(1.f - state.agitationLevel, state.calmLevel);
}

TEST(AmbianceStateUpdate, FallsWithoutActivity)
{
  AmbianceState state = stateOf(0.5f, 0.5f, 0.f);

  state.updateAmbiance(0.f);

  EXPECT_EQ((0.f - 0.5f) * 0.2f + 0.5f, state.agitationLevel);
  EXPECT_FLOAT_EQ(0.4f, state.agitationLevel);
}

TEST(AmbianceStateUpdate, AddsAFifthOfAFifthPerMovementAndConsumesThem)
{
  AmbianceState state;
  state.incrementMovementDetected();
  state.incrementMovementDetected();
  state.incrementMovementDetected();
  EXPECT_EQ(3.f, state.movementCount);

  state.updateAmbiance(0.f);

  EXPECT_EQ((3.f / 5.f) * 0.2f, state.agitationLevel);
  EXPECT_FLOAT_EQ(0.12f, state.agitationLevel);
  EXPECT_EQ(1.f - state.agitationLevel, state.calmLevel);
  EXPECT_EQ(0.f, state.movementCount);
}

TEST(AmbianceStateUpdate, AddsMovementsToTheSmoothedActivity)
{
  AmbianceState state = stateOf(0.3f, 0.7f, 2.f);
  const float target = 0.07f * 10.f;

  state.updateAmbiance(0.07f);

  EXPECT_EQ(((target - 0.3f) * 0.2f + 0.3f) + (2.f / 5.f) * 0.2f, state.agitationLevel);
  EXPECT_FLOAT_EQ(0.46f, state.agitationLevel);
}

TEST(AmbianceStateUpdate, DoesNotCountAMovementTwice)
{
  AmbianceState state;
  state.incrementMovementDetected();
  state.updateAmbiance(0.f);
  const float afterOne = state.agitationLevel;

  state.updateAmbiance(0.f);

  EXPECT_EQ((0.f - afterOne) * 0.2f + afterOne, state.agitationLevel);
}

struct ClampCase
{
  const char* name;
  float activity;
  float agitation;
  float calm;
};

class AmbianceStateClamp : public ::testing::TestWithParam<ClampCase>
{};

TEST_P(AmbianceStateClamp, HoldsTheUpdateInRange)
{
  AmbianceState state;

  state.updateAmbiance(GetParam().activity);

  expectState(GetParam().agitation, GetParam().calm, 0.f, state);
}

INSTANTIATE_TEST_SUITE_P(
    From, AmbianceStateClamp,
    ::testing::Values(ClampCase{"FullActivity", 1.f, 1.f, 0.f}, ClampCase{"HalfActivityIsTheMost", 0.5f, 1.f, 0.f},
                      ClampCase{"AQuarter", 0.25f, 0.5f, 0.5f}, ClampCase{"None", 0.f, 0.f, 1.f},
                      ClampCase{"NegativeActivity", -0.01f, 0.f, 1.f}, ClampCase{"Infinity", infinity, 1.f, 0.f},
                      ClampCase{"MinusInfinity", -infinity, 0.f, 1.f}, ClampCase{"Nan", nan, 0.f, 1.f}),
    support::RowName());

struct SetCase
{
  const char* name;
  float level;
  float agitation;
  float calm;
};

class AmbianceStateSet : public ::testing::TestWithParam<SetCase>
{};

TEST_P(AmbianceStateSet, HoldsTheLevelInRangeAndKeepsTheMovements)
{
  AmbianceState state = stateOf(0.3f, 0.3f, 7.f);

  state._setAmbientActivityLevel(GetParam().level);

  expectState(GetParam().agitation, GetParam().calm, 7.f, state);
}

const float justUnderOne = std::nextafter(1.f, 0.f);
const float leastPositive = std::numeric_limits<float>::denorm_min();
INSTANTIATE_TEST_SUITE_P(To, AmbianceStateSet,
                         ::testing::Values(SetCase{"Middle", 0.25f, 0.25f, 0.75f}, SetCase{"Zero", 0.f, 0.f, 1.f},
                                           SetCase{"JustOverZero", leastPositive, leastPositive, 1.f},
                                           SetCase{"JustUnderZero", -leastPositive, 0.f, 1.f},
                                           SetCase{"One", 1.f, 1.f, 0.f},
                                           SetCase{"JustUnderOne", justUnderOne, justUnderOne, 1.f - justUnderOne},
                                           SetCase{"JustOverOne", std::nextafter(1.f, 2.f), 1.f, 0.f},
                                           SetCase{"Nan", nan, 0.f, 1.f}),
                         support::RowName());

// Queries

TEST(AmbianceState, ReportsTheLevelThatIsAskedFor)
{
  const AmbianceState state = stateOf(0.25f, 0.5f, 3.f);

  EXPECT_EQ(0.25f, state.ambientActivityLevel(KV::AmbianceActivity));
  EXPECT_EQ(0.5f, state.ambientActivityLevel(KV::AmbianceCalm));
}

struct DescriptionCase
{
  const char* name;
  int description;
  const char* message;
};

class AmbianceStateDescription : public ::testing::TestWithParam<DescriptionCase>
{};

TEST_P(AmbianceStateDescription, IsRefused)
{
  const AmbianceState state = stateOf(0.25f, 0.5f, 3.f);

  EXPECT_EQ(GetParam().message, support::textThrownBy<std::invalid_argument>([&] {
              state.ambientActivityLevel(static_cast<KV::AmbianceDescription>(GetParam().description));
            }));
  expectState(0.25f, 0.5f, 3.f, state);
}

INSTANTIATE_TEST_SUITE_P(OutsideTheTwo, AmbianceStateDescription,
                         ::testing::Values(DescriptionCase{"JustAbove", 2, "Unknown emotional expression descriptor 2"},
                                           DescriptionCase{"JustBelow", -1,
                                                           "Unknown emotional expression descriptor -1"},
                                           DescriptionCase{"FarAbove", std::numeric_limits<int>::max(),
                                                           "Unknown emotional expression descriptor 2147483647"},
                                           DescriptionCase{"FarBelow", std::numeric_limits<int>::min(),
                                                           "Unknown emotional expression descriptor -2147483648"}),
                         support::RowName());

TEST(AmbianceStateText, WritesALineForEachLevelWithoutALastLineEnd)
{
  EXPECT_EQ("Ambiance:\n\t - Activity : \t0.25\n\t - Calm : \t0.75", written(stateOf(0.25f, 0.75f, 3.f)));
}

TEST(AmbianceStateText, ShowsTheUntouchedState)
{
  EXPECT_EQ("Ambiance:\n\t - Activity : \t0\n\t - Calm : \t0", written(AmbianceState()));
}

TEST(AmbianceStateText, UsesTheFormatOfTheStreamAndReturnsIt)
{
  std::ostringstream stream;
  stream << std::fixed << std::setprecision(3);

  EXPECT_EQ(&stream, &(stream << stateOf(0.25f, 0.75f, 0.f)));

  EXPECT_EQ("Ambiance:\n\t - Activity : \t0.250\n\t - Calm : \t0.750", stream.str());
}

// Excitation

constexpr float defaultBoundary = 0.4f;

/// Restores the process-wide boundary.
class ExcitationBoundary : public support::ClockTest
{
protected:
  ~ExcitationBoundary() override { AmbianceState::setBinaryBoundaryExcited(defaultBoundary); }
};

TEST_F(ExcitationBoundary, LiesAtFourTenthsByDefault)
{
  EXPECT_EQ(defaultBoundary, AmbianceState::getBinaryBoundaryExcited());
}

TEST_F(ExcitationBoundary, DividesTheExcitedFromTheRest)
{
  EXPECT_EQ(KV::AmbianceNotExcited, stateOf(0.f, 0.f, 0.f).excitationState());
  EXPECT_EQ(KV::AmbianceNotExcited, stateOf(std::nextafter(defaultBoundary, 0.f), 0.f, 0.f).excitationState());
  EXPECT_EQ(KV::AmbianceExcited, stateOf(defaultBoundary, 0.f, 0.f).excitationState());
  EXPECT_EQ(KV::AmbianceExcited, stateOf(std::nextafter(defaultBoundary, 1.f), 0.f, 0.f).excitationState());
  EXPECT_EQ(KV::AmbianceExcited, stateOf(1.f, 0.f, 0.f).excitationState());
  EXPECT_EQ(KV::AmbianceExcited, stateOf(nan, 0.f, 0.f).excitationState());
}

TEST_F(ExcitationBoundary, HoldsForTheWholeProcess)
{
  AmbianceState state = stateOf(0.6f, 0.4f, 0.f);

  AmbianceState::setBinaryBoundaryExcited(0.75f);

  EXPECT_EQ(0.75f, AmbianceState::getBinaryBoundaryExcited());
  EXPECT_EQ(KV::AmbianceNotExcited, state.excitationState());
}

struct AcceptedBoundary
{
  const char* name;
  float boundary;
};

class AcceptedExcitationBoundary : public ExcitationBoundary, public ::testing::WithParamInterface<AcceptedBoundary>
{};

TEST_P(AcceptedExcitationBoundary, IsStoredWithoutAWord)
{
  const support::CapturedLog log;

  AmbianceState::setBinaryBoundaryExcited(GetParam().boundary);

  EXPECT_EQ(GetParam().boundary, AmbianceState::getBinaryBoundaryExcited());
  EXPECT_TRUE(log.empty());
}

INSTANTIATE_TEST_SUITE_P(Inside, AcceptedExcitationBoundary,
                         ::testing::Values(AcceptedBoundary{"JustOverZero", leastPositive},
                                           AcceptedBoundary{"Middle", 0.5f},
                                           AcceptedBoundary{"JustUnderOne", justUnderOne}),
                         support::RowName());

struct RejectedBoundary
{
  const char* name;
  float boundary;
  const char* message;
};

class RejectedExcitationBoundary : public ExcitationBoundary, public ::testing::WithParamInterface<RejectedBoundary>
{};

TEST_P(RejectedExcitationBoundary, ChangesNothing)
{
  const support::CapturedLog log;
  AmbianceState::setBinaryBoundaryExcited(0.75f);

  AmbianceState::setBinaryBoundaryExcited(GetParam().boundary);

  EXPECT_EQ(0.75f, AmbianceState::getBinaryBoundaryExcited());
}

TEST_P(RejectedExcitationBoundary, IsReportedByAWarning)
{
  const support::CapturedLog log;

  AmbianceState::setBinaryBoundaryExcited(GetParam().boundary);

  ASSERT_EQ(1u, log.size());
  const ko::log::Record record = log.records().front();
  EXPECT_EQ(ko::log::Level::Warning, record.level);
  EXPECT_EQ("kvmood.ambiance", record.category);
  EXPECT_EQ(GetParam().message, record.message);
  EXPECT_EQ("libemotion/src/ambiancestate", record.file);
  EXPECT_EQ("setBinaryBoundaryExcited", record.function);
  EXPECT_GT(record.line, 0);
  EXPECT_EQ(support::start, record.time);
}

INSTANTIATE_TEST_SUITE_P(
    Outside, RejectedExcitationBoundary,
    ::testing::Values(
        RejectedBoundary{"Zero", 0.f, "setBinaryBoundaryExcited failed: 0.000000 is not between 0.0 and 1.0."},
        RejectedBoundary{"MinusZero", -0.f, "setBinaryBoundaryExcited failed: -0.000000 is not between 0.0 and 1.0."},
        RejectedBoundary{"JustUnderZero", -leastPositive,
                         "setBinaryBoundaryExcited failed: -0.000000 is not between 0.0 and 1.0."},
        RejectedBoundary{"Negative", -0.25f, "setBinaryBoundaryExcited failed: -0.250000 is not between 0.0 and 1.0."},
        RejectedBoundary{"One", 1.f, "setBinaryBoundaryExcited failed: 1.000000 is not between 0.0 and 1.0."},
        RejectedBoundary{"JustOverOne", std::nextafter(1.f, 2.f),
                         "setBinaryBoundaryExcited failed: 1.000000 is not between 0.0 and 1.0."},
        RejectedBoundary{"Infinity", infinity, "setBinaryBoundaryExcited failed: inf is not between 0.0 and 1.0."},
        RejectedBoundary{"MinusInfinity", -infinity,
                         "setBinaryBoundaryExcited failed: -inf is not between 0.0 and 1.0."},
        RejectedBoundary{"Nan", nan, "setBinaryBoundaryExcited failed: nan is not between 0.0 and 1.0."}),
    support::RowName());

// Threads

TEST(AmbianceStateThreads, WaitForTheMutexOfTheState)
{
  AmbianceState state;
  const AmbianceState source = stateOf(0.5f, 0.5f, 0.f);
  boost::mutex& mutex = support::mutexOf(state);

  EXPECT_TRUE(support::waitsFor(mutex, [&] { state.updateAmbiance(0.5f); }));
  EXPECT_TRUE(support::waitsFor(mutex, [&] { state.incrementMovementDetected(); }));
  EXPECT_TRUE(support::waitsFor(mutex, [&] { state.excitationState(); }));
  EXPECT_TRUE(support::waitsFor(mutex, [&] { state = source; }));
}

TEST(AmbianceStateThreads, WaitForNoMutexToCopyASourceAskAndSet)
{
  AmbianceState state;
  AmbianceState target;
  const std::vector<boost::mutex*> mutexes{&support::mutexOf(state)};

  EXPECT_TRUE(support::endsDespite(mutexes, [&] { target = state; }));
  EXPECT_TRUE(support::endsDespite(mutexes, [&] { const AmbianceState copy(state); }));
  EXPECT_TRUE(support::endsDespite(mutexes, [&] { state.ambientActivityLevel(KV::AmbianceCalm); }));
  EXPECT_TRUE(support::endsDespite(mutexes, [&] { state._setAmbientActivityLevel(0.5f); }));
}

TEST(AmbianceStateThreads, CountEveryMovement)
{
  constexpr int threadCount = 4;
  constexpr int movementCount = 20000;  // enough for the threads to meet
  AmbianceState state;

  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread)
    threads.emplace_back([&state] {
      for (int i = 0; i < movementCount; ++i)
        state.incrementMovementDetected();
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(static_cast<float>(threadCount * movementCount), state.movementCount);
}

TEST(AmbianceStateThreads, UpdateAndAskWhileMovementsAreCounted)
{
  constexpr int roundCount = 1000;
  AmbianceState state;
  const AmbianceState source = stateOf(0.5f, 0.5f, 0.f);
  int excited = 0;
  int answers = 0;

  std::thread counting([&state] {
    for (int i = 0; i < roundCount; ++i)
      state.incrementMovementDetected();
  });
  std::thread asking([&] {
    for (int i = 0; i < roundCount; ++i)
      answers += state.excitationState() == KV::ExcitationUnknown ? 0 : 1;
  });
  std::thread updating([&] {
    for (int i = 0; i < roundCount; ++i)
    {
      state.updateAmbiance(1.f);
      excited += state.excitationState() == KV::AmbianceExcited ? 1 : 0;
      if (i == roundCount / 2)
        state = source;
    }
  });
  counting.join();
  asking.join();
  updating.join();

  EXPECT_EQ(roundCount, answers);
  EXPECT_EQ(roundCount, excited);
  EXPECT_EQ(1.f, state.agitationLevel);
  EXPECT_EQ(0.f, state.calmLevel);
  EXPECT_LE(state.movementCount, static_cast<float>(roundCount));
}

TEST(AmbianceStateThreads, SetAndReadTheBoundary)
{
  constexpr int roundCount = 1000;
  bool everOther = false;

  std::thread writing([] {
    for (int i = 0; i < roundCount; ++i)
      AmbianceState::setBinaryBoundaryExcited(i % 2 == 0 ? 0.25f : 0.75f);
  });
  std::thread reading([&everOther] {
    for (int i = 0; i < roundCount; ++i)
    {
      const float boundary = AmbianceState::getBinaryBoundaryExcited();
      everOther = everOther || (boundary != 0.25f && boundary != 0.75f && boundary != defaultBoundary);
    }
  });
  writing.join();
  reading.join();

  EXPECT_FALSE(everOther);
  EXPECT_EQ(0.75f, AmbianceState::getBinaryBoundaryExcited());
  AmbianceState::setBinaryBoundaryExcited(defaultBoundary);
}

}  // namespace
