#pragma once

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::ros2
{

/// How far away the other nodes may be, as ROS_AUTOMATIC_DISCOVERY_RANGE says it.
enum class DiscoveryRange
{
  Off,           ///< no node is found
  Localhost,     ///< nodes on this machine, and the static peers
  Subnet,        ///< nodes that multicast reaches, and the static peers
  SystemDefault  ///< whatever DDS does by itself
};

/// The distribution of ROS 2, as far as nodes see each other in different ways.
enum class Distribution
{
  Humble,  ///< ids of readers and writers have 24 bytes
  Jazzy    ///< ids of readers and writers have 16 bytes: Iron and later
};

/// How to join the nodes of ROS 2.
struct BusOptions
{
  static constexpr int highestDomain = 232;  ///< the ports of higher ones do not exist

  int domain = 0;                                                    ///< in [0, highestDomain], as ROS_DOMAIN_ID
  DiscoveryRange range = DiscoveryRange::Localhost;                  ///< how far away other nodes may be
  std::vector<std::string> staticPeers;                              ///< IPv4 addresses, as ROS_STATIC_PEERS
  std::string node = "skeigiot";                                     ///< name of the node
  boost::optional<Distribution> distribution = Distribution::Jazzy;  ///< none: no node is announced, only its topics

  std::size_t mostMessages = 10'000;               ///< in the queue; the oldest are dropped
  std::size_t mostBytes = std::size_t{64} << 20U;  ///< in the queue; the oldest messages are dropped
  std::size_t mostReaders =
      500;  ///< topics that are read at a time, at least 1; those that are silent longest are left out
  std::size_t mostWriters = 10'000;  ///< of these topics that are known at a time; those that came later are left out
};

}  // namespace KV::ros2
