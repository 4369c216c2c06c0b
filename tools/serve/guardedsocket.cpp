#include "serve/guardedsocket.hpp"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace KV::tools
{

namespace
{

using Clock = GuardedSocket::Clock;

constexpr std::size_t bufferSize = 4096;
constexpr std::chrono::milliseconds farewell(200);

/// Waits until the socket is ready for something; returns false if it is not in time.
bool isReady(int socket, short events, Clock::time_point until)
{
  for (;;)
  {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    pollfd descriptor{socket, events, 0};
    const int count = ::poll(&descriptor, 1, static_cast<int>(std::max<std::int64_t>(0, left.count())));
    if (count >= 0 || errno != EINTR)
      return count > 0;
  }
}

}  // namespace

GuardedSocket::GuardedSocket(int socket, const Limits& limits)
  : _socket(socket), _limits(limits), _end(Clock::now() + limits.sending)
{}

bool GuardedSocket::is_readable() const
{
  return _next < _buffer.size() || isReady(_socket, POLLIN, _end);
}

/// Returns whether the client is still there: a write waits for it.
bool GuardedSocket::is_writable() const
{
  char byte = 0;
  const ssize_t count = ::recv(_socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
}

ssize_t GuardedSocket::read(char* bytes, std::size_t count)
{
  if (_next == _buffer.size() && !_fill())
    return -1;
  const std::size_t taken = std::min(count, _buffer.size() - _next);
  std::memcpy(bytes, _buffer.data() + _next, taken);
  _next += taken;
  return static_cast<ssize_t>(taken);
}

bool GuardedSocket::_fill()
{
  if (_received >= _limits.bytes || !isReady(_socket, POLLIN, _end))
    return false;
  _buffer.resize(bufferSize);
  _next = 0;
  const ssize_t count = ::recv(_socket, _buffer.data(), _buffer.size(), 0);
  _buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  _received += _buffer.size();
  return count > 0;
}

ssize_t GuardedSocket::write(const char* bytes, std::size_t count)
{
  const Clock::time_point until = Clock::now() + _limits.reading;
  for (std::size_t done = 0; done < count;)
  {
    const ssize_t sent = ::send(_socket, bytes + done, count - done, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent > 0)
      done += static_cast<std::size_t>(sent);
    else if ((errno != EAGAIN && errno != EINTR) || !isReady(_socket, POLLOUT, until) || Clock::now() >= until)
      return -1;
  }
  return static_cast<ssize_t>(count);
}

void GuardedSocket::finish()
{
  ::shutdown(_socket, SHUT_WR);
  const Clock::time_point until = Clock::now() + farewell;
  std::array<char, bufferSize> rest{};
  while (isReady(_socket, POLLIN, until) && ::recv(_socket, rest.data(), rest.size(), MSG_DONTWAIT) > 0)
  {}
}

}  // namespace KV::tools
