#pragma once

#include <dds/dds.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace rostests
{

/// A message that was received: the numbers and texts that tests look at.
struct Received
{
  std::string topic;
  std::int64_t stamp = 0;  ///< [ns] of the header
  int level = 0;
  std::string text;  ///< expression, sender, or message of the diagnostics
  float valence = 0.f;
  float confidence = 0.f;
  std::map<std::string, std::string> values;  ///< of the diagnostics
};

/// A participant of another implementation of DDS, Cyclone, on the loopback interface only. All waiting is bounded.
class CyclonePeer
{
public:
  explicit CyclonePeer(int domain);
  ~CyclonePeer();
  CyclonePeer(const CyclonePeer&) = delete;
  CyclonePeer& operator=(const CyclonePeer&) = delete;

  /// Begins to write a topic of ROS. Its type is found by the name of the topic.
  ///
  /// \param userData  of the writer, such as a type hash
  void write(const std::string& topic, bool isLatched = false, const std::string& userData = "");

  /// Begins to write a topic whose messages have the right name of the type, and are cut short.
  void writeCut(const std::string& topic);

  /// Stops writing a topic.
  void stopWriting(const std::string& topic);

  /// Waits until each topic that is written has a reader. Returns whether that came.
  bool waitForReaders();

  /// Sends a message, given as CDR, as if it was written at a time [ns].
  void send(const std::string& topic, const std::string& cdr, std::int64_t time);

  /// Sends a message that has only its header.
  void sendCut(const std::string& topic);

  /// Waits until all that was sent has arrived. Returns whether that came.
  bool waitForAcknowledgments();

  /// Begins to read a topic of ROS, or of rmw without "/" in front.
  void read(const std::string& topic);

  /// Waits for messages on the topics that are read until one is as wanted; returns whether that came.
  bool waitFor(const std::function<bool(const Received&)>& isWanted, dds_duration_t patience = DDS_SECS(20));

  /// Waits until a topic that is read has a writer. Returns whether that came.
  bool waitForWriter(const std::string& topic);

  /// Returns all messages that were received so far, in their order for each topic.
  const std::vector<Received>& received() const { return _received; }

private:
  bool _waitUntil(const std::function<bool()>& isSo);
  dds_entity_t _topic(const std::string& name, const dds_topic_descriptor_t& type);
  void _take();

  dds_entity_t _domain = 0;
  dds_entity_t _participant = 0;
  dds_entity_t _waitset = 0;
  std::map<std::string, dds_entity_t> _topics;
  std::map<std::string, dds_entity_t> _writers;
  std::map<std::string, dds_entity_t> _readers;
  std::vector<Received> _received;
};

}  // namespace rostests
