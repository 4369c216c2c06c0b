#include "commands/rosnode.hpp"

#include "librecordings/rosbag2/bagwriter.hpp"
#include "support/temporaryfolder.hpp"
#include "tools/ros/fakebus.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::tools::RosNode;
using KV::tools::RosNodeOptions;

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t begin = 1'700'000'000 * second;
constexpr int messages = 3;

/// A bus that fails when it has no messages any more.
class EndingBus : public rostests::FakeBus
{
public:
  EndingBus()
  {
    for (int i = 0; i < messages; ++i)
      add("/tf", support::tfMessage({support::faceFrame("f", {0., 0., 1.5})}), begin, begin + i * second);
  }
  std::vector<KV::ros2::BusMessage> take() override
  {
    if (waiting.empty())
      throw std::runtime_error("cannot read the topic /x");
    return FakeBus::take();
  }
};

/// A bus that cannot publish any answer.
class DeafBus : public EndingBus
{
public:
  std::vector<KV::ros2::BusMessage> take() override { return FakeBus::take(); }
  void publish(const std::string&, const KV::ros2::EngagementMessage&) override
  {
    throw std::runtime_error("cannot write the topic /y");
  }
};

std::size_t linesIn(const std::string& path)
{
  std::ifstream file(path);
  std::size_t lines = 0;
  for (std::string line; std::getline(file, line);)
    ++lines;
  return lines;
}

/// A bus whose messages are there at once; the last one is cut.
class BusWithACutMessage : public rostests::FakeBus
{
public:
  BusWithACutMessage()
  {
    add("/tf", support::tfMessage({support::faceFrame("f", {0., 0., 1.5})}), begin);
    add("/tf", support::tfMessage({support::faceFrame("f", {0., 0., 1.5})}), begin + second);
    add("/tf", "cut", begin + second);
  }
};

/// A bus with more messages that cannot be read than warnings are kept; each is on a topic of its own.
class BusWithCutMessages : public rostests::FakeBus
{
public:
  static constexpr std::size_t forgotten = 7;

  BusWithCutMessages()
  {
    for (std::size_t i = 0; i < RosNode::mostNotes + forgotten; ++i)
      add("/humans/faces/f" + std::to_string(i) + "/expression", "cut", begin);
  }
};

/// A bus on which a person is seen, and another one more than a minute later.
class BusWithALongPause : public rostests::FakeBus
{
public:
  BusWithALongPause()
  {
    add("/tf", support::tfMessage({support::faceFrame("f", {0., 0., 1.5})}), begin - 61 * second);
    add("/tf", support::tfMessage({support::faceFrame("g", {0., 0., 1.5})}), begin);
  }
};

/// A bus with enough messages to fill the memory of an export.
class BusWithManyMessages : public rostests::FakeBus
{
public:
  static constexpr int count = 2000;

  BusWithManyMessages()
  {
    for (int i = 0; i < count; ++i)
      add("/tf", support::tfMessage({support::faceFrame("f", {0., 0., 1.5})}), begin + i * second / 10,
          begin + i * second / 10);
  }
};

/// Keeps who was updated.
class Updated : public KV::session::SessionObserver
{
public:
  void personUpdated(const KV::session::Snapshot& snapshot) override { names.insert(snapshot.name); }

  std::set<std::string> names;
};

class Node : public ::testing::Test
{
protected:
  /// Runs a node that holds all messages until the end.
  bool run(std::unique_ptr<KV::ros2::Bus> bus, double hold)
  {
    RosNodeOptions options;
    options.source.times = KV::tools::RosTimes::Source;
    options.source.hold = hold;
    options.recording = folder.path("record.jsonl");
    options.updates = folder.path("updates.jsonl");
    letTimePass();
    return makeNode(std::move(bus), options)->run();
  }

  std::unique_ptr<RosNode> makeNode(std::unique_ptr<KV::ros2::Bus> bus, const RosNodeOptions& options,
                                    const KV::tools::LiveListeners& listeners = {})
  {
    return std::make_unique<RosNode>(std::move(bus), clock, options, said, listeners,
                                     [this] { return steady += betweenReadings; });
  }

  /// Lets the clock go on with each reading by as much as a node waits, so that one without a view never waits.
  void letTimePass() { betweenReadings = std::chrono::milliseconds(20); }

  static KV::session::TimePoint clock() { return KV::session::TimePoint(KV::session::Duration(begin)); }

  std::chrono::milliseconds betweenReadings{0};  // of the clock
  KV::tools::LiveSource::Clock::time_point steady{std::chrono::hours(1)};
  const replaytests::TemporaryFolder folder;
  std::ostringstream errors;
  KV::tools::Messages said{errors, false};
};

TEST_F(Node, KeepsItsFilesWhenTheBusFails)
{
  EXPECT_FALSE(run(std::make_unique<EndingBus>(), 10.));

  EXPECT_EQ("skeigiot: cannot read the topic /x\n", errors.str());
  EXPECT_EQ(std::size_t{messages}, linesIn(folder.path("record.jsonl")));
  EXPECT_EQ(std::size_t{messages}, linesIn(folder.path("updates.jsonl")));
}

TEST_F(Node, KeepsItsFilesWhenItsAnswersCannotBePublished)
{
  EXPECT_FALSE(run(std::make_unique<DeafBus>(), 0.));

  EXPECT_EQ("skeigiot: cannot write the topic /y\n", errors.str());
  EXPECT_EQ(std::size_t{messages}, linesIn(folder.path("record.jsonl")));
  EXPECT_EQ(std::size_t{messages}, linesIn(folder.path("updates.jsonl")));
}

TEST_F(Node, GoesOnWhileAViewTakesItsInput)
{
  RosNodeOptions options;
  options.source.name = "ROS 2, domain 7";
  Updated updated;
  const auto node = makeNode(std::make_unique<BusWithACutMessage>(), options, {{&updated}, {}});

  EXPECT_TRUE(node->run([&](KV::tools::LiveSource& source) {
    EXPECT_LE(source.due(), steady);
    EXPECT_TRUE(source.take(true));
    EXPECT_EQ(std::set<std::string>{"f"}, updated.names);
    EXPECT_TRUE(source.status().isBus);
    EXPECT_EQ("ROS 2, domain 7", source.status().name);
    EXPECT_EQ(3U, source.status().lines);
    EXPECT_EQ(1U, source.status().refused);
    ASSERT_EQ(1U, source.takeNotes().size());
    EXPECT_TRUE(source.takeNotes().empty());
    EXPECT_EQ(steady + std::chrono::milliseconds(20), source.due());
    EXPECT_EQ(0U, errors.str().find("skeigiot: warning: a message on the topic /tf is left out: ")) << errors.str();
  }));
}

TEST_F(Node, KeepsWarningsForTheEndWhileATableIsShown)
{
  RosNodeOptions options;
  options.isQuiet = true;
  const auto node = makeNode(std::make_unique<BusWithACutMessage>(), options);

  EXPECT_TRUE(node->run([this](KV::tools::LiveSource& source) {
    EXPECT_TRUE(source.take(true));
    EXPECT_EQ("", errors.str());
  }));

  const std::string expected = "skeigiot: warning: a message on the topic /tf is left out: ";
  EXPECT_EQ(0U, errors.str().find(expected)) << errors.str();
  EXPECT_EQ(std::string::npos, errors.str().find(expected, 1)) << errors.str();
}

TEST_F(Node, ForgetsTheOldestOfManyWarningsAndSaysSo)
{
  RosNodeOptions options;
  options.isQuiet = true;
  const auto node = makeNode(std::make_unique<BusWithCutMessages>(), options);

  EXPECT_TRUE(node->run([](KV::tools::LiveSource& source) { EXPECT_TRUE(source.take(true)); }));

  EXPECT_EQ(0U, errors.str().find("skeigiot: warning: 7 earlier warnings were forgotten\nskeigiot: warning: a message "
                                  "on the topic /humans/faces/f7/expression is left out: "))
      << errors.str();
  const std::string all = errors.str();
  EXPECT_EQ(RosNode::mostNotes + 1, static_cast<std::size_t>(std::count(all.begin(), all.end(), '\n')));
}

TEST_F(Node, SaysWhoLeftToItsListeners)
{
  std::vector<std::int32_t> left;
  const auto node = makeNode(std::make_unique<BusWithALongPause>(), {},
                             {{}, [&left](std::int32_t person) { left.push_back(person); }});

  EXPECT_TRUE(node->run([this](KV::tools::LiveSource& source) {
    source.take(true);
    steady = source.due();
    source.take(true);
  }));

  EXPECT_EQ(1U, left.size());
}

TEST_F(Node, PublishesDiagnosticsOnceASecond)
{
  auto owned = std::make_unique<BusWithACutMessage>();
  const auto& diagnostics = owned->diagnostics["/diagnostics"];
  const auto node = makeNode(std::move(owned), {});

  EXPECT_TRUE(node->run([&](KV::tools::LiveSource& source) {
    source.take(true);
    EXPECT_EQ(1U, diagnostics.size());
    steady += std::chrono::milliseconds(999);
    source.take(true);
    EXPECT_EQ(1U, diagnostics.size());
    steady += std::chrono::milliseconds(1);
    source.take(true);
    EXPECT_EQ(2U, diagnostics.size());
  }));
}

TEST_F(Node, KeepsItsRecordingWhenItsUpdatesCannotBeWritten)
{
  RosNodeOptions options;
  options.source.times = KV::tools::RosTimes::Source;
  options.source.hold = 10.;
  options.recording = folder.path("record.jsonl");
  options.updates = "/dev/full";
  const auto node = makeNode(std::make_unique<BusWithManyMessages>(), options);

  EXPECT_FALSE(node->run([](KV::tools::LiveSource& source) { source.take(true); }));

  EXPECT_EQ("skeigiot: /dev/full: No space left on device\n", errors.str());
  EXPECT_EQ(std::size_t{BusWithManyMessages::count}, linesIn(folder.path("record.jsonl")));
}

TEST_F(Node, EndsWhenItsUpdatesCannotBeWritten)
{
  RosNodeOptions options;
  options.updates = "/dev/full";
  const auto node = makeNode(std::make_unique<BusWithManyMessages>(), options);

  letTimePass();
  EXPECT_FALSE(node->run());

  EXPECT_EQ("skeigiot: /dev/full: No space left on device\n", errors.str());
}

TEST_F(Node, SaysThatItsUpdatesCannotComeToTheirPlace)
{
  RosNodeOptions options;
  options.updates = "/dev/full";
  const auto node = makeNode(std::make_unique<BusWithACutMessage>(), options);

  EXPECT_FALSE(node->run([](KV::tools::LiveSource& source) { source.take(true); }));

  EXPECT_NE(std::string::npos, errors.str().find("skeigiot: /dev/full: No space left on device\n")) << errors.str();
}

TEST_F(Node, FailsWithItsViewAndEndsInOrder)
{
  RosNodeOptions options;
  options.updates = folder.path("updates.jsonl");
  const auto node = makeNode(std::make_unique<BusWithACutMessage>(), options);

  EXPECT_FALSE(node->run(
      [](KV::tools::LiveSource&) { throw std::runtime_error("there is no terminal to show the persons on"); }));

  EXPECT_EQ(0U, errors.str().find("skeigiot: there is no terminal to show the persons on\n")) << errors.str();
  EXPECT_EQ(2U, linesIn(folder.path("updates.jsonl")));
}

}  // namespace
