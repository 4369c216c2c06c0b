#include "ros/rosverdicts.hpp"

#include "tools/ros/fakebus.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::session::ScopeEnd;
using KV::session::ScopeVerdict;
using KV::tools::RosVerdicts;

ScopeVerdict verdictOn(const std::string& name, ScopeEnd end = ScopeEnd::Complete)
{
  ScopeVerdict verdict;
  verdict.name = name;
  verdict.from = KV::session::Duration(1'000'000'000);
  verdict.to = KV::session::Duration(3'500'000'000);
  verdict.end = end;
  return verdict;
}

TEST(RosVerdicts, AnnounceTheirTopicBeforeTheFirstOne)
{
  rostests::FakeBus bus;
  const RosVerdicts verdicts(bus);
  EXPECT_EQ(std::vector<std::string>{"/skeigiot/verdicts"}, bus.announced);
}

TEST(RosVerdicts, HaveTheWordAndTheUpdatesOfEachPerson)
{
  rostests::FakeBus bus;
  RosVerdicts verdicts(bus);
  ScopeVerdict verdict = verdictOn("greeting");
  verdict.persons[7] = {"positive", 25, {}};
  verdict.persons[9] = {"unknown", 1, {}};
  verdicts.scopeJudged(verdict);
  EXPECT_EQ(std::vector<std::string>{R"({"scope":"greeting","end":"complete","seconds":2.5,"persons":[)"
                                     R"({"id":"person_7","verdict":"positive","updates":25},)"
                                     R"({"id":"person_9","verdict":"unknown","updates":1}]})"},
            bus.texts.at("/skeigiot/verdicts"));
}

TEST(RosVerdicts, SayThatAScopeWasNotOpen)
{
  rostests::FakeBus bus;
  RosVerdicts verdicts(bus);
  verdicts.scopeJudged(verdictOn("a \xff", ScopeEnd::NotOpen));
  EXPECT_EQ(std::vector<std::string>{"{\"scope\":\"a \uFFFD\",\"end\":\"not open\",\"seconds\":2.5,\"persons\":[]}"},
            bus.texts.at("/skeigiot/verdicts"));
}

TEST(RosVerdicts, HaveABoundedNumberOfPersons)
{
  rostests::FakeBus bus;
  RosVerdicts verdicts(bus);
  ScopeVerdict verdict = verdictOn("crowd");
  for (int i = 0; i < 1001; ++i)
    verdict.persons[i] = {"neutral", 1, {}};
  verdicts.scopeJudged(verdict);
  const std::string text = bus.texts.at("/skeigiot/verdicts").front();
  EXPECT_NE(std::string::npos, text.find("\"person_999\""));
  EXPECT_EQ(std::string::npos, text.find("\"person_1000\""));
}

/// A bus that cannot publish a text.
class DeafBus : public rostests::FakeBus
{
public:
  void publish(const std::string&, const KV::ros2::TextMessage&) override
  {
    throw std::runtime_error("cannot write the topic /skeigiot/verdicts");
  }
};

TEST(RosVerdicts, EndWithTheErrorOfTheBus)
{
  DeafBus bus;
  RosVerdicts verdicts(bus);
  EXPECT_EQ("", verdicts.error());
  verdicts.scopeJudged(verdictOn("greeting"));
  EXPECT_EQ("cannot write the topic /skeigiot/verdicts", verdicts.error());
  verdicts.scopeJudged(verdictOn("greeting"));
}

}  // namespace
