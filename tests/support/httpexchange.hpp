#pragma once

#include <chrono>
#include <string>

namespace livetests
{

/// A connection to a server on this machine, for requests that no well-behaved client sends.
class RawConnection
{
public:
  /// \throws std::runtime_error if no server listens at the port.
  explicit RawConnection(int port);
  ~RawConnection();
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  /// Sends as much as the server accepts; returns false if it has closed the connection.
  bool send(const std::string& text) const;

  /// Reads until the text is there, or the connection ends, or the time is over; returns all that was read.
  std::string readUntil(const std::string& text, std::chrono::milliseconds patience = std::chrono::seconds(20));

  /// Reads until the server closes the connection.
  std::string readAll() { return readUntil(std::string(1, '\0')); }

private:
  int _socket;
  std::string _read;
};

/// Sends a request, and returns all of the answer.
std::string exchange(int port, const std::string& request);

/// Returns the status of an answer; 0 if there is no answer.
int statusOf(const std::string& answer);

/// Returns the text after the head of an answer.
std::string bodyOf(const std::string& answer);

}  // namespace livetests
