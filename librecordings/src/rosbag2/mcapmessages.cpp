#include "rosbag2/mcapmessages.hpp"

#include "rosbag2/mcapbytes.hpp"
#include "rosbag2/mcaprecords.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <algorithm>
#include <optional>
#include <tuple>

namespace KV::recordings
{

McapMessages::McapMessages(const McapFile& file, const std::vector<std::int64_t>& topics)
  : _file(file), _input(file.input())
{
  for (const std::int64_t topic : topics)
    _channels.insert(static_cast<std::uint16_t>(topic));
  for (std::size_t number = 0; number < file.parts().size(); ++number)
  {
    std::optional<std::int64_t> first;
    for (const auto& [channel, time] : file.parts()[number].channels)
      if (_channels.count(channel) > 0)
        first = std::min(first.value_or(time), time);
    if (first)
      _parts.emplace_back(*first, number);
  }
  std::sort(_parts.begin(), _parts.end());
}

McapMessages::~McapMessages() = default;

bool McapMessages::next(BagMessage& message)
{
  InterruptionCheck::ask();
  _readParts();
  if (_waiting.empty())
    return false;
  std::pop_heap(_waiting.begin(), _waiting.end(), _isLater);
  Waiting earliest = std::move(_waiting.back());
  _waiting.pop_back();
  _bytes -= earliest.bytes();

  message.number = earliest.number;
  message.topic = earliest.channel;
  message.time = earliest.time;
  if (message.time < 0)
    _file.refuseTime(message);
  if (earliest.length > limits::largestMessage)
    _file.refuseLength(message, earliest.length);
  message.data = std::move(earliest.data);
  return true;
}

bool McapMessages::_isLater(const Waiting& left, const Waiting& right)
{
  return std::tie(left.time, left.number) > std::tie(right.time, right.number);
}

// Reads all parts that may hold a message as early as the earliest waiting one.
void McapMessages::_readParts()
{
  while (_nextPart < _parts.size() && (_waiting.empty() || _parts[_nextPart].first <= _waiting.front().time))
    _read(_file.parts()[_parts[_nextPart++].second]);
}

// The whole file was read before without a fault: it can only have changed since.
void McapMessages::_read(const McapPart& part)
{
  try
  {
    const std::unique_ptr<McapBytes> bytes = part.open(*_input);
    std::int64_t number = part.firstNumber;
    std::size_t taken = 0;  // [bytes] of this part
    while (bytes->place() < part.records)
    {
      const auto record = nextMcapRecord(*bytes);
      if (!record)
        throw McapError("ends too early");
      McapFields fields(*bytes, record->length);
      if (record->opcode == McapOpcode::Message)
        taken += _take(fields, number++);
      if (taken > limits::largestMixed)
        _file.failForSize(part);
      if (_bytes > limits::largestMixed)
        _file.failForOrder();
      fields.skipRest();
    }
  }
  catch (const McapError& error)
  {
    _file.fail(part.begin, error.what());
  }
}

// Returns how many bytes the message takes; 0 if it is of another topic.
std::size_t McapMessages::_take(McapFields& fields, std::int64_t number)
{
  const McapMessageHead head = readMcapMessageHead(fields);
  if (_channels.count(head.channel) == 0)
    return 0;
  Waiting message{head.time, number, fields.left(), head.channel, {}};
  if (message.length <= limits::largestMessage)
  {
    message.data.resize(static_cast<std::size_t>(message.length));
    fields.rest(message.data.data());
  }
  const std::size_t bytes = message.bytes();
  _bytes += bytes;
  _waiting.push_back(std::move(message));
  std::push_heap(_waiting.begin(), _waiting.end(), _isLater);
  return bytes;
}

}  // namespace KV::recordings
