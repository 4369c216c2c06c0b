#include <skeigiot/smile.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

namespace
{

TEST(Smile, IsZeroByDefault)
{
  const KV::Smile smile;

  EXPECT_EQ(0.f, smile.value);
  EXPECT_EQ(0.f, smile.confidence);
}

TEST(Smile, KeepsDegreeThenConfidenceAsGiven)
{
  const KV::Smile smile(1.5f, -0.25f);

  EXPECT_EQ(1.5f, smile.value);
  EXPECT_EQ(-0.25f, smile.confidence);
}

TEST(Smile, IsReadAsOneValueWithItsConfidence)
{
  const KV::ValueConfidence<float> smile = KV::Smile(0.75f, 0.5f).smile();

  EXPECT_EQ(0.75f, smile.value);
  EXPECT_EQ(0.5f, smile.confidence);
}

TEST(Smile, IsSetFromOneValueWithItsConfidence)
{
  KV::Smile smile(0.75f, 0.5f);

  smile.setSmile({0.25f, 0.125f});

  EXPECT_EQ(0.25f, smile.value);
  EXPECT_EQ(0.125f, smile.confidence);
}

TEST(Smile, IsSetWithoutClamping)
{
  KV::Smile smile;

  smile.setSmile({std::nanf(""), 7.f});

  EXPECT_TRUE(std::isnan(smile.value));
  EXPECT_EQ(7.f, smile.confidence);
}

TEST(Smile, IsAPlainValue)
{
  EXPECT_TRUE(std::is_trivially_copyable_v<KV::Smile>);
}

}  // namespace
