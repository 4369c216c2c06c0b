#include "bridges/ros2/cyclonepeer.hpp"
#include "librecordings/rosbag2/bagwriter.hpp"
#include "support/childprocess.hpp"
#include "support/command.hpp"
#include "support/httpexchange.hpp"
#include "support/temporaryfolder.hpp"
#include "support/terminalprocess.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using rostests::CyclonePeer;
using rostests::Received;

/// Tests that run at the same time are on domains of their own.
int domainOfThisProcess()
{
  return 1 + static_cast<int>(::getpid() % 100);
}

std::string textOf(const std::string& path)
{
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// Leads what is written to the standard error into a file; for programs that are started meanwhile.
class ErrorsToFile
{
public:
  explicit ErrorsToFile(const std::string& path) : _before(::dup(STDERR_FILENO))
  {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
    ::dup2(file, STDERR_FILENO);
    ::close(file);
  }
  ~ErrorsToFile()
  {
    ::dup2(_before, STDERR_FILENO);
    ::close(_before);
  }
  ErrorsToFile(const ErrorsToFile&) = delete;
  ErrorsToFile& operator=(const ErrorsToFile&) = delete;

private:
  int _before;
};

struct Message
{
  double seconds;
  std::string topic;
  std::string cdr;
};

constexpr std::int64_t begin = 1'700'000'000'000'000'000;
// The wire has times in parts of 2^32 of a second: multiples of this one are the same in nanoseconds.
constexpr double grid = 1. / 512.;

std::int64_t timeOf(const Message& message)
{
  return begin + static_cast<std::int64_t>(message.seconds * 1e9);
}

/// A person who looks at the robot and smiles, at 30 Hz, and one who looks away; then nobody.
std::vector<Message> scene()
{
  std::vector<Message> messages{{0., "/humans/persons/ada/face_id", support::stringMessage("f1")}};
  constexpr int frames = 90;
  for (int frame = 0; frame < frames; ++frame)
  {
    const double time = grid * (1 + 17 * frame);
    messages.push_back({time, "/humans/faces/tracked", support::idsMessage({"f1", "f2"})});
    messages.push_back({time + grid, "/humans/faces/f1/expression", support::expressionMessage("happy", 0.9f, 0.8f)});
    messages.push_back({time + 2 * grid, "/humans/faces/f2/expression",
                        support::expressionMessage(frame % 2 == 0 ? "sad" : "neutral", -0.5f, 0.7f)});
    messages.push_back(
        {time + 3 * grid, "/tf",
         support::tfMessage({support::faceFrame("f1", {0., 0., 1.5}), support::faceFrame("f2", {0.6, 0., 2.}, 60.)})});
  }
  messages.push_back({grid * (1 + 17 * frames) + 1., "/humans/faces/tracked", support::idsMessage({})});
  return messages;
}

/// The updates in a file, without what differs between a live session and a replay of a file.
std::vector<nlohmann::json> updatesIn(const std::string& path)
{
  std::vector<nlohmann::json> updates;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);)
  {
    nlohmann::json update = nlohmann::json::parse(line);
    update.erase("file");
    updates.push_back(std::move(update));
  }
  return updates;
}

/// Describes the first update that is not the same; empty if all are.
std::string differenceOf(const std::vector<nlohmann::json>& expected, const std::vector<nlohmann::json>& found)
{
  const std::size_t count = std::max(expected.size(), found.size());
  for (std::size_t i = 0; i < count; ++i)
  {
    const std::string left = i < expected.size() ? expected[i].dump() : "none";
    const std::string right = i < found.size() ? found[i].dump() : "none";
    if (left != right)
      return "update " + std::to_string(i) + " of " + std::to_string(expected.size()) + " and " +
             std::to_string(found.size()) + ": expected " + left + ", found " + right;
  }
  return "";
}

/// The node in a process of its own. Its warnings and errors go into a file.
class Node
{
public:
  Node(int domain, const std::string& errors, const std::vector<std::string>& options) : _errors(errors)
  {
    const ErrorsToFile toFile(errors);
    std::vector<std::string> arguments{"ros", "--domain", std::to_string(domain)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    _process.emplace(arguments);
  }

  /// Ends it as systemd does; returns its exit status.
  int stop()
  {
    _process->signal(SIGTERM);
    return _process->wait();
  }

  std::string readLine() { return _process->readLine(); }
  std::string errors() const { return textOf(_errors); }

private:
  std::string _errors;
  std::optional<livetests::ChildProcess> _process;
};

/// A node that runs, and a participant of another implementation beside it.
class RosCommand : public ::testing::Test
{
protected:
  /// Starts the node, and waits until it is there.
  void start(const std::vector<std::string>& options)
  {
    peer.read("/diagnostics");
    node.emplace(domain, folder.path("errors"), options);
    ASSERT_TRUE(waitForDiagnostics([](const Received&) { return true; })) << node->errors();
  }

  bool waitForDiagnostics(const std::function<bool(const Received&)>& isWanted)
  {
    return peer.waitFor(
        [&isWanted](const Received& received) { return received.topic == "/diagnostics" && isWanted(received); });
  }

  std::vector<int> levelsOf(const std::string& person) const
  {
    std::vector<int> levels;
    for (const Received& received : peer.received())
      if (received.topic == "/humans/persons/" + person + "/engagement_status")
        levels.push_back(received.level);
    return levels;
  }

  const int domain = domainOfThisProcess();
  const replaytests::TemporaryFolder folder;
  CyclonePeer peer{domain};
  std::optional<Node> node;
};

TEST_F(RosCommand, AnswersAsAReplayOfTheBagDoes)
{
  const std::vector<Message> messages = scene();
  const std::string bag = folder.path("bag.db3");
  {
    support::BagWriter writer(bag, begin);
    for (const Message& message : messages)
      writer.add(message.seconds, message.topic, message.cdr);
  }
  for (const char* const topic :
       {"/humans/persons/ada/engagement_status", "/humans/persons/ada/affect", "/humans/persons/f2/engagement_status",
        "/humans/interactions/gazing", "ros_discovery_info"})
    peer.read(topic);
  peer.write("/humans/persons/ada/face_id", true);
  for (const char* const topic :
       {"/tf", "/humans/faces/tracked", "/humans/faces/f1/expression", "/humans/faces/f2/expression"})
    peer.write(topic);
  start({"--times", "source", "--hold", "1", "--silence", "60", "--record", folder.path("record.jsonl"), "--jsonl",
         folder.path("live.jsonl")});
  ASSERT_TRUE(peer.waitForReaders()) << node->errors();

  constexpr std::size_t untilTheFirstUpdate = 10;
  for (std::size_t i = 0; i < messages.size(); ++i)
  {
    if (i == untilTheFirstUpdate)
    {
      ASSERT_TRUE(peer.waitForWriter("/humans/persons/ada/engagement_status"));
      ASSERT_TRUE(peer.waitForWriter("/humans/persons/f2/engagement_status"));
    }
    if (i == 1 || i + 1 == messages.size())
    {
      ASSERT_TRUE(peer.waitForAcknowledgments());
    }
    peer.send(messages[i].topic, messages[i].cdr, timeOf(messages[i]));
  }
  EXPECT_TRUE(peer.waitFor([](const Received& received) {
    return received.topic == "/humans/persons/ada/engagement_status" && received.level == 3;
  }));
  EXPECT_TRUE(peer.waitFor([](const Received& received) {
    return received.topic == "/humans/persons/ada/affect" && received.text == "happy" && received.valence > 0.5f;
  }));
  EXPECT_TRUE(peer.waitFor([](const Received& received) {
    return received.topic == "/humans/interactions/gazing" && received.text == "ada";
  }));
  EXPECT_TRUE(peer.waitFor([](const Received& received) {
    return received.topic == "ros_discovery_info" && received.text == "/skeigiot" &&
           received.values.at("readers") == "5" && received.values.at("writers") != "0";
  }));
  ASSERT_FALSE(levelsOf("f2").empty());
  for (const int level : levelsOf("f2"))
    EXPECT_EQ(1, level);
  EXPECT_TRUE(waitForDiagnostics([&messages](const Received& received) {
    return received.values.at("messages") == std::to_string(messages.size());
  }));
  ASSERT_EQ(0, node->stop()) << node->errors();

  ASSERT_EQ(0, replaytests::runCommand({"replay", bag, "--jsonl", folder.path("bag.jsonl")}).status);
  ASSERT_EQ(
      0,
      replaytests::runCommand({"replay", folder.path("record.jsonl"), "--jsonl", folder.path("again.jsonl")}).status);
  const std::vector<nlohmann::json> live = updatesIn(folder.path("live.jsonl"));
  EXPECT_GT(live.size(), 60U);
  EXPECT_EQ("", differenceOf(updatesIn(folder.path("bag.jsonl")), live));
  EXPECT_EQ("", differenceOf(updatesIn(folder.path("again.jsonl")), live));
}

TEST_F(RosCommand, HasOtherNamesAndParametersAsALaunchFileOfRosGivesThem)
{
  const std::string topic = "/robot1/humans/faces/z/expression";
  const std::string answers = "/robot1/humans/persons/z/engagement_status";
  const std::string parameters = folder.path("robot.yaml");
  std::ofstream(parameters) << "eyes:\n  ros__parameters:\n    cycle: recorded\n    ros_distro: jazzy\n";
  peer.write(topic);
  peer.read(answers);
  peer.read("ros_discovery_info");
  start({"--ros-args", "-r", "__node:=eyes", "--params-file", parameters, "-r", "/humans:=/robot1/humans"});
  ASSERT_TRUE(peer.waitForReaders()) << node->errors();

  peer.write("/humans/faces/y/expression");  // which is no topic of the node any more
  peer.send(topic, support::expressionMessage("happy", 0.9f, 0.8f), begin);

  ASSERT_TRUE(peer.waitForWriter(answers)) << node->errors();
  EXPECT_TRUE(waitForDiagnostics([](const Received& received) {
    return received.values.at("topics read") == "1" && received.values.at("persons") == "1";
  }));
  EXPECT_TRUE(peer.waitFor(
      [](const Received& received) { return received.topic == "ros_discovery_info" && received.text == "/eyes"; }));
  EXPECT_EQ(0, node->stop()) << node->errors();
}

TEST_F(RosCommand, StartsAndStopsAScopeByATopicAndPublishesTheVerdict)
{
  const std::string scopes = "/skeigiot/scopes";
  const std::string expression = "/humans/faces/z/expression";
  peer.write(scopes);
  peer.write(expression);
  peer.read("/skeigiot/verdicts");
  start({"--record", folder.path("record.jsonl"), "--cycle", "recorded"});
  ASSERT_TRUE(peer.waitForReaders()) << node->errors();
  ASSERT_TRUE(peer.waitForWriter("/skeigiot/verdicts")) << "it is announced before the first one";

  peer.send(scopes, support::stringMessage(R"({"startScope": "greeting"})"), begin);
  ASSERT_TRUE(peer.waitForAcknowledgments());
  peer.send(expression, support::expressionMessage("happy", 0.9f, 0.8f), begin);
  EXPECT_TRUE(waitForDiagnostics([](const Received& received) { return received.values.at("persons") == "1"; }));
  peer.send(scopes, support::stringMessage(R"({"stopScope": "greeting"})"), begin);

  const auto isVerdict = [](const Received& received) { return received.topic == "/skeigiot/verdicts"; };
  ASSERT_TRUE(peer.waitFor(isVerdict)) << node->errors();
  const std::vector<Received>& received = peer.received();
  const nlohmann::json verdict = nlohmann::json::parse(std::find_if(received.begin(), received.end(), isVerdict)->text);
  EXPECT_EQ("greeting", verdict["scope"]);
  EXPECT_EQ("complete", verdict["end"]);
  EXPECT_EQ("z", verdict["persons"][0]["id"]);
  EXPECT_EQ(0, node->stop()) << node->errors();
  EXPECT_NE(std::string::npos, textOf(folder.path("record.jsonl")).find("greeting"));
}

TEST_F(RosCommand, AnswersForAPersonWhoIsOnlyHeardUnderTheIdOfTheAlias)
{
  const std::string answers = "/humans/persons/ada/engagement_status";
  const std::vector<std::string> about{"/humans/persons/p1/voice_id", "/humans/persons/p1/alias"};
  const std::string voice = "/humans/voices/v/is_speaking";
  for (const std::string& topic : about)
    peer.write(topic, true);
  peer.write(voice);
  peer.read(answers);
  start({"--record", folder.path("record.jsonl")});
  ASSERT_TRUE(peer.waitForReaders()) << node->errors();

  peer.send(about[0], support::stringMessage("v"), begin);
  peer.send(about[1], support::stringMessage("ada"), begin);
  ASSERT_TRUE(peer.waitForAcknowledgments());
  peer.send(voice, support::boolMessage(true), begin);

  EXPECT_TRUE(peer.waitForWriter(answers)) << node->errors();
  EXPECT_TRUE(waitForDiagnostics([](const Received& received) { return received.values.at("persons") == "1"; }));
  EXPECT_EQ(0, node->stop()) << node->errors();
  EXPECT_NE(std::string::npos, textOf(folder.path("record.jsonl")).find("\"speaking\":{\"value\":true}"));
}

TEST_F(RosCommand, RefusesAnotherLayoutAndCutMessagesByName)
{
  peer.write("/humans/faces/x/expression", false, "typehash=RIHS01_00;");
  peer.writeCut("/humans/faces/y/expression");
  peer.write("/humans/faces/tracked");
  start({});
  ASSERT_TRUE(waitForDiagnostics([](const Received& received) { return received.values.at("topics read") == "2"; }));

  peer.sendCut("/humans/faces/y/expression");
  peer.sendCut("/humans/faces/y/expression");

  EXPECT_TRUE(
      waitForDiagnostics([](const Received& received) { return received.values.at("messages refused") == "2"; }));
  EXPECT_EQ(0, node->stop());
  const std::string errors = node->errors();
  EXPECT_NE(std::string::npos,
            errors.find("a writer of the topic /humans/faces/x/expression is refused: its messages of the type "
                        "hri_msgs/msg/Expression have another layout, with the hash RIHS01_00"))
      << errors;
  const std::size_t cut = errors.find("a message on the topic /humans/faces/y/expression is left out: ");
  EXPECT_NE(std::string::npos, cut) << errors;
  EXPECT_EQ(std::string::npos, errors.find("a message on the topic /humans/faces/y/expression", cut + 1)) << errors;
}

TEST_F(RosCommand, RefusesTooLongMessagesByNameAndReadsTheNextOnes)
{
  const std::string topic = "/humans/faces/z/expression";
  peer.write(topic);
  start({});
  ASSERT_TRUE(peer.waitForReaders());
  constexpr std::size_t tooLong = std::size_t{1} << 20U;

  peer.send(topic, support::expressionMessage(std::string(tooLong, 'x'), 0.9f, 0.8f), begin);
  peer.send(topic, support::expressionMessage("happy", 0.9f, 0.8f), begin);

  EXPECT_TRUE(waitForDiagnostics([](const Received& received) {
    return received.values.at("messages refused") == "1" && received.values.at("messages") == "2" &&
           received.values.at("persons") == "1";
  }));
  EXPECT_EQ(0, node->stop());
  EXPECT_NE(std::string::npos,
            node->errors().find("a message on the topic " + topic + " is left out: it has more than 1048576 bytes"))
      << node->errors();
}

TEST_F(RosCommand, SaysAtTheEndThatTheRecordingFailedAndKeepsTheExport)
{
  peer.write("/humans/faces/z/expression");
  start({"--record", "/dev/full", "--jsonl", folder.path("live.jsonl")});
  ASSERT_TRUE(peer.waitForReaders());
  peer.send("/humans/faces/z/expression", support::expressionMessage("happy", 0.9f, 0.8f), begin);
  EXPECT_TRUE(waitForDiagnostics([](const Received& received) { return received.values.at("persons") == "1"; }));

  EXPECT_EQ(1, node->stop());

  const std::string errors = node->errors();
  const std::string last = errors.substr(errors.rfind("skeigiot: "));
  EXPECT_EQ(0U, last.find("skeigiot: the recording cannot be written any more: ")) << errors;
  EXPECT_FALSE(updatesIn(folder.path("live.jsonl")).empty());
}

TEST_F(RosCommand, ReadsTopicsAsLongAsTheyAreWritten)
{
  peer.write("/humans/faces/tracked");
  start({});
  constexpr int faces = 30;
  const auto topicOf = [](int face) { return "/humans/faces/f" + std::to_string(face) + "/expression"; };
  for (int face = 0; face < faces; ++face)
    peer.write(topicOf(face));
  EXPECT_TRUE(peer.waitForReaders());
  EXPECT_TRUE(waitForDiagnostics([](const Received& received) { return received.values.at("topics read") == "31"; }));

  for (int face = 0; face < faces; ++face)
    peer.stopWriting(topicOf(face));

  std::size_t readBefore = 0;
  EXPECT_TRUE(waitForDiagnostics([&readBefore](const Received& received) {
    const std::size_t read = std::stoul(received.values.at("topics read"));
    const std::size_t before = std::exchange(readBefore, read);
    return read == 1 && before > 1;
  }));
  EXPECT_EQ(0, node->stop());
}

// The messages are too small to need much memory: tests of the queue and of the source are about that.
TEST_F(RosCommand, TakesAFlood)
{
  peer.write("/tf");
  start({});
  ASSERT_TRUE(peer.waitForReaders());
  const std::string frame = support::tfMessage({support::faceFrame("f1", {0., 0., 1.5})});
  constexpr int messages = 20'000;

  for (int i = 0; i < messages; ++i)
    peer.send("/tf", frame, begin + i);

  EXPECT_TRUE(peer.waitForAcknowledgments());
  EXPECT_TRUE(waitForDiagnostics(
      [](const Received& received) { return std::stoul(received.values.at("messages")) > messages / 10; }));
  EXPECT_EQ(0, node->stop());
}

TEST_F(RosCommand, LetsPersonsFadeWhenTheirWritersFallSilent)
{
  const std::string engagement = "/humans/persons/f1/engagement_status";
  peer.read(engagement);
  peer.write("/tf");
  start({"--silence", "0.3"});
  ASSERT_TRUE(peer.waitForReaders());
  const std::string frame = support::tfMessage({support::faceFrame("f1", {0., 0., 1.5})});
  const auto hasLevel = [&engagement](int level) {
    return [&engagement, level](const Received& received) {
      return received.topic == engagement && received.level == level;
    };
  };
  constexpr int mostFrames = 600;
  for (int i = 0; i < mostFrames; ++i)
  {
    peer.send("/tf", frame, begin);
    if (peer.waitFor(hasLevel(2), DDS_MSECS(33)))  // the time between two frames of a camera
      break;
  }
  ASSERT_FALSE(levelsOf("f1").empty());
  const std::size_t before = levelsOf("f1").size();

  EXPECT_TRUE(peer.waitFor([&, seen = std::size_t{0}](const Received& received) mutable {
    return received.topic == engagement && ++seen > before && received.level == 1;
  })) << node->errors();
  EXPECT_EQ(0, node->stop());
}

TEST_F(RosCommand, ShowsThePersonsInATable)
{
  peer.write("/tf");
  peer.read("/humans/persons/f1/engagement_status");
  livetests::TerminalProcess process({"ros", "--watch", "--domain", std::to_string(domain)});
  ASSERT_TRUE(process.sees("Waiting for the first message about a person"));
  ASSERT_TRUE(peer.waitForReaders());

  peer.send("/tf", support::tfMessage({support::faceFrame("f1", {0., 0., 1.5})}), begin);

  EXPECT_TRUE(process.sees("f1 (0)"));
  EXPECT_TRUE(process.sees("LookingAtRobot"));
  EXPECT_TRUE(peer.waitFor([](const Received& received) { return received.topic != "/diagnostics"; }));
  process.press("q");
  EXPECT_EQ(0, process.status()) << process.drawn();
  EXPECT_TRUE(process.isRestored());
}

TEST_F(RosCommand, ShowsThePersonsOnAPageAndTakesItsOrders)
{
  peer.write("/tf");
  start({"--serve", "--no-open", "--cycle", "recorded", "--record", folder.path("record.jsonl"), "--jsonl",
         folder.path("live.jsonl")});
  const std::string address = node->readLine();
  const std::string begins = "http://127.0.0.1:";
  ASSERT_EQ(0U, address.rfind(begins, 0)) << address << node->errors();
  const int port = std::stoi(address.substr(begins.size()));
  const std::string token = address.substr(address.find("token="));
  const auto requestOf = [&](const std::string& path, const std::string& body) {
    return (body.empty() ? "GET " : "POST ") + path + "?" + token +
           " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  };
  const auto order = [&](const std::string& json) {
    return livetests::statusOf(livetests::exchange(port, requestOf("/order", json)));
  };
  livetests::RawConnection events(port);
  ASSERT_TRUE(events.send(requestOf("/events", "")));
  ASSERT_TRUE(peer.waitForReaders());
  const auto waitForNews = [&events](const std::string& text) {
    return events.readUntil(text).find(text) != std::string::npos;
  };

  peer.send("/tf", support::tfMessage({support::faceFrame("f1", {0., 0., 1.5})}), begin);
  EXPECT_TRUE(waitForNews(R"("name":"f1")"));
  EXPECT_TRUE(waitForNews(R"("unit":"messages")"));
  EXPECT_EQ(200, order(R"({"startScope":"greeting"})"));
  peer.send("/tf", support::tfMessage({support::faceFrame("f2", {0.5, 0., 1.5})}), begin);
  EXPECT_TRUE(waitForNews(R"("name":"f2")"));
  EXPECT_EQ(200, order(R"({"stopScope":"greeting"})"));
  EXPECT_TRUE(waitForNews(R"("scope":"greeting")"));
  EXPECT_EQ(200, livetests::statusOf(livetests::exchange(port, requestOf("/report.html", ""))));
  ASSERT_EQ(0, node->stop()) << node->errors();

  EXPECT_NE(std::string::npos, textOf(folder.path("record.jsonl")).find("greeting"));
  ASSERT_EQ(0, replaytests::runCommand({"replay", folder.path("record.jsonl"), "--cycle", "recorded", "--jsonl",
                                        folder.path("again.jsonl")})
                   .status);
  const std::vector<nlohmann::json> live = updatesIn(folder.path("live.jsonl"));
  EXPECT_GT(live.size(), 1U);
  EXPECT_EQ("", differenceOf(live, updatesIn(folder.path("again.jsonl"))));
}

TEST(BagOfRos, WithABadMessageAboutAPersonIsReadPastItIfAsked)
{
  const replaytests::TemporaryFolder folder;
  const std::string bag = folder.path("bag.db3");
  {
    support::BagWriter writer(bag, begin);
    writer.add(0., "/tf", support::tfMessage({support::faceFrame("f1", {0., 0., 1.5})}));
    writer.add(0.1, "/humans/persons/ada/face_id", std::string("\0\1\0\0\x05", 5));
    writer.add(0.2, "/tf", support::tfMessage({support::faceFrame("f1", {0., 0., 1.5})}));
  }
  const replaytests::CommandResult strict = replaytests::runCommand({"replay", bag});
  EXPECT_EQ(2, strict.status);
  EXPECT_EQ(0U, strict.errors.find("skeigiot: " + bag + ": /humans/persons/ada/face_id: message 2: ")) << strict.errors;
  const replaytests::CommandResult skipping = replaytests::runCommand({"replay", bag, "--skip-bad"});
  EXPECT_EQ(0, skipping.status);
  EXPECT_NE(std::string::npos, skipping.errors.find("skipped 1 bad ")) << skipping.errors;
  EXPECT_NE(std::string::npos, skipping.output.find("2 updates")) << skipping.output;
}

}  // namespace
