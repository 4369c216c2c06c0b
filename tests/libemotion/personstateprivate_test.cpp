#include "personstateprivate.hpp"
#include "forcetext.hpp"

#include "bodylanguagestateprivate.hpp"
#include "diagnostictext.hpp"

#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/clocktest.hpp"
#include "support/estimate.hpp"
#include "support/groupinglocale.hpp"
#include "support/heldmutex.hpp"
#include "support/scriptedclock.hpp"
#include "support/tablename.hpp"

#include <ko/log.hpp>
#include <ko/systemclock.hpp>

#include <boost/thread/lock_types.hpp>
#include <boost/thread/mutex.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

using ko::human::AttentionState;
using KV::PersonStatePrivate;
using support::Estimate;
using support::estimateOf;
using support::milliseconds;
using support::sameFloat;
using support::start;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

// 1e-6f: single precision, a few operations around the literals
constexpr float rounding = 1e-6f;

std::vector<const KV::ValueConfidence<float>*> scoresOf(const KV::Expressions& expressions)
{
  return {&expressions.calm,     &expressions.anger,      &expressions.joy,     &expressions.sorrow,
          &expressions.laughter, &expressions.excitement, &expressions.surprise};
}

std::vector<boost::mutex*> mutexesOf(PersonStatePrivate& state)
{
  return {&state.valenceMutex,
          &state.attentionMutex,
          &state.valenceConfidenceMutex,
          &state.attentionConfidenceMutex,
          &state.headHeightMutex,
          &state.observationsMutex,
          &state.smileMutex,
          &state.gazeMutex,
          &state.expressionsMutex,
          &state.headAnglesMutex};
}

// The record

TEST(PersonStatePrivate, StartsWithItsDefaults)
{
  const PersonStatePrivate state;

  EXPECT_EQ(Estimate(), estimateOf(state));
  EXPECT_EQ(AttentionState::Unknown, state.attentionZone);
  EXPECT_EQ(0.f, state.smile.value);
  EXPECT_EQ(0.f, state.smile.confidence);
  EXPECT_EQ(0.f, state.gaze.yaw);
  EXPECT_EQ(0.f, state.gaze.pitch);
  for (const KV::ValueConfidence<float>* score : scoresOf(state.expressions))
  {
    EXPECT_EQ(0.f, score->value);
    EXPECT_EQ(0.f, score->confidence);
  }
  EXPECT_EQ(0.f, state.headHeight);
  EXPECT_EQ(0.f, state.headAngles.yaw());
  EXPECT_EQ(0.f, state.headAngles.pitch());
  EXPECT_EQ(0.f, state.headAngles.roll());
  EXPECT_EQ(1000.f, state.frequencyGaze);
  EXPECT_EQ(1000.f, state.frequencyFace);
  EXPECT_EQ((std::vector<float>{-10.f, -10.f}), state.attentionAngles);
  EXPECT_EQ((std::vector<float>{0.f, 0.f}), state.attentionEstimates);
  EXPECT_EQ(0.f, state.bodyLanguageState.bodyLanguageState(KV::BodyLanguageEaseDescription).level);
  EXPECT_EQ(0.f, state.bodyLanguageState.bodyLanguageState(KV::BodyLanguageEaseDescription).confidence);
}

TEST(PersonStatePrivate, HasSeenNoneOfItsEightChannelsAtTheStart)
{
  const PersonStatePrivate state;

  EXPECT_EQ(8U, state.lastObservationTimes.size());
  for (const ko::SystemClock::time_point time : state.lastObservationTimes)
    EXPECT_EQ(-1000000, time.time_since_epoch().count());
}

TEST(PersonStatePrivate, NumbersItsChannels)
{
  EXPECT_EQ(0, static_cast<int>(KV::HeadPostureChannel));
  EXPECT_EQ(1, static_cast<int>(KV::SmileChannel));
  EXPECT_EQ(2, static_cast<int>(KV::ExpressionsChannel));
  EXPECT_EQ(3, static_cast<int>(KV::VoiceChannel));
  EXPECT_EQ(4, static_cast<int>(KV::AsrChannel));
  EXPECT_EQ(5, static_cast<int>(KV::GazeChannel));
  EXPECT_EQ(6, static_cast<int>(KV::TouchChannel));
  EXPECT_EQ(7, static_cast<int>(KV::ContextChannel));
  EXPECT_EQ(0, static_cast<int>(KV::HeadAttention));
  EXPECT_EQ(1, static_cast<int>(KV::GazeAttention));
}

TEST(PersonStatePrivate, HasABodyLanguageOfItsOwn)
{
  const PersonStatePrivate one;
  const PersonStatePrivate other;
  EXPECT_NE(one.bodyLanguageState._p, other.bodyLanguageState._p);
}

/// A record in which every field differs from a new one.
class CopiedPersonStatePrivate : public ::testing::Test
{
protected:
  CopiedPersonStatePrivate()
  {
    state.bodyLanguageState._p->ease = KV::BodyLanguageEase(0.25f, 0.5f);
    state.valence = {0.1f, 0.2f};
    state.unsmoothedValence = {0.3f, 0.4f};
    state.attention = {0.5f, 0.6f};
    state.attentionZone = AttentionState::LookingLeft;
    state.smile = KV::Smile(0.7f, 0.8f);
    state.gaze = KV::Gaze(1.f, 2.f);
    float next = 0.01f;
    for (KV::ValueConfidence<float>* score :
         {&state.expressions.calm, &state.expressions.anger, &state.expressions.joy, &state.expressions.sorrow,
          &state.expressions.laughter, &state.expressions.excitement, &state.expressions.surprise})
    {
      *score = {next, next + 0.5f};
      next += 0.01f;
    }
    state.headHeight = 1.5f;
    state.headAngles = KV::HeadPosture(3.f, 4.f, 5.f);
    state.frequencyGaze = 10.f;
    state.frequencyFace = 20.f;
    state.attentionAngles = {6.f, 7.f};
    state.attentionEstimates = {0.9f, 1.f};
    state.lastObservationTimes.fill(start);
  }

  PersonStatePrivate state;
};

TEST_F(CopiedPersonStatePrivate, KeepsTheEstimateButTheUnsmoothedValence)
{
  const PersonStatePrivate copy(state);

  EXPECT_EQ(0.1f, copy.valence.value);
  EXPECT_EQ(0.2f, copy.valence.confidence);
  EXPECT_EQ(0.5f, copy.attention.value);
  EXPECT_EQ(0.6f, copy.attention.confidence);
  EXPECT_EQ(AttentionState::LookingLeft, copy.attentionZone);
  EXPECT_EQ(0.f, copy.unsmoothedValence.value);
  EXPECT_EQ(0.f, copy.unsmoothedValence.confidence);
}

TEST_F(CopiedPersonStatePrivate, KeepsWhatWasTakenOver)
{
  const PersonStatePrivate copy(state);

  EXPECT_EQ(0.7f, copy.smile.value);
  EXPECT_EQ(0.8f, copy.smile.confidence);
  EXPECT_EQ(1.f, copy.gaze.yaw);
  EXPECT_EQ(2.f, copy.gaze.pitch);
  EXPECT_EQ(1.5f, copy.headHeight);
  EXPECT_EQ(3.f, copy.headAngles.yaw());
  EXPECT_EQ(4.f, copy.headAngles.pitch());
  EXPECT_EQ(5.f, copy.headAngles.roll());
  EXPECT_EQ(10.f, copy.frequencyGaze);
  EXPECT_EQ(20.f, copy.frequencyFace);
  const auto kept = scoresOf(state.expressions);
  const auto copied = scoresOf(copy.expressions);
  for (std::size_t i = 0; i < kept.size(); ++i)
  {
    EXPECT_EQ(kept[i]->value, copied[i]->value);
    EXPECT_EQ(kept[i]->confidence, copied[i]->confidence);
  }
}

TEST_F(CopiedPersonStatePrivate, SharesTheBodyLanguage)
{
  const PersonStatePrivate copy(state);
  EXPECT_EQ(state.bodyLanguageState._p, copy.bodyLanguageState._p);
}

TEST_F(CopiedPersonStatePrivate, HasEmptyVectorsAndTimesOfZero)
{
  const PersonStatePrivate copy(state);

  EXPECT_TRUE(copy.attentionAngles.empty());
  EXPECT_TRUE(copy.attentionEstimates.empty());
  for (const ko::SystemClock::time_point time : copy.lastObservationTimes)
    EXPECT_EQ(0, time.time_since_epoch().count());
}

TEST_F(CopiedPersonStatePrivate, HasMutexesOfItsOwn)
{
  std::vector<boost::unique_lock<boost::mutex>> locks;
  for (boost::mutex* mutex : mutexesOf(state))
    locks.emplace_back(*mutex);

  PersonStatePrivate copy(state);

  for (boost::mutex* mutex : mutexesOf(copy))
    EXPECT_TRUE(support::isFree(*mutex));
}

// Setters

struct SetterCase
{
  const char* name;
  void (PersonStatePrivate::*setter)(float);
  float Estimate::*quantity;
  float lowest;
  bool nanStays;
};
class PersonStatePrivateSetter : public ::testing::TestWithParam<SetterCase>
{
protected:
  PersonStatePrivateSetter()
  {
    state.valence = {0.1f, 0.2f};
    state.unsmoothedValence = {0.3f, 0.4f};
    state.attention = {0.5f, 0.6f};
  }

  /// Sets the quantity and expects it to become `expected`, and nothing else to change.
  void expectSet(float expected, float given)
  {
    Estimate after = estimateOf(state);
    after.*GetParam().quantity = expected;
    (state.*GetParam().setter)(given);
    EXPECT_EQ(after, estimateOf(state)) << "given " << given;
  }

  PersonStatePrivate state;
};

TEST_P(PersonStatePrivateSetter, ClampsToTheRangeOfTheQuantity)
{
  const float lowest = GetParam().lowest;

  expectSet(lowest, -infinity);
  expectSet(lowest, std::nextafter(lowest, -2.f));
  expectSet(lowest, lowest);
  expectSet(std::nextafter(lowest, 2.f), std::nextafter(lowest, 2.f));
  expectSet(0.5f, 0.5f);
  expectSet(std::nextafter(1.f, 0.f), std::nextafter(1.f, 0.f));
  expectSet(1.f, 1.f);
  expectSet(1.f, std::nextafter(1.f, 2.f));
  expectSet(1.f, infinity);
}

TEST_P(PersonStatePrivateSetter, KeepsANanUnlessItIsAConfidence)
{
  expectSet(GetParam().nanStays ? nan : 0.f, nan);
}

TEST_P(PersonStatePrivateSetter, TakesNoMutex)
{
  EXPECT_TRUE(support::endsDespite(mutexesOf(state), [this] { (state.*GetParam().setter)(1.f); }));
}

INSTANTIATE_TEST_SUITE_P(
    OfEachQuantity, PersonStatePrivateSetter,
    ::testing::Values(SetterCase{"Valence", &PersonStatePrivate::_setValence, &Estimate::valence, -1.f, true},
                      SetterCase{"ValenceConfidence", &PersonStatePrivate::_setValenceConfidence,
                                 &Estimate::valenceConfidence, 0.f, false},
                      SetterCase{"Attention", &PersonStatePrivate::_setAttention, &Estimate::attention, 0.f, true},
                      SetterCase{"AttentionConfidence", &PersonStatePrivate::_setAttentionConfidence,
                                 &Estimate::attentionConfidence, 0.f, false},
                      SetterCase{"UnsmoothedValence", &PersonStatePrivate::_setUnsmoothedValence,
                                 &Estimate::unsmoothedValence, -1.f, true},
                      SetterCase{"UnsmoothedValenceConfidence", &PersonStatePrivate::_setUnsmoothedValenceConfidence,
                                 &Estimate::unsmoothedConfidence, 0.f, false}),
    support::RowName());

// Forces

struct ForceCase
{
  const char* name;
  void (PersonStatePrivate::*force)(float target, float weight, std::string_view source);
  void (Estimate::*expected)(float target, float weight);
  boost::mutex PersonStatePrivate::*mutex;
  float Estimate::*quantity;
  float Estimate::*twin;  // moves along; the same quantity if no other moves along
  float lowest;
};
class PersonStatePrivateForce : public ::testing::TestWithParam<ForceCase>
{
protected:
  PersonStatePrivateForce()
  {
    state.valence = {0.1f, 0.2f};
    state.unsmoothedValence = {-0.3f, 0.4f};
    state.attention = {0.5f, 0.6f};
  }

  void apply(float target, float weight) { (state.*GetParam().force)(target, weight, "a source"); }

  /// Expects the quantity, and the one that moves along, to be `expected`.
  void expectMovedTo(float expected)
  {
    EXPECT_TRUE(sameFloat(expected, estimateOf(state).*GetParam().quantity)) << estimateOf(state);
    EXPECT_TRUE(sameFloat(expected, estimateOf(state).*GetParam().twin)) << estimateOf(state);
  }

  PersonStatePrivate state;
};

TEST_P(PersonStatePrivateForce, MovesItsQuantitiesPartOfTheWayEachFromItsOwnPlace)
{
  Estimate expected = estimateOf(state);
  (expected.*GetParam().expected)(0.9f, 0.3f);

  apply(0.9f, 0.3f);

  EXPECT_EQ(expected, estimateOf(state));
}

TEST_P(PersonStatePrivateForce, LeavesHalfTheWayForAWeightOfAHalf)
{
  const float from = estimateOf(state).*GetParam().quantity;
  apply(1.f, 0.5f);
  EXPECT_FLOAT_EQ((from + 1.f) / 2.f, estimateOf(state).*GetParam().quantity);
}

TEST_P(PersonStatePrivateForce, ChangesNothingWithAWeightOfZero)
{
  const unsigned int seed = 7;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> anywhere(-3.f, 3.f);
  for (int i = 0; i < 1000; ++i)
  {
    const Estimate before = estimateOf(state);
    apply(anywhere(random), 0.f);
    ASSERT_EQ(before, estimateOf(state));
    apply(anywhere(random), 0.1f);
  }
}

TEST_P(PersonStatePrivateForce, ReachesItsTargetWithAWeightOfOne)
{
  apply(0.f, 1.f);
  apply(0.75f, 1.f);
  expectMovedTo(0.75f);
}

TEST_P(PersonStatePrivateForce, IsHeldAtOneTowardsOneAndAHalf)
{
  apply(1.5f, 1.f);
  expectMovedTo(1.f);
}

TEST_P(PersonStatePrivateForce, IsHeldAtItsLowestTowardsMinusThree)
{
  apply(-3.f, 1.f);
  expectMovedTo(GetParam().lowest);
}

TEST_P(PersonStatePrivateForce, IsHeldInItsRangeForWeightsOutsideTheirs)
{
  apply(1.f, 5.f);
  expectMovedTo(1.f);
  apply(2.f, -5.f);
  expectMovedTo(GetParam().lowest);
}

TEST_P(PersonStatePrivateForce, TurnsAConfidenceToZeroForANanAndAValueToNan)
{
  const bool isConfidence =
      GetParam().quantity == &Estimate::valenceConfidence || GetParam().quantity == &Estimate::attentionConfidence;
  apply(nan, 0.5f);
  expectMovedTo(isConfidence ? 0.f : nan);
}

TEST_P(PersonStatePrivateForce, WaitsForTheMutexOfItsQuantity)
{
  EXPECT_TRUE(support::waitsFor(state.*GetParam().mutex, [this] { apply(1.f, 0.5f); }));
}

TEST_P(PersonStatePrivateForce, TakesNoOtherMutexAndLetsItsOwnGo)
{
  std::vector<boost::mutex*> others = mutexesOf(state);
  others.erase(std::find(others.begin(), others.end(), &(state.*GetParam().mutex)));

  EXPECT_TRUE(support::endsDespite(others, [this] { apply(1.f, 0.5f); }));
  EXPECT_TRUE(support::isFree(state.*GetParam().mutex));
}

TEST_P(PersonStatePrivateForce, LosesNoMoveOfSeveralThreads)
{
  constexpr int threadCount = 4;
  constexpr int movesPerThread = 500;
  Estimate expected = estimateOf(state);
  for (int i = 0; i < threadCount * movesPerThread; ++i)
    (expected.*GetParam().expected)(1.f, 0.0001f);

  std::vector<std::thread> threads;
  for (int i = 0; i < threadCount; ++i)
    threads.emplace_back([this] {
      for (int move = 0; move < movesPerThread; ++move)
        apply(1.f, 0.0001f);
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(expected, estimateOf(state));
}

TEST_P(PersonStatePrivateForce, SaysNothing)
{
  const support::CapturedLog log;
  const support::CapturedStandardOutput output;
  const support::CapturedStandardError error;

  apply(1.f, 0.5f);

  EXPECT_TRUE(log.empty());
  EXPECT_EQ("", output.text());
  EXPECT_EQ("", error.text());
}

INSTANTIATE_TEST_SUITE_P(
    OnEachQuantity, PersonStatePrivateForce,
    ::testing::Values(ForceCase{"Valence", &PersonStatePrivate::_applyForceValence, &Estimate::pullValence,
                                &PersonStatePrivate::valenceMutex, &Estimate::valence, &Estimate::unsmoothedValence,
                                -1.f},
                      ForceCase{"ValenceConfidence", &PersonStatePrivate::_applyForceValenceConfidence,
                                &Estimate::pullValenceConfidence, &PersonStatePrivate::valenceConfidenceMutex,
                                &Estimate::valenceConfidence, &Estimate::unsmoothedConfidence, 0.f},
                      ForceCase{"Attention", &PersonStatePrivate::_applyForceAttention, &Estimate::pullAttention,
                                &PersonStatePrivate::attentionMutex, &Estimate::attention, &Estimate::attention, 0.f},
                      ForceCase{"AttentionConfidence", &PersonStatePrivate::_applyForceAttentionConfidence,
                                &Estimate::pullAttentionConfidence, &PersonStatePrivate::attentionConfidenceMutex,
                                &Estimate::attentionConfidence, &Estimate::attentionConfidence, 0.f}),
    support::RowName());

/// The text of a force after which another weight was written last.
std::string describe(std::string_view quantity, float target, float weight, std::string_view source,
                     KV::WrittenWeight last = {})
{
  KV::DiagnosticText text;
  KV::describeForce(text, quantity, target, weight, source, last);
  return text.text();
}

TEST(PersonStatePrivate, DescribesAForceWithItsSource)
{
  EXPECT_EQ("Applying valence force 45.5 towards -0.5 (Voice emotion)",
            describe("valence", -0.5f, 0.455f, "Voice emotion"));
}

TEST(PersonStatePrivate, DescribesAForceWithoutASource)
{
  EXPECT_EQ("Applying attention confidence force 1.23457 towards 1",
            describe("attention confidence", 1.f, 0.012345678f, ""));
}

TEST(PersonStatePrivate, DescribesEachTargetAsAStreamDoes)
{
  for (const float end : {1.f, -1.f})
    for (const float target : {end, std::nextafter(end, 0.f), std::nextafter(end, 2.f * end), end * 1.00001f,
                               end * 0.5f, end * 0.f, end * infinity, end * 10.f, std::copysign(nan, end)})
    {
      std::ostringstream stream;
      stream.imbue(std::locale::classic());
      stream << "Applying attention force 65 towards " << target << " (here)";
      EXPECT_EQ(stream.str(), describe("attention", target, 0.65f, "here"));
    }
}

TEST(PersonStatePrivate, DescribesEachWeightWhicheverWasWrittenBefore)
{
  const std::vector<float> weights{0.f,    -0.f,        0.0065f, 0.65f,    1.f,       -1.f, -0.000123457f,
                                   1e-42f, 3.40282e36f, 1e38f,   infinity, -infinity, nan,  -nan};
  KV::WrittenWeight last;
  for (const float before : weights)
    for (const float weight : weights)
    {
      KV::DiagnosticText other;
      KV::describeForce(other, "valence", 0.f, before, "before", last);
      std::ostringstream stream;
      stream.imbue(std::locale::classic());
      stream << "Applying attention force " << 100.f * weight << " towards 0 (here)";
      for (int repetition = 0; repetition < 4; ++repetition)
      {
        KV::DiagnosticText text;
        KV::describeForce(text, "attention", 0.f, weight, "here", last);
        EXPECT_EQ(stream.str(), text.text()) << "after " << other.text();
      }
    }
}

TEST(PersonStatePrivate, DescribesForcesOfSourcesOfAnyLength)
{
  for (std::size_t length = 1; length < 2000; ++length)
  {
    const std::string source(length, 'x');
    ASSERT_EQ("Applying valence force -1.23456e-34 towards -1.23456e-38 (" + source + ")",
              describe("valence", -1.23456e-38f, -1.23456e-36f, source));
  }
}

TEST(PersonStatePrivate, StoresTheZoneUnderTheMutexOfTheAttention)
{
  PersonStatePrivate state;
  EXPECT_TRUE(support::waitsFor(state.attentionMutex, [&] { state._setAttentionZone(AttentionState::LookingUp); }));
  EXPECT_EQ(AttentionState::LookingUp, state.attentionZone);
  EXPECT_TRUE(support::isFree(state.attentionMutex));
}

// Weights

struct WeightCase
{
  const char* name;
  float x;
  float reference;
  float weight;
  float smoothed;
};
class PersonStatePrivateWeight : public ::testing::TestWithParam<WeightCase>
{};

TEST_P(PersonStatePrivateWeight, IsASoftStep)
{
  EXPECT_NEAR(GetParam().weight, PersonStatePrivate::_computeWeight(GetParam().x, GetParam().reference), rounding);
}

TEST_P(PersonStatePrivateWeight, FallsOnWhenItIsSmoothed)
{
  EXPECT_NEAR(GetParam().smoothed, PersonStatePrivate::_computeWeightSmoothed(GetParam().x, GetParam().reference),
              rounding);
}

INSTANTIATE_TEST_SUITE_P(
    AtKnownPoints, PersonStatePrivateWeight,
    ::testing::Values(WeightCase{"AtZeroOfOne", 0.f, 1.f, 0.997661133f, 0.998830566f},
                      WeightCase{"AtOneAndAHalfOfOne", 1.5f, 1.f, 0.0786496035f, 0.164324802f},
                      WeightCase{"JustAboveTheFloor", 1.8f, 1.f, 0.0118258083f, 0.0559129042f},
                      WeightCase{"FarBelow", -3.f, 3.f, 1.f, 1.25f}, WeightCase{"FarAbove", 4.f, 1.f, 0.01f, -0.495f},
                      WeightCase{"AtHalfOfTwo", 0.5f, 2.f, 0.983052573f, 0.929026287f},
                      WeightCase{"AtTenOfThirty", 10.f, 30.f, 0.970326781f, 0.901830057f},
                      WeightCase{"AtThirtyFiveOfThirty", 35.f, 30.f, 0.318675944f, 0.367671305f},
                      WeightCase{"OfAThousandAtZero", 0.f, 1000.f, 0.997661133f, 0.998830566f},
                      WeightCase{"OfAThousandAtHalf", 500.f, 1000.f, 0.921350396f, 0.835675198f},
                      WeightCase{"SteepnessHeldAtTwo", 0.75f, 0.5f, 0.239750061f, 0.244875031f},
                      WeightCase{"SteepnessHeldAtAThousandth", 3000.f, 4000.f, 0.921350396f, 0.773175198f}),
    support::RowName());

TEST(PersonStatePrivateWeights, AreOneHalfAtTheReference)
{
  for (const float reference : {0.001f, 0.5f, 1.f, 3.5f, 20.f, 1000.f, 12345.f})
  {
    EXPECT_EQ(0.5f, PersonStatePrivate::_computeWeight(reference, reference));
    EXPECT_EQ(0.5f, PersonStatePrivate::_computeWeightSmoothed(reference, reference));
  }
}

TEST(PersonStatePrivateWeights, AreTheFloorFarAboveTheReference)
{
  EXPECT_EQ(0.01f, PersonStatePrivate::_computeWeight(10.f, 1.f));
}

TEST(PersonStatePrivateWeights, AreHeldAtTheSteepnessOfTwoForEveryReferenceUpToOne)
{
  // A quarter away from the reference the step is the same.
  for (const float reference : {0.25f, 0.5f, 1.f})
    EXPECT_EQ(PersonStatePrivate::_computeWeight(0.25f, 0.5f),
              PersonStatePrivate::_computeWeight(reference - 0.25f, reference));
  EXPECT_LT(PersonStatePrivate::_computeWeight(1.75f, 2.f), PersonStatePrivate::_computeWeight(0.25f, 0.5f));
}

TEST(PersonStatePrivateWeights, AreHeldAtTheSteepnessOfAThousandthForNegativeReferences)
{
  // k = 0.001, so that 1000 below the reference is erf(1).
  EXPECT_NEAR(0.921350396f, PersonStatePrivate::_computeWeight(-1001.f, -1.f), rounding);
}

struct OddWeightCase
{
  const char* name;
  float x;
  float reference;
  float weight;
};
class PersonStatePrivateOddWeight : public ::testing::TestWithParam<OddWeightCase>
{};

TEST_P(PersonStatePrivateOddWeight, IsTheFloorOrOne)
{
  EXPECT_EQ(GetParam().weight, PersonStatePrivate::_computeWeight(GetParam().x, GetParam().reference));
}

INSTANTIATE_TEST_SUITE_P(ForNumbersThatAreNone, PersonStatePrivateOddWeight,
                         ::testing::Values(OddWeightCase{"Nan", nan, 1.f, 0.01f},
                                           OddWeightCase{"NanReference", 1.f, nan, 0.01f},
                                           OddWeightCase{"InfinityOfInfinity", infinity, infinity, 0.01f},
                                           OddWeightCase{"Infinity", infinity, 1.f, 0.01f},
                                           OddWeightCase{"MinusInfinity", -infinity, 1.f, 1.f},
                                           OddWeightCase{"InfiniteReference", 1.f, infinity, 1.f},
                                           OddWeightCase{"ReferenceOfZero", 0.f, 0.f, 0.5f},
                                           OddWeightCase{"FarAboveAReferenceOfZero", 5.f, 0.f, 0.01f}),
                         support::RowName());

TEST(PersonStatePrivateWeights, AreTheFormulasToTheLastBit)
{
  for (const float reference : {0.3f, 1.f, 2.f, 2.5f, 3.f, 3.5f, 4.f, 7.f, 15.f, 20.f, 30.f, 1000.f})
    for (int i = -50; i <= 400; ++i)
    {
      const float x = reference * static_cast<float>(i) * 0.01f;
      ASSERT_EQ(support::softStep(x, reference), PersonStatePrivate::_computeWeight(x, reference))
          << x << " of " << reference;
      ASSERT_EQ(support::fallingStep(x, reference), PersonStatePrivate::_computeWeightSmoothed(x, reference))
          << x << " of " << reference;
    }
}

TEST(PersonStatePrivateWeights, NeverRiseNorLeaveTheirRange)
{
  for (const float reference : {0.1f, 1.f, 20.f, 5000.f})
  {
    float before = 1.f;
    for (int i = -200; i <= 600; ++i)
    {
      const float weight = PersonStatePrivate::_computeWeight(reference * static_cast<float>(i) * 0.01f, reference);
      ASSERT_LE(weight, before);
      ASSERT_GE(weight, 0.01f);
      before = weight;
    }
  }
}

// Damping

TEST(PersonStatePrivateDamping, LeavesAWeightAloneForACountOfOne)
{
  EXPECT_EQ(1.f, PersonStatePrivate::_computeDampingFactor(1.f, 1.f));
  EXPECT_EQ(0.3f, PersonStatePrivate::_computeDampingFactor(0.3f, 1.f));
}

TEST(PersonStatePrivateDamping, DividesByTheCountToSevenTenths)
{
  EXPECT_NEAR(0.6155722f, PersonStatePrivate::_computeDampingFactor(1.f, 2.f), rounding);
  EXPECT_NEAR(0.0997631f, PersonStatePrivate::_computeDampingFactor(0.5f, 10.f), rounding);
  EXPECT_EQ(0.8f / std::pow(3.f, 0.7f), PersonStatePrivate::_computeDampingFactor(0.8f, 3.f));
}

TEST(PersonStatePrivateDamping, IsInfiniteForACountOfZero)
{
  EXPECT_EQ(infinity, PersonStatePrivate::_computeDampingFactor(1.f, 0.f));
  EXPECT_TRUE(std::isnan(PersonStatePrivate::_computeDampingFactor(0.f, 0.f)));
}

// Warnings

class PersonStatePrivateWarning : public support::ClockTest
{
protected:
  support::CapturedLog log;
};

TEST_F(PersonStatePrivateWarning, IsNotGivenForThreeSeconds)
{
  PersonStatePrivate::_warnIfObservationOld(3000, "x");
  PersonStatePrivate::_warnIfObservationOld(2999, "x");
  PersonStatePrivate::_warnIfObservationOld(0, "x");
  PersonStatePrivate::_warnIfObservationOld(-4000, "x");
  EXPECT_TRUE(log.empty());
}

TEST_F(PersonStatePrivateWarning, IsGivenOneMillisecondLater)
{
  PersonStatePrivate::_warnIfObservationOld(3001, "x");

  ASSERT_EQ(1U, log.size());
  const ko::log::Record record = log.records().front();
  EXPECT_EQ("Processing old observation from 3.001 s ago of x", record.message);
  EXPECT_EQ(ko::log::Level::Warning, record.level);
  EXPECT_EQ("kvmood.emotionalstate", record.category);
  EXPECT_EQ("libemotion/src/personstate", record.file);
  EXPECT_EQ("_warnIfObservationOld", record.function);
  EXPECT_GT(record.line, 0);
  EXPECT_EQ(start, record.time);
}

TEST_F(PersonStatePrivateWarning, LeavesAnEmptySourceOut)
{
  PersonStatePrivate::_warnIfObservationOld(3001, "");
  EXPECT_THAT(log.messages(), ::testing::ElementsAre("Processing old observation from 3.001 s ago"));
}

TEST_F(PersonStatePrivateWarning, WritesSixSignificantDigits)
{
  PersonStatePrivate::_warnIfObservationOld(12345678, "Voice Emotion");
  EXPECT_THAT(log.messages(), ::testing::ElementsAre("Processing old observation from 12345.7 s ago of Voice Emotion"));
}

TEST_F(PersonStatePrivateWarning, IsWrittenInTheSameDigitsEverywhere)
{
  const support::GroupingLocale german;
  PersonStatePrivate::_warnIfObservationOld(12345678, "");
  EXPECT_THAT(log.messages(), ::testing::ElementsAre("Processing old observation from 12345.7 s ago"));
}

// Ages

struct ChannelCase
{
  const char* name;
  KV::ObservationChannel channel;
  int placeInValence;    // -1: not among the sources of the valence
  int placeInAttention;  // -1: not among the sources of the attention
};
class PersonStatePrivateAge : public support::ClockTestWithParam<ChannelCase>
{
protected:
  PersonStatePrivate state;
};

/// The age in milliseconds of a source that was never seen.
std::int64_t neverSeenAge()
{
  return start.time_since_epoch().count() / 1000000 + 1;
}

TEST_P(PersonStatePrivateAge, IsThatOfTheYoungestSource)
{
  state.lastObservationTimes[GetParam().channel] = start - milliseconds(1234);

  EXPECT_EQ(GetParam().placeInValence < 0 ? neverSeenAge() : 1234, state._lastTimeStampedObservationValence());
  EXPECT_EQ(GetParam().placeInAttention < 0 ? neverSeenAge() : 1234, state._lastTimeStampedObservationAttention());
}

TEST_P(PersonStatePrivateAge, IsNotThatOfAnOlderSource)
{
  state.lastObservationTimes.fill(start - milliseconds(50));
  state.lastObservationTimes[GetParam().channel] = start - milliseconds(1234);

  EXPECT_EQ(50, state._lastTimeStampedObservationValence());
  EXPECT_EQ(50, state._lastTimeStampedObservationAttention());
}

/// The script of a clock that advances by one millisecond with each reading.
ko::SystemClock::time_point running(int reading)
{
  return start + milliseconds(reading);
}

TEST_P(PersonStatePrivateAge, IsTakenWithAReadingOfTheClockForEachSourceInOrder)
{
  state.lastObservationTimes[GetParam().channel] = start;

  support::ScriptedClock valenceClock(running);
  const ko::ScopedClockSource valenceScope(valenceClock);
  if (GetParam().placeInValence >= 0)
    EXPECT_EQ(GetParam().placeInValence, state._lastTimeStampedObservationValence());
  else
    state._lastTimeStampedObservationValence();
  EXPECT_EQ(5, valenceClock.readings());

  support::ScriptedClock attentionClock(running);
  const ko::ScopedClockSource attentionScope(attentionClock);
  if (GetParam().placeInAttention >= 0)
    EXPECT_EQ(GetParam().placeInAttention, state._lastTimeStampedObservationAttention());
  else
    state._lastTimeStampedObservationAttention();
  EXPECT_EQ(2, attentionClock.readings());
}

INSTANTIATE_TEST_SUITE_P(OfEachChannel, PersonStatePrivateAge,
                         ::testing::Values(ChannelCase{"HeadPosture", KV::HeadPostureChannel, -1, 0},
                                           ChannelCase{"Smile", KV::SmileChannel, 0, -1},
                                           ChannelCase{"Expressions", KV::ExpressionsChannel, 1, -1},
                                           ChannelCase{"Voice", KV::VoiceChannel, 2, -1},
                                           ChannelCase{"Asr", KV::AsrChannel, 3, -1},
                                           ChannelCase{"Gaze", KV::GazeChannel, -1, 1},
                                           ChannelCase{"Touch", KV::TouchChannel, 4, -1},
                                           ChannelCase{"Context", KV::ContextChannel, -1, -1}),
                         support::RowName());

class PersonStatePrivateAges : public support::ClockTest
{
protected:
  std::int64_t ageOf(ko::SystemClock::time_point time)
  {
    PersonStatePrivate state;
    state.lastObservationTimes.fill(time);
    EXPECT_EQ(state._lastTimeStampedObservationValence(), state._lastTimeStampedObservationAttention());
    return state._lastTimeStampedObservationValence();
  }
};

TEST_F(PersonStatePrivateAges, AreTruncatedToWholeMilliseconds)
{
  EXPECT_EQ(0, ageOf(start - support::nanoseconds(999999)));
  EXPECT_EQ(1, ageOf(start - support::nanoseconds(1000000)));
  EXPECT_EQ(1, ageOf(start - support::nanoseconds(1999999)));
  EXPECT_EQ(0, ageOf(start + support::nanoseconds(999999)));
  EXPECT_EQ(-1, ageOf(start + support::nanoseconds(1000000)));
}

TEST_F(PersonStatePrivateAges, AreLargeForWhatWasNeverSeen)
{
  EXPECT_EQ(1577836800001, ageOf(PersonStatePrivate().lastObservationTimes[0]));
}

TEST_F(PersonStatePrivateAges, AreHeldAtTheEndsOfTheClock)
{
  EXPECT_EQ(9223372036854, ageOf(ko::SystemClock::time_point::min()));
  clock.set(support::atNanoseconds(-10000000));
  EXPECT_EQ(-9223372036854, ageOf(ko::SystemClock::time_point::max()));
}

// Persons who are not seen

TEST(PersonStatePrivate, FadesTowardsZeroWithoutThePerson)
{
  PersonStatePrivate state;
  state.valence = {-0.9f, 0.8f};
  state.unsmoothedValence = {0.7f, 0.6f};
  state.attention = {0.5f, 0.4f};
  Estimate expected = estimateOf(state);
  expected.pullValence(0.f, 0.26f);
  expected.pullValenceConfidence(0.f, 0.7f);
  expected.pullAttention(0.f, 0.26f);
  expected.pullAttentionConfidence(0.f, 0.7f);

  state._decreaseSinceNotSeen();

  EXPECT_EQ(expected, estimateOf(state));
}

TEST(PersonStatePrivate, ChangesNothingButTheEstimateWithoutThePerson)
{
  PersonStatePrivate state;
  state.attentionZone = AttentionState::LookingAtRobot;
  state._decreaseSinceNotSeen();

  EXPECT_EQ(AttentionState::LookingAtRobot, state.attentionZone);
  EXPECT_EQ((std::vector<float>{-10.f, -10.f}), state.attentionAngles);
}

}  // namespace
