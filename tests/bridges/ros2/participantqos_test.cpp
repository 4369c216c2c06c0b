#include "participantqos.hpp"

#include <fastdds/rtps/transport/UDPv4TransportDescriptor.h>
#include <fastrtps/utils/IPLocator.h>
#include <fastdds/dds/domain/qos/DomainParticipantQos.hpp>

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::ros2::BusOptions;
using KV::ros2::DiscoveryRange;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace rtps = eprosima::fastrtps::rtps;

constexpr std::size_t participantsOfMachine = 32;

/// How the node takes part in domain 3.
class Participant : public ::testing::Test
{
protected:
  static eprosima::fastdds::dds::DomainParticipantQos qosOf(DiscoveryRange range, std::vector<std::string> peers = {})
  {
    BusOptions options;
    options.domain = 3;
    options.range = range;
    options.staticPeers = std::move(peers);
    options.node = "anna";
    return KV::ros2::participantQosOf(options);
  }

  /// Returns the interfaces that it uses; none: all of them.
  static std::vector<std::string> interfacesOf(const eprosima::fastdds::dds::DomainParticipantQos& qos)
  {
    const auto udp = std::dynamic_pointer_cast<eprosima::fastdds::rtps::UDPv4TransportDescriptor>(
        qos.transport().user_transports.at(0));
    return udp->interfaceWhiteList;
  }

  /// Returns "<address>:<port>" of all places where other nodes are looked for.
  static std::vector<std::string> peersOf(const eprosima::fastdds::dds::DomainParticipantQos& qos)
  {
    std::vector<std::string> peers;
    for (const rtps::Locator_t& locator : qos.wire_protocol().builtin.initialPeersList)
      peers.push_back(rtps::IPLocator::toIPv4string(locator) + ":" + std::to_string(locator.port));
    return peers;
  }
};

TEST_F(Participant, HasTheNameOfTheNode)
{
  EXPECT_EQ("anna", std::string(qosOf(DiscoveryRange::Off).name().to_string()));
}

TEST_F(Participant, OfNoRangeFindsNobody)
{
  const auto qos = qosOf(DiscoveryRange::Off, {"10.0.0.7"});
  EXPECT_EQ(rtps::DiscoveryProtocol_t::NONE, qos.wire_protocol().builtin.discovery_config.discoveryProtocol);
  EXPECT_THAT(peersOf(qos), IsEmpty());
}

TEST_F(Participant, OfThisMachineLooksForAsManyNodesThereAsThoseOfRosDo)
{
  const auto qos = qosOf(DiscoveryRange::Localhost);
  EXPECT_EQ(rtps::DiscoveryProtocol_t::SIMPLE, qos.wire_protocol().builtin.discovery_config.discoveryProtocol);
  EXPECT_FALSE(qos.transport().use_builtin_transports);
  EXPECT_THAT(interfacesOf(qos), ElementsAre("127.0.0.1"));
  const std::vector<std::string> peers = peersOf(qos);
  ASSERT_EQ(participantsOfMachine, peers.size());
  EXPECT_EQ("127.0.0.1:8160", peers.front());
  EXPECT_EQ("127.0.0.1:8222", peers.back());
}

TEST_F(Participant, OfThisMachineReachesStaticPeersByAllInterfaces)
{
  const auto qos = qosOf(DiscoveryRange::Localhost, {"10.0.0.7"});
  EXPECT_THAT(interfacesOf(qos), IsEmpty());
  const std::vector<std::string> peers = peersOf(qos);
  ASSERT_EQ(2 * participantsOfMachine, peers.size());
  EXPECT_EQ("127.0.0.1:8160", peers.front());
  EXPECT_EQ("10.0.0.7:8222", peers.back());
}

TEST_F(Participant, OfTheSubnetIsFoundByMulticast)
{
  const auto qos = qosOf(DiscoveryRange::Subnet);
  EXPECT_THAT(interfacesOf(qos), IsEmpty());
  EXPECT_THAT(peersOf(qos), IsEmpty()) << "DDS uses its multicast address by itself";
}

TEST_F(Participant, OfTheSubnetUsesMulticastBesideStaticPeers)
{
  const std::vector<std::string> peers = peersOf(qosOf(DiscoveryRange::Subnet, {"10.0.0.7"}));
  ASSERT_EQ(participantsOfMachine + 1, peers.size());
  EXPECT_EQ("10.0.0.7:8160", peers.front());
  EXPECT_EQ("239.255.0.1:8150", peers.back());
}

TEST_F(Participant, OfTheSystemsRangeIsAsDdsIsConfigured)
{
  const auto qos = qosOf(DiscoveryRange::SystemDefault, {"10.0.0.7"});
  EXPECT_TRUE(qos.transport().use_builtin_transports);
  EXPECT_THAT(qos.transport().user_transports, IsEmpty());
  EXPECT_THAT(peersOf(qos), IsEmpty());
}

TEST_F(Participant, HasNoPeerWithoutAnAddress)
{
  for (const DiscoveryRange range : {DiscoveryRange::Localhost, DiscoveryRange::Subnet})
  {
    try
    {
      qosOf(range, {"10.0.0.7", "robot.local"});
      FAIL() << "this is a name";
    }
    catch (const std::runtime_error& error)
    {
      EXPECT_STREQ("the static peer 'robot.local' is no IPv4 address", error.what());
    }
  }
}

}  // namespace
