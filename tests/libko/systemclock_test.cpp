#include "support/clocktest.hpp"

#include <ko/systemclock.hpp>

#include <gtest/gtest.h>

namespace
{

TEST(ManualClock, ShowsTheTimeItWasMadeWith)
{
  ko::ManualClock clock(support::start);

  EXPECT_EQ(support::start, clock.now());
}

}  // namespace
