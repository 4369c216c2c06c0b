#include "support/tablename.hpp"

#include <skeigiot/session/names.hpp>

#include <gtest/gtest.h>

#include <cmath>

namespace
{

using ko::human::AttentionState;

TEST(Names, OfAZoneIsTheNameThatTheLibraryGivesIt)
{
  EXPECT_EQ("LookingAtRobot", KV::session::zoneName(AttentionState::LookingAtRobot));
  EXPECT_EQ("LookingDownRight", KV::session::zoneName(AttentionState::LookingDownRight));
}

TEST(Names, OfNoZoneIsTheSameAsForAPersonWithoutOne)
{
  EXPECT_EQ(KV::PersonState().personAttentionZone(), KV::session::zoneName(AttentionState::Unknown));
}

TEST(Names, DistinguishTheFourPleasureStates)
{
  EXPECT_EQ("unknown", KV::session::pleasureName(KV::PleasureUnknown));
  EXPECT_EQ("negative", KV::session::pleasureName(KV::PleasureNegative));
  EXPECT_EQ("neutral", KV::session::pleasureName(KV::PleasureNeutral));
  EXPECT_EQ("positive", KV::session::pleasureName(KV::PleasurePositive));
}

struct EaseCase
{
  const char* name;
  float level;
  const char* word;
};

class EaseName : public ::testing::TestWithParam<EaseCase>
{};

TEST_P(EaseName, FollowsTheLevel)
{
  EXPECT_EQ(GetParam().word, KV::session::easeName({GetParam().level, 0.5f}));
}

INSTANTIATE_TEST_SUITE_P(AtTheLimits, EaseName,
                         ::testing::Values(EaseCase{"AllDiscomfort", -0.5f, "uneasy"},
                                           EaseCase{"JustBelowTheLowerLimit", std::nextafter(-0.25f, -1.f), "uneasy"},
                                           EaseCase{"AtTheLowerLimit", -0.25f, "neutral"},
                                           EaseCase{"JustBelowTheUpperLimit", std::nextafter(0.25f, 0.f), "neutral"},
                                           EaseCase{"AtTheUpperLimit", 0.25f, "at ease"},
                                           EaseCase{"AllEase", 0.5f, "at ease"}),
                         support::RowName());

TEST(PersonTexts, HaveTheNumberBesideTheName)
{
  EXPECT_EQ("anna (person 3)", KV::session::personText(3, "anna"));
  EXPECT_EQ("person -1", KV::session::personText(-1, ""));
}

TEST(EaseNames, IsADashBeforeTheFirstEstimate)
{
  EXPECT_EQ("-", KV::session::easeName(KV::BodyLanguageEase()));
}

}  // namespace
