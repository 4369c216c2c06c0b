// The model itself is tested, against numbers computed by hand.

#include "model/model.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using model::Nanoseconds;
using model::Observation;
using model::Person;
using model::Reading;

constexpr Nanoseconds millisecond = 1000000;
constexpr Nanoseconds start = 1700000000000 * millisecond;
constexpr float fourDigits = 5e-5f;   // the computed number is given to four digits
constexpr float threeDigits = 5e-4f;  // to three
constexpr float rounding = 1e-6f;     // single precision, a few operations
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// A clock that does not advance.
model::Clock at(Nanoseconds time)
{
  return [time] { return time; };
}

Observation withHead(float yaw, float pitch, Nanoseconds time)
{
  Observation observation;
  observation.headPosture = {time, {yaw, pitch, 0.f}};
  return observation;
}

TEST(ModelMemory, KeepsTheFirstOfTwoReadingsOfTheSameTime)
{
  model::Memory<float> memory;
  memory.record({start, 1.f}, at(start));
  memory.record({start, 2.f}, at(start));

  ASSERT_EQ(1u, memory.readings.size());
  EXPECT_EQ(1.f, memory.readings.front().value);
}

TEST(ModelMemory, ForgetsAtOnceWhatIsOlderThanItsHorizon)
{
  model::Memory<float> memory;
  memory.record({start - 7001 * millisecond, 1.f}, at(start));
  EXPECT_TRUE(memory.readings.empty());
}

TEST(ModelMemory, KeepsAReadingLessThanAMillisecondPastItsHorizon)
{
  model::Memory<float> memory;
  memory.record({start - 7001 * millisecond + 1, 1.f}, at(start));
  EXPECT_EQ(1u, memory.readings.size());
}

TEST(ModelMemory, SortsReadingsThatArriveOutOfOrder)
{
  model::Memory<float> memory;
  memory.record({start + 1, 1.f}, at(start));
  memory.record({start + 3, 3.f}, at(start));
  memory.record({start + 2, 2.f}, at(start));

  ASSERT_EQ(3u, memory.readings.size());
  EXPECT_EQ(3.f, memory.readings[0].value);
  EXPECT_EQ(2.f, memory.readings[1].value);
  EXPECT_EQ(1.f, memory.readings[2].value);
}

TEST(ModelMemory, OfTheContextEmotionLastsTwentySeconds)
{
  Observation observation;
  observation.contextEmotion = {start, {1, 1.f}};
  Person person;
  person.update(observation, at(start));

  person.update({}, at(start + 20000 * millisecond));
  EXPECT_EQ(1u, person.memories.contextEmotion.readings.size());
  person.update({}, at(start + 20001 * millisecond));
  EXPECT_EQ(0u, person.memories.contextEmotion.readings.size());
}

TEST(ModelWeight, IsHalfAtItsReference)
{
  EXPECT_EQ(0.5f, model::weight(3.f, 3.f));
  EXPECT_EQ(0.5f, model::weight(20.f, 20.f));
}

TEST(ModelWeight, FallsFromNearlyOneToItsFloor)
{
  EXPECT_NEAR(0.9977f, model::weight(0.f, 1.f), fourDigits);
  EXPECT_EQ(0.01f, model::weight(10.f, 1.f));
  EXPECT_EQ(0.01f, model::weight(nan, 1.f));
}

TEST(ModelWeight, IsNotSteeperThanTwo)
{
  const auto expected = static_cast<float>((std::erf(2.0 * 0.5) + 1.0) / 2.0);
  EXPECT_NEAR(expected, model::weight(0.f, 0.5f), rounding);
}

TEST(ModelWeight, GetsFlatterAsItsReferenceGrows)
{
  const auto expected = static_cast<float>((std::erf(0.002 * 500.0) + 1.0) / 2.0);
  EXPECT_NEAR(expected, model::weight(500.f, 1000.f), rounding);
}

TEST(ModelWeight, SmoothedFallsBelowZero)
{
  EXPECT_EQ(0.5f, model::smoothedWeight(30.f, 30.f));
  EXPECT_NEAR(-0.495f, model::smoothedWeight(4.f, 1.f), rounding);
}

TEST(ModelForce, StaysWithinTheRangeOfWhatItMoves)
{
  EXPECT_EQ(1.f, model::clampedValence(model::moved(0.f, 1.5f, 1.f)));
  EXPECT_EQ(-1.f, model::clampedValence(model::moved(0.f, -3.f, 1.f)));
  EXPECT_EQ(0.f, model::clampedConfidence(nan));
  EXPECT_TRUE(std::isnan(model::clampedValence(nan)));
  EXPECT_TRUE(std::isnan(model::clampedAttention(nan)));
}

TEST(ModelForce, PullsAnUnseenPersonTowardsZero)
{
  Person person;
  person.state.valence = {1.f, 1.f};
  person.state.attention = {1.f, 1.f};

  person.decreaseSinceNotSeen();
  person.decreaseSinceNotSeen();

  EXPECT_NEAR(0.5476f, person.state.valence.value, rounding);
  EXPECT_NEAR(0.09f, person.state.valence.confidence, rounding);
  EXPECT_NEAR(0.5476f, person.state.attention.value, rounding);
  EXPECT_NEAR(0.09f, person.state.attention.confidence, rounding);
}

TEST(ModelRamp, FallsSoftlyAroundItsCentre)
{
  EXPECT_EQ(0.5f, model::rampDown(1.4f, 1.4f, 0.2f));
  EXPECT_NEAR(0.881f, model::rampDown(1.35f, 1.4f, 0.2f), threeDigits);
  EXPECT_NEAR(0.119f, model::rampDown(1.45f, 1.4f, 0.2f), threeDigits);
  EXPECT_NEAR(0.982f, model::rampDown(1.3f, 1.4f, 0.2f), threeDigits);
  EXPECT_NEAR(0.018f, model::rampDown(1.5f, 1.4f, 0.2f), threeDigits);
}

TEST(ModelRamp, CapsAttentionByTheWorseOfDistanceAndHeight)
{
  EXPECT_NEAR(0.f, model::attentionCeiling(1.f, 2.5f), rounding);
  EXPECT_NEAR(0.5f, model::attentionCeiling(1.4f, 1.f), rounding);
  EXPECT_NEAR(0.5f, model::attentionCeiling(1.4f, nan), rounding);
}

TEST(ModelHeadFactor, JumpsAtBothEndsOfItsSlope)
{
  EXPECT_EQ(0.f, model::headFactor(5.f));
  EXPECT_EQ(0.f, model::headFactor(std::nextafter(10.f, 0.f)));
  EXPECT_NEAR(0.098f, model::headFactor(10.f), threeDigits);
  EXPECT_NEAR(0.5f, model::headFactor(-30.f), rounding);
  EXPECT_NEAR(0.632f, model::headFactor(35.f), threeDigits);
  EXPECT_EQ(1.f, model::headFactor(std::nextafter(35.f, 40.f)));
  EXPECT_EQ(1.f, model::headFactor(40.f));
  EXPECT_EQ(0.f, model::headFactor(nan));
}

TEST(ModelAttentionZone, IsReadOffTheTable)
{
  EXPECT_EQ("LookingAtRobot", model::zoneName(model::attentionZone(0.f, 0.f, 15.f, 10.f)));
  EXPECT_EQ("LookingUp", model::zoneName(model::attentionZone(0.f, 6.f, 15.f, 10.f)));
  EXPECT_EQ("LookingDown", model::zoneName(model::attentionZone(0.f, -10.5f, 15.f, 10.f)));
  EXPECT_EQ("LookingLeft", model::zoneName(model::attentionZone(-20.f, 6.f, 15.f, 10.f)));
  EXPECT_EQ("LookingRight", model::zoneName(model::attentionZone(20.f, 6.f, 15.f, 10.f)));
  EXPECT_EQ("LookingUpLeft", model::zoneName(model::attentionZone(-20.f, 10.f, 15.f, 10.f)));
  EXPECT_EQ("LookingUpRight", model::zoneName(model::attentionZone(20.f, 10.f, 15.f, 10.f)));
  EXPECT_EQ("LookingDownLeft", model::zoneName(model::attentionZone(-20.f, -11.f, 15.f, 10.f)));
  EXPECT_EQ("LookingDownRight", model::zoneName(model::attentionZone(20.f, -11.f, 15.f, 10.f)));
}

TEST(ModelAttentionZone, GivesAnAngleOnAThresholdToTheRightAndUp)
{
  EXPECT_EQ("LookingRight", model::zoneName(model::attentionZone(15.f, -10.f, 15.f, 10.f)));
  EXPECT_EQ("LookingAtRobot", model::zoneName(model::attentionZone(-15.f, -10.f, 15.f, 10.f)));
  EXPECT_EQ("LookingUpRight", model::zoneName(model::attentionZone(15000.f, 10000.f, 15.f, 10.f)));
  EXPECT_EQ("LookingUpRight", model::zoneName(model::attentionZone(nan, nan, 15.f, 10.f)));
}

TEST(ModelFacialPoints, AverageTheirConfidences)
{
  model::FacialPoints points;
  EXPECT_EQ(0.f, model::globalConfidence(points));
  points.confidences[7] = 0.6f;
  EXPECT_NEAR(0.05f, model::globalConfidence(points), rounding);
}

TEST(ModelMoodScore, IsHalfForWeightsOfZero)
{
  EXPECT_EQ(0.5f, model::logisticScore({}, 0.f, {1.f, -2.f, 3.f, -4.f, 5.f}));
}

TEST(ModelWinner, ScoresStrictlyHighest)
{
  EXPECT_EQ(2, model::winner({{1, 0.2f}, {2, 0.7f}, {3, 0.1f}}));
  EXPECT_EQ(std::nullopt, model::winner({{1, 0.5f}, {2, 0.1f}, {3, 0.5f}}));
  EXPECT_EQ(std::nullopt, model::winner({{1, nan}, {2, nan}, {3, nan}}));
}

TEST(ModelTernary, ComparesInDoublePrecision)
{
  EXPECT_EQ(1, model::ternary(0.2f));  // the float is a little more than the double of that name
  EXPECT_EQ(0, model::ternary(std::nextafter(0.2f, 0.f)));
  EXPECT_EQ(-1, model::ternary(-0.2f));
  EXPECT_EQ(-1, model::ternary(nan));
}

TEST(ModelPleasure, GivesAValueOnABoundaryToTheUpperSide)
{
  EXPECT_EQ(model::Pleasure::Positive, model::pleasure({0.2f, 0.4f}));
  EXPECT_EQ(model::Pleasure::Neutral, model::pleasure({-0.2f, 0.4f}));
  EXPECT_EQ(model::Pleasure::Negative, model::pleasure({-0.2000001f, 0.4f}));
  EXPECT_EQ(model::Pleasure::Unknown, model::pleasure({0.2f, 0.3999f}));
}

TEST(ModelPerson, IsAtFirstNeutralAndUnknown)
{
  const Person person;
  EXPECT_EQ(0, model::ternary(person.state.valence.value));
  EXPECT_EQ(model::Pleasure::Unknown, model::pleasure(person.state.valence));
  EXPECT_EQ("Unknown", model::zoneName(person.state.attentionZone));
}

TEST(ModelPerson, FeelsUneasyWithTheHeadUp)
{
  Person person;
  person.update(withHead(0.f, 6.f, start), at(start));
  EXPECT_EQ(-0.5f, person.state.ease.value);
  EXPECT_EQ(0.5f, person.state.ease.confidence);

  person.update(withHead(0.f, 0.f, start + millisecond), at(start + millisecond));
  EXPECT_EQ(-0.25f, person.state.ease.value);

  person.update({}, at(start + 8000 * millisecond));  // all postures are forgotten
  EXPECT_EQ(-0.25f, person.state.ease.value);
}

TEST(ModelPerson, DriftsToNeutralWhenNothingWasEverObserved)
{
  Person person;
  person.state.valence = {1.f, 1.f};
  person.state.attention = {1.f, 1.f};

  person.update({}, at(start));

  EXPECT_NEAR(0.3565f, person.state.valence.value, rounding);
  EXPECT_NEAR(0.3f, person.state.valence.confidence, rounding);
  EXPECT_NEAR(0.3565f, person.state.attention.value, rounding);
  EXPECT_NEAR(0.3f, person.state.attention.confidence, rounding);
}

TEST(ModelPerson, IsTrustedLessWhileSpeaking)
{
  Observation observation;
  observation.speaking = {start - 500 * millisecond, true};
  observation.touchEmotion = {start, 1};  // a valence source, so that the confidence does not decay as well
  observation.distance = {start, 1.4f};   // pulls the confidence to 0.5 and the height of 0 to 1
  Person person;
  person.state.valence.confidence = 1.f;

  person.update(observation, at(start));

  const float speaking = 1.f - 0.5f * model::weight(0.5f, 2.f);
  const float distance = speaking + 0.175f * (0.5f - speaking);
  EXPECT_NEAR(0.51f, speaking, 0.01f);
  EXPECT_NEAR(distance + 0.175f * (1.f - distance), person.state.valence.confidence, rounding);
}

TEST(ModelPerson, IsNoLongerSpeakingAfterFourSeconds)
{
  Observation observation;
  observation.speaking = {start - 5000 * millisecond, true};
  observation.smile = {start, {1.f, 1.f}};
  Person person;
  person.update(observation, at(start));
  EXPECT_EQ(0.f, person.state.valence.value);
}

TEST(ModelPerson, IsMovedByASmileOnlyWhileSpeaking)
{
  Observation observation;
  observation.smile = {start, {1.f, 1.f}};
  Person silent;
  silent.update(observation, at(start));
  EXPECT_EQ(0.f, silent.state.valence.value);

  observation.speaking = {start, true};
  Person speaking;
  speaking.update(observation, at(start));
  EXPECT_NEAR(0.65f, speaking.state.valence.value, rounding);
}

TEST(ModelPerson, HasTheSameExpressionsClassifiedOnce)
{
  Observation observation;
  observation.expressions = {start, {}};
  observation.expressions->value.joy.value = 1.f;
  Person person;
  person.update(observation, at(start));
  EXPECT_NEAR(0.65f, person.state.valence.value, rounding);

  person.update(observation, at(start + millisecond));  // no valence source: s = W(0.001, 2.5)
  const float s = model::weight(0.001f, 2.5f);
  EXPECT_NEAR(0.65f * (1.f - (1.f - s) * 0.65f), person.state.valence.value, rounding);
}

TEST(ModelPerson, IsCheeredByAJoyfulVoice)
{
  Observation observation;
  observation.voiceEmotion = {start, {}};
  observation.voiceEmotion->value.joy = {1.f, 0.f};
  Person person;
  person.update(observation, at(start));
  EXPECT_NEAR(0.455f, person.state.valence.value, rounding);
}

TEST(ModelPerson, IsDisplacedByATouchOfZero)
{
  Observation observation;
  observation.touchEmotion = {start, 0};
  Person person;
  person.update(observation, at(start));
  EXPECT_NEAR(-0.65f * model::weight(0.f, 4.f), person.state.valence.value, rounding);
}

TEST(ModelPerson, LooksNowhereWithTheHeadTurnedPastFortyDegrees)
{
  Person person;
  person.update(withHead(40.f, 0.f, start), at(start));
  EXPECT_EQ("LookingRight", model::zoneName(person.state.attentionZone));

  Person other;
  other.update(withHead(41.f, 0.f, start), at(start));
  EXPECT_EQ("Unknown", model::zoneName(other.state.attentionZone));
}

TEST(ModelPerson, KeepsTheAttentionOfASlowlyTurningHead)
{
  Person person;
  person.update(withHead(0.f, 0.f, start), at(start));
  const float attention = person.state.headAttention;
  EXPECT_NEAR(model::smoothedWeight(0.f, 15.f), attention, rounding);

  for (int cycle = 1; cycle <= 10; ++cycle)
  {
    const Nanoseconds now = start + 7001 * millisecond * cycle;  // every posture alone in the memory
    person.update(withHead(0.f, 3.f * 0.29f * static_cast<float>(cycle), now), at(now));
  }
  EXPECT_EQ(attention, person.state.headAttention);
  EXPECT_NEAR(2.9f, person.state.headMagnitude, rounding);
}

TEST(ModelPerson, HasFullConfidenceUnderARobotThatKeepsItsHeadStill)
{
  Observation observation = withHead(0.f, 0.f, start);
  observation.distance = {start, 1.4f};
  observation.robotHeadPosture = {start, {5.f, 5.f}};
  Person person;
  person.update(observation, at(start));
  EXPECT_NEAR(0.7f * (0.8f * 0.5f + 0.2f), person.state.attention.confidence, rounding);
}

TEST(ModelPerson, LosesConfidenceUnderARobotThatTurnsItsHead)
{
  Observation observation = withHead(0.f, 0.f, start);
  observation.robotHeadPosture = {start - 100 * millisecond, {0.f, 0.f}};
  Person person;
  person.update(observation, at(start));

  observation.robotHeadPosture = {start, {7.f, 3.5f}};  // both changes weigh 0.5
  person.state.attention.confidence = 0.f;
  person.update(observation, at(start));
  EXPECT_NEAR(0.7f * (0.8f * 1.f + 0.2f * 0.5f), person.state.attention.confidence, rounding);
}

}  // namespace
