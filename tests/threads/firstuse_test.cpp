// Several threads use the library for the first time at once: one test, since a process has one first time.

#include "threads/together.hpp"

#include "support/clocktest.hpp"
#include "support/randomobservations.hpp"

#include <skeigiot/classification/logregmoodscore.hpp>
#include <skeigiot/person.hpp>

#include <ko/json.hpp>
#include <ko/log.hpp>
#include <ko/value.hpp>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace
{

constexpr int count = 4;

/// A person after some cycles, as text.
std::string life(unsigned int seed)
{
  support::TestClock time;
  support::RandomObservations observations(seed);
  KV::Person person(1);
  for (int cycle = 0; cycle < 20; ++cycle)
  {
    person.update(observations.next());
    time.clock.advance(support::milliseconds(100));
  }
  return ko::json::encode(ko::Value::from(person));
}

TEST(FirstUse, IsSafeFromSeveralThreadsAtOnce)
{
  std::array<std::string, count> lives;
  std::array<float, count> weights{};
  threads::runOnThreads(count, 1, [&](int thread, int) {
    const auto i = static_cast<std::size_t>(thread);
    weights.at(i) = KV::classification::LogregMoodScore::COEFFICIENT_POS().weights.at(0);
    lives.at(i) = life(7);
    ko::log::addCategory("first use");
  });

  for (const std::string& other : lives)
    EXPECT_EQ(life(7), other);
  for (const float weight : weights)
    EXPECT_EQ(2.38828954219f, weight);
  EXPECT_NE(life(7), life(8)) << "lives do not show";
}

}  // namespace
