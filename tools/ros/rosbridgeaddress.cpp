#include "ros/rosbridgeaddress.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <cstddef>
#include <stdexcept>

namespace KV::tools
{

namespace
{

const std::string scheme = "ws://";
constexpr std::size_t longest = 500;
constexpr int highestPort = 65535;

bool isPort(const std::string& text)
{
  constexpr std::size_t mostDigits = 5;
  const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
  return !text.empty() && text.size() <= mostDigits && std::all_of(text.begin(), text.end(), isDigit) &&
         std::stoi(text) > 0 && std::stoi(text) <= highestPort;
}

/// Returns whether the character may be in the name of a host, in an address, or in a path.
bool isPlain(char character)
{
  return character > ' ' && character <= '~' && std::string("\"<>\\^`{|}#@").find(character) == std::string::npos;
}

}  // namespace

ros2::RosbridgeAddress parseRosbridgeAddress(const std::string& text)
{
  const std::string found = "expected ws://HOST:PORT, found " + recordings::quote(text);
  if (text.rfind("wss://", 0) == 0)
    throw std::invalid_argument(found + ": encrypted connections are not supported");
  if (text.rfind(scheme, 0) != 0 || text.size() > longest || !std::all_of(text.begin(), text.end(), isPlain))
    throw std::invalid_argument(found);
  const std::size_t slash = text.find('/', scheme.size());
  std::string place = text.substr(scheme.size(), slash == std::string::npos ? slash : slash - scheme.size());
  ros2::RosbridgeAddress address;
  if (slash != std::string::npos)
    address.path = text.substr(slash);
  std::size_t end = place.find(':');  // of the host
  if (!place.empty() && place.front() == '[')
  {
    end = place.find(']');
    if (end == std::string::npos)
      throw std::invalid_argument(found);
    address.host = place.substr(1, end - 1);
    ++end;
  }
  else
    address.host = place.substr(0, end);
  const std::string behind = end < place.size() ? place.substr(end) : "";
  if (!behind.empty() && (behind.front() != ':' || !isPort(behind.substr(1))))
    throw std::invalid_argument(found);
  if (!behind.empty())
    address.port = behind.substr(1);
  if (address.host.empty())
    throw std::invalid_argument(found);
  return address;
}

}  // namespace KV::tools
