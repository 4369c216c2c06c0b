#include "support/thrown.hpp"

#include <skeigiot/session/cycle.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace
{

using KV::session::Cycle;
using KV::session::parseCycle;

TEST(Cycle, IsTenUpdatesASecondIfNothingIsSaid)
{
  EXPECT_EQ(10., Cycle().hertz.value_or(0.));
}

TEST(Cycle, IsReadFromARateOrFromTheWordRecorded)
{
  EXPECT_EQ(7.5, parseCycle("7.5").hertz.value_or(0.));
  EXPECT_EQ(1000., parseCycle("1000").hertz.value_or(0.));
  EXPECT_FALSE(parseCycle("recorded").hertz);
}

TEST(Cycle, RefusesWhatIsNoRate)
{
  for (const char* const text : {"", "0", "-1", "1000.1", "nan", "inf", "10Hz", " 10", "Recorded", "1e-400"})
    EXPECT_EQ(
        "expected recorded or a number of updates a second above 0, up to 1000, found '" + std::string(text) + "'",
        support::textThrownBy<std::invalid_argument>([&] { parseCycle(text); }))
        << text;
}

}  // namespace
