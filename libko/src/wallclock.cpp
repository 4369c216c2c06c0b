#include "wallclock.hpp"

#include <chrono>

#ifdef KO_COUNT_TIME
#include "extrapolatedclock.hpp"

#include <cpuid.h>
#include <x86intrin.h>

#include <fstream>
#include <string>
#endif

namespace ko
{

namespace
{

std::int64_t systemTime()
{
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch).count();
}

#ifdef KO_COUNT_TIME

/// Returns whether the counter has one rate in all states of all processors. The processor reports the first; the
/// kernel uses the counter for its own time only if it has found the second to hold.
bool counterIsReliable()
{
  constexpr unsigned int powerManagementLeaf = 0x80000007U;
  constexpr unsigned int invariant = 1U << 8U;
  unsigned int a = 0;
  unsigned int b = 0;
  unsigned int c = 0;
  unsigned int d = 0;
  __get_cpuid(powerManagementLeaf, &a, &b, &c, &d);  // leaves the zeros where the processor has no such leaf

  std::ifstream file("/sys/devices/system/clocksource/clocksource0/current_clocksource");
  std::string clocksource;
  std::getline(file, clocksource);
  return (d & invariant) != 0 && clocksource == "tsc";  // GCOV_EXCL_BR_LINE
}

struct Machine
{
  static std::uint64_t counter() { return __rdtsc(); }           // GCOV_EXCL_LINE
  static std::int64_t systemTime() { return ko::systemTime(); }  // GCOV_EXCL_LINE
};

const bool countsTime = counterIsReliable();  // false until this unit is initialised, which is safe

// Without a constructor to run: a look-up is one load.
thread_local ExtrapolatedClock<Machine> clockOfThisThread __attribute__((tls_model("initial-exec")));

#endif

}  // namespace

#ifdef KO_COUNT_TIME

std::int64_t wallClockNow()
{
  return countsTime ? clockOfThisThread.now() : systemTime();  // GCOV_EXCL_BR_LINE
}

#else

std::int64_t wallClockNow()
{
  return systemTime();
}

#endif

}  // namespace ko
