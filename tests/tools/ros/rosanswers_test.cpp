#include "ros/rosanswers.hpp"

#include "tools/ros/fakebus.hpp"

#include <gtest/gtest.h>

#include <boost/chrono/duration.hpp>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace
{

using ko::human::AttentionState;

KV::session::Snapshot snapshotOf(const std::string& name, AttentionState zone, float valence = 0.f,
                                 float valenceConfidence = 0.f)
{
  KV::session::Snapshot snapshot;
  snapshot.time = KV::session::TimePoint(boost::chrono::seconds(100));
  snapshot.person = 7;
  snapshot.name = name;
  snapshot.zone = zone;
  snapshot.attention.confidence = 1.f;
  snapshot.valence = {valence, valenceConfidence};
  return snapshot;
}

TEST(RosAnswers, AreTheEngagementAndTheGazeAtTheRobot)
{
  rostests::FakeBus bus;
  KV::tools::RosAnswers answers(bus);

  answers.personUpdated(snapshotOf("ada", AttentionState::LookingAtRobot));

  const auto& engagements = bus.engagements.at("/humans/persons/ada/engagement_status");
  ASSERT_EQ(1U, engagements.size());
  EXPECT_EQ(1, engagements.front().level);
  EXPECT_EQ(100'000'000'000, engagements.front().stamp);
  const auto& gazes = bus.gazes.at("/humans/interactions/gazing");
  ASSERT_EQ(1U, gazes.size());
  EXPECT_EQ("ada", gazes.front().sender);
  EXPECT_EQ("", gazes.front().receiver);
  EXPECT_TRUE(bus.expressions.empty());
}

TEST(RosAnswers, HaveNoGazeOfAPersonWhoLooksElsewhere)
{
  rostests::FakeBus bus;
  KV::tools::RosAnswers answers(bus);
  answers.personUpdated(snapshotOf("ada", AttentionState::LookingUp));
  answers.personUpdated(snapshotOf("ada", AttentionState::Unknown));
  KV::session::Snapshot missing = snapshotOf("ada", AttentionState::LookingAtRobot);
  missing.seen = false;
  answers.personUpdated(missing);
  EXPECT_TRUE(bus.gazes.empty());
}

TEST(RosAnswers, GoOnUnderTheNewIdOfAPerson)
{
  rostests::FakeBus bus;
  KV::tools::RosAnswers answers(bus);
  KV::session::Snapshot snapshot = snapshotOf("p1", AttentionState::LookingAtRobot);
  constexpr int updates = 10;  // 1 s: from unknown to engaging
  for (int i = 0; i < updates; ++i)
  {
    answers.personUpdated(snapshot);
    snapshot.time += boost::chrono::milliseconds(100);
  }
  EXPECT_EQ(2, bus.engagements.at("/humans/persons/p1/engagement_status").back().level);
  EXPECT_TRUE(bus.withdrawn.empty());

  snapshot.name = "ada";
  answers.personUpdated(snapshot);

  const auto& engagements = bus.engagements.at("/humans/persons/ada/engagement_status");
  ASSERT_EQ(1U, engagements.size());
  EXPECT_EQ(2, engagements.back().level);
  EXPECT_EQ("ada", bus.gazes.at("/humans/interactions/gazing").back().sender);
  EXPECT_EQ((std::vector<std::string>{"/humans/persons/p1/engagement_status", "/humans/persons/p1/affect"}),
            bus.withdrawn);
  EXPECT_EQ(1U, answers.persons());
}

TEST(RosAnswers, HaveTheValenceWhereItIsKnown)
{
  rostests::FakeBus bus;
  KV::tools::RosAnswers answers(bus);
  answers.personUpdated(snapshotOf("ada", AttentionState::LookingUp, 0.75f, 0.5f));

  const auto& affects = bus.expressions.at("/humans/persons/ada/affect");
  ASSERT_EQ(1U, affects.size());
  EXPECT_EQ("happy", affects.front().expression);
  EXPECT_FLOAT_EQ(0.75f, affects.front().valence);
  EXPECT_FLOAT_EQ(0.f, affects.front().arousal);
  EXPECT_FLOAT_EQ(0.5f, affects.front().confidence);
}

TEST(RosAnswers, AreWithdrawnWhenThePersonLeaves)
{
  rostests::FakeBus bus;
  KV::tools::RosAnswers answers(bus);
  answers.personUpdated(snapshotOf("ada", AttentionState::LookingUp));
  EXPECT_EQ(1U, answers.persons());

  answers.remove(7);
  answers.remove(7);

  EXPECT_EQ(0U, answers.persons());
  EXPECT_EQ((std::vector<std::string>{"/humans/persons/ada/engagement_status", "/humans/persons/ada/affect"}),
            bus.withdrawn);
}

TEST(RosAnswers, HaveAnotherTopicForEachPerson)
{
  rostests::FakeBus bus;
  KV::tools::RosAnswers answers(bus);
  KV::session::Snapshot snapshot = snapshotOf("a-b_9", AttentionState::LookingUp);
  snapshot.person = 1;
  answers.personUpdated(snapshot);
  for (const std::int32_t person : {8, 9, 9})
  {
    snapshot = snapshotOf(person == 8 ? "a-b" : "a_b", AttentionState::LookingUp);
    snapshot.person = person;
    answers.personUpdated(snapshot);
  }

  std::vector<std::string> topics;
  for (const auto& [topic, messages] : bus.engagements)
    topics.push_back(topic);
  EXPECT_EQ(
      (std::vector<std::string>{"/humans/persons/a_b/engagement_status", "/humans/persons/a_b_9/engagement_status",
                                "/humans/persons/a_b_9_9/engagement_status"}),
      topics);

  answers.remove(8);
  snapshot.person = 10;
  answers.personUpdated(snapshot);
  EXPECT_EQ(2U, bus.engagements.at("/humans/persons/a_b/engagement_status").size());
}

TEST(RosAnswers, HaveTopicsThatRosAllowsForThePersonWithTheLongestName)
{
  rostests::FakeBus bus;
  KV::tools::RosAnswers answers(bus);
  KV::session::Snapshot snapshot = snapshotOf(std::string(1000, '1'), AttentionState::LookingUp);
  answers.personUpdated(snapshot);
  snapshot.person = std::numeric_limits<std::int32_t>::max();
  answers.personUpdated(snapshot);
  EXPECT_EQ(2U, bus.engagements.size());
  constexpr std::size_t longestTopic = 247;
  for (const auto& [topic, messages] : bus.engagements)
    EXPECT_GE(longestTopic, topic.size());
}

TEST(RosAnswers, AreGivenForABoundedNumberOfPersons)
{
  rostests::FakeBus bus;
  KV::tools::RosAnswers answers(bus);
  KV::session::Snapshot snapshot = snapshotOf("", AttentionState::LookingUp);
  for (snapshot.person = 0; snapshot.person < 1100; ++snapshot.person)
    answers.personUpdated(snapshot);
  EXPECT_EQ(KV::tools::RosAnswers::mostPersons, answers.persons());
}

TEST(IdInTopics, HasOnlyCharactersThatRosAllows)
{
  EXPECT_EQ("abc_XYZ_09", KV::tools::idInTopics("abc_XYZ_09", 1));
  EXPECT_EQ("a_b___", KV::tools::idInTopics("a/b \n.", 1));
  EXPECT_EQ("person_1", KV::tools::idInTopics("", 1));
}

TEST(IdInTopics, DoesNotBeginWithADigit)
{
  EXPECT_EQ("person_0a", KV::tools::idInTopics("0a", 1));
  EXPECT_EQ("person_9", KV::tools::idInTopics("9", 1));
  EXPECT_EQ("a9", KV::tools::idInTopics("a9", 1));
  EXPECT_EQ("_9", KV::tools::idInTopics("/9", 1));
}

TEST(IdInTopics, IsNotTooLongForATopic)
{
  EXPECT_EQ(std::string(120, 'a'), KV::tools::idInTopics(std::string(120, 'a'), 1));
  EXPECT_EQ(std::string(120, 'a'), KV::tools::idInTopics(std::string(121, 'a'), 1));
  EXPECT_EQ("person_" + std::string(113, '1'), KV::tools::idInTopics(std::string(120, '1'), 1));
}

TEST(WordOfValence, IsTheNearestOfThree)
{
  EXPECT_STREQ("happy", KV::tools::wordOfValence(1.f));
  EXPECT_STREQ("happy", KV::tools::wordOfValence(0.51f));
  EXPECT_STREQ("neutral", KV::tools::wordOfValence(0.5f));
  EXPECT_STREQ("neutral", KV::tools::wordOfValence(0.f));
  EXPECT_STREQ("neutral", KV::tools::wordOfValence(-0.5f));
  EXPECT_STREQ("sad", KV::tools::wordOfValence(-0.51f));
}

}  // namespace
