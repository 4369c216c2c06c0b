#include "cyclonepeer.hpp"

#include "messages.h"

#include <fastcdr/Cdr.h>
#include <fastcdr/FastBuffer.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace rostests
{

namespace
{

constexpr dds_duration_t patience = DDS_SECS(20);
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

// Without a hash of the key, Fast DDS 2.9 does not notice that a writer of Cyclone went.
const char* const configuration =
    R"(<CycloneDDS><Domain><General><Interfaces><NetworkInterface name="lo" multicast="false"/></Interfaces>
<AllowMulticast>false</AllowMulticast></General><Discovery><ParticipantIndex>auto</ParticipantIndex>
<MaxAutoParticipantIndex>20</MaxAutoParticipantIndex><Peers><Peer Address="127.0.0.1"/></Peers></Discovery>
<Internal><GenerateKeyhash>true</GenerateKeyhash></Internal>
</Domain></CycloneDDS>)";

dds_entity_t checked(dds_entity_t entity, const std::string& what)
{
  if (entity < 0)
    throw std::runtime_error("Cyclone: " + what + ": " + dds_strretcode(entity));
  return entity;
}

bool endsWith(const std::string& text, const std::string& end)
{
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

const dds_topic_descriptor_t& descriptorOf(const std::string& topic)
{
  if (topic == "/tf" || topic == "/tf_static")
    return tf2_msgs_msg_dds__TFMessage__desc;
  if (topic == "/diagnostics")
    return diagnostic_msgs_msg_dds__DiagnosticArray__desc;
  if (topic == "ros_discovery_info")
    return rmw_dds_common_msg_dds__ParticipantEntitiesInfo__desc;
  if (endsWith(topic, "/tracked"))
    return hri_msgs_msg_dds__IdsList__desc;
  if (endsWith(topic, "/expression") || endsWith(topic, "/affect"))
    return hri_msgs_msg_dds__Expression__desc;
  if (endsWith(topic, "/engagement_status"))
    return hri_msgs_msg_dds__EngagementLevel__desc;
  if (endsWith(topic, "/gazing"))
    return hri_msgs_msg_dds__Gaze__desc;
  if (endsWith(topic, "/is_speaking"))
    return std_msgs_msg_dds__Bool__desc;
  return std_msgs_msg_dds__String__desc;
}

/// Reads a message in CDR into the structures that idlc made.
class CdrReader
{
public:
  explicit CdrReader(std::string bytes)
    : _bytes(std::move(bytes)), _buffer(_bytes.data(), _bytes.size()), _cdr(_buffer, Cdr::DEFAULT_ENDIAN, Cdr::DDS_CDR)
  {
    _cdr.read_encapsulation();
  }

  template <typename Value>
  Value take()
  {
    Value value{};
    _cdr >> value;
    return value;
  }

  char* text() { return dds_string_dup(take<std::string>().c_str()); }

  void header(std_msgs_msg_dds__Header_& header)
  {
    header.stamp.sec = take<std::int32_t>();
    header.stamp.nanosec = take<std::uint32_t>();
    header.frame_id = text();
  }

  void numbers(double* first, std::size_t count)
  {
    for (std::size_t i = 0; i < count; ++i)
      first[i] = take<double>();
  }

private:
  using Cdr = eprosima::fastcdr::Cdr;

  std::string _bytes;
  eprosima::fastcdr::FastBuffer _buffer;
  Cdr _cdr;
};

template <typename Sample>
void write(dds_entity_t writer, const dds_topic_descriptor_t& type, Sample* sample, std::int64_t time)
{
  const dds_return_t result = dds_write_ts(writer, sample, time);
  dds_sample_free(sample, &type, DDS_FREE_ALL);
  checked(result, "write");
}

template <typename Sample>
Sample* zeroed()
{
  auto* const sample = static_cast<Sample*>(dds_alloc(sizeof(Sample)));
  std::memset(static_cast<void*>(sample), 0, sizeof(Sample));
  return sample;
}

std::int64_t stampOf(const std_msgs_msg_dds__Header_& header)
{
  return header.stamp.sec * nanosecondsPerSecond + header.stamp.nanosec;
}

void fill(const hri_msgs_msg_dds__EngagementLevel_& sample, Received& received)
{
  received.stamp = stampOf(sample.header);
  received.level = sample.level;
}

void fill(const hri_msgs_msg_dds__Expression_& sample, Received& received)
{
  received.stamp = stampOf(sample.header);
  received.text = sample.expression;
  received.valence = sample.valence;
  received.confidence = sample.confidence;
}

void fill(const hri_msgs_msg_dds__Gaze_& sample, Received& received)
{
  received.stamp = stampOf(sample.header);
  received.text = sample.sender;
}

void fill(const std_msgs_msg_dds__String_& sample, Received& received)
{
  received.text = sample.data;
}

void fill(const diagnostic_msgs_msg_dds__DiagnosticArray_& sample, Received& received)
{
  received.stamp = stampOf(sample.header);
  for (std::uint32_t i = 0; i < sample.status._length; ++i)
  {
    const auto& status = sample.status._buffer[i];
    received.level = status.level;
    received.text = status.message;
    for (std::uint32_t k = 0; k < status.values._length; ++k)
      received.values[status.values._buffer[k].key] = status.values._buffer[k].value;
  }
}

void fill(const rmw_dds_common_msg_dds__ParticipantEntitiesInfo_& sample, Received& received)
{
  for (std::uint32_t i = 0; i < sample.node_entities_info_seq._length; ++i)
  {
    const auto& node = sample.node_entities_info_seq._buffer[i];
    received.text = std::string(node.node_namespace) + node.node_name;
    received.values["readers"] = std::to_string(node.reader_gid_seq._length);
    received.values["writers"] = std::to_string(node.writer_gid_seq._length);
  }
}

template <typename Sample>
void takeAll(dds_entity_t reader, const std::string& topic, std::vector<Received>& all)
{
  constexpr std::size_t most = 64;
  std::vector<void*> samples(most, nullptr);
  std::vector<dds_sample_info_t> infos(most);
  for (;;)
  {
    const dds_return_t count = dds_take(reader, samples.data(), infos.data(), most, most);
    checked(count, "take");
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
    {
      if (!infos[i].valid_data)
        continue;
      Received& received = all.emplace_back();
      received.topic = topic;
      fill(*static_cast<const Sample*>(samples[i]), received);
    }
    if (count > 0)
      dds_return_loan(reader, samples.data(), count);
    if (count == 0)
      return;
    samples.assign(most, nullptr);
  }
}

}  // namespace

CyclonePeer::CyclonePeer(int domain)
{
  _domain = checked(dds_create_domain(static_cast<dds_domainid_t>(domain), configuration), "domain");
  _participant = checked(dds_create_participant(static_cast<dds_domainid_t>(domain), nullptr, nullptr), "participant");
  _waitset = checked(dds_create_waitset(_participant), "waitset");
}

CyclonePeer::~CyclonePeer()
{
  dds_delete(_domain);
}

dds_entity_t CyclonePeer::_topic(const std::string& name, const dds_topic_descriptor_t& type)
{
  const auto known = _topics.find(name);
  if (known != _topics.end())
    return known->second;
  const std::string ddsName = name.front() == '/' ? "rt" + name : name;
  const dds_entity_t topic =
      checked(dds_create_topic(_participant, &type, ddsName.c_str(), nullptr, nullptr), "topic " + name);
  return _topics[name] = topic;
}

void CyclonePeer::write(const std::string& topic, bool isLatched, const std::string& userData)
{
  dds_qos_t* const qos = dds_create_qos();
  dds_qset_reliability(qos, DDS_RELIABILITY_RELIABLE, DDS_SECS(10));
  dds_qset_durability(qos, isLatched ? DDS_DURABILITY_TRANSIENT_LOCAL : DDS_DURABILITY_VOLATILE);
  dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, 0);
  dds_qset_userdata(qos, userData.data(), userData.size());
  const dds_entity_t writer = dds_create_writer(_participant, _topic(topic, descriptorOf(topic)), qos, nullptr);
  dds_delete_qos(qos);
  _writers[topic] = checked(writer, "writer of " + topic);
  checked(dds_set_status_mask(writer, DDS_PUBLICATION_MATCHED_STATUS), "status");
  checked(dds_waitset_attach(_waitset, writer, writer), "attach");
}

void CyclonePeer::writeCut(const std::string& topic)
{
  const dds_topic_descriptor_t& type = std_msgs_msg_dds__Bool__desc;
  constexpr auto noMetadata = ~static_cast<std::uint32_t>(DDS_TOPIC_XTYPES_METADATA);
  const dds_topic_descriptor_t cut{type.m_size,
                                   type.m_align,
                                   type.m_flagset & noMetadata,
                                   type.m_nkeys,
                                   descriptorOf(topic).m_typename,
                                   type.m_keys,
                                   type.m_nops,
                                   type.m_ops,
                                   type.m_meta,
                                   {},
                                   {},
                                   type.restrict_data_representation};
  _topic(topic, cut);
  write(topic);
}

void CyclonePeer::stopWriting(const std::string& topic)
{
  dds_delete(_writers.at(topic));
  _writers.erase(topic);
  dds_delete(_topics.at(topic));
  _topics.erase(topic);
}

bool CyclonePeer::waitForReaders()
{
  return _waitUntil([this] {
    return std::all_of(_writers.begin(), _writers.end(), [](const auto& writer) {
      dds_publication_matched_status_t status;
      return dds_get_publication_matched_status(writer.second, &status) == DDS_RETCODE_OK && status.current_count > 0;
    });
  });
}

bool CyclonePeer::waitForWriter(const std::string& topic)
{
  return _waitUntil([reader = _readers.at(topic)] {
    dds_subscription_matched_status_t status;
    return dds_get_subscription_matched_status(reader, &status) == DDS_RETCODE_OK && status.current_count > 0;
  });
}

bool CyclonePeer::_waitUntil(const std::function<bool()>& isSo)
{
  const dds_time_t end = dds_time() + patience;
  while (!isSo())
  {
    if (dds_time() >= end)
      return false;
    _take();
    dds_waitset_wait_until(_waitset, nullptr, 0, end);
  }
  return true;
}

void CyclonePeer::send(const std::string& topic, const std::string& cdr, std::int64_t time)
{
  const dds_entity_t writer = _writers.at(topic);
  const dds_topic_descriptor_t* const type = &descriptorOf(topic);
  CdrReader reader(cdr);
  if (type == &tf2_msgs_msg_dds__TFMessage__desc)
  {
    auto* const sample = zeroed<tf2_msgs_msg_dds__TFMessage_>();
    auto& frames = sample->transforms;
    frames._length = frames._maximum = reader.take<std::uint32_t>();
    frames._buffer = dds_sequence_geometry_msgs_msg_dds__TransformStamped__allocbuf(frames._length);
    frames._release = true;
    for (std::uint32_t i = 0; i < frames._length; ++i)
    {
      auto& frame = frames._buffer[i];
      reader.header(frame.header);
      frame.child_frame_id = reader.text();
      reader.numbers(&frame.transform.translation.x, 3);
      reader.numbers(&frame.transform.rotation.x, 4);
    }
    return rostests::write(writer, *type, sample, time);
  }
  if (type == &hri_msgs_msg_dds__IdsList__desc)
  {
    auto* const sample = zeroed<hri_msgs_msg_dds__IdsList_>();
    reader.header(sample->header);
    sample->ids._length = sample->ids._maximum = reader.take<std::uint32_t>();
    sample->ids._buffer = dds_sequence_string_allocbuf(sample->ids._length);
    sample->ids._release = true;
    for (std::uint32_t i = 0; i < sample->ids._length; ++i)
      sample->ids._buffer[i] = reader.text();
    return rostests::write(writer, *type, sample, time);
  }
  if (type == &hri_msgs_msg_dds__Expression__desc)
  {
    auto* const sample = zeroed<hri_msgs_msg_dds__Expression_>();
    reader.header(sample->header);
    sample->expression = reader.text();
    sample->valence = reader.take<float>();
    sample->arousal = reader.take<float>();
    sample->confidence = reader.take<float>();
    return rostests::write(writer, *type, sample, time);
  }
  if (type == &std_msgs_msg_dds__Bool__desc)
  {
    auto* const sample = zeroed<std_msgs_msg_dds__Bool_>();
    sample->data = reader.take<bool>();
    return rostests::write(writer, *type, sample, time);
  }
  auto* const sample = zeroed<std_msgs_msg_dds__String_>();
  sample->data = reader.text();
  rostests::write(writer, *type, sample, time);
}

void CyclonePeer::sendCut(const std::string& topic)
{
  const std_msgs_msg_dds__Bool_ sample{true};
  checked(dds_write(_writers.at(topic), &sample), "write");
}

bool CyclonePeer::waitForAcknowledgments()
{
  return std::all_of(_writers.begin(), _writers.end(),
                     [](const auto& writer) { return dds_wait_for_acks(writer.second, patience) == DDS_RETCODE_OK; });
}

void CyclonePeer::read(const std::string& topic)
{
  dds_qos_t* const qos = dds_create_qos();
  dds_qset_reliability(qos, DDS_RELIABILITY_RELIABLE, DDS_SECS(10));
  if (topic == "ros_discovery_info")
    dds_qset_durability(qos, DDS_DURABILITY_TRANSIENT_LOCAL);
  dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, 0);
  const dds_entity_t reader = dds_create_reader(_participant, _topic(topic, descriptorOf(topic)), qos, nullptr);
  dds_delete_qos(qos);
  _readers[topic] = checked(reader, "reader of " + topic);
  checked(dds_set_status_mask(reader, DDS_DATA_AVAILABLE_STATUS | DDS_SUBSCRIPTION_MATCHED_STATUS), "status");
  checked(dds_waitset_attach(_waitset, reader, reader), "attach");
}

bool CyclonePeer::waitFor(const std::function<bool(const Received&)>& isWanted, dds_duration_t longest)
{
  const dds_time_t end = dds_time() + longest;
  std::size_t looked = 0;
  for (;;)
  {
    _take();
    for (; looked < _received.size(); ++looked)
      if (isWanted(_received[looked]))
        return true;
    if (dds_time() >= end)
      return false;
    dds_waitset_wait_until(_waitset, nullptr, 0, end);
  }
}

void CyclonePeer::_take()
{
  // A status that nobody reads would end each wait.
  for (const auto& [topic, writer] : _writers)
    dds_get_publication_matched_status(writer, nullptr);
  for (const auto& [topic, reader] : _readers)
    dds_get_subscription_matched_status(reader, nullptr);
  for (const auto& [topic, reader] : _readers)
  {
    const dds_topic_descriptor_t* const type = &descriptorOf(topic);
    if (type == &hri_msgs_msg_dds__EngagementLevel__desc)
      takeAll<hri_msgs_msg_dds__EngagementLevel_>(reader, topic, _received);
    else if (type == &hri_msgs_msg_dds__Expression__desc)
      takeAll<hri_msgs_msg_dds__Expression_>(reader, topic, _received);
    else if (type == &hri_msgs_msg_dds__Gaze__desc)
      takeAll<hri_msgs_msg_dds__Gaze_>(reader, topic, _received);
    else if (type == &std_msgs_msg_dds__String__desc)
      takeAll<std_msgs_msg_dds__String_>(reader, topic, _received);
    else if (type == &diagnostic_msgs_msg_dds__DiagnosticArray__desc)
      takeAll<diagnostic_msgs_msg_dds__DiagnosticArray_>(reader, topic, _received);
    else
      takeAll<rmw_dds_common_msg_dds__ParticipantEntitiesInfo_>(reader, topic, _received);
  }
}

}  // namespace rostests
