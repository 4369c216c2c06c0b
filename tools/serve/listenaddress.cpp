#include "serve/listenaddress.hpp"

#include "serve/guard.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <charconv>
#include <stdexcept>
#include <system_error>

namespace KV::tools
{

namespace
{

constexpr int greatestPort = 65535;

[[noreturn]] void refuse(const std::string& text)
{
  throw std::invalid_argument(
      "expected an address of this machine as a number, with or without a port, such as "
      "127.0.0.1, 0.0.0.0:8080 or [::1]:8080, found " +
      recordings::quote(text));
}

int portOf(const std::string& digits, const std::string& text)
{
  int port = 0;
  const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  if (error != std::errc() || rest != digits.data() + digits.size() || port < 1 || port > greatestPort)
    refuse(text);
  return port;
}

}  // namespace

ListenAddress parseListenAddress(const std::string& text)
{
  ListenAddress address;
  const std::size_t colon = text.rfind(':');
  const bool isBareIpv6 = text.find(':') != colon && text.front() != '[';
  const bool hasPort = colon != std::string::npos && !isBareIpv6 && text.back() != ']';
  address.host = hasPort ? text.substr(0, colon) : text;
  if (hasPort)
    address.port = portOf(text.substr(colon + 1), text);
  if (address.host.size() > 2 && address.host.front() == '[' && address.host.back() == ']')
    address.host = address.host.substr(1, address.host.size() - 2);
  if (!isAddress(address.host))
    refuse(text);
  return address;
}

}  // namespace KV::tools
