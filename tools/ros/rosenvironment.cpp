#include "ros/rosenvironment.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <arpa/inet.h>

namespace KV::tools
{

namespace
{

template <typename Parse>
auto parseVariable(const std::string& name, const std::string& value, Parse parse)
{
  try
  {
    return parse(value);
  }
  catch (const std::invalid_argument& error)
  {
    throw std::invalid_argument("the environment variable " + name + ": " + error.what());
  }
}

bool parseFlag(const std::string& text)
{
  if (text != "0" && text != "1")
    throw std::invalid_argument("expected 0 or 1, found " + recordings::quote(text));
  return text == "1";
}

}  // namespace

void applyEnvironment(const Environment& environment, ros2::BusOptions& options)
{
  if (const std::string domain = environment("ROS_DOMAIN_ID"); !domain.empty())
    options.domain = parseVariable("ROS_DOMAIN_ID", domain, parseDomain);
  const std::string only = environment("ROS_LOCALHOST_ONLY");
  const bool isOnlyHere = !only.empty() && parseVariable("ROS_LOCALHOST_ONLY", only, parseFlag);
  if (!only.empty())
    options.range = ros2::DiscoveryRange::Subnet;
  if (const std::string range = environment("ROS_AUTOMATIC_DISCOVERY_RANGE"); !range.empty())
    options.range = parseVariable("ROS_AUTOMATIC_DISCOVERY_RANGE", range, parseRange);
  std::istringstream peers(environment("ROS_STATIC_PEERS"));
  for (std::string peer; std::getline(peers, peer, ';');)
    if (!peer.empty())
      options.staticPeers.push_back(parseVariable("ROS_STATIC_PEERS", peer, parsePeer));
  if (!isOnlyHere)
    return;
  options.range = ros2::DiscoveryRange::Localhost;
  options.staticPeers.clear();
}

std::string parsePeer(const std::string& text)
{
  in_addr address{};
  if (inet_pton(AF_INET, text.c_str(), &address) != 1)
    throw std::invalid_argument("expected an IPv4 address such as 192.168.1.2, found " + recordings::quote(text));
  return text;
}

ros2::DiscoveryRange parseRange(const std::string& text)
{
  std::string word = text;
  std::transform(word.begin(), word.end(), word.begin(), [](unsigned char character) {
    return character == '_' ? '-' : static_cast<char>(std::tolower(character));
  });
  if (word == "off")
    return ros2::DiscoveryRange::Off;
  if (word == "localhost")
    return ros2::DiscoveryRange::Localhost;
  if (word == "subnet")
    return ros2::DiscoveryRange::Subnet;
  if (word == "system-default")
    return ros2::DiscoveryRange::SystemDefault;
  throw std::invalid_argument("expected off, localhost, subnet or system-default, found " + recordings::quote(text));
}

int parseDomain(const std::string& text)
{
  int domain = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, domain);
  if (error != std::errc() || rest != end || domain < 0 || domain > ros2::BusOptions::highestDomain)
    throw std::invalid_argument("expected a number from 0 to " + std::to_string(ros2::BusOptions::highestDomain) +
                                ", found " + recordings::quote(text));
  return domain;
}

}  // namespace KV::tools
