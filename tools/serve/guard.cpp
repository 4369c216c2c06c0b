#include "serve/guard.hpp"

#include <arpa/inet.h>
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>

namespace KV::tools
{

namespace
{

constexpr std::size_t tokenBytes = 16;
constexpr int usualPort = 80;  // of HTTP: browsers leave it out

bool isNumber(int family, const std::string& address)
{
  std::array<unsigned char, sizeof(in6_addr)> bytes{};
  return inet_pton(family, address.c_str(), bytes.data()) == 1;
}

/// Returns the host without the port; empty if it has another port.
std::string withoutPort(const std::string& host, int port)
{
  const std::string end = ":" + std::to_string(port);
  if (host.size() > end.size() && host.compare(host.size() - end.size(), end.size(), end) == 0)
    return host.substr(0, host.size() - end.size());
  return port == usualPort ? host : "";
}

}  // namespace

std::string randomToken()
{
  constexpr std::string_view digits = "0123456789abcdef";
  std::array<unsigned char, tokenBytes> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
    throw std::system_error(errno, std::generic_category(), "random numbers");
  std::string token;
  for (const unsigned char byte : bytes)
  {
    token += digits[byte / digits.size()];
    token += digits[byte % digits.size()];
  }
  return token;
}

bool isSameSecret(std::string_view left, std::string_view right)
{
  if (left.size() != right.size())
    return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < left.size(); ++i)
    difference |= static_cast<unsigned char>(left[i]) ^ static_cast<unsigned char>(right[i]);
  return difference == 0;
}

bool isAddress(const std::string& text)
{
  return isNumber(AF_INET, text) || isNumber(AF_INET6, text) || text == "localhost";
}

bool isLoopback(const std::string& address)
{
  const bool isOfIpv4 = isNumber(AF_INET, address) && address.rfind("127.", 0) == 0;
  return isOfIpv4 || address == "::1" || address == "localhost";
}

bool isOwnHost(const std::string& host, int port, bool onlyLoopback)
{
  std::string name = withoutPort(host, port);
  const bool isBracketed = name.size() > 2 && name.front() == '[' && name.back() == ']';
  if (isBracketed)
    name = name.substr(1, name.size() - 2);
  if (!isNumber(isBracketed ? AF_INET6 : AF_INET, name) && (isBracketed || name != "localhost"))
    return false;
  return !onlyLoopback || isLoopback(name);
}

bool isOwnOrigin(const std::string& origin, const std::string& host)
{
  return origin == "http://" + host;
}

}  // namespace KV::tools
