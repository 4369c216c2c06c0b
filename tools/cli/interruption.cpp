#include "cli/interruption.hpp"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>

#include <sys/time.h>

namespace KV::tools
{

namespace
{

constexpr std::array signals{SIGINT, SIGTERM, SIGHUP, SIGALRM};

std::atomic<int> noted = 0;  // set by a handler, read by any thread
static_assert(std::atomic<int>::is_always_lock_free);
std::array<struct sigaction, signals.size()> before;

constexpr suseconds_t pauseOfAlarm = 100'000;  // [us]

/// Sets an alarm in so many microseconds; 0 cancels it.
void setAlarm(suseconds_t microseconds)
{
  const itimerval once{{0, 0}, {0, microseconds}};
  setitimer(ITIMER_REAL, &once, nullptr);
}

// A signal may come just before a write that waits for a reader, and then the write would not end: an alarm ends it.
void note(int signal)
{
  if (signal != SIGALRM)
    noted = signal;
  setAlarm(pauseOfAlarm);
}

}  // namespace

Interruption::Interruption()
{
  struct sigaction action = {};
  action.sa_handler = note;  // without SA_RESTART: a read that waits for input must end, too
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < signals.size(); ++i)
  {
    sigaction(signals[i], nullptr, &before[i]);
    if (before[i].sa_handler != SIG_IGN)
      sigaction(signals[i], &action, nullptr);
  }
}

Interruption::~Interruption()
{
  setAlarm(0);
  for (std::size_t i = 0; i < signals.size(); ++i)
    sigaction(signals[i], &before[i], nullptr);
}

void Interruption::check()
{
  const int signal = noted;
  if (signal != 0)
    throw Interrupted{signal};
}

}  // namespace KV::tools
