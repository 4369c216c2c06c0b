#include "ros/rosnames.hpp"

#include "commands/rossource.hpp"
#include "ros/renamingbus.hpp"
#include "ros/rosverdicts.hpp"
#include "tools/ros/fakebus.hpp"

#include <skeigiot/recordings/ros4hriinput.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
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

TEST(RosNames, OfATopicCountForThisTopicAlone)
{
  const RosNames names = namesWith({"/humans/faces/tracked:=/seen", "/tf:=/robot1/tf"});
  EXPECT_TRUE(names.changeTopics());
  EXPECT_EQ("/seen", names.outside("/humans/faces/tracked"));
  EXPECT_EQ("/humans/faces/tracked", names.inside("/seen"));
  EXPECT_EQ("/humans/faces/tracked/facs", names.outside("/humans/faces/tracked/facs")) << "of a face with this id";
  EXPECT_EQ("/humans/faces/tracked/facs", names.inside("/humans/faces/tracked/facs"));
  EXPECT_EQ("/seen/facs", names.inside("/seen/facs")) << "another topic";
  EXPECT_EQ("/tf_static", names.outside("/tf_static"));
  EXPECT_EQ("/robot1/tf", names.outside("/tf"));
  EXPECT_EQ("/robot1/tf_static", names.inside("/robot1/tf_static"));
}

TEST(RosNames, OfATopicWithAnIdCountForThisIdAlone)
{
  const RosNames names = namesWith({"/humans/faces/f1/facs:=/facs"});
  EXPECT_EQ("/facs", names.outside("/humans/faces/f1/facs"));
  EXPECT_EQ("/humans/faces/f1/expression", names.outside("/humans/faces/f1/expression"));
  EXPECT_EQ("/humans/faces/f2/facs", names.outside("/humans/faces/f2/facs"));
}

TEST(RosNames, OfARootCountForAllTopicsBelowIt)
{
  const RosNames names = namesWith({"/humans:=/robot1/humans"});
  EXPECT_TRUE(names.changeTopics());
  EXPECT_EQ("/robot1/humans/faces/tracked", names.outside("/humans/faces/tracked"));
  EXPECT_EQ("/robot1/humans/faces/f1/facs", names.outside("/humans/faces/f1/facs"));
  EXPECT_EQ("/humans/faces/tracked", names.inside("/robot1/humans/faces/tracked"));
  EXPECT_EQ("/robot1/humans", names.outside("/humans"));
  EXPECT_EQ("/humans2/faces/tracked", names.outside("/humans2/faces/tracked")) << "whole parts of a name only";
  EXPECT_EQ("/tf", names.inside("/tf"));
}

TEST(RosNames, MayBeForEachRoot)
{
  for (const std::string root :
       {"/humans", "/humans/faces", "/humans/persons", "/humans/voices", "/humans/interactions", "/skeigiot"})
  {
    RosNames names;
    names.addRule(root + ":=/a");
    EXPECT_EQ("/a/x", names.outside(root + "/x"));
    EXPECT_EQ(root + "/x", names.inside("/a/x"));
  }
}

TEST(RosNames, MayBeForEachTopicOfTheNode)
{
  KV::tools::RosSourceOptions options;
  options.times = KV::tools::RosTimes::Simulated;
  options.head.joints = {"head_pan"};
  std::vector<std::string> topics = KV::tools::RosSource::topics(options);
  for (const std::string& list : KV::recordings::Ros4hriInput::lists())
    topics.push_back(list);
  topics.insert(topics.end(), {KV::tools::RosVerdicts::topic, "/humans/persons/*/engagement_status",
                               "/humans/persons/*/affect", "/humans/interactions/gazing", "/diagnostics"});
  for (std::string topic : topics)
  {
    std::replace(topic.begin(), topic.end(), '*', 'a');
    RosNames names;
    names.addRule(topic + ":=/other");
    EXPECT_EQ("/other", names.outside(topic));
    EXPECT_EQ(topic, names.inside("/other"));
    EXPECT_EQ(topic + "/x", names.outside(topic + "/x"));
  }
}

TEST(RosNames, HideATopicUnderItsFormerName)
{
  const RosNames names = namesWith({"/humans:=/robot1/humans"});
  EXPECT_EQ("", names.inside("/humans/faces/tracked"));
  EXPECT_EQ("/robot2/humans/faces/tracked", names.inside("/robot2/humans/faces/tracked"));
}

TEST(RosNames, OfATopicCountBeforeThoseOfRootsAndLongerRootsBeforeShorterOnes)
{
  const std::vector<std::string> rules = {"/humans:=/a", "/humans/faces/tracked:=/seen", "/humans/faces:=/faces"};
  for (std::vector<std::size_t> order : {std::vector<std::size_t>{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}})
  {
    RosNames names;
    for (const std::size_t rule : order)
      names.addRule(rules.at(rule));
    EXPECT_EQ("/seen", names.outside("/humans/faces/tracked"));
    EXPECT_EQ("/faces/f/facs", names.outside("/humans/faces/f/facs"));
    EXPECT_EQ("/a/persons/p/alias", names.outside("/humans/persons/p/alias"));
    EXPECT_EQ("/humans/faces/tracked", names.inside("/seen"));
    EXPECT_EQ("/faces/tracked", names.inside("/faces/tracked")) << "a topic of somebody else";
    EXPECT_EQ("/humans/faces/f/facs", names.inside("/faces/f/facs"));
    EXPECT_EQ("/a/faces/f/facs", names.inside("/a/faces/f/facs"));
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

TEST(RosNames, MayBeginWithTheNode)
{
  const RosNames names = namesWith({"~/scopes:=/scopes", "/tf:=~/tf"});
  EXPECT_EQ("/scopes", names.outside("/skeigiot/scopes"));
  EXPECT_EQ("/skeigiot/verdicts", names.outside("/skeigiot/verdicts"));
  EXPECT_EQ("/skeigiot/tf", names.outside("/tf"));
}

TEST(RosNames, ThatBeginWithTheNodeFollowItsNameWhateverTheOrderOfTheRules)
{
  for (const RosNames& names :
       {namesWith({"~:=~", "/tf:=~/tf", "__node:=robot"}), namesWith({"__node:=robot", "/tf:=~/tf", "~:=~"})})
  {
    EXPECT_EQ("/robot/tf", names.outside("/tf"));
    EXPECT_EQ("/tf", names.inside("/robot/tf"));
    EXPECT_EQ("/robot/scopes", names.outside("/skeigiot/scopes"));
  }
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
  RosNames names = namesWith({"/tf:=/robot1/tf", "/skeigiot:=/skeigiot"});
  try
  {
    names.addRule(GetParam().rule);
    FAIL() << "the rule was taken";
  }
  catch (const std::invalid_argument& error)
  {
    EXPECT_EQ(GetParam().message, error.what());
  }
  EXPECT_EQ("skeigiot", names.node());
  EXPECT_EQ("/robot1/tf", names.outside("/tf"));
  EXPECT_EQ("/humans/faces/tracked", names.outside("/humans/faces/tracked"));
  EXPECT_EQ("/diagnostics", names.outside("/diagnostics"));
}

const std::string noTopic =
    "expected a topic that the node reads or publishes, such as /tf, or one of the roots /humans, /humans/faces, "
    "/humans/persons, /humans/voices, /humans/interactions and /skeigiot, found ";
const std::string noName = "expected a name with up to 80 letters, digits, '_' and '/', such as /robot1/humans, found ";
const std::string noNode = "expected a name of the node with up to 80 letters, digits and '_', found ";

INSTANTIATE_TEST_SUITE_P(
    Each, RosNamesRefuse,
    ::testing::Values(
        RefusedRule{"InAnotherForm", "/humans=/a", "expected FROM:=TO, found '/humans=/a'"},
        RefusedRule{"WithoutATopic", ":=/a", "expected FROM:=TO, found ':=/a'"},
        RefusedRule{"WithoutAName", "/humans:=", "expected FROM:=TO, found '/humans:='"},
        RefusedRule{"ForAnotherTopic", "/camera:=/a", noTopic + "'/camera'"},
        RefusedRule{"ForATopicBelowOneOfOurs", "/tf/a:=/a", noTopic + "'/tf/a'"},
        RefusedRule{"ForATopicThatIsNotRead", "/humans/faces/f1/roi:=/a", noTopic + "'/humans/faces/f1/roi'"},
        RefusedRule{"ForAMisspelledTopic", "/humans/faces/traked:=/a", noTopic + "'/humans/faces/traked'"},
        RefusedRule{"ForAPersonWithoutAnId", "/humans/persons//affect:=/a", noTopic + "'/humans/persons//affect'"},
        RefusedRule{"ForAnAnswerBelowAnAnswer", "/humans/persons/a/b/affect:=/a",
                    noTopic + "'/humans/persons/a/b/affect'"},
        RefusedRule{"ForAnotherPrivateTopic", "~/tf:=/a", noTopic + "'~/tf'"},
        RefusedRule{"ForANodeOfUsers", "~robot/tf:=/a", noTopic + "'~robot/tf'"},
        RefusedRule{"ForOneNodeOnly", "skeigiot:/tf:=/a", noTopic + "'skeigiot:/tf'"},
        RefusedRule{"ForAWildcard", "/humans/**:=/a", noTopic + "'/humans/**'"},
        RefusedRule{"ForAnUnknownGroup", "/humans/dogs:=/a", noTopic + "'/humans/dogs'"},
        RefusedRule{"ForATopicThatEndsWithASlash", "/humans/faces/:=/a", noTopic + "'/humans/faces/'"},
        RefusedRule{"WithASlashAlone", "/humans:=/", noName + "'/'"},
        RefusedRule{"WithASlashAtTheEnd", "/humans:=/a/", noName + "'/a/'"},
        RefusedRule{"WithTwoSlashes", "/humans:=/a//b", noName + "'/a//b'"},
        RefusedRule{"WithABlank", "/humans:=/a b", noName + "'/a b'"},
        RefusedRule{"WithADigitInFront", "/humans:=/a/1", noName + "'/a/1'"},
        RefusedRule{"WithAPrivateNameInTheMiddle", "/humans:=/a/~/b", noName + "'/a/~/b'"},
        RefusedRule{"WithAPrivateNameThatEndsWithASlash", "/humans:=~/", noName + "'~/'"},
        RefusedRule{"WithALongName", "/humans:=/" + std::string(80, 'a'),
                    noName + "'/" + std::string(39, 'a') + "...'"},
        RefusedRule{"ForTheSameTopic", "tf:=/b", "there are two rules for /tf"},
        RefusedRule{"WithTheSameName", "/humans:=/robot1/tf", "/tf and /humans would both be /robot1/tf"},
        RefusedRule{"WithTheSameNameAsThatOfTheNode", "/humans:=~", "/skeigiot and /humans would both be /skeigiot"},
        RefusedRule{"WithANodeThatBeginsWithADigit", "__node:=1", noNode + "'1'"},
        RefusedRule{"WithANodeInANamespace", "__node:=/a", noNode + "'/a'"},
        RefusedRule{"WithALongNode", "__node:=" + std::string(81, 'a'), noNode + "'" + std::string(40, 'a') + "...'"},
        RefusedRule{"WithANamespace", "__ns:=/robot1",
                    "the node has no namespace: give its topics other names, such as /humans:=/robot1/humans"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(RosNames, ForTheNodeAreGivenOnce)
{
  RosNames names = namesWith({"__node:=robot"});
  EXPECT_THROW(names.addRule("__name:=robot2"), std::invalid_argument);
  EXPECT_EQ("robot", names.node());
}

TEST(RosNames, OfTheNodeMayMakeAnotherNameTooLong)
{
  const std::string node(80, 'a');
  RosNames names = namesWith({"/tf:=~/tf"});
  EXPECT_THROW(names.addRule("__node:=" + node), std::invalid_argument);
  EXPECT_EQ("/skeigiot/tf", names.outside("/tf"));
}

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
