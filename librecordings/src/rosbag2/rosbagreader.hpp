#pragma once

#include "ros4hri/ros4hridispatch.hpp"
#include "ros4hri/ros4hritopics.hpp"
#include "rosbag2/rosbagdatabase.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Tells from the first bytes of a file whether it is a database of SQLite.
bool looksLikeRosbag(const std::string& head);

/// Tells whether the path is the folder of a bag of ROS 2.
bool isRosbagFolder(const std::string& path);

/// Reads a bag of ROS 2 stored by SQLite: hands its messages to a Ros4hriDispatch, which knows the topics.
///
/// Times are those at which the messages were received, as a running robot would have had them: stamps come from the
/// clocks of other machines, may be 0 and, of static frames, are older than the bag. Bags of a simulation, whose times
/// count from 0, are placed at recordingEpoch.
class RosbagReader : public Reader
{
public:
  /// Opens the file, or all files of the folder.
  ///
  /// \throws Error if it cannot be read, or has no topic that is read.
  RosbagReader(const std::string& path, const ReadingOptions& options);

  boost::optional<Step> next() override;
  std::vector<std::string> describe() const override;
  std::vector<std::string> describeLearned() const override { return _dispatch.describeLearned(); }
  std::vector<std::string> takeWarnings() override;
  bool isDated() const override { return _origin == 0; }
  double progress() const override;

private:
  struct File
  {
    RosbagDatabase database;
    std::map<std::int64_t, RosTopic> topics;  // that are read, by their keys in the file
  };

  void _openAll(const std::string& path);
  File _opened(const std::string& path);
  void _readPersons();
  void _beginFile();
  bool _readMessage();
  ko::SystemClock::time_point _timeOf(std::int64_t nanoseconds) const;
  void _finish();
  std::string _describeTopics() const;

  ReadingOptions _options;
  std::vector<File> _files;  // by the times of their first messages
  Ros4hriDispatch _dispatch;
  std::vector<std::string> _warnings;
  std::size_t _file = 0;  // being read
  std::int64_t _first = 0;
  std::int64_t _last = 0;
  std::int64_t _time = 0;  // of the message read last
  std::int64_t _origin = 0;
  bool _finished = false;
};

}  // namespace KV::recordings
