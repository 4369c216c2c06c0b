// An estimate depends neither on the flags of the floating-point environment nor on the thread that makes it.

#include "fingerprint.hpp"
#include "randomlife.hpp"

#include <skeigiot/person.hpp>

#include <gtest/gtest.h>

#include <cfenv>
#include <string>
#include <thread>

namespace
{

using namespace properties;

TEST(EnvironmentProperties, AreTheSameWithEveryStickyFlag)
{
  for (const unsigned int seed : seeds)
  {
    std::fenv_t before;
    ASSERT_EQ(0, std::fegetenv(&before));
    RandomLife life(seed);
    KV::Person cleared;
    KV::Person raised;
    while (life.next())
    {
      std::feclearexcept(FE_ALL_EXCEPT);
      life.letLive(cleared);
      std::feraiseexcept(FE_ALL_EXCEPT);
      life.letLive(raised);
      ASSERT_EQ(FE_ALL_EXCEPT, std::fetestexcept(FE_ALL_EXCEPT)) << "an update clears no flag, " << life.place();
      ASSERT_EQ(Fingerprint::of(cleared), Fingerprint::of(raised)) << life.place();
    }
    ASSERT_EQ(FE_TONEAREST, std::fegetround());
    std::fesetenv(&before);
  }
}

TEST(EnvironmentProperties, AreTheSameOnEveryThread)
{
  for (const unsigned int seed : seeds)
  {
    RandomLife life(seed, support::nanoseconds(hourOfLife) / 2);
    KV::Person here;
    KV::Person elsewhere;
    while (life.next())
    {
      life.letLive(here);
      std::thread([&] {
        const ko::ScopedClockSource scope(life.clock());  // a source counts for the thread that names it
        life.letLive(elsewhere);
      }).join();
      ASSERT_EQ(Fingerprint::of(here), Fingerprint::of(elsewhere)) << life.place();
    }
  }
}

TEST(EnvironmentProperties, AreTheSameAgain)
{
  for (const unsigned int seed : seeds)
    EXPECT_EQ(fingerprintOfLife(seed), fingerprintOfLife(seed)) << "seed " << seed;
  EXPECT_NE(fingerprintOfLife(1), fingerprintOfLife(2)) << "lives do not show in the fingerprint";
}

}  // namespace
