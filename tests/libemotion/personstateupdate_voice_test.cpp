#include "support/capturedlog.hpp"
#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using support::driftToNeutral;
using support::Estimate;
using support::limitValence;
using support::loseAttention;
using support::milliseconds;
using support::neverHeard;
using support::start;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

struct VoiceCase
{
  const char* name;
  float calm;
  float anger;
  float joy;
  float sorrow;
};

KV::VoiceEmotion voiceOf(const VoiceCase& scores)
{
  // Confidences, laughter and excitement that would show if they counted.
  return KV::VoiceEmotion({scores.calm, 0.1f}, {scores.anger, 0.2f}, {scores.joy, 0.3f}, {scores.sorrow, 0.4f},
                          {0.5f, 0.6f}, {0.7f, 0.8f});
}

class UpdateByVoiceScores : public support::StateUpdateTestWithParam<VoiceCase>
{};

TEST_P(UpdateByVoiceScores, PullsTheValenceFourTimesInOrder)
{
  observation.voiceEmotion = fresh(voiceOf(GetParam()));
  Estimate expected = estimate();
  expected.pullValence(0.f, (GetParam().calm * 0.7f) * 0.65f);
  expected.pullValence(-1.f, (GetParam().anger * 0.7f) * 0.65f);
  expected.pullValence(1.f, (GetParam().joy * 0.7f) * 0.65f);
  expected.pullValence(-0.5f, (GetParam().sorrow * 0.7f) * 0.65f);
  limitValence(expected);
  loseAttention(expected, neverHeard);

  EXPECT_THAT(update(), Not(HasSubstr("No valence observations")));

  EXPECT_EQ(expected, estimate());
}

INSTANTIATE_TEST_SUITE_P(
    OfAVoice, UpdateByVoiceScores,
    ::testing::Values(VoiceCase{"Calm", 1.f, 0.f, 0.f, 0.f}, VoiceCase{"Anger", 0.f, 1.f, 0.f, 0.f},
                      VoiceCase{"Joy", 0.f, 0.f, 1.f, 0.f}, VoiceCase{"Sorrow", 0.f, 0.f, 0.f, 1.f},
                      VoiceCase{"Everything", 1.f, 1.f, 1.f, 1.f}, VoiceCase{"Unevenly", 0.13f, 0.57f, 0.91f, 0.37f},
                      VoiceCase{"Nothing", 0.f, 0.f, 0.f, 0.f}, VoiceCase{"TooLoud", 0.f, 0.f, 3.f, 0.f}),
    support::RowName());

class UpdateByVoice : public support::StateUpdateTest
{
protected:
  support::CapturedLog log;
};

TEST_F(UpdateByVoice, OfPureJoyMovesTheValenceFortyFiveAndAHalfPercentOfTheWay)
{
  observation.voiceEmotion = fresh(voiceOf({"", 0.f, 0.f, 1.f, 0.f}));
  update();
  EXPECT_NEAR(0.3f + 0.455f * 0.7f, state.valence.value, 1e-6f);  // single precision
}

TEST_F(UpdateByVoice, ActsOncePerTimeStamp)
{
  observation.voiceEmotion = aged(milliseconds(10), voiceOf({"", 0.f, 0.f, 1.f, 0.f}));
  update();
  EXPECT_EQ(start - milliseconds(10), state.lastObservationTimes[KV::VoiceChannel]);
  Estimate expected = estimate();
  driftToNeutral(expected, support::softStep(0.01f, 2.5f));
  loseAttention(expected, neverHeard);

  EXPECT_THAT(update(), HasSubstr("No valence observations"));

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateByVoice, ActsAgainWithAnotherTimeStampEvenAnOlderOne)
{
  observation.voiceEmotion = fresh(voiceOf({"", 0.f, 0.f, 1.f, 0.f}));
  update();
  observation.voiceEmotion->time -= support::nanoseconds(1);
  EXPECT_THAT(update(), Not(HasSubstr("No valence observations")));
}

TEST_F(UpdateByVoice, SaysNothingOfThreeSeconds)
{
  observation.voiceEmotion = aged(milliseconds(3000), KV::VoiceEmotion());
  update();
  EXPECT_TRUE(log.empty());
}

TEST_F(UpdateByVoice, WarnsOnceOfAnOlderReadingThatActsAllTheSame)
{
  observation.voiceEmotion = aged(milliseconds(3001), voiceOf({"", 0.f, 0.f, 1.f, 0.f}));
  Estimate expected = estimate();
  expected.pullValence(1.f, (1.f * 0.7f) * 0.65f);
  update();
  EXPECT_EQ(expected.valence, state.valence.value);
  update();

  EXPECT_THAT(log.messages(), ElementsAre("Processing old observation from 3.001 s ago of Voice Emotion"));
}

TEST_F(UpdateByVoice, IsTheOnlySourceThatWarnsOfItsAge)
{
  observation.smile = aged(milliseconds(60000), KV::Smile(1.f, 1.f));
  observation.expressions = aged(milliseconds(60000), KV::Expressions());
  observation.gaze = aged(milliseconds(60000), KV::Gaze());
  memories().asrEmotionMemory.record(aged(milliseconds(6000), 1.f));
  memories().touchEmotionMemory.record(aged(milliseconds(6000), 1));
  memories().contextEmotionMemory.record(aged(milliseconds(6000), KV::ContextEmotion(1, 1.f)));
  memories().headPostureMemory.record(aged(milliseconds(6000), KV::HeadPosture()));
  update();
  EXPECT_TRUE(log.empty());
}

}  // namespace
