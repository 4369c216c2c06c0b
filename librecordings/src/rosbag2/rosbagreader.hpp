#pragma once

#include "ros4hri/ros4hridispatch.hpp"
#include "ros4hri/ros4hritopics.hpp"
#include "rosbag2/bagfile.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Reads a bag of ROS 2, in any storage: hands its messages to a Ros4hriDispatch, which knows the topics.
///
/// Times are those at which the messages were received, as a running robot would have had them: timestamps in messages
/// come from the clocks of other machines, may be 0 and, of static frames, are older than the bag. Bags of a
/// simulation, whose times count from 0, begin at recordingEpoch.
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
    std::unique_ptr<BagFile> bag;
    std::map<std::int64_t, RosTopic> topics;  // that are read, by their keys in the file
  };

  void _openAll(const std::string& path);
  File _opened(const std::string& path);
  void _readPersons();
  void _beginFile();
  bool _readMessage();
  ko::SystemClock::time_point _timeOf(std::int64_t nanoseconds) const;
  void _finish();
  std::string _namesOfTopics() const;
  std::string _describeTopics() const;
  std::string _describeStorage() const;

  ReadingOptions _options;
  std::vector<File> _files;                // by the times of their first messages
  std::unique_ptr<BagMessages> _messages;  // of the file that is read
  Ros4hriDispatch _dispatch;
  std::vector<std::string> _warnings;
  std::size_t _file = 0;  // being read
  std::int64_t _first = 0;
  std::int64_t _last = 0;
  std::int64_t _time = 0;  // of the last message
  std::int64_t _origin = 0;
  bool _finished = false;
};

}  // namespace KV::recordings
