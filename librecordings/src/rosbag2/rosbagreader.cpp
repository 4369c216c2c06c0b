#include "rosbag2/rosbagreader.hpp"

#include "face/pose.hpp"
#include "input/unpacker.hpp"
#include "recording/recordingclock.hpp"
#include "rosbag2/bagfolder.hpp"
#include "rosbag2/openbagfile.hpp"
#include "rosbag2/packedmessage.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr std::size_t mostNamedTopics = 4;  // in a message

void expectCdr(const BagFile& bag, const BagTopic& topic)
{
  if (topic.format != "cdr")
    throw Error({bag.path(), 0, topic.name}, "expected messages in the format cdr, found " + quote(topic.format) +
                                                 (topic.format == "ros1" ? ": convert the bag to ROS 2 first" : ""));
}

std::int64_t beginOf(const BagFile& bag)
{
  return bag.span() ? bag.span()->first : 0;
}

template <typename Read>
void guarded(const BagFile& bag, BagMessage& message, const Read& read)
{
  try
  {
    unpackMessage(message.data, limits::largestMessage);
    read();
  }
  catch (const RosMessageError& error)
  {
    bag.refuse(message, error.what());
  }
  catch (const UnpackError& error)
  {
    bag.refuse(message, std::string("its compressed data are damaged: ") + error.what());
  }
}

}  // namespace

RosbagReader::RosbagReader(const std::string& path, const ReadingOptions& options)
  : _options(options), _dispatch(options)
{
  _openAll(path);
  _readPersons();
  if (options.framesPerSecond)
    _warnings.emplace_back("a rate was given, but the messages of a bag have times of their own");
  _first = std::max<std::int64_t>(0, beginOf(*_files.front().bag));
  for (const File& file : _files)
    _last = std::max(_last, file.bag->span() ? file.bag->span()->last : 0);
  const bool countsSince1970 = _first / nanosecondsPerSecond > static_cast<std::int64_t>(earliestEpochTimestamp);
  _origin = countsSince1970 ? 0 : static_cast<std::int64_t>(recordingEpoch) * nanosecondsPerSecond - _first;
  _beginFile();
}

boost::optional<Step> RosbagReader::next()
{
  for (;;)
  {
    if (auto entry = _dispatch.next())
      return entry;
    if (_finished)
      return {};
    if (_readMessage())
      continue;
    if (++_file < _files.size())
      _beginFile();
    else
      _finish();
  }
}

std::vector<std::string> RosbagReader::describe() const
{
  return {"ROS 2 bag (" + _describeStorage() + "): angles from the frames of the faces, " +
              describeOrigin(_options, FrontEnd::Ros4Hri, true) +
              (_options.mirrored ? ", mirrored" : ", not mirrored") + "; " + _describeTopics(),
          "times at which the messages were received" +
              std::string(_origin == 0 ? "" : ", placed at 2020-01-01 since they count from the start") + "; " +
              _dispatch.describePersons()};
}

std::vector<std::string> RosbagReader::takeWarnings()
{
  return std::exchange(_warnings, {});
}

double RosbagReader::progress() const
{
  if (_finished || _last <= _first)
    return _finished ? 1.0 : 0.0;
  return std::clamp(static_cast<double>(_time - _first) / static_cast<double>(_last - _first), 0.0, 1.0);
}

void RosbagReader::_openAll(const std::string& path)
{
  BagFiles found = filesOfBag(path);
  _warnings = std::move(found.warnings);
  for (const std::string& file : found.paths)
    _files.push_back(_opened(file));
  std::stable_sort(_files.begin(), _files.end(),
                   [](const File& left, const File& right) { return beginOf(*left.bag) < beginOf(*right.bag); });
  if (std::any_of(_files.begin(), _files.end(), [](const File& file) { return !file.topics.empty(); }))
    return;
  for (const File& file : _files)
    if (!file.bag->lack().empty())
      throw Error({file.bag->path(), 0, {}}, "has no topic that is read, and " + file.bag->lack());
  throw Error({path, 0, {}}, "has no topic that is read: " + expectedRosTopics() + ", found " + _namesOfTopics());
}

std::string RosbagReader::_namesOfTopics() const
{
  std::set<std::string> names;
  for (const File& file : _files)
    for (const auto& [key, topic] : file.bag->topics())
      names.insert(topic.name);
  std::vector<std::string> shown;
  for (const std::string& name : names)
    if (shown.size() < mostNamedTopics)
      shown.push_back(quote(name));
  if (names.size() > shown.size())
    shown.push_back(std::to_string(names.size() - shown.size()) + " more");
  return shown.empty() ? "none" : listed(shown);
}

RosbagReader::File RosbagReader::_opened(const std::string& path)
{
  File file{openBagFile(path), {}};
  if (!file.bag->lack().empty())
    _warnings.push_back(path + ": " + file.bag->lack());
  for (const auto& [key, topic] : file.bag->topics())
  {
    const auto wanted = rosTopicOf(topic.name);
    if (!wanted)
      continue;
    expectCdr(*file.bag, topic);
    if (topic.type != wanted->type)
      _warnings.push_back("the topic " + topic.name + " is left out: it has messages of the type " + quote(topic.type) +
                          ", expected " + wanted->type);
    else
      file.topics.emplace(key, *wanted);
  }
  return file;
}

// The faces and voices of persons are read first: a person whose face is found again stays the same. A message that
// cannot be read is refused later, at its place among all messages.
void RosbagReader::_readPersons()
{
  for (File& file : _files)
  {
    std::vector<std::int64_t> keys;
    for (const auto& [key, topic] : file.topics)
      if (isAboutPersons(topic))
        keys.push_back(key);
    const bool isAll = file.bag->forEachDifferent(keys, [&](BagMessage& message) {
      try
      {
        guarded(*file.bag, message, [&] { _dispatch.takePerson(file.topics.at(message.topic), message.data); });
      }
      catch (const BadLine&)
      {}
    });
    if (!isAll)
      _warnings.push_back(file.bag->path() + ": holds more than " + std::to_string(limits::mostDifferentMessages) +
                          " different messages on who has which face, or more than " +
                          std::to_string(limits::largestDifferentMessages / limits::mebibyte) +
                          " MiB of them: a person whose face is found anew later counts as another person");
  }
}

void RosbagReader::_beginFile()
{
  File& file = _files[_file];
  std::vector<std::int64_t> keys;
  for (const auto& [key, topic] : file.topics)
    keys.push_back(key);
  _messages = file.bag->messagesOf(keys);
}

// Passes on the next message of the file; false at its end.
bool RosbagReader::_readMessage()
{
  File& file = _files[_file];
  BagMessage message;
  if (!_messages->next(message))
    return false;
  _time = message.time;
  guarded(*file.bag, message, [&] {
    _dispatch.advance(_timeOf(message.time));
    _dispatch.take(file.topics.at(message.topic), message.data);
  });
  return true;
}

ko::SystemClock::time_point RosbagReader::_timeOf(std::int64_t nanoseconds) const
{
  if (nanoseconds > std::numeric_limits<std::int64_t>::max() - _origin)
    throw RosMessageError("its time is beyond what the clock can show");
  return ko::SystemClock::time_point(boost::chrono::nanoseconds(nanoseconds + _origin));
}

void RosbagReader::_finish()
{
  _finished = true;
  _dispatch.finish();
  for (const std::string& warning : _dispatch.warnings())
    _warnings.push_back(warning);
}

std::string RosbagReader::_describeTopics() const
{
  std::vector<RosTopic> topics;
  for (const File& file : _files)
    for (const auto& [key, topic] : file.topics)
      topics.push_back(topic);
  return describeRosTopics(topics);
}

std::string RosbagReader::_describeStorage() const
{
  std::vector<std::string> kinds;
  for (const File& file : _files)
    if (const std::string kind = file.bag->storage(); std::find(kinds.begin(), kinds.end(), kind) == kinds.end())
      kinds.push_back(kind);
  std::string text;
  for (const std::string& kind : kinds)
    text += (text.empty() ? "" : "; ") + kind;
  return text;
}

}  // namespace KV::recordings
