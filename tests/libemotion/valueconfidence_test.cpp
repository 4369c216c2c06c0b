#include <skeigiot/valueconfidence.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace
{

TEST(ValueConfidence, HasNoConfidenceByDefault)
{
  EXPECT_EQ(0.f, KV::ValueConfidence<float>().confidence);
  EXPECT_EQ(0.f, KV::ValueConfidence<bool>().confidence);
  EXPECT_EQ(0.f, KV::ValueConfidence<unsigned int>().confidence);
  EXPECT_EQ(0.f, (KV::ValueConfidence<std::pair<float, float>>().confidence));
}

TEST(ValueConfidence, HasAZeroValueByDefault)
{
  EXPECT_EQ(0.f, KV::ValueConfidence<float>().value);
  EXPECT_FALSE(KV::ValueConfidence<bool>().value);
  EXPECT_EQ(0u, KV::ValueConfidence<unsigned int>().value);
  EXPECT_EQ(std::make_pair(0.f, 0.f), (KV::ValueConfidence<std::pair<float, float>>().value));
}

TEST(ValueConfidence, KeepsValueThenConfidenceAsGiven)
{
  const KV::ValueConfidence<float> score(0.25f, 0.75f);
  EXPECT_EQ(0.25f, score.value);
  EXPECT_EQ(0.75f, score.confidence);

  const KV::ValueConfidence<bool> flag(true, 0.5f);
  EXPECT_TRUE(flag.value);
  EXPECT_EQ(0.5f, flag.confidence);

  const KV::ValueConfidence<unsigned int> age(std::numeric_limits<unsigned int>::max(), 0.5f);
  EXPECT_EQ(std::numeric_limits<unsigned int>::max(), age.value);

  const KV::ValueConfidence<std::pair<float, float>> point({320.f, 240.f}, 0.5f);
  EXPECT_EQ(320.f, point.value.first);
  EXPECT_EQ(240.f, point.value.second);
}

TEST(ValueConfidence, DoesNotHoldItsConfidenceInARange)
{
  EXPECT_EQ(-3.f, KV::ValueConfidence<float>(0.f, -3.f).confidence);
  EXPECT_EQ(1e30f, KV::ValueConfidence<float>(0.f, 1e30f).confidence);
  EXPECT_TRUE(std::isnan(KV::ValueConfidence<float>(0.f, std::nanf("")).confidence));
  EXPECT_TRUE(std::isnan(KV::ValueConfidence<float>(std::nanf(""), 0.f).value));
}

TEST(ValueConfidence, IsCopiedByValue)
{
  const KV::ValueConfidence<float> original(0.25f, 0.75f);
  KV::ValueConfidence<float> copy = original;

  copy.value = 1.f;
  copy.confidence = 2.f;

  EXPECT_EQ(1.f, copy.value);
  EXPECT_EQ(2.f, copy.confidence);
  EXPECT_EQ(0.25f, original.value);
  EXPECT_EQ(0.75f, original.confidence);
}

}  // namespace
