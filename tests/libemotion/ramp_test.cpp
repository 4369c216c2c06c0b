#include "support/tablename.hpp"

#include <skeigiot/ramp.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using FallingRamp = KV::Ramp<KV::RampDown, float, float>;
using RisingRamp = KV::Ramp<KV::RampUp, float, float>;

constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(RampSlope, NumbersTheDirections)
{
  EXPECT_EQ(0, KV::RampDown);
  EXPECT_EQ(1, KV::RampUp);
}

TEST(Ramp, IsAllZeroByDefault)
{
  const FallingRamp falling;
  EXPECT_EQ(0.f, falling.center);
  EXPECT_EQ(0.f, falling.width);
  EXPECT_EQ(0.f, falling.amplitude);

  const RisingRamp rising;
  EXPECT_EQ(0.f, rising.center);
  EXPECT_EQ(0.f, rising.width);
  EXPECT_EQ(0.f, rising.amplitude);
}

TEST(Ramp, KeepsCenterWidthAndAmplitudeAsGiven)
{
  const FallingRamp ramp(-1.5f, -2.f, 1e30f);

  EXPECT_EQ(-1.5f, ramp.center);
  EXPECT_EQ(-2.f, ramp.width);
  EXPECT_EQ(1e30f, ramp.amplitude);
}

struct RampCase
{
  const char* name;
  float x;
  double falling;  ///< of the ramps below, to three decimals
  double rising;
};

class RampCurve : public ::testing::TestWithParam<RampCase>
{
protected:
  static constexpr double threeDecimals = 0.0005;

  FallingRamp falling{1.4f, 0.2f, 1.f};
  RisingRamp rising{1.4f, 0.2f, 1.f};
};

TEST_P(RampCurve, FallsFromTheAmplitudeToZero)
{
  EXPECT_NEAR(GetParam().falling, static_cast<double>(falling(GetParam().x)), threeDecimals);
}

TEST_P(RampCurve, RisesFromZeroToTheAmplitude)
{
  EXPECT_NEAR(GetParam().rising, static_cast<double>(rising(GetParam().x)), threeDecimals);
}

TEST_P(RampCurve, GrowsWithItsAmplitude)
{
  const float x = GetParam().x;

  EXPECT_EQ(3.f * falling(x), FallingRamp(1.4f, 0.2f, 3.f)(x));
  EXPECT_EQ(3.f * rising(x), RisingRamp(1.4f, 0.2f, 3.f)(x));
}

TEST_P(RampCurve, IsMadeInSinglePrecision)
{
  const float t = std::tanh((GetParam().x - 1.4f) * (4.f / 0.2f));

  EXPECT_EQ(((1.f - t) * 0.7f) * 0.5f, FallingRamp(1.4f, 0.2f, 0.7f)(GetParam().x));
  EXPECT_EQ(((t + 1.f) * 0.7f) * 0.5f, RisingRamp(1.4f, 0.2f, 0.7f)(GetParam().x));
}

INSTANTIATE_TEST_SUITE_P(Points, RampCurve,
                         ::testing::Values(RampCase{"FarBelow", -10.f, 1., 0.}, RampCase{"BelowTheSpan", 1.2f, 1., 0.},
                                           RampCase{"AtTheStartOfTheSpan", 1.3f, 0.982, 0.018},
                                           RampCase{"BeforeTheCenter", 1.35f, 0.881, 0.119},
                                           RampCase{"AtTheCenter", 1.4f, 0.5, 0.5},
                                           RampCase{"BehindTheCenter", 1.45f, 0.119, 0.881},
                                           RampCase{"AtTheEndOfTheSpan", 1.5f, 0.018, 0.982},
                                           RampCase{"BeyondTheSpan", 1.6f, 0., 1.},
                                           RampCase{"FarBeyond", 10.f, 0., 1.}),
                         support::RowName());

TEST(Ramp, IsExactlyHalfTheAmplitudeAtItsCenter)
{
  EXPECT_EQ(0.5f, FallingRamp(1.4f, 0.2f, 1.f)(1.4f));
  EXPECT_EQ(0.5f, RisingRamp(1.4f, 0.2f, 1.f)(1.4f));
  EXPECT_EQ(-2.f, FallingRamp(0.f, 5.f, -4.f)(0.f));
}

TEST(Ramp, ReachesItsEndsExactlyFarFromTheCenter)
{
  const FallingRamp falling(1.4f, 0.2f, 0.7f);
  const RisingRamp rising(1.4f, 0.2f, 0.7f);

  EXPECT_EQ(0.7f, falling(-infinity));
  EXPECT_EQ(0.f, falling(infinity));
  EXPECT_EQ(0.f, rising(-infinity));
  EXPECT_EQ(0.7f, rising(infinity));
}

TEST(Ramp, RunsTheOtherWayWithANegativeWidth)
{
  const FallingRamp falling(1.4f, -0.2f, 1.f);
  const RisingRamp rising(1.4f, 0.2f, 1.f);

  EXPECT_EQ(rising(1.35f), falling(1.35f));
  EXPECT_EQ(rising(1.5f), falling(1.5f));
}

TEST(Ramp, LetsNanThrough)
{
  EXPECT_TRUE(std::isnan(FallingRamp(1.4f, 0.2f, 1.f)(std::nanf(""))));
  EXPECT_TRUE(std::isnan(RisingRamp(1.4f, 0.2f, 1.f)(std::nanf(""))));
}

TEST(Ramp, IsAStepWithoutAWidth)
{
  const RisingRamp ramp(1.f, 0.f, 2.f);

  EXPECT_EQ(0.f, ramp(std::nextafter(1.f, 0.f)));
  EXPECT_TRUE(std::isnan(ramp(1.f)));
  EXPECT_EQ(2.f, ramp(std::nextafter(1.f, 2.f)));
}

}  // namespace
