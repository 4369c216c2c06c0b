#pragma once

#include <skeigiot/ros2/bus.hpp>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// \file
/// The nodes of ROS 2 by way of rosbridge, a node that passes messages on as JSON over a WebSocket. It reaches nodes
/// that DDS does not reach.

namespace KV::ros2
{

/// Where rosbridge listens.
struct RosbridgeAddress
{
  std::string host;           ///< name or address
  std::string port = "9090";  ///< as digits
  std::string path = "/";     ///< of the WebSocket
};

/// Returns the address as users write it, such as "ws://robot:9090".
std::string textOf(const RosbridgeAddress& address);

/// How to reach the nodes by rosbridge.
struct RosbridgeOptions
{
  using SteadyClock = std::function<std::chrono::steady_clock::time_point()>;

  RosbridgeAddress address;

  /// The topics that are read, with "*" for the id of a face, a person or a voice, such as "/humans/faces/*/facs".
  std::vector<std::string> topics;

  /// The topics with lists of ids, of the type hri_msgs/msg/IdsList: "/humans/faces/tracked" has the ids of the topics
  /// "/humans/faces/*".
  std::vector<std::string> lists;

  /// Returns the name that a topic has for the other nodes.
  std::function<std::string(const std::string& topic)> nameOf = [](const std::string& topic) { return topic; };

  /// The clock of the times between attempts to connect.
  SteadyClock steadyClock = [] { return std::chrono::steady_clock::now(); };

  std::size_t mostMessages = 10'000;               ///< in the queue; the oldest are dropped
  std::size_t mostBytes = std::size_t{64} << 20U;  ///< in the queue; the oldest messages are dropped
  std::size_t mostReaders =
      2'000;  ///< topics of ids that are read at a time; those of ids that came later are left out
};

/// Joins the nodes of ROS 2 by rosbridge. The names and types of topics are those of openDdsBus().
///
/// Rosbridge says neither which topics are there nor when a message was written. So the topics of an id are read from
/// the moment on at which a list of ids has it, until no list had it for 10
/// seconds. Messages have no time of their writers.
///
/// Where there is no connection, it is tried again and again, after 1 s and then less often, up to every 30 s; a note
/// says why. Messages that are published meanwhile are lost.
///
/// \throws std::runtime_error if the machine has no means for it, such as descriptors or threads.
std::unique_ptr<Bus> openRosbridgeBus(const RosbridgeOptions& options, Bus::TypeOf typeOf, Bus::Clock clock);

}  // namespace KV::ros2
