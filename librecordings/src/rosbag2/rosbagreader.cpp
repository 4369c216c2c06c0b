#include "rosbag2/rosbagreader.hpp"

#include "face/pose.hpp"
#include "recording/recordingclock.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace KV::recordings
{
namespace
{
namespace fs = std::filesystem;

constexpr std::string_view magic("SQLite format 3\0", 16);
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

bool endsWith(const std::string& text, std::string_view end)
{
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::vector<std::string> filesOf(const std::string& path)
{
  std::error_code error;
  if (!fs::exists(path, error))
    throw Error({path, 0, {}}, "there is no such file");
  if (!fs::is_directory(path, error))
    return {path};

  std::vector<std::string> files;
  std::string other;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error))
  {
    const std::string name = entry->path().string();
    if (endsWith(name, ".db3") || endsWith(name, ".db3.gz"))
      files.push_back(name);
    else if (endsWith(name, ".mcap") || endsWith(name, ".zstd"))
      other = entry->path().filename().string();
  }
  if (error)
    throw Error({path, 0, {}}, "cannot be read: " + error.message());
  if (files.empty())
    throw Error({path, 0, {}}, "there is no .db3 file in the folder" +
                                   (other.empty() ? "" : "; " + quote(other) + " must be converted first"));
  return files;
}

void expectCdr(const RosbagDatabase& database, const BagTopic& topic)
{
  if (topic.format != "cdr")
    throw Error({database.path(), 0, topic.name}, "expected messages in the format cdr, found " + quote(topic.format));
}

std::int64_t beginOf(const RosbagDatabase& database)
{
  return database.span() ? database.span()->first : 0;
}

template <typename Read>
void guarded(const RosbagDatabase& database, const BagMessage& message, const Read& read)
{
  try
  {
    read();
  }
  catch (const RosMessageError& error)
  {
    database.refuse(message, error.what());
  }
}

}  // namespace

bool looksLikeRosbag(const std::string& head)
{
  return head.compare(0, magic.size(), magic) == 0;
}

bool isRosbagFolder(const std::string& path)
{
  std::error_code error;
  return fs::is_directory(path, error) && fs::exists(fs::path(path) / "metadata.yaml", error);
}

RosbagReader::RosbagReader(const std::string& path, const ReadingOptions& options)
  : _options(options), _dispatch(options)
{
  _openAll(path);
  _readPersons();
  if (options.framesPerSecond)
    _warnings.emplace_back("a rate was given, but the messages of a bag have times of their own");
  _first = std::max<std::int64_t>(0, beginOf(_files.front().database));
  for (const File& file : _files)
    _last = std::max(_last, file.database.span() ? file.database.span()->last : 0);
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
  return {"ROS 2 bag: angles from the frames of the faces, " + describeOrigin(_options, FrontEnd::Ros4Hri, true) +
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
  for (const std::string& file : filesOf(path))
    _files.push_back(_opened(file));
  std::stable_sort(_files.begin(), _files.end(), [](const File& left, const File& right) {
    return beginOf(left.database) < beginOf(right.database);
  });
  if (std::all_of(_files.begin(), _files.end(), [](const File& file) { return file.topics.empty(); }))
    throw Error({path, 0, {}}, "has no topic that is read: " + expectedRosTopics());
}

RosbagReader::File RosbagReader::_opened(const std::string& path)
{
  File file{RosbagDatabase(path), {}};
  for (const auto& [key, topic] : file.database.topics())
  {
    const auto wanted = rosTopicOf(topic.name);
    if (!wanted)
      continue;
    if (topic.type != wanted->type)
    {
      _warnings.push_back("the topic " + topic.name + " is left out: it has messages of the type " + quote(topic.type) +
                          ", expected " + wanted->type);
      continue;
    }
    expectCdr(file.database, topic);
    file.topics.emplace(key, *wanted);
  }
  return file;
}

// Who has which face and voice is read first: a person whose face is found anew stays the same.
void RosbagReader::_readPersons()
{
  for (File& file : _files)
  {
    std::vector<std::int64_t> keys;
    for (const auto& [key, topic] : file.topics)
      if (isAboutPersons(topic))
        keys.push_back(key);
    const bool isAll = file.database.forEachDifferent(keys, [&](BagMessage& message) {
      guarded(file.database, message, [&] { _dispatch.takePerson(file.topics.at(message.topic), message.data); });
    });
    if (!isAll)
      _warnings.push_back(file.database.path() + ": holds more than " + std::to_string(limits::mostDifferentMessages) +
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
  file.database.select(keys);
}

// Takes in the next message of the file; false at its end.
bool RosbagReader::_readMessage()
{
  File& file = _files[_file];
  BagMessage message;
  if (!file.database.next(message))
    return false;
  _time = message.time;
  guarded(file.database, message, [&] {
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

}  // namespace KV::recordings
