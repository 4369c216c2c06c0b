#include "event.hpp"
#include "support/thrown.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <system_error>

#include <poll.h>
#include <sys/resource.h>

namespace
{
using KV::ros2::Event;

bool isReadable(const Event& event)
{
  pollfd waited{event.descriptor(), POLLIN, 0};
  return ::poll(&waited, 1, 0) == 1;
}

/// As long as it lives, the process gets no other descriptor.
class NoDescriptors
{
public:
  NoDescriptors()
  {
    ::getrlimit(RLIMIT_NOFILE, &_before);
    rlimit none = _before;
    none.rlim_cur = 0;
    ::setrlimit(RLIMIT_NOFILE, &none);
  }
  NoDescriptors(const NoDescriptors&) = delete;
  NoDescriptors& operator=(const NoDescriptors&) = delete;
  ~NoDescriptors() { ::setrlimit(RLIMIT_NOFILE, &_before); }

private:
  rlimit _before{};
};

TEST(Event, CanBeReadFromUntilItIsReset)
{
  Event event;
  EXPECT_FALSE(isReadable(event));
  event.set();
  event.set();
  EXPECT_TRUE(isReadable(event));
  event.reset();
  EXPECT_FALSE(isReadable(event));
  event.reset();
  EXPECT_FALSE(isReadable(event)) << "nothing waits for an event that was not set";
}

/// The sanitizer of virtual calls needs a pipe where it meets a type for the first time: it is to know those of an
/// error before no descriptor is left.
void throwAndReadAnError()
{
  ASSERT_EQ("known: Too many open files", support::textThrownBy<std::system_error>([] {
              throw std::system_error(EMFILE, std::generic_category(), "known");
            }));
}

TEST(Event, SaysThatTheProcessHasNoDescriptorLeft)
{
  throwAndReadAnError();
  const NoDescriptors none;
  EXPECT_EQ("cannot wait for messages: Too many open files",
            support::textThrownBy<std::system_error>([] { const Event event; }));
}

}  // namespace
