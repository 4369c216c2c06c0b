#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include <httplib.h>

namespace KV::tools
{

/// A connection with bounds: what a client sends, how long it takes for that, and how long it takes to read.
///
/// The library has bounds of its own for a line and a body, but none for the number of lines.
class GuardedSocket : public httplib::Stream
{
public:
  using Clock = std::chrono::steady_clock;

  struct Limits
  {
    std::size_t bytes = std::size_t{128} << 10U;  ///< that the client sends
    std::chrono::milliseconds sending{10'000};    ///< until the client has sent them
    std::chrono::milliseconds reading{5'000};     ///< until the client has read a text
  };

  /// Does not own the socket.
  GuardedSocket(int socket, const Limits& limits);

  bool is_readable() const override;
  bool is_writable() const override;
  ssize_t read(char* bytes, std::size_t count) override;
  ssize_t write(const char* bytes, std::size_t count) override;
  void get_remote_ip_and_port(std::string&, int&) const override {}
  void get_local_ip_and_port(std::string&, int&) const override {}
  socket_t socket() const override { return _socket; }

  /// Says that nothing more will be written, and waits a moment for what the client still sends: a client that is
  /// cut off while it sends would not read the answer.
  void finish();

private:
  bool _fill();

  int _socket;
  Limits _limits;
  Clock::time_point _end;
  std::vector<char> _buffer;
  std::size_t _next = 0;  // in the buffer
  std::size_t _received = 0;
};

}  // namespace KV::tools
