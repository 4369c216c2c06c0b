#include "rosbag2/mcaprecords.hpp"

#include "rosbag2/mcapbytes.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <array>

namespace KV::recordings
{
namespace
{
std::uint64_t numberIn(const char* bytes, std::size_t size)
{
  std::uint64_t number = 0;
  for (std::size_t i = size; i > 0; --i)
    number = number << 8U | static_cast<unsigned char>(bytes[i - 1]);
  return number;
}

}  // namespace

std::uint64_t McapFields::_number(std::size_t size)
{
  std::array<char, 8> bytes{};
  _read(bytes.data(), size);
  return numberIn(bytes.data(), size);
}

std::string McapFields::text(const char* what)
{
  const std::uint32_t length = number32();
  if (length > limits::longestTopicName)
    throw McapError(std::string(what) + " is longer than " + std::to_string(limits::longestTopicName) + " bytes");
  std::string text(length, '\0');
  _read(text.data(), length);
  return text;
}

void McapFields::rest(char* bytes)
{
  _read(bytes, static_cast<std::size_t>(_left));
}

void McapFields::skipRest()
{
  if (_bytes.skip(_left) < _left)
    throw McapError("ends too early");
  _left = 0;
}

void McapFields::_read(char* bytes, std::size_t count)
{
  if (count > _left)
    throw McapError("a field is longer than its record");
  if (_bytes.read(bytes, count) < count)
    throw McapError("ends too early");
  _left -= count;
}

std::optional<McapRecord> nextMcapRecord(McapBytes& bytes)
{
  std::array<char, McapRecord::headSize> head{};
  if (bytes.read(head.data(), head.size()) < head.size())
    return {};
  return McapRecord{static_cast<McapOpcode>(head[0]), numberIn(head.data() + 1, head.size() - 1)};
}

McapSchema readMcapSchema(McapFields& fields)
{
  McapSchema schema;
  schema.id = fields.number16();
  schema.name = fields.text("the name of a type");
  return schema;
}

McapChannel readMcapChannel(McapFields& fields)
{
  McapChannel channel;
  channel.id = fields.number16();
  channel.schema = fields.number16();
  channel.topic = fields.text("the name of a topic");
  channel.encoding = fields.text("the format of messages");
  return channel;
}

McapMessageHead readMcapMessageHead(McapFields& fields)
{
  McapMessageHead head;
  head.channel = fields.number16();
  fields.number32();  // sequence
  head.time = static_cast<std::int64_t>(fields.number64());
  fields.number64();  // when it was published
  return head;
}

McapChunkHead readMcapChunkHead(McapFields& fields)
{
  McapChunkHead head;
  fields.number64();  // times of its first
  fields.number64();  // and its last message
  head.unpacked = fields.number64();
  head.checksum = fields.number32();
  head.compression = fields.text("the name of a compression");
  head.packed = fields.number64();
  return head;
}

}  // namespace KV::recordings
