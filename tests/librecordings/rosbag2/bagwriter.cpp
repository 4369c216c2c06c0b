#include "librecordings/rosbag2/bagwriter.hpp"

#include "ros4hri/ros4hritopics.hpp"

#include <sqlite3.h>

#include <cmath>
#include <stdexcept>

namespace support
{
namespace
{
constexpr double radiansPerDegree = 0.017453292519943295769;
}

std::string tfMessage(const std::vector<FrameMessage>& frames, bool bigEndian)
{
  CdrWriter writer(bigEndian);
  writer << static_cast<std::uint32_t>(frames.size());
  for (const FrameMessage& frame : frames)
  {
    writer.header(frame.parent) << frame.child;
    for (const double number : frame.translation)
      writer << number;
    for (const double number : frame.rotation)
      writer << number;
  }
  return writer.bytes();
}

std::string idsMessage(const std::vector<std::string>& ids, const std::string& frame)
{
  CdrWriter writer;
  writer.header(frame) << static_cast<std::uint32_t>(ids.size());
  for (const std::string& id : ids)
    writer << id;
  return writer.bytes();
}

std::string expressionMessage(const std::string& name, float valence, float confidence)
{
  CdrWriter writer;
  writer.header("") << name << valence << 0.f << confidence;
  return writer.bytes();
}

std::string stringMessage(const std::string& text)
{
  return (CdrWriter() << text).bytes();
}

std::string boolMessage(bool value)
{
  return (CdrWriter() << value).bytes();
}

std::string jointStatesMessage(const std::vector<std::string>& names, const std::vector<double>& positions)
{
  const std::vector<double> unknown;  // velocity, effort
  return (CdrWriter().header("") << names << positions << unknown << unknown).bytes();
}

std::string clockMessage(std::int64_t nanoseconds)
{
  constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
  return (CdrWriter() << static_cast<std::int32_t>(nanoseconds / nanosecondsPerSecond)
                      << static_cast<std::uint32_t>(nanoseconds % nanosecondsPerSecond))
      .bytes();
}

std::string softBiometricsMessage(std::uint8_t age, float ageConfidence, std::uint8_t gender, float genderConfidence)
{
  return (CdrWriter().header("") << age << ageConfidence << gender << genderConfidence).bytes();
}

std::string speechMessage(const std::string& incremental, const std::string& final)
{
  CdrWriter writer;
  writer.header("") << incremental << final << 0.5;
  return writer.bytes();
}

std::array<double, 4> turned(double degrees, const std::array<double, 3>& axis)
{
  const double half = degrees * radiansPerDegree / 2.;
  return {axis[0] * std::sin(half), axis[1] * std::sin(half), axis[2] * std::sin(half), std::cos(half)};
}

std::array<double, 4> product(const std::array<double, 4>& left, const std::array<double, 4>& right)
{
  const auto& [x, y, z, w] = left;
  const auto& [a, b, c, d] = right;
  return {w * a + x * d + y * c - z * b, w * b - x * c + y * d + z * a, w * c + x * b - y * a + z * d,
          w * d - x * a - y * b - z * c};
}

// In the frame of a face y is to the person's own left and z up: a turn to the right is against z, a look up against y,
// a tilt to the right shoulder about x, which points out of the face.
FrameMessage faceFrame(const std::string& id, const std::array<double, 3>& position, double ownRight, double up,
                       double tilt)
{
  auto rotation = product(facingCamera, turned(-ownRight, {0., 0., 1.}));
  rotation = product(rotation, turned(-up, {0., 1., 0.}));
  rotation = product(rotation, turned(tilt, {1., 0., 0.}));
  return {"camera_optical", "face_" + id, position, rotation};
}

BagWriter::BagWriter(const std::string& path, std::int64_t begin) : _begin(begin)
{
  if (sqlite3_open(path.c_str(), &_database) != SQLITE_OK)
    throw std::runtime_error("cannot make a bag");
  _run("PRAGMA journal_mode = OFF");
  _run("PRAGMA synchronous = OFF");
  _run(
      "CREATE TABLE topics(id INTEGER PRIMARY KEY, name TEXT NOT NULL, type TEXT NOT NULL, "
      "serialization_format TEXT NOT NULL, offered_qos_profiles TEXT NOT NULL)");
  _run(
      "CREATE TABLE messages(id INTEGER PRIMARY KEY, topic_id INTEGER NOT NULL, timestamp INTEGER NOT NULL, "
      "data BLOB NOT NULL)");
  _run("CREATE INDEX timestamp_idx ON messages (timestamp ASC)");
}

BagWriter::~BagWriter()
{
  sqlite3_close(_database);
}

void BagWriter::topic(const std::string& name, const std::string& type, const std::string& format)
{
  const auto id = static_cast<std::int64_t>(_topics.size()) + 1;
  _topics[name] = id;
  _allTopics.push_back({name, type, format});
  _run("INSERT INTO topics VALUES(" + std::to_string(id) + ",'" + name + "','" + type + "','" + format + "','')");
}

void BagWriter::add(double seconds, const std::string& topicName, const std::string& data)
{
  if (_topics.count(topicName) == 0)
    topic(topicName, KV::recordings::rosTopicOf(topicName).value().type);
  const std::int64_t time = _begin + std::llround(seconds * 1e9);
  _messages.push_back({time, topicName, data});
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(_database, "INSERT INTO messages(topic_id, timestamp, data) VALUES(?, ?, ?)", -1, &statement,
                     nullptr);
  sqlite3_bind_int64(statement, 1, _topics.at(topicName));
  sqlite3_bind_int64(statement, 2, time);
  sqlite3_bind_blob(statement, 3, data.data(), static_cast<int>(data.size()), SQLITE_TRANSIENT);
  const int status = sqlite3_step(statement);
  sqlite3_finalize(statement);
  if (status != SQLITE_DONE)
    throw std::runtime_error("cannot add a message to the bag");
}

void BagWriter::run(const std::string& sql)
{
  _isChanged = true;
  _run(sql);
}

std::string BagWriter::inMcap(const McapForm& form) const
{
  if (_isChanged)
    return {};
  McapWriter writer(form);
  for (const Topic& topic : _allTopics)
    writer.topic(topic.name, topic.type, topic.format);
  for (const Message& message : _messages)
    writer.add(message.time, message.topic, message.data);
  return writer.finish();
}

void BagWriter::_run(const std::string& sql)
{
  if (sqlite3_exec(_database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
    throw std::runtime_error("cannot write the bag: " + std::string(sqlite3_errmsg(_database)));
}

}  // namespace support
