#include "participantqos.hpp"

#include <fastdds/rtps/transport/UDPv4TransportDescriptor.h>
#include <fastrtps/utils/IPLocator.h>

#include <cstdint>
#include <memory>
#include <stdexcept>

namespace KV::ros2
{
namespace
{

namespace rtps = eprosima::fastrtps::rtps;

const char* const loopback = "127.0.0.1";
constexpr int participantsOfMachine = 32;  // that are looked for, as ROS does

// The ports that DDS defines: the first one of a domain is for multicast.
std::uint32_t firstPortOf(int domain)
{
  constexpr int base = 7400;
  constexpr int ofDomain = 250;
  return static_cast<std::uint32_t>(base + ofDomain * domain);
}

std::uint32_t portOf(int domain, int participant)
{
  constexpr int offset = 10;
  return firstPortOf(domain) + static_cast<std::uint32_t>(offset + 2 * participant);
}

void addPeer(rtps::LocatorList_t& peers, const std::string& address, int domain)
{
  if (!rtps::IPLocator::isIPv4(address))
    throw std::runtime_error("the static peer '" + address + "' is no IPv4 address");
  for (int participant = 0; participant < participantsOfMachine; ++participant)
  {
    rtps::Locator_t locator;
    rtps::IPLocator::createLocator(LOCATOR_KIND_UDPv4, address, portOf(domain, participant), locator);
    peers.push_back(locator);
  }
}

}  // namespace

eprosima::fastdds::dds::DomainParticipantQos participantQosOf(const BusOptions& options)
{
  eprosima::fastdds::dds::DomainParticipantQos qos = eprosima::fastdds::dds::PARTICIPANT_QOS_DEFAULT;
  qos.name(options.node);
  setUserData(qos.user_data(), "enclave=/;");
  if (options.range == DiscoveryRange::SystemDefault)
    return qos;

  const auto udp = std::make_shared<eprosima::fastdds::rtps::UDPv4TransportDescriptor>();
  if (options.range != DiscoveryRange::Subnet && options.staticPeers.empty())
    udp->interfaceWhiteList.emplace_back(loopback);
  qos.transport().use_builtin_transports = false;
  qos.transport().user_transports.push_back(udp);

  auto& builtin = qos.wire_protocol().builtin;
  if (options.range == DiscoveryRange::Off)
  {
    builtin.discovery_config.discoveryProtocol = rtps::DiscoveryProtocol_t::NONE;
    return qos;
  }
  if (options.range == DiscoveryRange::Localhost)
    addPeer(builtin.initialPeersList, loopback, options.domain);
  for (const std::string& peer : options.staticPeers)
    addPeer(builtin.initialPeersList, peer, options.domain);
  if (options.range == DiscoveryRange::Subnet && !options.staticPeers.empty())
  {
    rtps::Locator_t multicast;
    rtps::IPLocator::createLocator(LOCATOR_KIND_UDPv4, "239.255.0.1", firstPortOf(options.domain), multicast);
    builtin.initialPeersList.push_back(multicast);
  }
  return qos;
}

void setUserData(eprosima::fastdds::dds::UserDataQosPolicy& policy, const std::string& text)
{
  policy.data_vec().assign(text.begin(), text.end());
}

}  // namespace KV::ros2
