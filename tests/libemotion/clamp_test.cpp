#include "clamp.hpp"

#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// Two operands of which neither is the greater, and the second, which is returned.
struct TiedCase
{
  const char* name;
  float a;
  float b;
};
class TiedOperands : public ::testing::TestWithParam<TiedCase>
{};

TEST_P(TiedOperands, GiveTheSecond)
{
  const auto [name, a, b] = GetParam();
  for (const float chosen : {KV::maximum(a, b), KV::minimum(a, b)})
  {
    EXPECT_EQ(std::isnan(b), std::isnan(chosen));
    EXPECT_EQ(std::signbit(b), std::signbit(chosen));
  }
}

INSTANTIATE_TEST_SUITE_P(Zeros, TiedOperands,
                         ::testing::Values(TiedCase{"NegativeZeroAndZero", -0.f, 0.f},
                                           TiedCase{"ZeroAndNegativeZero", 0.f, -0.f}, TiedCase{"NanAndZero", nan, 0.f},
                                           TiedCase{"ZeroAndNan", 0.f, nan}),
                         support::RowName());

TEST(MaximumAndMinimum, DistinguishTheGreaterFromTheLess)
{
  EXPECT_EQ(2.f, KV::maximum(1.f, 2.f));
  EXPECT_EQ(2.f, KV::maximum(2.f, 1.f));
  EXPECT_EQ(1.f, KV::minimum(1.f, 2.f));
  EXPECT_EQ(1.f, KV::minimum(2.f, 1.f));
}

struct ClampCase
{
  const char* name;
  float (*clamp)(float);
  float lowest;
  bool keepsNan;
};
class Clamp : public ::testing::TestWithParam<ClampCase>
{};

TEST_P(Clamp, HoldsItsRange)
{
  const auto [name, clamp, lowest, keepsNan] = GetParam();
  EXPECT_EQ(1.f, clamp(infinity));
  EXPECT_EQ(1.f, clamp(std::nextafter(1.f, 2.f)));
  EXPECT_EQ(1.f, clamp(1.f));
  EXPECT_EQ(0.5f, clamp(0.5f));
  EXPECT_EQ(lowest, clamp(lowest));
  EXPECT_EQ(lowest, clamp(std::nextafter(lowest, -2.f)));
  EXPECT_EQ(lowest, clamp(-infinity));
}

TEST_P(Clamp, KeepsANanOrMakesItZero)
{
  const auto [name, clamp, lowest, keepsNan] = GetParam();
  if (keepsNan)
    EXPECT_TRUE(std::isnan(clamp(nan)));
  else
    EXPECT_EQ(0.f, clamp(nan));
}

INSTANTIATE_TEST_SUITE_P(OfTheQuantities, Clamp,
                         ::testing::Values(ClampCase{"Valence", KV::clampValence, -1.f, true},
                                           ClampCase{"Attention", KV::clampAttention, 0.f, true},
                                           ClampCase{"Confidence", KV::clampConfidence, 0.f, false}),
                         support::RowName());

}  // namespace
