#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace
{

using ko::human::AttentionState;
using support::driftToNeutral;
using support::Estimate;
using support::inSeconds;
using support::loseAttention;
using support::milliseconds;
using support::neverHeard;
using support::softStep;
using support::start;
using ::testing::HasSubstr;

// How long the sources have been silent

struct SilenceCase
{
  const char* name;
  int ageInMs;
  float counts;
  const char* written;
};
class UpdateInSilence : public support::StateUpdateTestWithParam<SilenceCase>
{
protected:
  void expectDrift(float valenceSilence, float attentionSilence)
  {
    Estimate expected = estimate();
    driftToNeutral(expected, valenceSilence);
    loseAttention(expected, attentionSilence);
    trace = update();
    EXPECT_EQ(expected, estimate());
  }

  std::string trace;
};

TEST_P(UpdateInSilence, DriftsToNeutralTheFasterTheLongerEachSourceOfValenceIsSilent)
{
  const auto initial = state.lastObservationTimes;
  for (const auto channel :
       {KV::SmileChannel, KV::ExpressionsChannel, KV::VoiceChannel, KV::AsrChannel, KV::TouchChannel})
  {
    state.lastObservationTimes = initial;
    state.lastObservationTimes[channel] = start - milliseconds(GetParam().ageInMs);
    expectDrift(GetParam().counts, neverHeard);
    EXPECT_THAT(trace, HasSubstr(std::string("\nNo valence observations\nforce: ") + GetParam().written + "\nNo att"));
  }
}

TEST_P(UpdateInSilence, LosesAttentionTheFasterTheLongerHeadAndGazeAreSilent)
{
  const auto initial = state.lastObservationTimes;
  for (const auto channel : {KV::HeadPostureChannel, KV::GazeChannel})
  {
    state.lastObservationTimes = initial;
    state.lastObservationTimes[channel] = start - milliseconds(GetParam().ageInMs);
    expectDrift(neverHeard, GetParam().counts);
    EXPECT_THAT(trace, HasSubstr("\nNo attention observations\nComputed states:\n"));
  }
}

TEST_P(UpdateInSilence, DoesNotCountTheTimeOfTheContext)
{
  state.lastObservationTimes[KV::ContextChannel] = start - milliseconds(GetParam().ageInMs);
  expectDrift(neverHeard, neverHeard);
}

INSTANTIATE_TEST_SUITE_P(
    BySilence, UpdateInSilence,
    ::testing::Values(SilenceCase{"InTheFuture", -5, 0.f, "0"}, SilenceCase{"Now", 0, 0.f, "0"},
                      SilenceCase{"OneMillisecondAgo", 1, softStep(inSeconds(milliseconds(1)), 2.5f), "0.997653"},
                      SilenceCase{"TwoMillisecondsAgo", 2, softStep(inSeconds(milliseconds(2)), 2.5f), "0.997645"},
                      SilenceCase{"TwoSecondsAgo", 2000, softStep(2.f, 2.5f), "0.714196"},
                      SilenceCase{"AsLongAsItsReference", 2500, 0.5f, "0.5"},
                      SilenceCase{"FourSecondsAgo", 4000, softStep(4.f, 2.5f), "0.044843"},
                      SilenceCase{"LongAgo", 60000, 0.01f, "0.01"}),
    support::RowName());

class UpdateWithoutSources : public support::StateUpdateTest
{};

TEST_F(UpdateWithoutSources, MovesSixtyFourPercentOfTheWayToZeroAndTheConfidencesSeventy)
{
  update();
  constexpr float rounding = 1e-6f;  // single precision, a few operations
  EXPECT_NEAR(0.3f * (1.f - 0.6435f), state.valence.value, rounding);
  EXPECT_NEAR(0.8f * 0.3f, state.valence.confidence, rounding);
  EXPECT_NEAR(0.5f * (1.f - 0.6435f), state.attention.value, rounding);
  EXPECT_NEAR(0.7f * 0.3f, state.attention.confidence, rounding);
}

TEST_F(UpdateWithoutSources, CountsTheYoungestOfTheSources)
{
  state.lastObservationTimes.fill(start - milliseconds(60000));
  state.lastObservationTimes[KV::VoiceChannel] = start - milliseconds(2500);
  state.lastObservationTimes[KV::GazeChannel] = start - milliseconds(2000);
  Estimate expected = estimate();
  driftToNeutral(expected, 0.5f);
  loseAttention(expected, softStep(2.f, 2.5f));
  update();
  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateWithoutSources, ForgetsTheZone)
{
  state.attentionZone = AttentionState::LookingUp;
  update();
  EXPECT_EQ(AttentionState::Unknown, state.attentionZone);
}

TEST_F(UpdateWithoutSources, KeepsNoHeadHeight)
{
  state.headHeight = 1.5f;
  observation.headHeight = fresh(1.75f);
  update();
  EXPECT_EQ(1.5f, state.headHeight);
}

TEST_F(UpdateWithoutSources, DoesNotPruneTheRobotsHead)
{
  memories().robotHeadPostureMemory.record(fresh(KV::RobotHeadPosture()));
  clock.advance(milliseconds(7001));
  update();
  EXPECT_EQ(1U, memories().robotHeadPostureMemory.records().size());
}

}  // namespace
