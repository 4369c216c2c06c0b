#include <skeigiot/ros2/bus.hpp>

#include "cdrmessages.hpp"
#include "names.hpp"
#include "participantqos.hpp"
#include "rawtype.hpp"

#include <fastrtps/xmlparser/XMLProfileManager.h>
#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <fastdds/dds/publisher/DataWriter.hpp>
#include <fastdds/dds/publisher/Publisher.hpp>
#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <fastdds/dds/topic/TypeSupport.hpp>

#include <gtest/gtest.h>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::ros2::Bus;
using KV::ros2::BusMessage;
using KV::ros2::BusOptions;

namespace dds = eprosima::fastdds::dds;

int domainOfThisProcess()
{
  return 101 + static_cast<int>(::getpid() % 100);
}

/// Reads what nodes announce of themselves.
class AnnouncedNodes
{
public:
  AnnouncedNodes()
  {
    BusOptions options;
    options.domain = domainOfThisProcess();
    _participant = dds::DomainParticipantFactory::get_instance()->create_participant(
        static_cast<std::uint32_t>(options.domain), KV::ros2::participantQosOf(options));
    const std::string type = KV::ros2::ddsTypeOf("rmw_dds_common/msg/ParticipantEntitiesInfo");
    dds::TypeSupport(new KV::ros2::RawType(type)).register_type(_participant);
    dds::DataReaderQos qos = dds::DATAREADER_QOS_DEFAULT;
    qos.reliability().kind = dds::RELIABLE_RELIABILITY_QOS;
    qos.durability().kind = dds::TRANSIENT_LOCAL_DURABILITY_QOS;
    qos.endpoint().history_memory_policy = eprosima::fastrtps::rtps::PREALLOCATED_WITH_REALLOC_MEMORY_MODE;
    _reader =
        _participant->create_subscriber(dds::SUBSCRIBER_QOS_DEFAULT)
            ->create_datareader(_participant->create_topic("ros_discovery_info", type, dds::TOPIC_QOS_DEFAULT), qos);
  }
  ~AnnouncedNodes()
  {
    _participant->delete_contained_entities();
    dds::DomainParticipantFactory::get_instance()->delete_participant(_participant);
  }
  AnnouncedNodes(const AnnouncedNodes&) = delete;
  AnnouncedNodes& operator=(const AnnouncedNodes&) = delete;

  /// Waits for an announcement, and returns its bytes.
  KV::ros2::CdrBytes next()
  {
    constexpr int longestWait = 20;  // [s]
    KV::ros2::RawMessage message;
    dds::SampleInfo info;
    if (!_reader->wait_for_unread_message({longestWait, 0}) || !_reader->take_next_sample(&message, &info))
      throw std::runtime_error("no node announces itself");
    return message.data;
  }

private:
  dds::DomainParticipant* _participant = nullptr;
  dds::DataReader* _reader = nullptr;
};

/// Writes one message on a topic, which readers that come later get, too. The user data may say the layout of the type.
class LatchedWriter
{
public:
  explicit LatchedWriter(const std::string& topic, const std::string& userData = "")
  {
    BusOptions options;
    options.domain = domainOfThisProcess();
    _participant = dds::DomainParticipantFactory::get_instance()->create_participant(
        static_cast<std::uint32_t>(options.domain), KV::ros2::participantQosOf(options));
    const std::string type = KV::ros2::ddsTypeOf(KV::ros2::EngagementMessage::type);
    dds::TypeSupport(new KV::ros2::RawType(type)).register_type(_participant);
    dds::DataWriterQos qos = dds::DATAWRITER_QOS_DEFAULT;
    qos.durability().kind = dds::TRANSIENT_LOCAL_DURABILITY_QOS;
    qos.user_data().data_vec({userData.begin(), userData.end()});
    qos.endpoint().history_memory_policy = eprosima::fastrtps::rtps::PREALLOCATED_WITH_REALLOC_MEMORY_MODE;
    dds::DataWriter* const writer =
        _participant->create_publisher(dds::PUBLISHER_QOS_DEFAULT)
            ->create_datawriter(_participant->create_topic(KV::ros2::ddsTopicOf(topic), type, dds::TOPIC_QOS_DEFAULT),
                                qos);
    KV::ros2::RawMessage message{KV::ros2::cdrOf(KV::ros2::EngagementMessage{5, 3})};
    writer->write(&message);
  }
  ~LatchedWriter()
  {
    _participant->delete_contained_entities();
    dds::DomainParticipantFactory::get_instance()->delete_participant(_participant);
  }
  LatchedWriter(const LatchedWriter&) = delete;
  LatchedWriter& operator=(const LatchedWriter&) = delete;

private:
  dds::DomainParticipant* _participant = nullptr;
};

/// Two buses on a domain of this process: what one publishes, the other reads.
class DdsBus : public ::testing::Test
{
protected:
  // Fast DDS 2.9 may use a reader of the same process after its end. The node never has two participants.
  static void SetUpTestSuite()
  {
    eprosima::fastrtps::LibrarySettingsAttributes settings;
    settings.intraprocess_delivery = eprosima::fastrtps::INTRAPROCESS_OFF;
    eprosima::fastrtps::xmlparser::XMLProfileManager::library_settings(settings);
  }

  static std::unique_ptr<Bus> open(std::size_t mostReaders = 10)
  {
    BusOptions options;
    options.mostReaders = mostReaders;
    return open(options);
  }

  static std::unique_ptr<Bus> open(BusOptions options)
  {
    options.domain = domainOfThisProcess();
    const auto typeOf = [](const std::string& topic) {
      if (topic == "/text")
        return std::string(KV::ros2::TextMessage::type);
      return topic.find("/test/") == 0 ? std::string(KV::ros2::EngagementMessage::type) : std::string();
    };
    return KV::ros2::openDdsBus(options, typeOf, [time = std::int64_t{0}]() mutable { return ++time; });
  }

  /// Publishes on these topics, and reads, until it is so; returns whether that came.
  bool publishUntil(const std::vector<std::string>& topics, const std::function<bool()>& isSo)
  {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isSo())
    {
      if (std::chrono::steady_clock::now() >= end)
        return false;
      for (const std::string& topic : topics)
        writer->publish(topic, KV::ros2::EngagementMessage{5, 3});
      writer->take();
      pollfd descriptor{reader->descriptor(), POLLIN, 0};
      constexpr int pause = 50;  // [ms]
      ::poll(&descriptor, 1, pause);
      for (BusMessage& message : reader->take())
        received.push_back(std::move(message));
    }
    return true;
  }

  bool hasReceived(const std::string& topic) const
  {
    for (const BusMessage& message : received)
      if (message.topic == topic)
        return true;
    return false;
  }

  std::unique_ptr<Bus> writer = open();
  std::unique_ptr<Bus> reader = open();
  std::vector<BusMessage> received;
};

TEST_F(DdsBus, ReadsATopicWhileItIsWritten)
{
  EXPECT_TRUE(publishUntil({"/test/a", "/other"}, [this] { return hasReceived("/test/a"); }));
  EXPECT_EQ(1U, reader->counts().readers);
  EXPECT_EQ(2U, writer->counts().writers);
  constexpr std::size_t level = 17;
  ASSERT_EQ(20U, received.front().data.size());  // DDS fills up to a multiple of 4
  EXPECT_EQ(3, received.front().data[level]);
  EXPECT_LT(0, received.front().received);
  EXPECT_LT(1'600'000'000'000'000'000, received.front().written);

  writer->withdraw("/test/a");
  writer->withdraw("/test/none");
  EXPECT_TRUE(publishUntil({}, [this] { return reader->counts().readers == 0; }));
  EXPECT_FALSE(hasReceived("/other"));
  EXPECT_TRUE(reader->takeNotes().empty());
}

TEST_F(DdsBus, LeavesOutTheTopicsThatAreSilentLongestWhereThereAreTooMany)
{
  reader = open(2);
  EXPECT_TRUE(
      publishUntil({"/test/a", "/test/b"}, [this] { return hasReceived("/test/a") && hasReceived("/test/b"); }));
  EXPECT_TRUE(publishUntil({"/test/b", "/test/c"}, [this] { return hasReceived("/test/c"); }));
  EXPECT_EQ(2U, reader->counts().readers);
  EXPECT_EQ(
      std::vector<std::string>{"there are more than 2 topics to read: those that are silent longest are left out, "
                               "such as /test/a"},
      reader->takeNotes());
}

TEST_F(DdsBus, LeavesOutATopicWithALatchedMessageLast)
{
  const LatchedWriter latched("/test/latched");
  reader = open(2);
  EXPECT_TRUE(publishUntil({}, [this] { return hasReceived("/test/latched"); }));
  EXPECT_TRUE(publishUntil({"/test/a"}, [this] { return hasReceived("/test/a"); }));
  EXPECT_TRUE(publishUntil({"/test/a", "/test/b"}, [this] { return hasReceived("/test/b"); }));
  EXPECT_EQ(2U, reader->counts().readers);
  const std::vector<std::string> notes = reader->takeNotes();
  ASSERT_EQ(1U, notes.size());
  EXPECT_NE(std::string::npos, notes.front().find(", such as /test/a")) << notes.front();
}

TEST_F(DdsBus, KeepsTheLastTenTextsForReadersThatComeLater)
{
  reader.reset();
  writer->announceTexts("/text");
  for (char text = 'a'; text <= 'l'; ++text)
    writer->publish("/text", KV::ros2::TextMessage{std::string(1, text)});
  reader = open();
  constexpr std::size_t kept = 10;
  EXPECT_TRUE(publishUntil({}, [this] { return received.size() >= kept; }));
  ASSERT_EQ(kept, received.size());
  constexpr std::size_t letter = 8;  // behind the encapsulation and the length
  EXPECT_EQ('c', received.front().data.at(letter));
  EXPECT_EQ('l', received.back().data.at(letter));
}

TEST_F(DdsBus, RefusesAWriterWhoseTypeHasAnotherLayout)
{
  const LatchedWriter other("/test/a", "typehash=RIHS01_00;");
  std::vector<std::string> notes;

  EXPECT_TRUE(publishUntil({}, [this, &notes] {
    for (std::string& note : reader->takeNotes())
      notes.push_back(std::move(note));
    return !notes.empty();
  }));

  ASSERT_EQ(1U, notes.size());
  EXPECT_EQ(0U, notes.front().find("a writer of the topic /test/a is refused: ")) << notes.front();
  EXPECT_NE(std::string::npos, notes.front().find(" have another layout, with the hash RIHS01_00, ")) << notes.front();
  EXPECT_FALSE(hasReceived("/test/a"));
}

TEST_F(DdsBus, DropsTheOldestOfTooManyBytesThatNobodyTakes)
{
  BusOptions options;
  options.mostBytes = 1000;
  reader = open(options);
  EXPECT_TRUE(publishUntil({"/test/a"}, [this] { return hasReceived("/test/a"); }));
  constexpr std::uint64_t messages = 50;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (reader->counts().received < messages && std::chrono::steady_clock::now() < end)
    writer->publish("/test/a", KV::ros2::EngagementMessage{5, 3});

  writer.reset();
  const KV::ros2::BusCounts counts = reader->counts();
  EXPECT_LE(messages, counts.received);
  EXPECT_LT(messages / 2, counts.dropped);
  EXPECT_LT(0U, counts.waiting);
  EXPECT_GE(options.mostBytes / sizeof(BusMessage), counts.waiting);
}

TEST_F(DdsBus, CarriesEachKindOfMessageAsItsBytes)
{
  const KV::ros2::ExpressionMessage expression{5, "happy", 0.5f, 0.25f, 1.f};
  const KV::ros2::GazeMessage gaze{5, "anna", "ben"};
  const KV::ros2::DiagnosticMessage diagnostic{5, 1, "skeigiot", "slow", {{"persons", "2"}}};
  const KV::ros2::TextMessage text{"p1"};
  const std::map<std::string, std::pair<std::string, KV::ros2::CdrBytes>> sent = {
      {"/kinds/expression", {KV::ros2::ExpressionMessage::type, KV::ros2::cdrOf(expression)}},
      {"/kinds/gaze", {KV::ros2::GazeMessage::type, KV::ros2::cdrOf(gaze)}},
      {"/kinds/diagnostic", {KV::ros2::DiagnosticMessage::type, KV::ros2::cdrOf(diagnostic)}},
      {"/kinds/text", {KV::ros2::TextMessage::type, KV::ros2::cdrOf(text)}}};
  BusOptions options;
  options.domain = domainOfThisProcess();
  const auto typeOf = [&sent](const std::string& topic) {
    const auto found = sent.find(topic);
    return found == sent.end() ? std::string() : found->second.first;
  };
  reader = KV::ros2::openDdsBus(options, typeOf, [] { return std::int64_t{1}; });
  writer->announceTexts("/kinds/text");
  writer->announceTexts("/kinds/text");
  EXPECT_EQ(1U, writer->counts().writers);

  const auto haveAllCome = [&] {
    writer->publish("/kinds/expression", expression);
    writer->publish("/kinds/gaze", gaze);
    writer->publish("/kinds/diagnostic", diagnostic);
    writer->publish("/kinds/text", text);
    return std::all_of(sent.begin(), sent.end(), [this](const auto& one) { return hasReceived(one.first); });
  };
  EXPECT_TRUE(publishUntil({}, haveAllCome));
  EXPECT_EQ(4U, writer->counts().writers);
  for (const BusMessage& message : received)
  {
    KV::ros2::CdrBytes bytes = sent.at(message.topic).second;
    ASSERT_LE(bytes.size(), message.data.size());
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), message.data.begin())) << message.topic;
  }
}

TEST_F(DdsBus, CarriesMessagesWithoutAnnouncingANode)
{
  BusOptions options;
  options.distribution = boost::none;
  writer = open(options);
  reader = open(options);
  EXPECT_TRUE(publishUntil({"/test/a"}, [this] { return hasReceived("/test/a"); }));
  EXPECT_EQ(1U, writer->counts().writers);
}

TEST_F(DdsBus, AnnouncesItsNodeAgainWithoutATopicThatIsWithdrawn)
{
  reader.reset();  // of which there would be announcements as well
  AnnouncedNodes announced;
  writer->publish("/test/a", KV::ros2::EngagementMessage{5, 3});
  writer->take();
  const std::size_t sizeWithTopic = announced.next().size();
  writer->withdraw("/test/a");
  writer->take();
  EXPECT_GT(sizeWithTopic, announced.next().size());
}

TEST_F(DdsBus, RefusesAPeerThatIsNoAddress)
{
  BusOptions options;
  options.staticPeers = {"robot"};
  EXPECT_THROW(KV::ros2::openDdsBus(options, {}, {}), std::runtime_error);
}

}  // namespace
