#include "rosbag2/bagfile.hpp"

#include "input/unpackedfile.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <cstddef>
#include <unordered_set>
#include <utility>

namespace KV::recordings
{

namespace
{

bool nextUsable(BagMessages& messages, BagMessage& message)
{
  for (;;)
    try
    {
      return messages.next(message);
    }
    catch (const BadLine&)  // messages() of the topic report it
    {}
}

}  // namespace

BagFile::BagFile(std::string path, std::unique_ptr<const UnpackedFile> unpacked)
  : _path(std::move(path)), _unpacked(std::move(unpacked))
{}

BagFile::~BagFile() = default;

std::string BagFile::storage() const
{
  return _container() + (_unpacked ? ", the file compressed by " + _unpacked->packing() : "");
}

const std::string& BagFile::_contents() const
{
  return _unpacked ? _unpacked->path() : _path;
}

bool BagFile::forEachDifferent(const std::vector<std::int64_t>& topics, const std::function<void(BagMessage&)>& take)
{
  if (topics.empty())
    return true;
  const std::unique_ptr<BagMessages> messages = messagesOf(topics);
  std::unordered_set<std::string> different;
  std::size_t bytes = 0;
  BagMessage message;
  while (nextUsable(*messages, message))
  {
    std::string content = std::to_string(message.topic) + " ";
    content.append(message.data.begin(), message.data.end());
    if (different.count(content) > 0)
      continue;
    bytes += content.size();
    if (different.size() == limits::mostDifferentMessages || bytes > limits::largestDifferentMessages)
      return false;
    different.insert(std::move(content));
    take(message);
  }
  return true;
}

void BagFile::refuse(const BagMessage& message, const std::string& what) const
{
  const auto topic = _topics.find(message.topic);
  throw BadLine({_path, 0, topic == _topics.end() ? "" : topic->second.name},
                "message " + std::to_string(message.number) + ": " + what);
}

void BagFile::refuseTime(const BagMessage& message) const
{
  refuse(message, "its time is no count of nanoseconds");
}

void BagFile::refuseLength(const BagMessage& message, std::uint64_t length) const
{
  refuse(message, "has " + std::to_string(length) + " bytes, too many for its type");
}

void BagFile::_failForTopics() const
{
  _fail("has more than " + std::to_string(limits::mostTopics) + " topics");
}

void BagFile::_fail(const std::string& what) const
{
  throw Error({_path, 0, {}}, what);
}

}  // namespace KV::recordings
