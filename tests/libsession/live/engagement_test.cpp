#include <skeigiot/session/engagement.hpp>

#include <gtest/gtest.h>

#include <boost/chrono/duration.hpp>

#include <cstdint>
#include <utility>
#include <vector>

namespace
{

using boost::chrono::milliseconds;
using KV::session::Engagement;
using KV::session::EngagementLevel;

/// A person who is updated every 100 ms.
class EngagementLevels : public ::testing::Test
{
protected:
  /// Looks at the robot or not for so long, and returns after how long each change of the level came [ms].
  std::vector<std::pair<int, EngagementLevel>> look(bool atRobot, int forMs)
  {
    std::vector<std::pair<int, EngagementLevel>> changes;
    for (int passed = 0; passed < forMs; passed += 100)
    {
      const EngagementLevel before = engagement.level();
      if (update(atRobot ? ko::human::AttentionState::LookingAtRobot : ko::human::AttentionState::LookingUp) != before)
        changes.emplace_back(passed, engagement.level());
    }
    return changes;
  }

  EngagementLevel update(ko::human::AttentionState zone, float confidence = 1.f)
  {
    KV::session::Snapshot snapshot;
    snapshot.time = now;
    snapshot.zone = zone;
    snapshot.attention.confidence = confidence;
    now += milliseconds(100);
    return engagement.update(snapshot);
  }

  using Changes = std::vector<std::pair<int, EngagementLevel>>;

  KV::session::TimePoint now{boost::chrono::seconds(1'700'000'000)};
  Engagement engagement;
};

TEST_F(EngagementLevels, AreUnknownUntilTheAttentionIs)
{
  EXPECT_EQ(EngagementLevel::Unknown, update(ko::human::AttentionState::Unknown, 0.f));
  EXPECT_EQ(EngagementLevel::Disengaged, update(ko::human::AttentionState::LookingUp));
  EXPECT_EQ(EngagementLevel::Disengaged, update(ko::human::AttentionState::Unknown, 0.f));
}

TEST_F(EngagementLevels, RiseAfterTheTimesOfTheDocumentation)
{
  EXPECT_EQ(
      (Changes{{0, EngagementLevel::Disengaged}, {700, EngagementLevel::Engaging}, {1600, EngagementLevel::Engaged}}),
      look(true, 4000));
  EXPECT_DOUBLE_EQ(1., engagement.value());
}

TEST_F(EngagementLevels, FallAfterTheTimesOfTheDocumentation)
{
  look(true, 4000);
  EXPECT_EQ((Changes{{700, EngagementLevel::Disengaging}, {1600, EngagementLevel::Disengaged}}), look(false, 4000));
  EXPECT_DOUBLE_EQ(-1., engagement.value());
}

TEST_F(EngagementLevels, StayWhereAGlanceAwayIsShort)
{
  look(true, 4000);
  EXPECT_EQ(Changes{}, look(false, 500));
  EXPECT_EQ(Changes{}, look(true, 2000));
}

TEST_F(EngagementLevels, ComeBackWhereThePersonLooksAgain)
{
  look(true, 4000);
  EXPECT_EQ((Changes{{700, EngagementLevel::Disengaging}}), look(false, 1000));
  // For 2 s the mean still has the second without a look; then it rises again.
  EXPECT_EQ((Changes{{1700, EngagementLevel::Engaged}}), look(true, 4000));
}

TEST_F(EngagementLevels, GiveUpWhereThePersonOnlyGlancedAtTheRobot)
{
  look(false, 1000);
  EXPECT_EQ((Changes{{700, EngagementLevel::Engaging}}), look(true, 900));
  EXPECT_EQ((Changes{{1700, EngagementLevel::Disengaged}}), look(false, 4000));
}

TEST_F(EngagementLevels, FallForAPersonWhoIsNotSeen)
{
  look(true, 4000);
  KV::session::Snapshot missing;
  missing.seen = false;
  missing.zone = ko::human::AttentionState::LookingAtRobot;  // as it was last
  missing.attention.confidence = 1.f;
  for (int i = 0; i < 30; ++i)
  {
    missing.time = now;
    now += milliseconds(100);
    engagement.update(missing);
  }
  EXPECT_EQ(EngagementLevel::Disengaged, engagement.level());
}

TEST_F(EngagementLevels, TakeAnUpdateOfThePastAsOfNow)
{
  look(true, 4000);
  now -= boost::chrono::hours(1);
  EXPECT_EQ(EngagementLevel::Engaged, update(ko::human::AttentionState::LookingAtRobot));
  EXPECT_DOUBLE_EQ(1., engagement.value());
}

}  // namespace
