#include "commands/rossource.hpp"

#include "librecordings/rosbag2/bagwriter.hpp"
#include "ros/rosanswers.hpp"
#include "tools/ros/fakebus.hpp"

#include <skeigiot/session/scopes.hpp>

#include <gtest/gtest.h>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::tools::RosSource;
using KV::tools::RosSourceOptions;
using KV::tools::RosTimes;

/// Keeps the steps of a session.
class Steps : public KV::session::SessionObserver
{
public:
  void stepBegins(const KV::recordings::Step& step) override { all.push_back(step); }

  std::vector<KV::recordings::Step> all;
};

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t begin = 1'700'000'000 * second;

KV::recordings::Step greetingStarts()
{
  KV::recordings::Step step;
  step.scopeStarts.emplace_back();
  step.scopeStarts.back().name = "greeting";
  return step;
}

class Source : public ::testing::Test
{
protected:
  RosSource makeSource(RosTimes times, double silence = 3600., double hold = 0.05)
  {
    RosSourceOptions options;
    options.hold = hold;
    options.times = times;
    options.silence = silence;
    return RosSource(
        bus, options, {{&steps}, [this](std::int32_t person) { left.push_back(person); }},
        [this] { return KV::session::TimePoint(KV::session::Duration(now)); }, [this] { return steady; });
  }

  /// Lets the time go on until the source is due.
  void waitFor(const RosSource& source) { steady = std::max(steady, source.due()); }

  static std::string face(const std::string& id) { return support::tfMessage({support::faceFrame(id, {0., 0., 1.5})}); }

  std::int64_t now = begin;
  RosSource::Clock::time_point steady{std::chrono::hours(1)};
  rostests::FakeBus bus;
  Steps steps;
  std::vector<std::int32_t> left;
};

TEST_F(Source, PlaysMessagesAtTheTimesAtWhichTheyCameIn)
{
  RosSource source = makeSource(RosTimes::Arrival);
  bus.add("/tf", face("f"), begin, begin - second);
  EXPECT_TRUE(source.take(true));
  EXPECT_FALSE(source.take(true));
  bus.add("/tf", face("f"), begin + second, 0);
  source.take(true);
  source.finish();

  ASSERT_EQ(2U, steps.all.size());
  EXPECT_EQ(begin, steps.all[0].time.time_since_epoch().count());
  EXPECT_EQ(begin + second, steps.all[1].time.time_since_epoch().count());
  EXPECT_EQ(2U, source.status().lines);
}

TEST_F(Source, PutsMessagesOfSeveralWritersIntoTheOrderOfTheirTimes)
{
  RosSource source = makeSource(RosTimes::Source);
  bus.add("/tf", face("late"), begin, begin + second);
  bus.add("/tf", face("early"), begin, begin);
  source.take(true);
  EXPECT_TRUE(steps.all.empty());
  source.finish();

  ASSERT_LE(2U, steps.all.size());
  EXPECT_EQ("early", steps.all[0].personName);
  EXPECT_EQ(begin, steps.all[0].time.time_since_epoch().count());
}

TEST_F(Source, HoldsABoundedNumberOfMessages)
{
  RosSource source = makeSource(RosTimes::Source, 3600., 3600.);
  constexpr int most = 10'000;
  for (int i = 0; i < most; ++i)
    bus.add("/tf", face("f"), begin, begin + i);
  source.take(true);
  EXPECT_EQ(0U, source.status().lines);

  bus.add("/tf", face("f"), begin, begin + most);
  source.take(true);
  EXPECT_EQ(1U, source.status().lines);
}

TEST_F(Source, HoldsABoundedNumberOfBytes)
{
  RosSource source = makeSource(RosTimes::Source, 3600., 3600.);
  const std::string message(std::size_t{1} << 20U, '\0');
  constexpr int most = 63;  // of 64 MiB, since a message has a topic, too
  for (int i = 0; i < most; ++i)
    bus.add("/tf", message, begin, begin + i);
  source.take(true);
  EXPECT_EQ(0U, source.status().lines);

  bus.add("/tf", message, begin, begin + most);
  bus.add("/tf", message, begin, begin + most + 1);
  source.take(true);
  EXPECT_EQ(2U, source.status().lines);

  source.finish();
  EXPECT_EQ(most + 2U, source.status().lines);
}

TEST_F(Source, TakesTheTimeOfArrivalWhereTheWriterGaveNone)
{
  RosSource source = makeSource(RosTimes::Source);
  bus.add("/tf", face("f"), begin, 0);
  source.take(true);
  source.finish();
  ASSERT_EQ(1U, steps.all.size());
  EXPECT_EQ(begin, steps.all[0].time.time_since_epoch().count());
}

TEST_F(Source, RefusesBadMessagesAndSaysSoOnceForEachTopic)
{
  RosSource source = makeSource(RosTimes::Arrival);
  bus.notes = {"a writer is refused"};
  bus.add("/humans/faces/f/expression", "cut", begin);
  bus.add("/humans/faces/f/expression", "cut", begin);
  bus.add("/humans/faces/g/expression", "cut", begin);
  bus.add("/tf", face("f"), begin);
  source.take(true);

  EXPECT_EQ(4U, source.status().lines);
  EXPECT_EQ(3U, source.status().refused);
  EXPECT_EQ(0U, source.status().lastError.find("a message on the topic /humans/faces/g/expression is left out: "));
  EXPECT_EQ(3U, source.takeNotes().size());
  EXPECT_TRUE(source.takeNotes().empty());
}

TEST_F(Source, LetsPersonsBeMissingWhenNothingComesIn)
{
  RosSource source = makeSource(RosTimes::Arrival, 1.);
  bus.add("/tf", face("f"), begin);
  source.take(true);
  now = begin + 2 * second;
  waitFor(source);
  source.take(false);

  ASSERT_EQ(2U, steps.all.size());
  EXPECT_TRUE(steps.all[0].seen);
  EXPECT_FALSE(steps.all[1].seen);
  EXPECT_TRUE(left.empty());
}

TEST_F(Source, LetsPersonsBeMissingByTheTimesOfTheWritersWhenOnlyOtherMessagesComeIn)
{
  RosSource source = makeSource(RosTimes::Source, 1., 0.);
  const std::string joint = support::tfMessage({{"base", "joint", {0., 0., 1.}, {0., 0., 0., 1.}}});
  const auto take = [&](const std::string& message, std::int64_t written) {
    waitFor(source);
    bus.add("/tf", message, begin, written);
    source.take(true);
  };
  take(face("f"), begin);
  take(joint, begin + 999 * second / 1000);
  ASSERT_EQ(1U, steps.all.size());

  take(joint, begin + second);

  ASSERT_EQ(2U, steps.all.size());
  EXPECT_TRUE(steps.all[0].seen);
  EXPECT_FALSE(steps.all[1].seen);
  EXPECT_EQ(begin + second, steps.all[1].time.time_since_epoch().count());
}

TEST_F(Source, ForgetsPersonsWhoWereNotSeenForAMinute)
{
  RosSource source = makeSource(RosTimes::Arrival);
  bus.add("/tf", face("f"), begin);
  bus.add("/tf", face("g"), begin + second);
  bus.add("/tf", face("g"), begin + 61 * second);
  source.take(true);
  now = begin + 61 * second;
  waitFor(source);
  source.take(false);

  EXPECT_EQ(std::vector<std::int32_t>{*steps.all[0].person}, left);
}

TEST_F(Source, StartsAndStopsScopes)
{
  RosSource source = makeSource(RosTimes::Arrival);
  EXPECT_EQ("", source.takeScopes(greetingStarts()));
  EXPECT_EQ(begin, steps.all.at(0).time.time_since_epoch().count());
}

TEST_F(Source, StartsAScopeAfterWhatCameInBeforeAndBeforeWhatCameInMeanwhile)
{
  constexpr std::int64_t millisecond = 1'000'000;
  RosSource source = makeSource(RosTimes::Arrival);
  bus.add("/tf", face("f"), begin);
  EXPECT_TRUE(source.take(true));
  now = begin + 5 * millisecond;
  EXPECT_EQ("", source.takeScopes(greetingStarts()));
  bus.add("/tf", face("f"), begin + 2 * millisecond);
  EXPECT_TRUE(source.take(true));
  source.finish();

  ASSERT_EQ(3U, steps.all.size());
  EXPECT_TRUE(steps.all[0].person);
  EXPECT_EQ(begin, steps.all[0].time.time_since_epoch().count());
  EXPECT_EQ(1U, steps.all[1].scopeStarts.size());
  EXPECT_EQ(now, steps.all[1].time.time_since_epoch().count());
  EXPECT_TRUE(steps.all[2].person);
  EXPECT_EQ(now, steps.all[2].time.time_since_epoch().count());
}

// After a message, the time goes on with the clock when the silence has lasted.
TEST_F(Source, GoesOnWithTheClockHoweverManyScopesStartInASilence)
{
  RosSource source = makeSource(RosTimes::Source, 1., 0.);
  bus.add("/tf", face("f"), begin, begin);
  source.take(true);
  constexpr std::int64_t between = 2 * second;
  for (int i = 1; i <= 3; ++i)
  {
    steady += std::chrono::nanoseconds(between);
    EXPECT_EQ("", source.takeScopes(greetingStarts()));
    EXPECT_EQ(begin + i * between, steps.all.back().time.time_since_epoch().count());
  }

  steady += std::chrono::milliseconds(7);
  EXPECT_EQ(begin + 3 * between + second * 7 / 1000, source.present().time_since_epoch().count());
}

TEST_F(Source, KeepsTheTimeOfTheLastMessageUntilTheSilenceHasLasted)
{
  RosSource source = makeSource(RosTimes::Source, 1., 0.);
  bus.add("/tf", face("f"), begin, begin);
  source.take(true);
  steady += std::chrono::milliseconds(999);
  EXPECT_EQ("", source.takeScopes(greetingStarts()));
  EXPECT_EQ(begin, steps.all.back().time.time_since_epoch().count());
}

TEST_F(Source, HoldsEachMessageForEarlierOnes)
{
  RosSource source = makeSource(RosTimes::Source, 3600., 0.05);
  bus.add("/tf", face("late"), begin, begin + second);
  source.take(true);
  steady += std::chrono::milliseconds(49);
  EXPECT_FALSE(source.take(true));
  bus.add("/tf", face("early"), begin, begin);
  source.take(true);
  steady += std::chrono::milliseconds(49);
  EXPECT_FALSE(source.take(true)) << "the late one stays behind the early one";
  steady += std::chrono::milliseconds(1);
  EXPECT_TRUE(source.take(true));
  EXPECT_EQ(2U, source.status().lines);
  source.finish();
  EXPECT_EQ("early", steps.all.at(0).personName);
}

TEST_F(Source, HoldsAMessageNoLongerThanItMust)
{
  RosSource source = makeSource(RosTimes::Source, 3600., 0.05);
  bus.add("/tf", face("f"), begin, begin);
  source.take(true);
  steady += std::chrono::milliseconds(50);
  EXPECT_TRUE(source.take(true));
}

TEST_F(Source, IsDueAgainAfterTwentyMilliseconds)
{
  RosSource source = makeSource(RosTimes::Arrival);
  source.take(true);
  EXPECT_EQ(steady + std::chrono::milliseconds(20), source.due());
  steady += std::chrono::milliseconds(19);
  source.take(true);
  EXPECT_EQ(steady + std::chrono::milliseconds(1), source.due());
  steady += std::chrono::milliseconds(1);
  source.take(true);
  EXPECT_EQ(steady + std::chrono::milliseconds(20), source.due());
}

TEST_F(Source, SaysWhyAScopeCannotStart)
{
  RosSource source = makeSource(RosTimes::Arrival);
  KV::recordings::Step step;
  for (std::size_t i = 0; i <= KV::session::Scopes::mostOpen; ++i)
    step.scopeStarts.push_back({std::to_string(i), -1});
  EXPECT_EQ("more than 100 scopes would be open: stop scopes that are over first", source.takeScopes(step));
  EXPECT_TRUE(steps.all.empty());
}

TEST_F(Source, HasNoTimeForAScopeBeforeTheFirstMessageOfAWriter)
{
  RosSource source = makeSource(RosTimes::Source);
  KV::recordings::Step step;
  step.scopeStops.emplace_back("greeting");
  EXPECT_EQ("no message has come in yet, so there is no time at which a scope could start", source.takeScopes(step));
  EXPECT_TRUE(steps.all.empty());
}

TEST_F(Source, StartsAndStopsScopesThatATopicNames)
{
  RosSource source = makeSource(RosTimes::Source, 3600., 0.);
  bus.add("/tf", face("f"), begin, begin);
  bus.add("/skeigiot/scopes", support::stringMessage(R"({"startScope": "greeting"})"), begin, begin + 1 * second);
  bus.add("/tf", face("f"), begin, begin + 2 * second);
  bus.add("/skeigiot/scopes", support::stringMessage(R"({"stopScope": "greeting"})"), begin, begin + 3 * second);
  source.take(true);
  source.finish();

  ASSERT_EQ(4U, steps.all.size());
  ASSERT_EQ(1U, steps.all[1].scopeStarts.size());
  EXPECT_EQ("greeting", steps.all[1].scopeStarts[0].name);
  EXPECT_EQ(begin + 1 * second, steps.all[1].time.time_since_epoch().count());
  EXPECT_EQ(std::vector<std::string>{"greeting"}, steps.all[3].scopeStops);
  EXPECT_TRUE(source.takeNotes().empty());
}

TEST_F(Source, SaysWhyAMessageAboutAScopeIsLeftOut)
{
  const std::string leftOut = "a message on the topic /skeigiot/scopes is left out: ";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {support::stringMessage("greeting"), leftOut + "An order is a JSON object."},
      {support::stringMessage("{}"), leftOut + "An order has one of the members startScope and stopScope."},
      {support::stringMessage(R"({"startScope": ""})"), leftOut + "The name of a scope has 1 to 200 bytes."},
      {support::stringMessage(R"({"boundary": "positive", "value": 0.5})"),
       leftOut + "An order has one of the members startScope and stopScope."}};
  for (const auto& [message, note] : cases)
  {
    RosSource source = makeSource(RosTimes::Arrival);
    bus.add("/skeigiot/scopes", message, begin);
    source.take(true);
    EXPECT_EQ(std::vector<std::string>{note}, source.takeNotes());
    EXPECT_EQ(1U, source.status().refused);
  }
}

struct SoftBiometricsCase
{
  const char* name;
  std::string message;
  const char* found;  // age and gender
};

class SoftBiometricsInSource : public Source, public ::testing::WithParamInterface<SoftBiometricsCase>
{};

TEST_P(SoftBiometricsInSource, GoWithTheNextFrameOfTheFace)
{
  RosSource source = makeSource(RosTimes::Arrival);
  bus.add("/tf", face("f"), begin);
  bus.add("/humans/faces/f/softbiometrics", GetParam().message, begin + second / 10);
  bus.add("/tf", face("f"), begin + second / 5);
  source.take(true);
  source.finish();
  ASSERT_EQ(2U, steps.all.size());
  const KV::PersonObservation& seen = steps.all[1].observation;
  std::ostringstream found;
  if (seen.age)
    found << seen.age->value.value << " years, " << seen.age->value.confidence << " ";
  if (seen.gender)
    found << (seen.gender->value.value ? "true" : "false") << ", " << seen.gender->value.confidence;
  EXPECT_EQ(GetParam().found, found.str());
}

INSTANTIATE_TEST_SUITE_P(
    Messages, SoftBiometricsInSource,
    ::testing::Values(
        SoftBiometricsCase{"Female", support::softBiometricsMessage(30, 0.5f, 1, 0.75f), "30 years, 0.5 true, 0.75"},
        SoftBiometricsCase{"Male", support::softBiometricsMessage(30, 0.5f, 2, 0.75f), "30 years, 0.5 false, 0.75"},
        SoftBiometricsCase{"OfAnotherGender", support::softBiometricsMessage(30, 0.5f, 3, 0.75f), "30 years, 0.5 "},
        SoftBiometricsCase{"WithoutAGender", support::softBiometricsMessage(30, 0.5f, 0, 0.f), "30 years, 0.5 "},
        SoftBiometricsCase{"WithoutConfidence", support::softBiometricsMessage(30, 0.f, 1, 0.f), ""},
        SoftBiometricsCase{"WithAConfidenceThatIsNoNumber", support::softBiometricsMessage(30, std::nanf(""), 1, 1.f),
                           "true, 1"}),
    [](const auto& row) { return std::string(row.param.name); });

/// The robot's own head.
class RobotHeadInSource : public Source
{
protected:
  RosSource sourceWith(const KV::recordings::RobotHead& head)
  {
    RosSourceOptions options;
    options.head = head;
    options.silence = 3600.;
    return RosSource(
        bus, options, {{&steps}, {}}, [this] { return KV::session::TimePoint(KV::session::Duration(now)); },
        [this] { return steady; });
  }

  /// Returns the angles of the head in a step, as text with their age in ms; empty without.
  std::string headIn(std::size_t step) const
  {
    const auto& head = steps.all.at(step).observation.robotHeadPosture;
    if (!head)
      return "";
    const auto age = (steps.all[step].time - head->time).count() / 1'000'000;
    return std::to_string(std::lround(head->value.yaw)) + "," + std::to_string(std::lround(head->value.pitch)) + " " +
           std::to_string(age);
  }

  static constexpr double degree = 3.14159265358979 / 180.;
  static constexpr std::int64_t frame = second / 10;
};

TEST_F(RobotHeadInSource, GoesWithTheNextStepOfEachPersonOnce)
{
  RosSource source = sourceWith({{"head_pan", "head_tilt"}, ""});
  bus.add("/joint_states",
          support::jointStatesMessage({"arm", "head_tilt", "head_pan"}, {1., -5. * degree, 20. * degree}), begin);
  for (int i = 1; i <= 2; ++i)
    for (const char* const id : {"a", "b"})
      bus.add("/tf", face(id), begin + i * frame);
  source.take(true);
  source.finish();

  ASSERT_EQ(4U, steps.all.size());
  EXPECT_EQ("20,-5 100", headIn(0));
  EXPECT_EQ("20,-5 100", headIn(1));
  EXPECT_EQ("", headIn(2));
  EXPECT_EQ("", headIn(3));
}

TEST_F(RobotHeadInSource, KeepsTheAngleOfAJointThatAMessageDoesNotHave)
{
  RosSource source = sourceWith({{"head_pan", "head_tilt"}, ""});
  bus.add("/joint_states", support::jointStatesMessage({"head_pan"}, {20. * degree}), begin);
  bus.add("/joint_states", support::jointStatesMessage({"head_tilt"}, {10. * degree}), begin + 1);
  bus.add("/tf", face("a"), begin + frame);
  source.take(true);
  source.finish();
  EXPECT_EQ("20,10 99", headIn(0));
}

TEST_F(RobotHeadInSource, LeavesOutPositionsThatAreMissingOrNotFinite)
{
  RosSource source = sourceWith({{"head_pan"}, ""});
  bus.add("/joint_states", support::jointStatesMessage({"head_pan"}, {}), begin);
  bus.add("/joint_states", support::jointStatesMessage({"head_pan"}, {std::nan("")}), begin);
  bus.add("/joint_states", support::jointStatesMessage({"arm"}, {1.}), begin);
  bus.add("/tf", face("a"), begin + frame);
  source.take(true);
  source.finish();
  ASSERT_EQ(1U, steps.all.size());
  EXPECT_EQ("", headIn(0));
  EXPECT_TRUE(source.takeNotes().empty());
}

TEST_F(RobotHeadInSource, NamesTheTopicOfJointsThatCannotBeRead)
{
  RosSource source = sourceWith({{"head_pan"}, ""});
  bus.add("/joint_states", std::string("\0\1\0\0\1", 5), begin);
  source.take(true);
  const std::vector<std::string> notes = source.takeNotes();
  ASSERT_EQ(1U, notes.size());
  EXPECT_EQ(0U, notes.front().find("a message on the topic /joint_states is left out: ends too early")) << notes[0];
}

TEST_F(RobotHeadInSource, IsTheCameraInTheFrameOfTheBody)
{
  RosSource source = sourceWith({{}, "base_link"});
  // The axis of a camera goes forward, that of its frame with x to the right and y down: first so, then 30 degrees to
  // the left.
  const std::array<double, 4> ahead{-0.5, 0.5, -0.5, 0.5};
  const std::array<double, 4> aside = support::product(support::turned(30., {0., 0., 1.}), ahead);
  const auto cameraAt = [](const std::array<double, 4>& rotation) {
    return support::tfMessage({{"base_link", "camera_optical", {0., 0., 1.}, rotation}});
  };
  bus.add("/tf", cameraAt(ahead), begin);
  bus.add("/tf", face("a"), begin + frame);
  bus.add("/tf", cameraAt(aside), begin + 2 * frame);
  bus.add("/tf", face("a"), begin + 3 * frame);
  source.take(true);
  source.finish();

  ASSERT_EQ(2U, steps.all.size());
  EXPECT_EQ("0,0 0", headIn(0));
  EXPECT_EQ("30,0 0", headIn(1));
}

TEST_F(RobotHeadInSource, IsUnknownWithoutAWayFromTheCameraToTheBody)
{
  RosSource source = sourceWith({{}, "base_link"});
  bus.add("/tf", face("a"), begin);
  source.take(true);
  source.finish();
  ASSERT_EQ(1U, steps.all.size());
  EXPECT_EQ("", headIn(0));
}

/// Messages of a simulation, whose clock counts from 0.
class SourceOfASimulation : public Source
{
protected:
  RosSource source = makeSource(RosTimes::Simulated, 1.);

  void tick(std::int64_t clock) { bus.add("/clock", support::clockMessage(clock), begin); }
  void see(const std::string& id) { bus.add("/tf", face(id), begin); }

  /// Returns the times of the steps since the simulation began, in ms.
  std::vector<std::int64_t> times() const
  {
    std::vector<std::int64_t> all;
    for (const KV::recordings::Step& step : steps.all)
      all.push_back((step.time.time_since_epoch().count() - madeUpDate) / 1'000'000);
    return all;
  }

  static constexpr std::int64_t madeUpDate = 1'577'836'800 * second;
  static constexpr std::int64_t millisecond = second / 1000;
};

TEST_F(SourceOfASimulation, PlaysMessagesAtTheTimeOfTheClock)
{
  tick(5 * second);
  see("f");
  tick(5 * second + 100 * millisecond);
  see("f");
  source.take(true);
  source.finish();
  EXPECT_EQ((std::vector<std::int64_t>{5000, 5100}), times());
  EXPECT_EQ(2U, source.status().lines) << "times do not count";
}

TEST_F(SourceOfASimulation, LeavesMessagesOutUntilTheFirstTime)
{
  see("f");
  see("f");
  source.take(true);
  source.finish();
  EXPECT_TRUE(steps.all.empty());
  EXPECT_EQ(2U, source.status().refused);
  EXPECT_EQ(std::vector<std::string>{"messages are left out until the first time comes in on /clock"},
            source.takeNotes());
}

TEST_F(SourceOfASimulation, StandsStillWithTheClock)
{
  tick(5 * second);
  see("f");
  source.take(true);
  now += 3600 * second;  // for us
  source.take(true);
  EXPECT_EQ(madeUpDate + 5 * second, source.present().time_since_epoch().count());
  source.finish();
  EXPECT_EQ((std::vector<std::int64_t>{5000}), times()) << "nobody is missing";
  EXPECT_TRUE(left.empty());
}

TEST_F(SourceOfASimulation, GoesOnWhenTheClockIsSetBackAndForgetsThePersons)
{
  tick(100 * second);
  see("f");
  tick(10 * second);
  see("f");
  tick(11 * second);
  see("f");
  source.take(true);
  source.finish();

  EXPECT_EQ((std::vector<std::int64_t>{100'000, 100'000, 101'000}), times());
  ASSERT_EQ(3U, steps.all.size());
  EXPECT_EQ(std::vector<std::int32_t>{*steps.all[0].person}, left);
  EXPECT_NE(*steps.all[0].person, *steps.all[1].person) << "a person of another run";
  EXPECT_EQ(*steps.all[1].person, *steps.all[2].person);
  EXPECT_EQ(11 * second, source.stampOf(steps.all[2].time)) << "the time of the simulation";
  EXPECT_EQ(11 * second, source.stamp());
  EXPECT_EQ(std::vector<std::string>{"the time on /clock was set back by 90 s: the persons are forgotten, also when it "
                                     "happens again"},
            source.takeNotes());
}

TEST_F(SourceOfASimulation, ForgetsPersonsWhenTheClockJumpsForwardByMoreThanAMinute)
{
  tick(5 * second);
  see("f");
  tick(3600 * second);
  see("g");
  source.take(true);
  ASSERT_EQ(1U, left.size());
  source.finish();
  EXPECT_EQ(5000, times().front());
  EXPECT_EQ("g", steps.all.back().personName);
  EXPECT_EQ(3'600'000, times().back());
}

TEST_F(SourceOfASimulation, SurvivesAThousandJumps)
{
  for (int i = 0; i < 1000; ++i)
  {
    tick((i % 2 == 0 ? 500 : 100) * second);
    see("f");
    source.take(true);
  }
  source.finish();
  EXPECT_EQ(999U, left.size()) << "once for each jump, in both directions";
  for (std::size_t i = 1; i < steps.all.size(); ++i)
    ASSERT_LE(steps.all[i - 1].time, steps.all[i].time);
}

TEST_F(SourceOfASimulation, NamesATimeThatCannotBeRead)
{
  bus.add("/clock", "cut", begin);
  bus.add("/clock", support::clockMessage(-2 * second), begin);
  source.take(true);
  const std::vector<std::string> notes = source.takeNotes();
  ASSERT_EQ(1U, notes.size());
  EXPECT_EQ(0U, notes[0].find("a message on the topic /clock is left out: ")) << notes[0];
  EXPECT_EQ(2U, source.status().refused);
}

/// Many persons, and what is published about them. The time is simulated, so that all of it is as the test says.
class CrowdInSource : public ::testing::Test
{
protected:
  static RosSourceOptions options()
  {
    RosSourceOptions options;
    options.times = RosTimes::Simulated;
    return options;
  }

  void takeAt(std::int64_t clock, const std::vector<std::string>& faces)
  {
    bus.add("/clock", support::clockMessage(clock), begin);
    bus.add("/humans/faces/tracked", support::idsMessage(faces), begin);
    std::vector<support::FrameMessage> frames;
    for (const std::string& id : faces)
      frames.push_back(support::faceFrame(id, {0., 0., 1.5}));
    bus.add("/tf", support::tfMessage(frames), begin);
  }

  rostests::FakeBus bus;
  KV::tools::RosAnswers answers{bus};
  int left = 0;
  RosSource source{bus,
                   options(),
                   {{&answers},
                    [this](std::int32_t person) {
                      answers.remove(person);
                      ++left;
                    }},
                   [] { return KV::session::TimePoint(KV::session::Duration(begin)); },
                   [] { return RosSource::Clock::time_point(std::chrono::hours(1)); }};
};

TEST_F(CrowdInSource, LeavesNothingOfIdsThatComeAndGoAThousandTimes)
{
  constexpr int ids = 1000;
  constexpr std::int64_t between = 62 * second;  // longer than persons are remembered
  for (int i = 0; i < ids; ++i)
  {
    const std::string number = std::to_string(i);
    takeAt(i * between, {"f" + number});
    bus.add("/humans/persons/p" + number + "/face_id", support::stringMessage("f" + number), begin);
    takeAt(i * between + second, {"f" + number});
    takeAt(i * between + 2 * second, {});
    source.take(true);
    ASSERT_LE(answers.persons(), 2U) << number;
  }
  source.finish();

  EXPECT_EQ(0U, source.status().refused);
  EXPECT_TRUE(source.takeNotes().empty());
  EXPECT_GE(left, ids - 1);
  EXPECT_LE(answers.persons(), 2U);
  // Each had topics as a face, and then as a person.
  const auto areOfAPerson = [](const auto& topic) { return topic.first.rfind("/humans/persons/p", 0) == 0; };
  EXPECT_EQ(ids, std::count_if(bus.engagements.begin(), bus.engagements.end(), areOfAPerson));
  EXPECT_GE(bus.withdrawn.size(), static_cast<std::size_t>(2 * (ids - 1)));
}

TEST_F(CrowdInSource, AnswersEachOfAHundredPersonsWithEachCycle)
{
  constexpr int persons = 100;
  constexpr int frames = 30;
  std::vector<std::string> faces;
  for (int i = 0; i < persons; ++i)
    faces.push_back("f" + std::to_string(i));
  for (int frame = 0; frame < frames; ++frame)
  {
    takeAt(frame * second / 10, faces);
    source.take(true);
  }
  source.finish();

  EXPECT_EQ(0U, source.status().refused);
  EXPECT_EQ(0, left);
  EXPECT_EQ(static_cast<std::size_t>(persons), answers.persons());
  ASSERT_EQ(static_cast<std::size_t>(persons), bus.engagements.size());
  const std::size_t answersOfFirst = bus.engagements.begin()->second.size();
  EXPECT_GE(answersOfFirst, static_cast<std::size_t>(frames) - 1);
  for (const auto& [topic, messages] : bus.engagements)
    EXPECT_EQ(answersOfFirst, messages.size()) << topic;
  std::set<std::string> looking;
  for (const auto& gaze : bus.gazes["/humans/interactions/gazing"])
    looking.insert(gaze.sender);
  EXPECT_EQ(static_cast<std::size_t>(persons), looking.size());
}

TEST(TopicsOfTheSource, AreThoseThatTheOptionsAskFor)
{
  RosSourceOptions options;
  EXPECT_EQ("tf2_msgs/msg/TFMessage", RosSource::typeOf("/tf", options));
  EXPECT_EQ("std_msgs/msg/String", RosSource::typeOf("/skeigiot/scopes", options));
  EXPECT_EQ("", RosSource::typeOf("/clock", options));
  EXPECT_EQ("", RosSource::typeOf("/joint_states", options));
  const std::size_t few = RosSource::topics(options).size();

  options.times = RosTimes::Simulated;
  options.head.joints = {"head_pan"};
  EXPECT_EQ("rosgraph_msgs/msg/Clock", RosSource::typeOf("/clock", options));
  EXPECT_EQ("sensor_msgs/msg/JointState", RosSource::typeOf("/joint_states", options));
  EXPECT_EQ(few + 2, RosSource::topics(options).size());
}

}  // namespace
