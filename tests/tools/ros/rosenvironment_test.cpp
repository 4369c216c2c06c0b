#include "ros/rosenvironment.hpp"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::ros2::BusOptions;
using KV::ros2::DiscoveryRange;

BusOptions optionsIn(const std::map<std::string, std::string>& variables)
{
  BusOptions options;
  KV::tools::applyEnvironment(
      [&variables](const std::string& name) {
        const auto found = variables.find(name);
        return found == variables.end() ? std::string() : found->second;
      },
      options);
  return options;
}

std::string errorIn(const std::map<std::string, std::string>& variables)
{
  try
  {
    optionsIn(variables);
  }
  catch (const std::invalid_argument& error)
  {
    return error.what();
  }
  return "";
}

TEST(RosEnvironment, LeavesTheDefaultsWithoutVariables)
{
  const BusOptions options = optionsIn({});
  EXPECT_EQ(0, options.domain);
  EXPECT_EQ(DiscoveryRange::Localhost, options.range);
  EXPECT_TRUE(options.staticPeers.empty());
}

TEST(RosEnvironment, SetsDomainRangeAndPeers)
{
  const BusOptions options = optionsIn({{"ROS_DOMAIN_ID", "42"},
                                        {"ROS_AUTOMATIC_DISCOVERY_RANGE", "SUBNET"},
                                        {"ROS_STATIC_PEERS", "192.168.1.2;;192.168.1.3"}});
  EXPECT_EQ(42, options.domain);
  EXPECT_EQ(DiscoveryRange::Subnet, options.range);
  EXPECT_EQ((std::vector<std::string>{"192.168.1.2", "192.168.1.3"}), options.staticPeers);
}

TEST(RosEnvironment, KnowsTheOlderVariable)
{
  EXPECT_EQ(DiscoveryRange::Localhost, optionsIn({{"ROS_LOCALHOST_ONLY", "1"}}).range);
  EXPECT_EQ(DiscoveryRange::Subnet, optionsIn({{"ROS_LOCALHOST_ONLY", "0"}}).range);
}

TEST(RosEnvironment, StaysOnThisMachineIfTheOlderVariableSaysSoWhateverTheNewerOnesSay)
{
  const BusOptions options = optionsIn(
      {{"ROS_LOCALHOST_ONLY", "1"}, {"ROS_AUTOMATIC_DISCOVERY_RANGE", "SUBNET"}, {"ROS_STATIC_PEERS", "192.168.1.2"}});
  EXPECT_EQ(DiscoveryRange::Localhost, options.range);
  EXPECT_TRUE(options.staticPeers.empty());
}

TEST(RosEnvironment, PrefersTheNewerVariablesToAnOlderOneThatIsOff)
{
  const BusOptions options = optionsIn(
      {{"ROS_LOCALHOST_ONLY", "0"}, {"ROS_AUTOMATIC_DISCOVERY_RANGE", "OFF"}, {"ROS_STATIC_PEERS", "192.168.1.2"}});
  EXPECT_EQ(DiscoveryRange::Off, options.range);
  EXPECT_EQ(std::vector<std::string>{"192.168.1.2"}, options.staticPeers);
  EXPECT_EQ(DiscoveryRange::SystemDefault, optionsIn({{"ROS_AUTOMATIC_DISCOVERY_RANGE", "SYSTEM_DEFAULT"}}).range);
}

TEST(RosEnvironment, RefusesValuesThatRosDoesNotKnow)
{
  EXPECT_EQ("the environment variable ROS_DOMAIN_ID: expected a number from 0 to 232, found 'a'",
            errorIn({{"ROS_DOMAIN_ID", "a"}}));
  EXPECT_EQ("the environment variable ROS_DOMAIN_ID: expected a number from 0 to 232, found '233'",
            errorIn({{"ROS_DOMAIN_ID", "233"}}));
  EXPECT_EQ("the environment variable ROS_DOMAIN_ID: expected a number from 0 to 232, found '-1'",
            errorIn({{"ROS_DOMAIN_ID", "-1"}}));
  EXPECT_EQ("the environment variable ROS_LOCALHOST_ONLY: expected 0 or 1, found 'yes'",
            errorIn({{"ROS_LOCALHOST_ONLY", "yes"}}));
  EXPECT_EQ(
      "the environment variable ROS_AUTOMATIC_DISCOVERY_RANGE: expected off, localhost, subnet or system-default, "
      "found 'WORLD'",
      errorIn({{"ROS_AUTOMATIC_DISCOVERY_RANGE", "WORLD"}}));
  for (const std::string peer : {"robot", "192.168.1", "192.168.1.256", "::1", "192.168.1.2 "})
    EXPECT_EQ(
        "the environment variable ROS_STATIC_PEERS: expected an IPv4 address such as 192.168.1.2, found '" + peer + "'",
        errorIn({{"ROS_STATIC_PEERS", "192.168.1.2;" + peer}}));
}

}  // namespace
