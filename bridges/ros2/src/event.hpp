#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace KV::ros2
{

/// A descriptor that can be read from once it is set, until it is reset.
///
/// \par Thread safety
///   Any thread may call any function at any time.
class Event
{
public:
  Event() : _descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
  {
    if (_descriptor < 0)
      throw std::system_error(errno, std::generic_category(), "cannot wait for messages");
  }
  ~Event() { ::close(_descriptor); }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  int descriptor() const { return _descriptor; }
  void set() { ::eventfd_write(_descriptor, 1); }
  void reset()
  {
    eventfd_t count = 0;
    ::eventfd_read(_descriptor, &count);
  }

private:
  int _descriptor;
};

}  // namespace KV::ros2
