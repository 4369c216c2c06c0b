#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{

using support::headMagnitude;
using support::milliseconds;
using support::softStep;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

class UpdateIntake : public support::StateUpdateTest
{
protected:
  static KV::Expressions someExpressions()
  {
    KV::Expressions expressions;
    expressions.calm = {0.1f, 0.11f};
    expressions.anger = {0.2f, 0.21f};
    expressions.joy = {0.3f, 0.31f};
    expressions.sorrow = {0.4f, 0.41f};
    expressions.laughter = {0.5f, 0.51f};
    expressions.excitement = {0.6f, 0.61f};
    expressions.surprise = {0.7f, 0.71f};
    return expressions;
  }

  std::int64_t keptTime(KV::ObservationChannel channel) const
  {
    return state.lastObservationTimes[channel].time_since_epoch().count();
  }
};

constexpr std::int64_t startTicks = 1577836800000000000;

// Smile

TEST_F(UpdateIntake, TakesANewSmileOverWithItsTime)
{
  observation.smile = aged(milliseconds(40), KV::Smile(0.6f, 0.7f));
  update();

  EXPECT_EQ(0.6f, state.smile.value);
  EXPECT_EQ(0.7f, state.smile.confidence);
  EXPECT_EQ(startTicks - 40000000, keptTime(KV::SmileChannel));
  for (const auto channel : {KV::HeadPostureChannel, KV::ExpressionsChannel, KV::VoiceChannel, KV::AsrChannel,
                             KV::GazeChannel, KV::TouchChannel, KV::ContextChannel})
    EXPECT_EQ(-1000000, keptTime(channel)) << channel;
}

TEST_F(UpdateIntake, LeavesASmileOfTheKeptTimeAlone)
{
  observation.smile = fresh(KV::Smile(0.6f, 0.7f));
  update();
  observation.smile->value = KV::Smile(0.1f, 0.2f);
  update();

  EXPECT_EQ(0.6f, state.smile.value);
  EXPECT_EQ(0.7f, state.smile.confidence);
}

TEST_F(UpdateIntake, TakesASmileOverThatIsOneNanosecondOff)
{
  observation.smile = fresh(KV::Smile(0.6f, 0.7f));
  update();
  observation.smile = KV::Timestamped<KV::Smile>(support::start - support::nanoseconds(1), KV::Smile(0.1f, 0.2f));
  update();

  EXPECT_EQ(0.1f, state.smile.value);
  EXPECT_EQ(startTicks - 1, keptTime(KV::SmileChannel));
}

TEST_F(UpdateIntake, KeepsTheSmileWithoutANewOne)
{
  observation.smile = fresh(KV::Smile(0.6f, 0.7f));
  update();
  observation.smile = boost::none;
  clock.advance(milliseconds(60000));
  update();

  EXPECT_EQ(0.6f, state.smile.value);
  EXPECT_EQ(startTicks, keptTime(KV::SmileChannel));
}

TEST_F(UpdateIntake, MistakesASmileOneMillisecondBeforeTheEpochForTheOneNeverSeen)
{
  observation.smile = KV::Timestamped<KV::Smile>(support::atNanoseconds(-1000000), KV::Smile(0.6f, 0.7f));
  update();
  EXPECT_EQ(0.f, state.smile.value);
}

TEST_F(UpdateIntake, DoesNotReadTheSmileFromTheMemory)
{
  memories().smileMemory.record(fresh(KV::Smile(0.6f, 0.7f)));
  memories().expressionsMemory.record(fresh(someExpressions()));
  update();

  EXPECT_EQ(0.f, state.smile.value);
  EXPECT_EQ(0.f, state.expressions.joy.value);
}

// Expressions

TEST_F(UpdateIntake, TakesNewExpressionsOverWithTheirTime)
{
  observation.expressions = aged(milliseconds(40), someExpressions());
  update();

  EXPECT_EQ(0.1f, state.expressions.calm.value);
  EXPECT_EQ(0.2f, state.expressions.anger.value);
  EXPECT_EQ(0.3f, state.expressions.joy.value);
  EXPECT_EQ(0.4f, state.expressions.sorrow.value);
  EXPECT_EQ(0.5f, state.expressions.laughter.value);
  EXPECT_EQ(0.6f, state.expressions.excitement.value);
  EXPECT_EQ(0.7f, state.expressions.surprise.value);
  EXPECT_EQ(0.11f, state.expressions.calm.confidence);
  EXPECT_EQ(0.71f, state.expressions.surprise.confidence);
  EXPECT_EQ(startTicks - 40000000, keptTime(KV::ExpressionsChannel));
  EXPECT_EQ(-1000000, keptTime(KV::SmileChannel));
}

TEST_F(UpdateIntake, LeavesExpressionsOfTheKeptTimeAlone)
{
  observation.expressions = fresh(someExpressions());
  update();
  observation.expressions->value.joy.value = 0.9f;
  update();

  EXPECT_EQ(0.3f, state.expressions.joy.value);
}

// Gaze and head

TEST_F(UpdateIntake, TakesGazeAndHeadOverWhateverTheirTimes)
{
  observation.gaze = fresh(KV::Gaze(1.f, 2.f));
  observation.headPosture = fresh(KV::HeadPosture(3.f, 4.f, 5.f));
  update();
  observation.gaze->value = KV::Gaze(6.f, 7.f);
  observation.headPosture->value = KV::HeadPosture(8.f, 9.f, 10.f);
  update();

  EXPECT_EQ(6.f, state.gaze.yaw);
  EXPECT_EQ(7.f, state.gaze.pitch);
  EXPECT_EQ(8.f, state.headAngles.yaw());
  EXPECT_EQ(9.f, state.headAngles.pitch());
  EXPECT_EQ(10.f, state.headAngles.roll());
}

TEST_F(UpdateIntake, KeepsGazeAndHeadWithoutNewOnes)
{
  state.gaze = KV::Gaze(1.f, 2.f);
  state.headAngles = KV::HeadPosture(3.f, 4.f, 5.f);
  memories().gazeMemory.record(fresh(KV::Gaze(6.f, 7.f)));
  memories().headPostureMemory.record(fresh(KV::HeadPosture(8.f, 9.f, 10.f)));
  update();

  EXPECT_EQ(1.f, state.gaze.yaw);
  EXPECT_EQ(2.f, state.gaze.pitch);
  EXPECT_EQ(3.f, state.headAngles.yaw());
  EXPECT_EQ(4.f, state.headAngles.pitch());
  EXPECT_EQ(5.f, state.headAngles.roll());
}

TEST_F(UpdateIntake, KeepsGazeAndHeadOfAnObservationThatIsNotInTheMemory)
{
  observation.gaze = fresh(KV::Gaze(1.f, 2.f));
  observation.headPosture = fresh(KV::HeadPosture(3.f, 4.f, 5.f));
  update();

  EXPECT_EQ(-1000000, keptTime(KV::GazeChannel));
  EXPECT_EQ(-1000000, keptTime(KV::HeadPostureChannel));
  EXPECT_EQ(ko::human::AttentionState::Unknown, state.attentionZone);
}

// Trust in the expressions

struct TrustCase
{
  const char* name;
  float yaw;
  float pitch;
};
class UpdateTrust : public support::StateUpdateTestWithParam<TrustCase>
{};

TEST_P(UpdateTrust, IsTheConfidenceInFiveExpressionsByTheHead)
{
  for (KV::ValueConfidence<float>* score :
       {&state.expressions.calm, &state.expressions.anger, &state.expressions.joy, &state.expressions.sorrow,
        &state.expressions.laughter, &state.expressions.excitement, &state.expressions.surprise})
    *score = {0.2f, 0.123f};
  memories().headPostureMemory.record(fresh(KV::HeadPosture(GetParam().yaw, GetParam().pitch, 80.f)));
  update();

  const float trust = softStep(headMagnitude(GetParam().yaw, GetParam().pitch), 20.f);
  EXPECT_EQ(trust, state.expressions.calm.confidence);
  EXPECT_EQ(trust, state.expressions.anger.confidence);
  EXPECT_EQ(trust, state.expressions.joy.confidence);
  EXPECT_EQ(trust, state.expressions.sorrow.confidence);
  EXPECT_EQ(trust, state.expressions.surprise.confidence);
  EXPECT_EQ(0.123f, state.expressions.laughter.confidence);
  EXPECT_EQ(0.123f, state.expressions.excitement.confidence);
  EXPECT_EQ(0.2f, state.expressions.calm.value);
}

INSTANTIATE_TEST_SUITE_P(ByTheHead, UpdateTrust,
                         ::testing::Values(TrustCase{"Straight", 0.f, 0.f}, TrustCase{"Aside", 30.f, 0.f},
                                           TrustCase{"AsideTheOtherWay", -30.f, 0.f}, TrustCase{"Up", 0.f, 60.f},
                                           TrustCase{"Oblique", 17.3f, -23.1f}, TrustCase{"Slightly", 7.7f, 3.3f},
                                           TrustCase{"FarAside", 170.f, 80.f}, TrustCase{"NanYaw", nan, 0.f},
                                           TrustCase{"NanPitch", 0.f, nan}),
                         support::RowName());

TEST_F(UpdateIntake, HalfTrustsAFaceThirtyDegreesAsideOrSixtyUp)
{
  memories().headPostureMemory.record(fresh(KV::HeadPosture(30.f, 0.f, 0.f)));
  update();
  EXPECT_EQ(0.5f, state.expressions.joy.confidence);

  clock.advance(milliseconds(1));
  memories().headPostureMemory.record(fresh(KV::HeadPosture(0.f, 60.f, 0.f)));
  update();
  EXPECT_EQ(0.5f, state.expressions.joy.confidence);
}

TEST_F(UpdateIntake, TrustsByTheYoungestHeadHoweverOld)
{
  memories().headPostureMemory.record(aged(milliseconds(6900), KV::HeadPosture(30.f, 0.f, 0.f)));
  memories().headPostureMemory.record(aged(milliseconds(6950), KV::HeadPosture(0.f, 0.f, 0.f)));
  update();
  EXPECT_EQ(0.5f, state.expressions.joy.confidence);
}

TEST_F(UpdateIntake, TrustsTheNewExpressionsByTheHeadToo)
{
  observation.expressions = fresh(someExpressions());
  memories().headPostureMemory.record(fresh(KV::HeadPosture(30.f, 0.f, 0.f)));
  update();

  EXPECT_EQ(0.5f, state.expressions.joy.confidence);
  EXPECT_EQ(0.3f, state.expressions.joy.value);
  EXPECT_EQ(0.51f, state.expressions.laughter.confidence);
}

TEST_F(UpdateIntake, TrustsAsTheExpressionsSayWithoutAHead)
{
  memories().headPostureMemory.record(fresh(KV::HeadPosture(30.f, 0.f, 0.f)));
  clock.advance(milliseconds(7001));
  observation.expressions = fresh(someExpressions());
  update();

  EXPECT_EQ(0.31f, state.expressions.joy.confidence);
}

}  // namespace
