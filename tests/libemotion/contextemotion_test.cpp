#include <skeigiot/contextemotion.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace
{

TEST(ContextEmotion, KeepsValenceThenLifetimeAsGiven)
{
  const KV::ContextEmotion emotion(-1, 2.5f);

  EXPECT_EQ(-1, emotion.valence);
  EXPECT_EQ(2.5f, emotion.lifetime);
}

TEST(ContextEmotion, DoesNotHoldItsValuesInARange)
{
  const KV::ContextEmotion emotion(std::numeric_limits<std::int32_t>::min(), std::nanf(""));

  EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), emotion.valence);
  EXPECT_TRUE(std::isnan(emotion.lifetime));
}

TEST(ContextEmotion, IsNeverMadeWithoutItsValues)
{
  EXPECT_FALSE(std::is_default_constructible_v<KV::ContextEmotion>);
}

}  // namespace
