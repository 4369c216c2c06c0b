#include "support/heldmutex.hpp"
#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using ko::human::AttentionState;
using support::Estimate;
using support::fallingStep;
using support::gazeMagnitude;
using support::headMagnitude;
using support::milliseconds;
using support::weighsOne;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

float above(float x)
{
  return std::nextafter(x, infinity);
}

float below(float x)
{
  return std::nextafter(x, -infinity);
}

/// The head's share in the attention at a yaw from 10 to 35 degrees.
float headShare(float yaw)
{
  return 1.f - fallingStep(yaw, 30.f);
}

/// The least yaw at which the head's share is 0.35.
float decidingYaw()
{
  float yaw = 24.f;
  while (headShare(yaw) < 0.35f)
    yaw = above(yaw);
  return yaw;
}

class UpdateZones : public support::StateUpdateTest
{
protected:
  /// Adds a head to the memory with these mean angles, whose attention estimate stays `estimate`.
  void head(float yaw, float pitch, float estimate)
  {
    memories().headPostureMemory.record(aged(weighsOne, KV::HeadPosture(yaw, pitch, 0.f)));
    state.attentionAngles[0] = headMagnitude(yaw, pitch);
    state.attentionEstimates[0] = estimate;
  }

  /// The same for a gaze.
  void gaze(float yaw, float pitch, float estimate)
  {
    memories().gazeMemory.record(aged(weighsOne, KV::Gaze(yaw, pitch)));
    state.attentionAngles[1] = gazeMagnitude(yaw, pitch);
    state.attentionEstimates[1] = estimate;
  }

  int zoneAfterUpdate()
  {
    state.attentionZone = AttentionState::Unknown;
    update();
    return static_cast<int>(state.attentionZone);
  }
};

// The attention

TEST_F(UpdateZones, MixesHeadAndGazeByTheHeadsShare)
{
  head(-22.f, 3.f, 0.83f);
  gaze(1.f, 1.f, 0.37f);
  const float share = headShare(22.f);
  Estimate expected = estimate();
  expected.pullAttention(share * 0.83f + (1.f - share) * 0.37f, 0.65f);
  update();
  EXPECT_EQ(expected.attention, state.attention.value);
}

TEST_F(UpdateZones, MixesTheHeadWithTheGazeOfAnEarlierCycle)
{
  head(-22.f, 3.f, 0.83f);
  state.attentionEstimates[1] = 0.37f;
  const float share = headShare(22.f);
  Estimate expected = estimate();
  expected.pullAttention(share * 0.83f + (1.f - share) * 0.37f, 0.65f);
  update();
  EXPECT_EQ(expected.attention, state.attention.value);
}

// No zone at all

struct LostCase
{
  const char* name;
  float yaw;
  float pitch;
  bool lost;
};
class UpdateLostZone : public UpdateZones, public ::testing::WithParamInterface<LostCase>
{};

TEST_P(UpdateLostZone, IsNoneForAHeadTurnedFarAway)
{
  head(GetParam().yaw, GetParam().pitch, 1.f);
  gaze(0.f, 0.f, 1.f);  // attends fully
  EXPECT_EQ(GetParam().lost ? 0 : 1, zoneAfterUpdate());
}

INSTANTIATE_TEST_SUITE_P(
    AtTheEnds, UpdateLostZone,
    ::testing::Values(LostCase{"YawOfForty", 40.f, 0.f, false}, LostCase{"JustAboveForty", above(40.f), 0.f, true},
                      LostCase{"YawOfFortyOne", 41.f, 0.f, true}, LostCase{"YawOfMinusForty", -40.f, 0.f, false},
                      LostCase{"JustBelowMinusForty", below(-40.f), 0.f, true},
                      LostCase{"PitchOfThirty", 0.f, 30.f, false}, LostCase{"JustAboveThirty", 0.f, above(30.f), true},
                      LostCase{"PitchOfMinusThirty", 0.f, -30.f, false},
                      LostCase{"JustBelowMinusThirty", 0.f, below(-30.f), true}, LostCase{"Both", 41.f, 31.f, true},
                      LostCase{"PitchBetweenTheLimits", 0.f, 35.f, true},
                      LostCase{"YawBetweenTheLimits", 35.f, 0.f, false}),
    support::RowName());

TEST_F(UpdateZones, AreNotLostForAGazeTurnedFarAway)
{
  gaze(80.f, 70.f, 1.f);
  EXPECT_EQ(1, zoneAfterUpdate());
}

TEST_F(UpdateZones, AreSetToNoneWhereThereWasOne)
{
  head(41.f, 0.f, 1.f);
  state.attentionZone = AttentionState::LookingUp;
  update();
  EXPECT_EQ(AttentionState::Unknown, state.attentionZone);
}

// The robot's own zone

TEST_F(UpdateZones, AreTheRobotsFromAnAttentionTargetOfNineTenths)
{
  gaze(20.f, 0.f, 0.9f);
  EXPECT_EQ(1, zoneAfterUpdate());
}

TEST_F(UpdateZones, AreWhereTheGazePointsJustBelowNineTenths)
{
  gaze(20.f, 0.f, below(0.9f));
  EXPECT_EQ(4, zoneAfterUpdate());
}

TEST_F(UpdateZones, FollowTheTargetAndNotTheAttentionReached)
{
  state.attention.value = 1.f;
  gaze(20.f, 0.f, 0.8f);
  EXPECT_EQ(4, zoneAfterUpdate());
}

TEST_F(UpdateZones, AreNotTheRobotsForANanTarget)
{
  gaze(20.f, 0.f, nan);
  EXPECT_EQ(4, zoneAfterUpdate());
}

// Head or gaze

TEST_F(UpdateZones, FollowTheHeadsYawFromAShareOfThirtyFivePercent)
{
  head(decidingYaw(), 0.f, 0.f);
  gaze(0.f, 0.f, 0.5f);
  EXPECT_EQ(5, zoneAfterUpdate());
}

TEST_F(UpdateZones, FollowTheGazesYawJustBelowThatShare)
{
  head(below(decidingYaw()), 0.f, 0.f);
  gaze(0.f, 0.f, 0.5f);
  EXPECT_EQ(1, zoneAfterUpdate());
}

struct ZoneCase
{
  const char* name;
  float yaw;
  float pitch;
  int zone;
};
class UpdateZoneByHead : public UpdateZones, public ::testing::WithParamInterface<ZoneCase>
{};

TEST_P(UpdateZoneByHead, TakesTheYawOfTheHeadAndThePitchOfTheGaze)
{
  head(GetParam().yaw, 20.f, 0.f);
  gaze(0.f, GetParam().pitch, 0.f);
  EXPECT_EQ(GetParam().zone, zoneAfterUpdate());
}

INSTANTIATE_TEST_SUITE_P(AtTheRows, UpdateZoneByHead,
                         ::testing::Values(ZoneCase{"Right", 38.f, 0.f, 5}, ZoneCase{"RightUp", 38.f, 10.f, 7},
                                           ZoneCase{"RightJustNotUp", 38.f, below(10.f), 5},
                                           ZoneCase{"RightNotYetDown", 38.f, -10.f, 5},
                                           ZoneCase{"RightDown", 38.f, below(-10.f), 9},
                                           ZoneCase{"Left", -38.f, 0.f, 4}, ZoneCase{"LeftUp", -38.f, 10.f, 6},
                                           ZoneCase{"LeftDown", -38.f, -11.f, 8},
                                           ZoneCase{"NanPitchIsUp", 38.f, nan, 7}),
                         support::RowName());

class UpdateZoneByGaze : public UpdateZones, public ::testing::WithParamInterface<ZoneCase>
{};

TEST_P(UpdateZoneByGaze, TakesBothAnglesOfTheGaze)
{
  head(-20.f, 20.f, 0.f);
  gaze(GetParam().yaw, GetParam().pitch, 0.f);
  EXPECT_EQ(GetParam().zone, zoneAfterUpdate());
}

TEST_P(UpdateZoneByGaze, NeedsNoHead)
{
  gaze(GetParam().yaw, GetParam().pitch, 0.f);
  EXPECT_EQ(GetParam().zone, zoneAfterUpdate());
}

INSTANTIATE_TEST_SUITE_P(
    InTheTable, UpdateZoneByGaze,
    ::testing::Values(ZoneCase{"Centre", 0.f, 0.f, 1}, ZoneCase{"Up", 0.f, 6.f, 2},
                      ZoneCase{"JustNotUp", 0.f, below(6.f), 1}, ZoneCase{"NotYetDown", 0.f, -10.f, 1},
                      ZoneCase{"Down", 0.f, below(-10.f), 3}, ZoneCase{"NotYetLeft", 12.f, 0.f, 1},
                      ZoneCase{"Left", above(12.f), 0.f, 4}, ZoneCase{"NotYetRight", above(-12.f), 0.f, 1},
                      ZoneCase{"Right", -12.f, 0.f, 5}, ZoneCase{"LeftUp", 13.f, 10.f, 6},
                      ZoneCase{"LeftJustNotUp", 13.f, below(10.f), 4}, ZoneCase{"LeftDown", 13.f, -11.f, 8},
                      ZoneCase{"RightUp", -13.f, 10.f, 7}, ZoneCase{"RightDown", -13.f, -11.f, 9},
                      ZoneCase{"NanYawIsRight", nan, 0.f, 5}),
    support::RowName());

TEST_F(UpdateZones, AreLevelWithoutAGazeWhateverThePitchOfTheHead)
{
  head(38.f, 29.f, 0.f);
  EXPECT_EQ(5, zoneAfterUpdate());
}

TEST_F(UpdateZones, AreLevelForAGazeThatIsTooOld)
{
  memories().gazeMemory.record(aged(milliseconds(1000), KV::Gaze(30.f, 29.f)));
  head(38.f, 0.f, 0.f);
  EXPECT_EQ(5, zoneAfterUpdate());
}

TEST_F(UpdateZones, AreTheCentreForAStraightHeadWithoutAGaze)
{
  head(0.f, 0.f, 0.f);
  EXPECT_EQ(1, zoneAfterUpdate());
}

TEST_F(UpdateZones, AreWrittenUnderTheMutexOfTheAttention)
{
  memories().gazeMemory.record(fresh(KV::Gaze()));
  EXPECT_TRUE(support::waitsFor(state.attentionMutex, [this] { updateOnThisThread(); }));
}

}  // namespace
