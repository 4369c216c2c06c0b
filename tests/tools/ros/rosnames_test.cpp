#include "ros/rosnames.hpp"

#include "ros/renamingbus.hpp"
#include "tools/ros/fakebus.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::tools::RosNames;

RosNames namesWith(std::initializer_list<const char*> rules)
{
  RosNames names;
  for (const char* const rule : rules)
    names.addRule(rule);
  return names;
}

TEST(RosNames, AreThoseOfRos4hriWithoutARule)
{
  const RosNames names;
  EXPECT_EQ("skeigiot", names.node());
  EXPECT_FALSE(names.changeTopics());
  EXPECT_EQ("/humans/faces/tracked", names.outside("/humans/faces/tracked"));
  EXPECT_EQ("/humans/faces/tracked", names.inside("/humans/faces/tracked"));
}

TEST(RosNames, OfATopicCountForTopicsBelowIt)
{
  const RosNames names = namesWith({"/humans:=/robot1/humans"});
  EXPECT_TRUE(names.changeTopics());
  EXPECT_EQ("/robot1/humans/faces/tracked", names.outside("/humans/faces/tracked"));
  EXPECT_EQ("/humans/faces/tracked", names.inside("/robot1/humans/faces/tracked"));
  EXPECT_EQ("/robot1/humans", names.outside("/humans"));
  EXPECT_EQ("/tf", names.inside("/tf"));
}

TEST(RosNames, CountForWholePartsOfATopicOnly)
{
  const RosNames names = namesWith({"/tf:=/robot1/tf"});
  EXPECT_EQ("/tf_static", names.outside("/tf_static"));
  EXPECT_EQ("/robot1/tf", names.outside("/tf"));
  EXPECT_EQ("/robot1/tf_static", names.inside("/robot1/tf_static"));
}

TEST(RosNames, HideATopicUnderItsFormerName)
{
  const RosNames names = namesWith({"/humans:=/robot1/humans"});
  EXPECT_EQ("", names.inside("/humans/faces/tracked"));
  EXPECT_EQ("/robot2/humans/faces/tracked", names.inside("/robot2/humans/faces/tracked"));
}

TEST(RosNames, OfTheLongestTopicCount)
{
  for (const RosNames& names : {namesWith({"/humans:=/a", "/humans/faces/tracked:=/seen"}),
                                namesWith({"/humans/faces/tracked:=/seen", "/humans:=/a"})})
  {
    EXPECT_EQ("/seen", names.outside("/humans/faces/tracked"));
    EXPECT_EQ("/a/faces/f/facs", names.outside("/humans/faces/f/facs"));
    EXPECT_EQ("/humans/faces/tracked", names.inside("/seen"));
    EXPECT_EQ("/a/faces/tracked", names.inside("/a/faces/tracked"));
    EXPECT_EQ("/humans/faces/f/facs", names.inside("/a/faces/f/facs"));
  }
}

TEST(RosNames, MayChangePlaces)
{
  const RosNames names = namesWith({"/humans/faces:=/humans/persons", "/humans/persons:=/humans/faces"});
  EXPECT_EQ("/humans/persons/tracked", names.outside("/humans/faces/tracked"));
  EXPECT_EQ("/humans/faces/tracked", names.inside("/humans/persons/tracked"));
}

TEST(RosNames, NeedNoSlashAtTheBegin)
{
  const RosNames names = namesWith({"tf:=robot1/tf"});
  EXPECT_EQ("/robot1/tf", names.outside("/tf"));
}

TEST(RosNames, IncludeThatOfTheNode)
{
  EXPECT_EQ("robot", namesWith({"__node:=robot"}).node());
  EXPECT_EQ("_2", namesWith({"__name:=_2"}).node());
  EXPECT_FALSE(namesWith({"__node:=robot"}).changeTopics());
}

struct RefusedRule
{
  const char* name;
  std::string rule;
  std::string message;
};

class RosNamesRefuse : public ::testing::TestWithParam<RefusedRule>
{};

TEST_P(RosNamesRefuse, ARule)
{
  RosNames names = namesWith({"/tf:=/robot1/tf"});
  try
  {
    names.addRule(GetParam().rule);
    FAIL() << "the rule was taken";
  }
  catch (const std::invalid_argument& error)
  {
    EXPECT_EQ(GetParam().message, error.what());
  }
  EXPECT_EQ("/diagnostics", names.outside("/diagnostics"));
}

const std::string noTopic =
    "expected /tf, /tf_static, /joint_states, /clock, /diagnostics, /skeigiot, /humans, or a topic below one of the "
    "last two, found ";
const std::string noName = "expected a name with up to 80 letters, digits, '_' and '/', such as /robot1/humans, found ";
const std::string noNode = "expected a name of the node with up to 80 letters, digits and '_', found ";

INSTANTIATE_TEST_SUITE_P(
    Each, RosNamesRefuse,
    ::testing::Values(
        RefusedRule{"InAnotherForm", "/humans=/a", "expected FROM:=TO, found '/humans=/a'"},
        RefusedRule{"WithoutATopic", ":=/a", "expected FROM:=TO, found ':=/a'"},
        RefusedRule{"WithoutAName", "/humans:=", "expected FROM:=TO, found '/humans:='"},
        RefusedRule{"ForAnotherTopic", "/camera:=/a", noTopic + "'/camera'"},
        RefusedRule{"ForATopicBelowOneWithoutGroups", "/tf/a:=/a", noTopic + "'/tf/a'"},
        RefusedRule{"ForAnUnknownGroup", "/humans/dogs:=/a", noTopic + "'/humans/dogs'"},
        RefusedRule{"ForATopicThatEndsWithASlash", "/humans/faces/:=/a", noTopic + "'/humans/faces/'"},
        RefusedRule{"WithASlashAlone", "/humans:=/", noName + "'/'"},
        RefusedRule{"WithASlashAtTheEnd", "/humans:=/a/", noName + "'/a/'"},
        RefusedRule{"WithTwoSlashes", "/humans:=/a//b", noName + "'/a//b'"},
        RefusedRule{"WithABlank", "/humans:=/a b", noName + "'/a b'"},
        RefusedRule{"WithADigitInFront", "/humans:=/a/1", noName + "'/a/1'"},
        RefusedRule{"WithAPrivateName", "/humans:=~/a", noName + "'~/a'"},
        RefusedRule{"WithALongName", "/humans:=/" + std::string(80, 'a'),
                    noName + "'/" + std::string(39, 'a') + "...'"},
        RefusedRule{"ForTheSameTopic", "tf:=/b", "there are two rules for /tf"},
        RefusedRule{"WithTheSameName", "/humans:=/robot1/tf", "/tf and /humans would both be /robot1/tf"},
        RefusedRule{"WithANodeThatBeginsWithADigit", "__node:=1", noNode + "'1'"},
        RefusedRule{"WithANodeInANamespace", "__node:=/a", noNode + "'/a'"},
        RefusedRule{"WithALongNode", "__node:=" + std::string(81, 'a'), noNode + "'" + std::string(40, 'a') + "...'"},
        RefusedRule{"WithANamespace", "__ns:=/robot1",
                    "the node has no namespace: give its topics other names, such as /humans:=/robot1/humans"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(RosNames, MayHaveEightyCharacters)
{
  const std::string name = "/" + std::string(79, 'a');
  RosNames names;
  names.addRule("/humans:=" + name);
  EXPECT_EQ(name + "/faces/tracked", names.outside("/humans/faces/tracked"));
}

TEST(ABusWithOtherNames, ReadsAndPublishesTopicsByThem)
{
  auto owned = std::make_unique<rostests::FakeBus>();
  rostests::FakeBus& bus = *owned;
  KV::tools::RenamingBus renamed(std::move(owned), namesWith({"/humans:=/a", "/diagnostics:=/state"}));

  bus.add("/a/faces/tracked", "", 1);
  bus.add("/tf", "", 2);
  const std::vector<KV::ros2::BusMessage> taken = renamed.take();
  ASSERT_EQ(2U, taken.size());
  EXPECT_EQ("/humans/faces/tracked", taken[0].topic);
  EXPECT_EQ("/tf", taken[1].topic);

  renamed.publish("/humans/persons/ada/engagement_status", KV::ros2::EngagementMessage{});
  renamed.publish("/humans/persons/ada/affect", KV::ros2::ExpressionMessage{});
  renamed.publish("/humans/interactions/gazing", KV::ros2::GazeMessage{});
  renamed.publish("/diagnostics", KV::ros2::DiagnosticMessage{});
  renamed.withdraw("/humans/persons/ada/affect");
  EXPECT_EQ(1U, bus.engagements.count("/a/persons/ada/engagement_status"));
  EXPECT_EQ(1U, bus.expressions.count("/a/persons/ada/affect"));
  EXPECT_EQ(1U, bus.gazes.count("/a/interactions/gazing"));
  EXPECT_EQ(1U, bus.diagnostics.count("/state"));
  EXPECT_EQ(std::vector<std::string>{"/a/persons/ada/affect"}, bus.withdrawn);
}

TEST(ABusWithOtherNames, PassesOnAllElse)
{
  auto owned = std::make_unique<rostests::FakeBus>();
  owned->notes = {"a note"};
  KV::tools::RenamingBus renamed(std::move(owned), namesWith({"/humans:=/a"}));
  EXPECT_EQ(-1, renamed.descriptor());
  EXPECT_EQ(std::vector<std::string>{"a note"}, renamed.takeNotes());
  EXPECT_EQ(0U, renamed.counts().received);
}

}  // namespace
