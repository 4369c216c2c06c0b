#include <skeigiot/ros2/rosbridge.hpp>

#include "bridges/ros2/rosbridge/rosbridgeserver.hpp"
#include "librecordings/rosbag2/bagwriter.hpp"

#include <gmock/gmock.h>

#include <poll.h>

#include <chrono>
#include <cstddef>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::ros2::BusMessage;
using nlohmann::json;
using rostests::RosbridgeServer;
using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

const json header = {{"stamp", {{"sec", 0}, {"nanosec", 0}}}, {"frame_id", ""}};

std::string typeOf(const std::string& topic)
{
  if (topic.find(' ') != std::string::npos)
    return {};
  const auto endsWith = [&topic](const std::string& end) {
    return topic.size() > end.size() && topic.compare(topic.size() - end.size(), end.size(), end) == 0;
  };
  if (endsWith("/faces/tracked"))
    return "hri_msgs/msg/IdsList";
  if (endsWith("/alias"))
    return "std_msgs/msg/String";
  return endsWith("/expression") ? "hri_msgs/msg/Expression" : std::string();
}

json expressionOf(const std::string& word)
{
  return {{"header", header}, {"expression", word}, {"valence", 0.5}, {"arousal", 0}, {"confidence", 1}};
}

std::string wordIn(const BusMessage& message)
{
  const std::string text(message.data.begin(), message.data.end());
  return text.find("happy") != std::string::npos ? "happy" : text.find("sad") != std::string::npos ? "sad" : "?";
}

/// A bus whose times are those of the test, and the server that it speaks with.
class RosbridgeBus : public ::testing::Test
{
protected:
  KV::ros2::RosbridgeOptions optionsOf(unsigned short port)
  {
    KV::ros2::RosbridgeOptions options;
    options.address.host = "127.0.0.1";
    options.address.port = std::to_string(port);
    options.topics = {"/humans/faces/tracked", "/humans/faces/*/expression", "/humans/persons/*/alias"};
    options.lists = {"/humans/faces/tracked", "/humans/persons/known"};
    options.steadyClock = [this] { return steady; };
    return options;
  }

  void open(const KV::ros2::RosbridgeOptions& options)
  {
    place = textOf(options.address);
    bus = openRosbridgeBus(options, typeOf, [this] { return now; });
  }

  // A server that does not answer at the end would be waited for.
  void TearDown() override { server.hangUp(); }

  /// Opens the bus, and connects it with the server.
  void connect()
  {
    open(optionsOf(server.port()));
    bus->take();
    server.accept();
    follow();
  }

  /// Lets the bus connect again, after a lost connection.
  void connectAgain()
  {
    steady += seconds(1);
    bus->take();
    server.accept();
    follow();
  }

  /// Waits until the bus has something to do, and lets it do that.
  std::vector<BusMessage> follow()
  {
    pollfd waited{bus->descriptor(), POLLIN, 0};
    constexpr int longestWait = 20'000;  // [ms]
    if (::poll(&waited, 1, longestWait) <= 0)
      throw std::runtime_error("nothing comes from rosbridge");
    return bus->take();
  }

  /// Waits for a message.
  BusMessage takeMessage()
  {
    for (;;)
      if (const std::vector<BusMessage> messages = follow(); !messages.empty())
        return messages.front();
  }

  /// Waits for a note.
  std::string takeNote()
  {
    for (;;)
    {
      follow();
      if (const std::vector<std::string> notes = bus->takeNotes(); !notes.empty())
        return notes.front();
    }
  }

  /// Reads as many operations, and returns their kinds and topics.
  std::vector<std::string> operations(int count)
  {
    std::vector<std::string> all;
    for (int i = 0; i < count; ++i)
    {
      const json operation = server.read();
      all.push_back(operation["op"].get<std::string>() + " " + operation["topic"].get<std::string>());
    }
    return all;
  }

  RosbridgeServer server;
  std::chrono::steady_clock::time_point steady{std::chrono::hours(1)};
  std::int64_t now = 0;
  std::string place;
  std::unique_ptr<KV::ros2::Bus> bus;
};

TEST_F(RosbridgeBus, SubscribesToTheTopicsWithoutAnIdWithTheirTypes)
{
  connect();
  std::set<json> subscribed;
  for (int i = 0; i < 2; ++i)
    subscribed.insert(server.read());
  EXPECT_EQ(
      (std::set<json>{{{"op", "subscribe"}, {"topic", "/humans/faces/tracked"}, {"type", "hri_msgs/msg/IdsList"}},
                      {{"op", "subscribe"}, {"topic", "/humans/persons/known"}, {"type", "hri_msgs/msg/IdsList"}}}),
      subscribed);
  EXPECT_EQ(2U, bus->counts().readers);
}

TEST_F(RosbridgeBus, SubscribesToTheTopicsOfIdsAndUnsubscribesWhenTheyAreGoneForTenSeconds)
{
  connect();
  operations(2);
  server.publish("/humans/faces/tracked", {{"header", header}, {"ids", {"f1", "no id"}}});
  EXPECT_EQ("/humans/faces/tracked", takeMessage().topic);
  bus->take();  // the list may come in while messages are taken
  EXPECT_THAT(operations(1), ElementsAre("subscribe /humans/faces/f1/expression"));
  server.publish("/humans/persons/known", {{"header", header}, {"ids", {"ada"}}});
  EXPECT_THAT(follow(), IsEmpty()) << "a list that is not read otherwise";
  EXPECT_THAT(operations(1), ElementsAre("subscribe /humans/persons/ada/alias"));
  EXPECT_EQ(4U, bus->counts().readers);

  server.publish("/humans/faces/tracked", {{"header", header}, {"ids", json::array()}});
  takeMessage();
  bus->take();
  now += 10'000'000'000;
  bus->take();
  EXPECT_THAT(operations(1), ElementsAre("unsubscribe /humans/faces/f1/expression"));
}

TEST_F(RosbridgeBus, HandsMessagesOverAsTheBytesThatANodeSends)
{
  connect();
  now = 42;
  server.publish("/humans/persons/ada/alias", {{"data", "ben"}});
  const BusMessage message = takeMessage();
  EXPECT_EQ("/humans/persons/ada/alias", message.topic);
  EXPECT_EQ(support::stringMessage("ben"), std::string(message.data.begin(), message.data.end()));
  EXPECT_EQ(42, message.received);
  EXPECT_EQ(0, message.written) << "rosbridge does not say it";
  EXPECT_EQ(1U, bus->counts().received);
}

TEST_F(RosbridgeBus, AdvertisesATopicOnceAndUnadvertisesItWhenItIsWithdrawn)
{
  connect();
  operations(2);
  KV::ros2::EngagementMessage engagement;
  engagement.level = 3;
  bus->publish("/e", engagement);
  engagement.level = 4;
  bus->publish("/e", engagement);
  bus->withdraw("/e");
  bus->withdraw("/other");
  EXPECT_EQ((json{{"op", "advertise"}, {"topic", "/e"}, {"type", "hri_msgs/msg/EngagementLevel"}}), server.read());
  EXPECT_EQ((json{{"op", "publish"}, {"topic", "/e"}, {"msg", {{"header", header}, {"level", 3}}}}), server.read());
  EXPECT_EQ(4, server.read()["msg"]["level"]);
  EXPECT_THAT(operations(1), ElementsAre("unadvertise /e"));
}

TEST_F(RosbridgeBus, AdvertisesATopicOfTextsBeforeTheFirstOneAndForReadersThatComeLater)
{
  connect();
  operations(2);
  bus->announceTexts("/v");
  bus->publish("/v", KV::ros2::TextMessage{"hi"});
  const json advertised = {
      {"op", "advertise"}, {"topic", "/v"}, {"type", "std_msgs/msg/String"}, {"latch", true}, {"queue_size", 10}};
  EXPECT_EQ(advertised, server.read());
  EXPECT_EQ((json{{"op", "publish"}, {"topic", "/v"}, {"msg", {{"data", "hi"}}}}), server.read());
  server.hangUp();
  takeNote();
  connectAgain();
  EXPECT_EQ(advertised, server.readUntil("advertise", "/v"));
}

TEST_F(RosbridgeBus, SendsWhatWaitsAndUnadvertisesItsTopicsAtTheEnd)
{
  connect();
  bus->publish("/g", KV::ros2::GazeMessage());
  bus->publish("/d", KV::ros2::DiagnosticMessage());
  bus->publish("/a", KV::ros2::ExpressionMessage());
  bus.reset();
  EXPECT_FALSE(server.readUntil("publish", "/a").is_null());
  EXPECT_THAT(operations(3), UnorderedElementsAre("unadvertise /a", "unadvertise /d", "unadvertise /g"));
  EXPECT_TRUE(server.read().is_null()) << "the connection is closed";
}

TEST_F(RosbridgeBus, SaysOnceWhyThereIsNoConnectionAndTriesAgainAfterASecond)
{
  const unsigned short port = [] { return RosbridgeServer().port(); }();  // on which nothing listens any more
  open(optionsOf(port));
  bus->publish("/e", KV::ros2::EngagementMessage());
  bus->take();
  EXPECT_EQ("there is no connection with rosbridge at " + place +
                ": Connection refused; it is tried again in 1 s, and then less often",
            takeNote());
  EXPECT_EQ(0U, bus->counts().readers);

  steady += seconds(1);
  bus->take();
  follow();
  EXPECT_THAT(bus->takeNotes(), IsEmpty()) << "the same reason";

  RosbridgeServer late(port);
  steady += seconds(2) - milliseconds(1);
  bus->take();  // too early
  steady += milliseconds(1);
  bus->take();
  late.accept();
  EXPECT_EQ("rosbridge at " + place + " is there again", takeNote());
  EXPECT_EQ("/e", late.readUntil("advertise", "/e")["topic"]);
}

TEST_F(RosbridgeBus, SaysThatTheHostIsNotFound)
{
  KV::ros2::RosbridgeOptions options = optionsOf(server.port());
  options.address.host = std::string(64, 'a');  // longer than a label may be, so that nobody is asked for it
  open(options);
  bus->take();
  EXPECT_THAT(takeNote(),
              ::testing::StartsWith("there is no connection with rosbridge at " + place + ": the host is not found: "));
}

TEST_F(RosbridgeBus, SubscribesAndAdvertisesAnewAfterTheConnectionWasLost)
{
  connect();
  server.publish("/humans/faces/tracked", {{"header", header}, {"ids", {"f1"}}});
  takeMessage();
  bus->take();
  bus->publish("/e", KV::ros2::EngagementMessage());
  server.readUntil("publish", "/e");
  server.hangUp();
  EXPECT_THAT(takeNote(), ::testing::StartsWith("there is no connection with rosbridge at " + place + ": "));
  EXPECT_EQ(0U, bus->counts().writers);
  connectAgain();
  EXPECT_THAT(operations(4), UnorderedElementsAre("subscribe /humans/faces/tracked", "subscribe /humans/persons/known",
                                                  "subscribe /humans/faces/f1/expression", "advertise /e"));
  server.publish("/humans/faces/f1/expression", expressionOf("sad"));
  EXPECT_EQ("sad", wordIn(takeMessage()));
}

TEST_F(RosbridgeBus, SubscribesToTheTopicsOfAListThatCameTogetherWithTheConnection)
{
  open(optionsOf(server.port()));
  bus->take();
  server.accept();
  server.publish("/humans/faces/tracked", {{"header", header}, {"ids", {"f1"}}});
  // Nothing is taken before the list is there.
  while (bus->counts().received < 1)
  {}
  bus->take();
  EXPECT_THAT(operations(3), UnorderedElementsAre("subscribe /humans/faces/tracked", "subscribe /humans/persons/known",
                                                  "subscribe /humans/faces/f1/expression"));
}

TEST_F(RosbridgeBus, SaysAgainThatTheConnectionIsLostAfterItWasThereInBetween)
{
  const auto lose = [this] {
    operations(2);  // nothing is left to read: the connection ends in the same way each time
    server.hangUp();
    return takeNote();
  };
  connect();
  const std::string isLost = "there is no connection with rosbridge at " + place + ": it closed the connection; ";
  EXPECT_THAT(lose(), ::testing::StartsWith(isLost));
  connectAgain();
  EXPECT_THAT(bus->takeNotes(), ElementsAre("rosbridge at " + place + " is there again"));
  EXPECT_THAT(lose(), ::testing::StartsWith(isLost));
}

TEST_F(RosbridgeBus, EndsAConnectionThatDoesNotTakeWhatIsPublishedAndSaysSoOnce)
{
  connect();
  const KV::ros2::TextMessage text{std::string(std::size_t{1} << 20U, 'a')};
  std::vector<std::string> notes;
  for (int i = 0; i < 64 && notes.empty(); ++i)  // more than what may wait, and what the system keeps of a connection
  {
    bus->publish("/v", text);
    bus->take();
    notes = bus->takeNotes();
  }
  EXPECT_THAT(notes,
              ElementsAre("there is no connection with rosbridge at " + place +
                          ": it does not take what is published; it is tried again in 1 s, and then less often"));
  connectAgain();
  EXPECT_THAT(bus->takeNotes(), ElementsAre("rosbridge at " + place + " is there again"));
  EXPECT_EQ("/v", server.readUntil("advertise", "/v")["topic"]);
}

TEST_F(RosbridgeBus, NamesTheMemberOfAMessageThatDoesNotFitOnceForEachTopic)
{
  connect();
  json broken = expressionOf("happy");
  broken.erase("valence");
  server.publish("/humans/faces/f1/expression", broken);
  server.publish("/humans/faces/f1/expression", broken);
  server.publish("/humans/faces/f1/expression", expressionOf("happy"));
  EXPECT_EQ("happy", wordIn(takeMessage()));
  EXPECT_THAT(bus->takeNotes(), ElementsAre("a message on the topic /humans/faces/f1/expression is left out: its "
                                            "member 'valence': is missing"));
  EXPECT_EQ(2U, bus->counts().refused);
  EXPECT_EQ(3U, bus->counts().received);
}

TEST_F(RosbridgeBus, LeavesOutHostileTextsAndGoesOn)
{
  connect();
  for (const std::string& text : {std::string("{"), std::string(100'000, '['), std::string("[]"), std::string(),
                                  std::string(R"({"op": "publish", "topic": "/other", "msg": {}})"),
                                  std::string(R"({"op": "status", "level": "error", "msg": "no such type"})")})
    server.send(text);
  server.publish("/humans/faces/f1/expression", expressionOf("happy"));
  EXPECT_EQ("happy", wordIn(takeMessage()));
  const std::string left = "a text of rosbridge at " + place + " is left out: ";
  EXPECT_THAT(bus->takeNotes(),
              ElementsAre(left + "it is no JSON", left + "it has more than 16 levels", left + "it is no object",
                          "a message of rosbridge at " + place + " is left out: its topic was not asked for",
                          "rosbridge at " + place + " says: no such type"));
  EXPECT_EQ(5U, bus->counts().refused);
}

/// Cuts the text of a message into fragments.
std::vector<std::string> fragmentsOf(const std::string& topic, const json& message, std::size_t count)
{
  const std::string text = json{{"op", "publish"}, {"topic", topic}, {"msg", message}}.dump();
  const std::size_t length = text.size() / count + 1;
  std::vector<std::string> fragments;
  for (std::size_t i = 0; i < count; ++i)
    fragments.push_back(
        json{{"op", "fragment"}, {"id", "7"}, {"data", text.substr(i * length, length)}, {"num", i}, {"total", count}}
            .dump());
  return fragments;
}

TEST_F(RosbridgeBus, TakesAMessageInFragmentsInAnyOrder)
{
  connect();
  const std::vector<std::string> fragments = fragmentsOf("/humans/faces/f1/expression", expressionOf("happy"), 3);
  for (const std::size_t number : {2U, 0U, 1U})
    server.send(fragments.at(number));
  const BusMessage message = takeMessage();
  EXPECT_EQ("/humans/faces/f1/expression", message.topic);
  EXPECT_EQ("happy", wordIn(message));
  EXPECT_EQ(1U, bus->counts().received);
  EXPECT_THAT(bus->takeNotes(), IsEmpty());
}

TEST_F(RosbridgeBus, LeavesOutFragmentsThatMakeNoMessageAndGoesOn)
{
  connect();
  server.send(R"({"op": "fragment", "id": 1, "data": "{", "num": 0, "total": 1})");
  server.send(R"({"op": "fragment", "id": 1, "data": "{", "num": 1, "total": 1})");
  const std::string inner = R"({"op": "fragment", "id": 1, "data": "{}", "num": 0, "total": 1})";
  server.send(json{{"op", "fragment"}, {"id", 1}, {"data", inner}, {"num", 0}, {"total", 1}}.dump());
  const std::string half((std::size_t{2} << 20U) + 1, ' ');
  for (const int number : {0, 1})
    server.send(json{{"op", "fragment"}, {"id", 1}, {"data", half}, {"num", number}, {"total", 3}}.dump());
  server.publish("/humans/faces/f1/expression", expressionOf("happy"));
  EXPECT_EQ("happy", wordIn(takeMessage()));
  const std::string left = "a text of rosbridge at " + place + " is left out: ";
  EXPECT_THAT(bus->takeNotes(),
              ElementsAre(left + "it is no JSON", left + "the 'num' of a fragment is not below its 'total'",
                          left + "its fragments make a fragment", left + "its fragments have more than 4194304 bytes"));
  EXPECT_EQ(4U, bus->counts().refused);
}

TEST_F(RosbridgeBus, ForgetsFragmentsOfALostConnection)
{
  connect();
  const std::vector<std::string> fragments = fragmentsOf("/humans/faces/f1/expression", expressionOf("happy"), 2);
  server.send(fragments[0]);
  server.publish("/humans/faces/f1/expression", expressionOf("sad"));
  EXPECT_EQ("sad", wordIn(takeMessage()));
  server.hangUp();
  takeNote();
  connectAgain();
  server.send(fragments[1]);
  server.publish("/humans/faces/f1/expression", expressionOf("sad"));
  EXPECT_EQ("sad", wordIn(takeMessage()));
  EXPECT_EQ(2U, bus->counts().received);
}

TEST_F(RosbridgeBus, WarnsOnceOfEachErrorThatRosbridgeReports)
{
  connect();
  for (const char* const level : {"error", "warning", "info", "error"})
    server.send(json{{"op", "status"}, {"level", level}, {"msg", std::string("about ") + level}}.dump());
  server.publish("/humans/faces/f1/expression", expressionOf("sad"));
  EXPECT_EQ("sad", wordIn(takeMessage()));
  const std::string says = "rosbridge at " + place + " says: about ";
  EXPECT_THAT(bus->takeNotes(), ElementsAre(says + "error", says + "warning"));
  EXPECT_EQ(0U, bus->counts().refused);
}

TEST_F(RosbridgeBus, EndsAConnectionWithAMessageOfMoreThanFourMebibytes)
{
  connect();
  server.send(std::string((std::size_t{4} << 20U) + 1, ' '));
  EXPECT_EQ("there is no connection with rosbridge at " + place +
                ": it sent a message of more than 4194304 bytes; it is tried again in 1 s, and then less often",
            takeNote());
}

TEST_F(RosbridgeBus, SaysThatSomethingElseListensThere)
{
  open(optionsOf(server.port()));
  bus->take();
  server.acceptWithoutWebSocket();
  EXPECT_EQ("there is no connection with rosbridge at " + place +
                ": what listens there does not speak WebSocket; it is tried again in 1 s, and then less often",
            takeNote());
}

TEST_F(RosbridgeBus, KeepsTheNewestOfTooManyMessages)
{
  KV::ros2::RosbridgeOptions options = optionsOf(server.port());
  options.mostMessages = 1;
  open(options);
  bus->take();
  server.accept();
  follow();
  server.publish("/humans/faces/f1/expression", expressionOf("sad"));
  server.publish("/humans/faces/f1/expression", expressionOf("happy"));
  server.send(R"({"op": "status", "msg": "all sent"})");
  // Nothing is taken before the last text is there.
  while (bus->counts().received < 2)
  {}
  const std::vector<BusMessage> messages = bus->take();
  ASSERT_EQ(1U, messages.size());
  EXPECT_EQ("happy", wordIn(messages.front()));
  EXPECT_EQ(1U, bus->counts().dropped);
}

TEST_F(RosbridgeBus, LeavesOutTheTopicsOfTooManyIdsAndSaysSoOnce)
{
  KV::ros2::RosbridgeOptions options = optionsOf(server.port());
  options.mostReaders = 1;
  open(options);
  bus->take();
  server.accept();
  follow();
  server.publish("/humans/faces/tracked", {{"header", header}, {"ids", {"f1", "f2"}}});
  EXPECT_EQ("there are more than 1 topics to read: those of ids that came later are left out", takeNote());
  EXPECT_EQ(3U, bus->counts().readers);
  bus->take();
  EXPECT_THAT(bus->takeNotes(), IsEmpty());
}

TEST_F(RosbridgeBus, UsesOtherNamesForTopicsWhereARuleSaysSo)
{
  KV::ros2::RosbridgeOptions options = optionsOf(server.port());
  options.nameOf = [](const std::string& topic) { return "/robot" + topic; };
  open(options);
  bus->take();
  server.accept();
  follow();
  EXPECT_THAT(operations(2),
              UnorderedElementsAre("subscribe /robot/humans/faces/tracked", "subscribe /robot/humans/persons/known"));
  server.publish("/robot/humans/faces/tracked", {{"header", header}, {"ids", {"f1"}}});
  EXPECT_EQ("/robot/humans/faces/tracked", takeMessage().topic);
  bus->take();
  EXPECT_THAT(operations(1), ElementsAre("subscribe /robot/humans/faces/f1/expression"));
}

TEST(RosbridgeAddress, IsWrittenAsUsersWriteIt)
{
  EXPECT_EQ("ws://robot:9090", textOf(KV::ros2::RosbridgeAddress{"robot"}));
  EXPECT_EQ("ws://[::1]:80/ros", textOf(KV::ros2::RosbridgeAddress{"::1", "80", "/ros"}));
}

TEST(RosbridgeOptions, HaveASteadyClock)
{
  const KV::ros2::RosbridgeOptions options;
  const auto before = std::chrono::steady_clock::now();
  const auto time = options.steadyClock();
  EXPECT_LE(before, time);
  EXPECT_LE(time, std::chrono::steady_clock::now());
  EXPECT_EQ("/humans/faces/ab/expression", options.nameOf("/humans/faces/ab/expression")) << "names are as they are";
}

}  // namespace
