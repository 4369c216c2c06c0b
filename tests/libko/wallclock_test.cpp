#include "wallclock.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

namespace
{

std::int64_t systemTime()
{
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

// Each reading is compared with one of the system's clock before it and one after it, so that it does not matter how
// long this thread is interrupted in between.
TEST(WallClock, IsNeverMoreThanAMicrosecondOffTheClockOfTheSystem)
{
  constexpr std::int64_t microsecond = 1000;
  for (int i = 0; i < 200000; ++i)
  {
    const std::int64_t before = systemTime();
    const std::int64_t shown = ko::wallClockNow();
    const std::int64_t after = systemTime();
    ASSERT_LE(before - microsecond, shown) << "reading " << i;
    ASSERT_GE(after + microsecond, shown) << "reading " << i;
  }
}

}  // namespace
