#include <skeigiot/personstate.hpp>

#include "bodylanguagestateprivate.hpp"
#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include "support/clocktest.hpp"
#include "support/estimate.hpp"
#include "support/groupinglocale.hpp"
#include "support/restoredboundaries.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/personmemory.hpp>
#include <skeigiot/personobservation.hpp>

#include <ko/human/attentionstate.hpp>
#include <ko/log.hpp>

#include <boost/thread/lock_guard.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <future>
#include <iomanip>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

namespace
{

using ko::human::AttentionState;
using KV::PersonState;
using support::sameFloat;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

// Construction and copies

TEST(PersonState, IsNeutralAndUnconfidentByDefault)
{
  const PersonState state;

  EXPECT_EQ(0.f, state.personValence().value);
  EXPECT_EQ(0.f, state.personValence().confidence);
  EXPECT_EQ(0, state.personValenceBinary().value);
  EXPECT_EQ(0.f, state.personValenceBinary().confidence);
  EXPECT_EQ(0, state.personUnsmoothedValenceBinary().value);
  EXPECT_EQ(0.f, state.personUnsmoothedValenceBinary().confidence);
  EXPECT_EQ(0.f, state.personAttention().value);
  EXPECT_EQ(0.f, state.personAttention().confidence);
  EXPECT_EQ("Unknown", state.personAttentionZone());
  EXPECT_EQ(AttentionState::Unknown, state.personAttentionState());
  EXPECT_EQ(KV::PleasureUnknown, state.personPleasureState());
}

TEST(PersonState, LeavesEverythingButTheGivenNumbersAtTheDefaults)
{
  const PersonState state(0.5f, 0.6f, 0.7f, 0.8f);

  EXPECT_EQ(0.5f, state.personValence().value);
  EXPECT_EQ(0.6f, state.personValence().confidence);
  EXPECT_EQ(0.7f, state.personAttention().value);
  EXPECT_EQ(0.8f, state.personAttention().confidence);
  EXPECT_EQ(0.f, state._p->unsmoothedValence.value);
  EXPECT_EQ(0.f, state._p->unsmoothedValence.confidence);
  EXPECT_EQ(AttentionState::Unknown, state.personAttentionState());
  EXPECT_EQ(0.f, state.headHeight());
}

TEST(PersonState, ClampsTwoMinusOneOneAndAHalfAndAHalf)
{
  const PersonState state(2.f, -1.f, 1.5f, 0.5f);

  EXPECT_EQ(1.f, state.personValence().value);
  EXPECT_EQ(0.f, state.personValence().confidence);
  EXPECT_EQ(1.f, state.personAttention().value);
  EXPECT_EQ(0.5f, state.personAttention().confidence);
}

struct ClampCase
{
  const char* name;
  float given;
  float asValence;
  float asAttention;
  float asConfidence;
};
class PersonStateClamp : public ::testing::TestWithParam<ClampCase>
{};

TEST_P(PersonStateClamp, HoldsWhatItIsMadeOf)
{
  const ClampCase& row = GetParam();
  const PersonState state(row.given, row.given, row.given, row.given);

  EXPECT_TRUE(sameFloat(row.asValence, state.personValence().value)) << state.personValence().value;
  EXPECT_TRUE(sameFloat(row.asConfidence, state.personValence().confidence)) << state.personValence().confidence;
  EXPECT_TRUE(sameFloat(row.asAttention, state.personAttention().value)) << state.personAttention().value;
  EXPECT_TRUE(sameFloat(row.asConfidence, state.personAttention().confidence)) << state.personAttention().confidence;
}

TEST_P(PersonStateClamp, HoldsTheValenceThatIsSetAlone)
{
  PersonState state(0.25f, 0.5f, 0.75f, 0.125f);
  state._p->unsmoothedValence = {0.1f, 0.2f};
  state._setValence(GetParam().given);

  EXPECT_TRUE(sameFloat(GetParam().asValence, state.personValence().value)) << state.personValence().value;
  EXPECT_EQ(0.5f, state.personValence().confidence);
  EXPECT_EQ(0.1f, state._p->unsmoothedValence.value);
  EXPECT_EQ(0.2f, state._p->unsmoothedValence.confidence);
  EXPECT_EQ(0.75f, state.personAttention().value);
  EXPECT_EQ(0.125f, state.personAttention().confidence);
}

INSTANTIATE_TEST_SUITE_P(
    AtTheEnds, PersonStateClamp,
    ::testing::Values(ClampCase{"MinusInfinity", -infinity, -1.f, 0.f, 0.f},
                      ClampCase{"JustBelowMinusOne", std::nextafter(-1.f, -2.f), -1.f, 0.f, 0.f},
                      ClampCase{"MinusOne", -1.f, -1.f, 0.f, 0.f},
                      ClampCase{"JustAboveMinusOne", std::nextafter(-1.f, 0.f), std::nextafter(-1.f, 0.f), 0.f, 0.f},
                      ClampCase{"JustBelowZero", std::nextafter(0.f, -1.f), std::nextafter(0.f, -1.f), 0.f, 0.f},
                      ClampCase{"Zero", 0.f, 0.f, 0.f, 0.f},
                      ClampCase{"JustAboveZero", std::nextafter(0.f, 1.f), std::nextafter(0.f, 1.f),
                                std::nextafter(0.f, 1.f), std::nextafter(0.f, 1.f)},
                      ClampCase{"JustBelowOne", std::nextafter(1.f, 0.f), std::nextafter(1.f, 0.f),
                                std::nextafter(1.f, 0.f), std::nextafter(1.f, 0.f)},
                      ClampCase{"One", 1.f, 1.f, 1.f, 1.f},
                      ClampCase{"JustAboveOne", std::nextafter(1.f, 2.f), 1.f, 1.f, 1.f},
                      ClampCase{"Infinity", infinity, 1.f, 1.f, 1.f},
                      ClampCase{"NanStaysButAsAConfidence", nan, nan, nan, 0.f}),
    support::RowName());

TEST(PersonState, SharesItsRecordWithItsCopies)
{
  PersonState state(0.f, 0.f, 0.f, 0.f);
  PersonState copy(state);
  PersonState assigned;
  assigned = state;

  copy._setValence(0.75f);

  EXPECT_EQ(0.75f, state.personValence().value);
  EXPECT_EQ(0.75f, assigned.personValence().value);
}

TEST(PersonState, UpdatesTheRecordThatItsCopiesShare)
{
  support::TestClock time;
  PersonState state;
  PersonState copy(state);
  KV::PersonMemory memory;
  memory._p->touchEmotionMemory.record({support::start, 1});

  copy._update(KV::PersonObservation(), memory);

  EXPECT_GT(state.personValence().value, 0.6f);
}

TEST(PersonState, KeepsItsRecordAliveThroughACopy)
{
  auto state = std::make_unique<PersonState>(0.5f, 0.f, 0.f, 0.f);
  const PersonState copy(*state);
  state.reset();

  EXPECT_EQ(0.5f, copy.personValence().value);
  EXPECT_EQ(1, copy._p.use_count());
}

TEST(PersonState, GivesEachNewStateARecordOfItsOwn)
{
  PersonState one;
  const PersonState other;
  one._setValence(1.f);

  EXPECT_EQ(0.f, other.personValence().value);
}

// Emotions

TEST(PersonState, SplitsAPositiveValence)
{
  const PersonState state(0.5f, 0.6f, 0.7f, 0.8f);

  EXPECT_EQ(0.5f, state.personEmotion(KV::Positive).value);
  EXPECT_EQ(0.6f, state.personEmotion(KV::Positive).confidence);
  EXPECT_TRUE(sameFloat(0.f, state.personEmotion(KV::Negative).value));
  EXPECT_EQ(0.6f, state.personEmotion(KV::Negative).confidence);
}

TEST(PersonState, SplitsANegativeValence)
{
  const PersonState state(-0.5f, 0.6f, 0.7f, 0.8f);

  EXPECT_TRUE(sameFloat(0.f, state.personEmotion(KV::Positive).value));
  EXPECT_EQ(0.6f, state.personEmotion(KV::Positive).confidence);
  EXPECT_EQ(0.5f, state.personEmotion(KV::Negative).value);
  EXPECT_EQ(0.6f, state.personEmotion(KV::Negative).confidence);
}

TEST(PersonState, ReportsTheAttentionWithItsOwnConfidence)
{
  const PersonState state(0.5f, 0.6f, 0.7f, 0.8f);

  EXPECT_EQ(0.7f, state.personEmotion(KV::Attention).value);
  EXPECT_EQ(0.8f, state.personEmotion(KV::Attention).confidence);
}

TEST(PersonState, SplitsAValenceOfZeroIntoTwoPositiveZeros)
{
  const PersonState state(0.f, 0.f, 0.f, 0.f);

  EXPECT_TRUE(sameFloat(0.f, state.personEmotion(KV::Positive).value));
  EXPECT_TRUE(sameFloat(0.f, state.personEmotion(KV::Negative).value));
}

TEST(PersonState, SplitsANanValenceIntoTwoZeros)
{
  const PersonState state(nan, 0.5f, 0.f, 0.f);

  EXPECT_TRUE(sameFloat(0.f, state.personEmotion(KV::Positive).value));
  EXPECT_TRUE(sameFloat(0.f, state.personEmotion(KV::Negative).value));
}

TEST(PersonState, RefusesAnUnknownEmotionAndStaysAsItIs)
{
  const PersonState state(0.5f, 0.6f, 0.7f, 0.8f);
  const auto before = support::estimateOf(*state._p);

  EXPECT_EQ("Unknown emotional expression descriptor 3", support::textThrownBy<std::invalid_argument>([&] {
              state.personEmotion(static_cast<KV::PersonDescription>(3));
            }));
  EXPECT_EQ("Unknown emotional expression descriptor -1", support::textThrownBy<std::invalid_argument>([&] {
              state.personEmotion(static_cast<KV::PersonDescription>(-1));
            }));
  EXPECT_EQ(before, support::estimateOf(*state._p));
}

TEST(PersonState, NumbersItsDescriptions)
{
  EXPECT_EQ(0, static_cast<int>(KV::Positive));
  EXPECT_EQ(1, static_cast<int>(KV::Negative));
  EXPECT_EQ(2, static_cast<int>(KV::Attention));
  EXPECT_EQ(0, static_cast<int>(KV::PleasureUnknown));
  EXPECT_EQ(1, static_cast<int>(KV::PleasureNegative));
  EXPECT_EQ(2, static_cast<int>(KV::PleasureNeutral));
  EXPECT_EQ(3, static_cast<int>(KV::PleasurePositive));
}

// Ternary valence

struct TernaryCase
{
  const char* name;
  float valence;
  int sign;
};
class PersonStateTernary : public ::testing::TestWithParam<TernaryCase>
{
private:
  support::RestoredBoundaries _restored;
};

TEST_P(PersonStateTernary, IsTheSignOfTheSmoothedValence)
{
  PersonState state(GetParam().valence, 0.01f, 0.f, 0.f);
  state._p->unsmoothedValence = {GetParam().sign == 1 ? -1.f : 1.f, 0.7f};

  EXPECT_EQ(GetParam().sign, state.personValenceBinary().value);
  EXPECT_EQ(0.01f, state.personValenceBinary().confidence);
}

TEST_P(PersonStateTernary, IsTheSignOfTheUnsmoothedValence)
{
  PersonState state(GetParam().sign == 1 ? -1.f : 1.f, 0.7f, 0.f, 0.f);
  state._p->unsmoothedValence = {GetParam().valence, 0.01f};

  EXPECT_EQ(GetParam().sign, state.personUnsmoothedValenceBinary().value);
  EXPECT_EQ(0.01f, state.personUnsmoothedValenceBinary().confidence);
}

TEST_P(PersonStateTernary, DoesNotDependOnTheBoundaries)
{
  PersonState::setBinaryBoundaryPositive(0.9f);
  PersonState::setBinaryBoundaryNegative(-0.9f);
  PersonState::setBinaryBoundaryConfidence(0.9f);
  const PersonState state(GetParam().valence, 0.f, 0.f, 0.f);

  EXPECT_EQ(GetParam().sign, state.personValenceBinary().value);
}

// The float 0.2f lies above the double 0.2, and the float -0.2f below the double -0.2.
INSTANTIATE_TEST_SUITE_P(
    AtTheLimits, PersonStateTernary,
    ::testing::Values(TernaryCase{"One", 1.f, 1}, TernaryCase{"JustAboveAFifth", std::nextafter(0.2f, 1.f), 1},
                      TernaryCase{"AFifth", 0.2f, 1}, TernaryCase{"JustBelowAFifth", std::nextafter(0.2f, 0.f), 0},
                      TernaryCase{"Zero", 0.f, 0}, TernaryCase{"JustAboveMinusAFifth", std::nextafter(-0.2f, 0.f), 0},
                      TernaryCase{"MinusAFifth", -0.2f, -1},
                      TernaryCase{"JustBelowMinusAFifth", std::nextafter(-0.2f, -1.f), -1},
                      TernaryCase{"MinusOne", -1.f, -1}, TernaryCase{"Nan", nan, -1}),
    support::RowName());

// Pleasure state

struct PleasureCase
{
  const char* name;
  float valence;
  float confidence;
  KV::PleasureState pleasure;
};
class PersonStatePleasure : public ::testing::TestWithParam<PleasureCase>
{};

TEST_P(PersonStatePleasure, FollowsFromTheBoundaries)
{
  const PersonState state(GetParam().valence, GetParam().confidence, 0.f, 0.f);
  EXPECT_EQ(GetParam().pleasure, state.personPleasureState());
}

INSTANTIATE_TEST_SUITE_P(
    AtTheBoundaries, PersonStatePleasure,
    ::testing::Values(
        PleasureCase{"ConfidenceOfZero", 1.f, 0.f, KV::PleasureUnknown},
        PleasureCase{"ConfidenceBelowTheBoundary", 1.f, 0.3999f, KV::PleasureUnknown},
        PleasureCase{"ConfidenceJustBelowTheBoundary", 1.f, std::nextafter(0.4f, 0.f), KV::PleasureUnknown},
        PleasureCase{"ConfidenceAtTheBoundary", 1.f, 0.4f, KV::PleasurePositive},
        PleasureCase{"ValenceAtThePositiveBoundary", 0.2f, 0.4f, KV::PleasurePositive},
        PleasureCase{"ValenceJustBelowThePositiveBoundary", std::nextafter(0.2f, 0.f), 0.4f, KV::PleasureNeutral},
        PleasureCase{"ValenceOfZero", 0.f, 1.f, KV::PleasureNeutral},
        PleasureCase{"ValenceAtTheNegativeBoundary", -0.2f, 1.f, KV::PleasureNeutral},
        PleasureCase{"ValenceBelowTheNegativeBoundary", -0.2000001f, 1.f, KV::PleasureNegative},
        PleasureCase{"ValenceJustBelowTheNegativeBoundary", std::nextafter(-0.2f, -1.f), 1.f, KV::PleasureNegative},
        PleasureCase{"NanIsPositive", nan, 0.4f, KV::PleasurePositive},
        PleasureCase{"NanWithoutConfidence", nan, 0.3f, KV::PleasureUnknown}),
    support::RowName());

TEST(PersonState, FollowsTheBoundariesAsTheyAreNow)
{
  const support::RestoredBoundaries restored;
  const PersonState state(0.5f, 0.5f, 0.f, 0.f);
  EXPECT_EQ(KV::PleasurePositive, state.personPleasureState());

  PersonState::setBinaryBoundaryPositive(0.6f);
  EXPECT_EQ(KV::PleasureNeutral, state.personPleasureState());
  PersonState::setBinaryBoundaryNegative(0.55f);
  EXPECT_EQ(KV::PleasureNegative, state.personPleasureState());
  PersonState::setBinaryBoundaryConfidence(0.55f);
  EXPECT_EQ(KV::PleasureUnknown, state.personPleasureState());
}

TEST(PersonState, AsksTheNegativeBoundaryBeforeThePositiveOne)
{
  const support::RestoredBoundaries restored;
  PersonState::setBinaryBoundaryNegative(0.8f);  // above the positive one

  EXPECT_EQ(KV::PleasureNegative, PersonState(0.5f, 1.f, 0.f, 0.f).personPleasureState());
  EXPECT_EQ(KV::PleasurePositive, PersonState(0.8f, 1.f, 0.f, 0.f).personPleasureState());
}

// Zones

struct ZoneCase
{
  const char* name;
  int number;
  const char* word;
};
class PersonStateZone : public ::testing::TestWithParam<ZoneCase>
{};

TEST_P(PersonStateZone, HasAName)
{
  PersonState state;
  const auto zone = static_cast<AttentionState>(GetParam().number);
  state._p->_setAttentionZone(zone);

  EXPECT_EQ(GetParam().word, state.personAttentionZone());
  EXPECT_EQ(zone, state.personAttentionState());
}

INSTANTIATE_TEST_SUITE_P(ByNumber, PersonStateZone,
                         ::testing::Values(ZoneCase{"None", 0, "Unknown"}, ZoneCase{"AtRobot", 1, "LookingAtRobot"},
                                           ZoneCase{"Up", 2, "LookingUp"}, ZoneCase{"Down", 3, "LookingDown"},
                                           ZoneCase{"Left", 4, "LookingLeft"}, ZoneCase{"Right", 5, "LookingRight"},
                                           ZoneCase{"UpLeft", 6, "LookingUpLeft"},
                                           ZoneCase{"UpRight", 7, "LookingUpRight"},
                                           ZoneCase{"DownLeft", 8, "LookingDownLeft"},
                                           ZoneCase{"DownRight", 9, "LookingDownRight"},
                                           ZoneCase{"PastTheLast", 10, "Unknown"}, ZoneCase{"Negative", -1, "Unknown"}),
                         support::RowName());

TEST(PersonState, NamesNineZones)
{
  EXPECT_EQ(9U, KV::attentionZonesStringMapping.size());
  EXPECT_EQ(0U, KV::attentionZonesStringMapping.count(AttentionState::Unknown));
  EXPECT_EQ("LookingAtRobot", KV::attentionZonesStringMapping.begin()->second);
  EXPECT_EQ("LookingDownRight", KV::attentionZonesStringMapping.rbegin()->second);
}

// The members that a copy keeps

TEST(PersonState, ReadsOutWhatItsRecordHolds)
{
  PersonState state;
  state._p->smile = KV::Smile(0.1f, 0.2f);
  state._p->gaze = KV::Gaze(3.f, 4.f);
  state._p->headAngles = KV::HeadPosture(5.f, 6.f, 7.f);
  state._p->headHeight = 1.75f;
  state._p->expressions.surprise = {0.8f, 0.9f};

  EXPECT_EQ(0.1f, state.smile().value);
  EXPECT_EQ(0.2f, state.smile().confidence);
  EXPECT_EQ(3.f, state.gaze().yaw);
  EXPECT_EQ(4.f, state.gaze().pitch);
  EXPECT_EQ(5.f, state.headAngles().yaw());
  EXPECT_EQ(6.f, state.headAngles().pitch());
  EXPECT_EQ(7.f, state.headAngles().roll());
  EXPECT_EQ(1.75f, state.headHeight());
  EXPECT_EQ(0.8f, state.expressions().surprise.value);
  EXPECT_EQ(0.9f, state.expressions().surprise.confidence);
}

TEST(PersonState, LendsTheBodyLanguageInsideItsRecord)
{
  PersonState state;
  const PersonState& readOnly = state;
  state.bodyLanguageState()._p->ease = KV::BodyLanguageEase(0.25f, 0.5f);

  EXPECT_EQ(&state._p->bodyLanguageState, &state.bodyLanguageState());
  EXPECT_EQ(&state._p->bodyLanguageState, &readOnly.bodyLanguageState());
  EXPECT_EQ(0.25f, readOnly.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription).level);
}

TEST(PersonState, StoresTheFrequenciesAsTheyAreGiven)
{
  PersonState state;
  state.setFrequencyFace(-12.5f);
  state.setFrequencyGaze(nan);

  EXPECT_EQ(-12.5f, state._p->frequencyFace);
  EXPECT_TRUE(std::isnan(state._p->frequencyGaze));
}

TEST(PersonState, FadesByFortyFivePercentInTwoCyclesWithoutThePerson)
{
  PersonState state(1.f, 1.f, 1.f, 1.f);
  state.decreaseSinceNotSeen();
  state.decreaseSinceNotSeen();

  // 1e-6f: single precision, four operations
  EXPECT_NEAR(0.5476f, state.personValence().value, 1e-6f);
  EXPECT_NEAR(0.09f, state.personValence().confidence, 1e-6f);
  EXPECT_NEAR(0.5476f, state.personAttention().value, 1e-6f);
  EXPECT_NEAR(0.09f, state.personAttention().confidence, 1e-6f);
}

// Texts

struct MessageCase
{
  const char* name;
  float valence;
  float attention;
  std::string text;
};
class PersonStateMessage : public ::testing::TestWithParam<MessageCase>
{};

TEST_P(PersonStateMessage, SaysMoodAndEngagement)
{
  const PersonState state(GetParam().valence, 0.f, GetParam().attention, 0.f);
  EXPECT_EQ(GetParam().text, state.emotionLogMessage());
}

std::string positiveMood(const std::string& rate)
{
  return "Emotion recognized : \n\t - Actually you're in a positive mood at a " + rate + "% rate ＼（＠￣∇￣＠）／ \n";
}

std::string negativeMood(const std::string& rate)
{
  return "Emotion recognized : \n\t - Actually you're in a negative mood at a " + rate + "% rate ヽ（＠⋋_⋌）ノ \n";
}

const std::string engaged = "\t - And you're totally engaged in my interaction ＼（〇_ｏ）／ !\n";
const std::string inattentive = "\t - But you're a bit inattentive, hum ? ヽ(。_°)ノ \n";
const std::string absent = "\t - But you're totally absent in our interaction (-, – )…zzzZZZ \n";

INSTANTIATE_TEST_SUITE_P(
    AtTheLimits, PersonStateMessage,
    ::testing::Values(MessageCase{"Default", 0.f, 0.f, negativeMood("-0") + absent},
                      MessageCase{"Positive", 0.5f, 1.f, positiveMood("50") + engaged},
                      MessageCase{"Negative", -0.375f, 1.f, negativeMood("37.5") + engaged},
                      MessageCase{"JustPositive", std::nextafter(0.f, 1.f), 1.f, positiveMood("1.4013e-43") + engaged},
                      MessageCase{"SixSignificantDigits", 0.12345678f, 1.f, positiveMood("12.3457") + engaged},
                      MessageCase{"NanIsNegative", nan, nan, negativeMood("nan") + absent},
                      MessageCase{"JustEngaged", 1.f, std::nextafter(0.6f, 1.f), positiveMood("100") + engaged},
                      MessageCase{"NotYetEngaged", 1.f, 0.6f, positiveMood("100") + inattentive},
                      MessageCase{"NotYetAbsent", 1.f, std::nextafter(0.4f, 1.f), positiveMood("100") + inattentive},
                      MessageCase{"JustAbsent", 1.f, 0.4f, positiveMood("100") + absent}),
    support::RowName());

TEST(PersonState, CallsEngagedByFixedLimits)
{
  const support::RestoredBoundaries restored;
  PersonState::setBinaryBoundaryLookingAtRobot(0.9f);

  EXPECT_THAT(PersonState(1.f, 0.f, 0.7f, 0.f).emotionLogMessage(), ::testing::HasSubstr("totally engaged"));
}

TEST(PersonState, SaysTheMoodInTheSameDigitsEverywhere)
{
  const support::GroupingLocale german;
  EXPECT_EQ(negativeMood("37.5") + absent, PersonState(-0.375f, 0.f, 0.f, 0.f).emotionLogMessage());
}

TEST(PersonState, WritesNineLinesOfPercentages)
{
  std::ostringstream stream;
  std::ostream& returned = stream << PersonState(0.5f, 0.25f, 0.75f, 0.125f);

  EXPECT_EQ(&stream, &returned);
  EXPECT_EQ(
      "Positive: \n\t - Value: \t50\n\t - Confidence: \t25\n"
      "Negative: \n\t - Value: \t0\n\t - Confidence: \t25\n"
      "Attention: \n\t - Value: \t75\n\t - Confidence: \t12.5\n",
      stream.str());
}

TEST(PersonState, WritesANegativeValenceAsPositivePercentages)
{
  std::ostringstream stream;
  stream << PersonState(-0.5f, 1.f, 0.f, 0.f);

  EXPECT_EQ(
      "Positive: \n\t - Value: \t0\n\t - Confidence: \t100\n"
      "Negative: \n\t - Value: \t50\n\t - Confidence: \t100\n"
      "Attention: \n\t - Value: \t0\n\t - Confidence: \t0\n",
      stream.str());
}

TEST(PersonState, WritesInTheFormatOfTheStream)
{
  std::ostringstream stream;
  stream << std::fixed << std::setprecision(2) << PersonState(0.5f, 0.f, 0.f, 0.f);

  EXPECT_THAT(stream.str(), ::testing::StartsWith("Positive: \n\t - Value: \t50.00\n\t - Confidence: \t0.00\n"));
}

/// Counts how often it is flushed.
class FlushCounter : public std::stringbuf
{
public:
  int flushes = 0;

protected:
  int sync() override
  {
    ++flushes;
    return 0;
  }
};

TEST(PersonState, FlushesEachOfItsNineLines)
{
  FlushCounter buffer;
  std::ostream stream(&buffer);
  stream << PersonState();

  EXPECT_EQ(9, buffer.flushes);
}

// Log and locks

TEST(PersonState, RegistersItsLogCategory)
{
  EXPECT_THAT(ko::log::categories(), ::testing::Contains("kvmood.emotionalstate"));
}

/// Runs every query of one person.
void query(const PersonState& state)
{
  state.personEmotion(KV::Positive);
  state.personValence();
  state.personValenceBinary();
  state.personUnsmoothedValenceBinary();
  state.personAttention();
  state.personAttentionZone();
  state.personPleasureState();
  state.personAttentionState();
  state.smile();
  state.expressions();
  state.gaze();
  state.headAngles();
  state.headHeight();
  state.bodyLanguageState();
  state.emotionLogMessage();
  std::ostringstream() << state;
}

TEST(PersonState, AnswersQueriesWithoutAMutexOfThePerson)
{
  const PersonState state;
  KV::PersonStatePrivate& p = *state._p;
  std::future<void> queries;
  {
    using Lock = boost::lock_guard<boost::mutex>;
    const Lock l1(p.valenceMutex), l2(p.attentionMutex), l3(p.valenceConfidenceMutex), l4(p.attentionConfidenceMutex);
    const Lock l5(p.headHeightMutex), l6(p.observationsMutex), l7(p.smileMutex), l8(p.gazeMutex);
    const Lock l9(p.expressionsMutex), l10(p.headAnglesMutex);
    queries = std::async(std::launch::async, [&state] { query(state); });

    EXPECT_EQ(std::future_status::ready, queries.wait_for(std::chrono::seconds(20)));
  }
  queries.get();
}

}  // namespace
