#include "cli/waiting.hpp"

#include "cli/interruption.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <limits>
#include <system_error>

namespace KV::tools
{

namespace
{

/// Blocks the signals that the wait must notice.
class HeldSignals
{
public:
  HeldSignals()
  {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGWINCH})
      sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, &_before);
  }
  ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  const sigset_t& before() const { return _before; }

private:
  sigset_t _before{};
};

timespec durationOf(int milliseconds)
{
  constexpr int perSecond = 1000;
  constexpr long nanoseconds = 1'000'000;
  return {milliseconds / perSecond, milliseconds % perSecond * nanoseconds};
}

}  // namespace

bool waitFor(std::vector<pollfd>& descriptors, int milliseconds)
{
  const HeldSignals held;
  Interruption::check();
  const timespec limit = durationOf(milliseconds);
  const int count = ppoll(descriptors.data(), descriptors.size(), milliseconds < 0 ? nullptr : &limit, &held.before());
  Interruption::check();
  if (count >= 0)
    return count > 0;
  if (errno != EINTR)
    throw std::system_error(errno, std::generic_category(), "cannot wait for input");
  for (pollfd& descriptor : descriptors)
    descriptor.revents = 0;
  return false;
}

bool waitUntil(std::vector<pollfd>& descriptors, std::chrono::steady_clock::time_point until)
{
  const auto pause = std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
  constexpr std::int64_t longest = std::numeric_limits<int>::max();
  return waitFor(descriptors, static_cast<int>(std::clamp<std::int64_t>(pause, 0, longest)));
}

}  // namespace KV::tools
