#pragma once

#include <skeigiot/ros2/busoptions.hpp>
#include <skeigiot/ros2/messages.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Connection to the nodes of ROS 2.
namespace KV::ros2
{

/// A message that came in. Of one that is longer than 1 MiB, only one byte more than that is kept.
struct BusMessage
{
  std::string topic;          ///< name in ROS, such as "/tf"
  std::int64_t received = 0;  ///< [ns] time of the clock of the bus when it came in
  std::int64_t written = 0;   ///< [ns] since 1970 on the clock of the writer; 0: the writer gave no time
  std::vector<char> data;     ///< CDR, with the four bytes that say its byte order
};

/// Numbers of the messages and topics of a bus since it was opened.
struct BusCounts
{
  std::uint64_t received = 0;  ///< messages that came in
  std::uint64_t dropped = 0;   ///< of those, the oldest ones, which a full queue let go
  std::uint64_t refused =
      0;  ///< of those, messages of writers with another layout, and messages that DDS could not hand over
  std::size_t waiting = 0;  ///< messages in the queue
  std::size_t readers = 0;  ///< topics that are read
  std::size_t writers = 0;  ///< topics that are written
};

/// The topics of ROS 2 around us: reads those that are wanted, and publishes.
///
/// A topic is read as soon as somebody writes it, with the quality of service that its writers offer: reliable and
/// transient local if all of them are. It is let go when the last writer is gone. A writer whose type differs, by its
/// name or by its type hash (RIHS01), is refused; a note says so, once for each topic.
///
/// Messages wait in a queue of bounded length. If it is full, the oldest is dropped, and counted.
///
/// \par Thread safety
///   Not synchronised: all functions are called by one thread. Threads of the implementation fill the queue.
class Bus
{
public:
  /// Returns the type that a topic must have, such as "std_msgs/msg/Bool"; empty: the topic is not read.
  using TypeOf = std::function<std::string(const std::string& topic)>;

  /// Returns a time [ns]. Any thread may call it, one at a time.
  using Clock = std::function<std::int64_t()>;

  Bus() = default;
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;
  virtual ~Bus() = default;

  /// Returns a descriptor that can be read from while take() has something to do.
  virtual int descriptor() const = 0;

  /// Follows writers that came or went, and takes the messages in the queue, in the order in which they came in.
  virtual std::vector<BusMessage> take() = 0;

  /// Takes messages for the user: which topics are refused, and why.
  virtual std::vector<std::string> takeNotes() = 0;

  /// Publishes a message; the first one on a topic announces the topic.
  ///
  /// \throws std::runtime_error if the topic cannot be announced.
  virtual void publish(const std::string& topic, const EngagementMessage& message) = 0;
  virtual void publish(const std::string& topic, const ExpressionMessage& message) = 0;  ///< As above.
  virtual void publish(const std::string& topic, const GazeMessage& message) = 0;        ///< As above.
  virtual void publish(const std::string& topic, const DiagnosticMessage& message) = 0;  ///< As above.

  virtual void publish(const std::string& topic, const TextMessage& message) = 0;  ///< As above.

  /// Announces a topic of texts before the first one, so that readers are there then. Readers that come later get the
  /// last ten.
  ///
  /// \throws std::runtime_error as above.
  virtual void announceTexts(const std::string& topic) = 0;

  /// Publishes nothing more on this topic.
  virtual void withdraw(const std::string& topic) = 0;

  /// Returns what went through so far.
  virtual BusCounts counts() const = 0;
};

/// Joins the nodes of ROS 2 by DDS.
///
/// \throws std::runtime_error if that fails.
std::unique_ptr<Bus> openDdsBus(const BusOptions& options, Bus::TypeOf typeOf, Bus::Clock clock);

}  // namespace KV::ros2
