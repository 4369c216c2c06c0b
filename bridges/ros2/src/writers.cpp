#include "writers.hpp"

#include "typehash.hpp"

#include <algorithm>
#include <utility>

namespace KV::ros2
{
namespace
{
constexpr std::size_t mostNoted = 1000;  // topics whose refusal is remembered
}

std::string Writers::add(const FoundWriter& writer)
{
  const std::string type = _typeOf(writer.topic);
  if (type.empty())
    return {};
  remove(writer.id);
  if (_writers.size() >= _mostWriters)
  {
    if (!std::exchange(_areSomeLeftOut, true))
      _notes.push_back("there are more than " + std::to_string(_mostWriters) +
                       " writers of topics to read: those that came later are left out");
    return writer.topic;
  }
  _writers[writer.id] = writer;
  const std::string fault = _fault(writer, type);
  if (fault.empty())
  {
    _fitting[writer.topic].insert(writer.id);
    return writer.topic;
  }
  _refused.insert(writer.id);
  if (_noted.size() < mostNoted && _noted.insert(writer.topic).second)
    _notes.push_back("a writer of the topic " + writer.topic + " is refused: " + fault);
  return writer.topic;
}

std::string Writers::remove(const std::string& id)
{
  const auto found = _writers.find(id);
  if (found == _writers.end())
    return {};
  const std::string topic = found->second.topic;
  _writers.erase(found);
  _refused.erase(id);
  const auto fitting = _fitting.find(topic);
  if (fitting != _fitting.end())
  {
    fitting->second.erase(id);
    if (fitting->second.empty())
      _fitting.erase(fitting);
  }
  return topic;
}

boost::optional<ReadingQuality> Writers::qualityOf(const std::string& topic) const
{
  const auto fitting = _fitting.find(topic);
  if (fitting == _fitting.end())
    return {};
  ReadingQuality quality{true, true};
  for (const std::string& id : fitting->second)
  {
    const FoundWriter& writer = _writers.at(id);
    quality.isReliable = quality.isReliable && writer.isReliable;
    quality.isTransientLocal = quality.isTransientLocal && writer.isTransientLocal;
  }
  return quality;
}

std::vector<std::string> Writers::takeNotes()
{
  return std::exchange(_notes, {});
}

// Returns why the writer does not fit; empty if it does.
std::string Writers::_fault(const FoundWriter& writer, const std::string& type) const
{
  if (writer.type != type)
    return "it has messages of the type " + writer.type + ", expected " + type;
  const std::vector<std::string> hashes = typeHashesOf(type);
  if (writer.hash.empty() || hashes.empty() || std::find(hashes.begin(), hashes.end(), writer.hash) != hashes.end())
    return {};
  return "its messages of the type " + type + " have another layout, with the hash " + writer.hash + ", expected " +
         hashes.front();
}

}  // namespace KV::ros2
