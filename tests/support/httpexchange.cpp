#include "support/httpexchange.hpp"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace livetests
{

RawConnection::RawConnection(int port) : _socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
  {
    ::close(_socket);
    throw std::runtime_error("nobody listens at the port");
  }
}

RawConnection::~RawConnection()
{
  ::close(_socket);
}

bool RawConnection::send(const std::string& text) const
{
  for (std::size_t done = 0; done < text.size();)
  {
    const ssize_t sent = ::send(_socket, text.data() + done, text.size() - done, MSG_NOSIGNAL);
    if (sent <= 0)
      return false;
    done += static_cast<std::size_t>(sent);
  }
  return true;
}

std::string RawConnection::readUntil(const std::string& text, std::chrono::milliseconds patience)
{
  const auto end = std::chrono::steady_clock::now() + patience;
  while (_read.find(text) == std::string::npos && std::chrono::steady_clock::now() < end)
  {
    pollfd descriptor{_socket, POLLIN, 0};
    if (::poll(&descriptor, 1, 100) <= 0)
      continue;
    std::array<char, 4096> bytes{};
    const ssize_t count = ::recv(_socket, bytes.data(), bytes.size(), 0);
    if (count <= 0)
      break;
    _read.append(bytes.data(), static_cast<std::size_t>(count));
  }
  return _read;
}

std::string exchange(int port, const std::string& request)
{
  RawConnection connection(port);
  connection.send(request);
  return connection.readAll();
}

int statusOf(const std::string& answer)
{
  const std::string head = "HTTP/1.1 ";
  return answer.compare(0, head.size(), head) == 0 ? std::atoi(answer.c_str() + head.size()) : 0;
}

std::string bodyOf(const std::string& answer)
{
  const std::size_t end = answer.find("\r\n\r\n");
  return end == std::string::npos ? "" : answer.substr(end + 4);
}

}  // namespace livetests
