#include <skeigiot/ros2/bus.hpp>

#include "cdrmessages.hpp"
#include "event.hpp"
#include "messagequeue.hpp"
#include "names.hpp"
#include "participantqos.hpp"
#include "rawtype.hpp"
#include "typehash.hpp"
#include "writers.hpp"

#include <fastdds/rtps/writer/WriterDiscoveryInfo.h>
#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <fastdds/dds/domain/DomainParticipantListener.hpp>
#include <fastdds/dds/log/Log.hpp>
#include <fastdds/dds/publisher/DataWriter.hpp>
#include <fastdds/dds/publisher/Publisher.hpp>
#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <fastdds/dds/topic/TypeSupport.hpp>

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

namespace KV::ros2
{
namespace
{

namespace dds = eprosima::fastdds::dds;
namespace rtps = eprosima::fastrtps::rtps;

constexpr int publishedDepth = 10;  // messages that are kept for readers that are late
constexpr int readDepth = 100;

std::string idOf(const rtps::GUID_t& guid)
{
  std::string id(std::begin(guid.guidPrefix.value), std::end(guid.guidPrefix.value));
  return id.append(std::begin(guid.entityId.value), std::end(guid.entityId.value));
}

Gid gidOf(const rtps::GUID_t& guid)
{
  const std::string id = idOf(guid);
  Gid gid{};
  std::copy_n(id.begin(), gid.size(), gid.begin());
  return gid;
}

class DdsBus : public Bus, private dds::DomainParticipantListener
{
public:
  DdsBus(const BusOptions& options, TypeOf typeOf, Clock clock);
  ~DdsBus() override;
  DdsBus(const DdsBus&) = delete;
  DdsBus& operator=(const DdsBus&) = delete;

  int descriptor() const override { return _event.descriptor(); }
  std::vector<BusMessage> take() override;
  std::vector<std::string> takeNotes() override;
  void publish(const std::string& topic, const EngagementMessage& message) override { _publish(topic, message); }
  void publish(const std::string& topic, const ExpressionMessage& message) override { _publish(topic, message); }
  void publish(const std::string& topic, const GazeMessage& message) override { _publish(topic, message); }
  void publish(const std::string& topic, const DiagnosticMessage& message) override { _publish(topic, message); }
  void publish(const std::string& topic, const TextMessage& message) override { _publish(topic, message); }
  void announceTexts(const std::string& topic) override { _announce(topic, TextMessage::type, true); }
  void withdraw(const std::string& topic) override;
  BusCounts counts() const override;

private:
  struct Reader
  {
    ReadingQuality quality;
    dds::Topic* topic = nullptr;
    dds::DataReader* reader = nullptr;
  };
  struct Writer
  {
    dds::Topic* topic = nullptr;
    dds::DataWriter* writer = nullptr;
  };

  // Threads of DDS call these two. They call nothing of DDS while they hold the mutex.
  void on_publisher_discovery(dds::DomainParticipant* participant, rtps::WriterDiscoveryInfo&& info) override;
  void on_data_available(dds::DataReader* reader) override;

  void _open();
  std::set<std::string> _takeChanged();
  void _follow(const std::string& topic);
  void _read(const std::string& topic, const ReadingQuality& quality);
  void _leave(const std::string& topic);
  void _leaveQuietest();
  dds::Topic* _topic(const std::string& name, const std::string& type);
  void _registerType(const std::string& name);
  dds::DataWriter* _makeWriter(dds::Topic* topic, const std::string& type, bool isLatched, int depth);
  void _announce(const std::string& topic, const char* type, bool isLatched);
  template <typename Message>
  void _publish(const std::string& topic, const Message& message);
  void _announceNode();

  const BusOptions _options;
  MessageQueue _queue;
  Event _event;
  std::atomic<std::uint64_t> _refusedMessages{0};
  dds::DomainParticipant* _participant = nullptr;
  dds::Subscriber* _subscriber = nullptr;
  dds::Publisher* _publisher = nullptr;
  Writer _node;  // announces the node
  std::set<std::string> _types;
  std::map<std::string, Reader> _readers;
  std::map<std::string, Writer> _published;
  std::vector<std::string> _notes;
  bool _reportedTooMany = false;
  bool _nodeChanged = true;

  std::mutex _mutex;
  // Guarded by _mutex
  Writers _writers;
  std::set<std::string> _changed;                 // topics whose writers came or went
  std::map<std::string, std::uint64_t> _lastUse;  // by topic that is read: greater is later
  std::uint64_t _uses = 0;
};

DdsBus::DdsBus(const BusOptions& options, TypeOf typeOf, Clock clock)
  : _options(options),
    _queue(options.mostMessages, options.mostBytes, std::move(clock)),
    _writers(std::move(typeOf), options.mostWriters)
{
  dds::Log::ClearConsumers();  // they would write to the terminal
  try
  {
    _open();
  }
  catch (...)
  {
    if (_participant != nullptr)
    {
      _participant->delete_contained_entities();
      dds::DomainParticipantFactory::get_instance()->delete_participant(_participant);
    }
    throw;
  }
}

DdsBus::~DdsBus()
{
  _participant->delete_contained_entities();
  dds::DomainParticipantFactory::get_instance()->delete_participant(_participant);
}

void DdsBus::_open()
{
  _participant = dds::DomainParticipantFactory::get_instance()->create_participant(
      static_cast<std::uint32_t>(_options.domain), participantQosOf(_options), this, dds::StatusMask::none());
  if (_participant == nullptr)
    throw std::runtime_error("cannot join the domain " + std::to_string(_options.domain) +
                             ": no network interface or no free port");
  _subscriber = _participant->create_subscriber(dds::SUBSCRIBER_QOS_DEFAULT, nullptr);
  _publisher = _participant->create_publisher(dds::PUBLISHER_QOS_DEFAULT, nullptr);
  if (_subscriber == nullptr || _publisher == nullptr)
    throw std::runtime_error("cannot read or write topics in the domain " + std::to_string(_options.domain));
  if (!_options.distribution)
    return;
  const std::string type = ddsTypeOf("rmw_dds_common/msg/ParticipantEntitiesInfo");
  _registerType(type);
  _node.topic = _topic("ros_discovery_info", type);
  _node.writer = _makeWriter(_node.topic, {}, true, 1);
}

void DdsBus::on_publisher_discovery(dds::DomainParticipant* participant, rtps::WriterDiscoveryInfo&& info)
{
  if (info.info.guid().guidPrefix == participant->guid().guidPrefix)
    return;  // a writer of this bus
  const auto topic = rosTopicOfDds(info.info.topicName().to_string());
  if (!topic)
    return;
  FoundWriter writer;
  writer.id = idOf(info.info.guid());
  writer.topic = *topic;
  writer.type = rosTypeOfDds(info.info.typeName().to_string());
  const auto& userData = info.info.m_qos.m_userData.data_vec();
  writer.hash = hashIn(std::string(userData.begin(), userData.end()));
  writer.isReliable = info.info.m_qos.m_reliability.kind == dds::RELIABLE_RELIABILITY_QOS;
  writer.isTransientLocal = info.info.m_qos.m_durability.kind >= dds::TRANSIENT_LOCAL_DURABILITY_QOS;

  {
    const std::lock_guard lock(_mutex);
    const bool isGone = info.status == rtps::WriterDiscoveryInfo::REMOVED_WRITER;
    const std::string changed = isGone ? _writers.remove(writer.id) : _writers.add(writer);
    if (changed.empty())
      return;
    _changed.insert(changed);
  }
  _event.set();
}

void DdsBus::on_data_available(dds::DataReader* reader)
{
  const std::string topic = *rosTopicOfDds(reader->get_topicdescription()->get_name());
  RawMessage raw;
  dds::SampleInfo info;
  for (;;)
  {
    const ReturnCode_t result = reader->take_next_sample(&raw, &info);
    if (result == ReturnCode_t::RETCODE_NO_DATA)
      return;
    if (result != ReturnCode_t::RETCODE_OK)
    {
      ++_refusedMessages;  // a fault of the reader: RawType takes every message
      return;
    }
    if (!info.valid_data)
      continue;
    bool isRefused = false;
    {
      const std::lock_guard lock(_mutex);
      isRefused = _writers.isRefused(idOf(info.sample_identity.writer_guid()));
      if (const auto use = _lastUse.find(topic); use != _lastUse.end())
        use->second = ++_uses;
    }
    if (isRefused)
    {
      ++_refusedMessages;
      continue;
    }
    BusMessage message;
    message.topic = topic;
    message.written = std::max<std::int64_t>(0, info.source_timestamp.to_ns());
    message.data = std::move(raw.data);
    _queue.add(std::move(message));
    _event.set();
  }
}

std::vector<BusMessage> DdsBus::take()
{
  _event.reset();
  for (const std::string& topic : _takeChanged())
    _follow(topic);
  if (std::exchange(_nodeChanged, false))
    _announceNode();
  return _queue.takeAll();
}

std::vector<std::string> DdsBus::takeNotes()
{
  std::vector<std::string> notes = std::exchange(_notes, {});
  const std::lock_guard lock(_mutex);
  for (std::string& note : _writers.takeNotes())
    notes.push_back(std::move(note));
  return notes;
}

std::set<std::string> DdsBus::_takeChanged()
{
  const std::lock_guard lock(_mutex);
  return std::exchange(_changed, {});
}

void DdsBus::_follow(const std::string& topic)
{
  boost::optional<ReadingQuality> quality;
  {
    const std::lock_guard lock(_mutex);
    quality = _writers.qualityOf(topic);
  }
  const auto read = _readers.find(topic);
  if (read != _readers.end() && quality && read->second.quality == *quality)
    return;
  if (read != _readers.end())
    _leave(topic);
  if (!quality)
    return;
  if (_readers.size() >= _options.mostReaders)
    _leaveQuietest();
  _read(topic, *quality);
}

// Not every implementation of DDS says in a way that Fast DDS understands that a writer went: its topic falls silent.
// Topics whose last message is kept for late readers are always silent: they stay as long as there are others.
void DdsBus::_leaveQuietest()
{
  std::string quietest;
  {
    const std::lock_guard lock(_mutex);
    const auto order = [this](const auto& use) {
      return std::make_pair(_readers.at(use.first).quality.isTransientLocal, use.second);
    };
    const auto least =
        std::min_element(_lastUse.begin(), _lastUse.end(),
                         [&order](const auto& left, const auto& right) { return order(left) < order(right); });
    quietest = least->first;
  }
  if (!std::exchange(_reportedTooMany, true))
    _notes.push_back("there are more than " + std::to_string(_options.mostReaders) +
                     " topics to read: those that are silent longest are left out, such as " + quietest);
  _leave(quietest);
}

void DdsBus::_read(const std::string& topic, const ReadingQuality& quality)
{
  std::string type;
  {
    const std::lock_guard lock(_mutex);
    type = _writers.typeOf(topic);
  }
  Reader reader;
  reader.quality = quality;
  reader.topic = _topic(topic, type);
  dds::DataReaderQos qos = dds::DATAREADER_QOS_DEFAULT;
  qos.reliability().kind = quality.isReliable ? dds::RELIABLE_RELIABILITY_QOS : dds::BEST_EFFORT_RELIABILITY_QOS;
  qos.durability().kind = quality.isTransientLocal ? dds::TRANSIENT_LOCAL_DURABILITY_QOS : dds::VOLATILE_DURABILITY_QOS;
  qos.history().depth = readDepth;
  qos.endpoint().history_memory_policy = rtps::PREALLOCATED_WITH_REALLOC_MEMORY_MODE;
  qos.data_sharing().off();
  setUserData(qos.user_data(), userDataOf(type));
  reader.reader = _subscriber->create_datareader(reader.topic, qos, this, dds::StatusMask::data_available());
  if (reader.reader == nullptr)
  {
    _participant->delete_topic(reader.topic);
    throw std::runtime_error("cannot read the topic " + topic);
  }
  _readers[topic] = reader;
  {
    const std::lock_guard lock(_mutex);
    _lastUse[topic] = ++_uses;
  }
  _nodeChanged = true;
}

void DdsBus::_leave(const std::string& topic)
{
  const auto read = _readers.find(topic);
  _subscriber->delete_datareader(read->second.reader);
  _participant->delete_topic(read->second.topic);
  _readers.erase(read);
  {
    const std::lock_guard lock(_mutex);
    _lastUse.erase(topic);
  }
  _nodeChanged = true;
}

dds::Topic* DdsBus::_topic(const std::string& name, const std::string& type)
{
  const bool isOfRos = name.front() == '/';
  const std::string ddsType = isOfRos ? ddsTypeOf(type) : type;
  _registerType(ddsType);
  dds::Topic* const topic =
      _participant->create_topic(isOfRos ? ddsTopicOf(name) : name, ddsType, dds::TOPIC_QOS_DEFAULT);
  if (topic == nullptr)
    throw std::runtime_error("cannot make the topic " + name);
  return topic;
}

void DdsBus::_registerType(const std::string& name)
{
  if (_types.insert(name).second)
    _participant->register_type(dds::TypeSupport(new RawType(name)));  // which owns it
}

dds::DataWriter* DdsBus::_makeWriter(dds::Topic* topic, const std::string& type, bool isLatched, int depth)
{
  dds::DataWriterQos qos = dds::DATAWRITER_QOS_DEFAULT;
  qos.reliability().kind = dds::RELIABLE_RELIABILITY_QOS;
  qos.durability().kind = isLatched ? dds::TRANSIENT_LOCAL_DURABILITY_QOS : dds::VOLATILE_DURABILITY_QOS;
  qos.history().depth = depth;
  qos.endpoint().history_memory_policy = rtps::PREALLOCATED_WITH_REALLOC_MEMORY_MODE;
  qos.data_sharing().off();
  setUserData(qos.user_data(), userDataOf(type));
  dds::DataWriter* const writer = _publisher->create_datawriter(topic, qos, nullptr, dds::StatusMask::none());
  if (writer == nullptr)
    throw std::runtime_error("cannot write the topic " + topic->get_name());
  return writer;
}

void DdsBus::_announce(const std::string& topic, const char* type, bool isLatched)
{
  if (_published.count(topic) > 0)
    return;
  Writer writer;
  writer.topic = _topic(topic, type);
  writer.writer = _makeWriter(writer.topic, type, isLatched, publishedDepth);
  _published.emplace(topic, writer);
  _nodeChanged = true;
  _event.set();
}

template <typename Message>
void DdsBus::_publish(const std::string& topic, const Message& message)
{
  _announce(topic, Message::type, false);
  RawMessage raw{cdrOf(message)};
  _published.at(topic).writer->write(&raw);
}

void DdsBus::withdraw(const std::string& topic)
{
  const auto published = _published.find(topic);
  if (published == _published.end())
    return;
  _publisher->delete_datawriter(published->second.writer);
  _participant->delete_topic(published->second.topic);
  _published.erase(published);
  _nodeChanged = true;
  _event.set();
}

BusCounts DdsBus::counts() const
{
  BusCounts counts;
  counts.refused = _refusedMessages;
  counts.received = _queue.added() + counts.refused;
  counts.dropped = _queue.dropped();
  counts.waiting = _queue.size();
  counts.readers = _readers.size();
  counts.writers = _published.size();
  return counts;
}

void DdsBus::_announceNode()
{
  if (_node.writer == nullptr)
    return;
  NodeMessage node;
  node.participant = gidOf(_participant->guid());
  node.name = _options.node;
  for (const auto& [topic, reader] : _readers)
    node.readers.push_back(gidOf(reader.reader->guid()));
  for (const auto& [topic, writer] : _published)
    node.writers.push_back(gidOf(writer.writer->guid()));
  RawMessage raw{cdrOf(node, *_options.distribution)};
  _node.writer->write(&raw);
}

}  // namespace

std::unique_ptr<Bus> openDdsBus(const BusOptions& options, Bus::TypeOf typeOf, Bus::Clock clock)
{
  return std::make_unique<DdsBus>(options, std::move(typeOf), std::move(clock));
}

}  // namespace KV::ros2
