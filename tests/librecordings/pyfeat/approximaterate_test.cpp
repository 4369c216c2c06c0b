#include "pyfeat/approximaterate.hpp"

#include <gtest/gtest.h>

namespace
{

KV::recordings::ApproximateRate shownAt(double framesPerSecond, int frames)
{
  KV::recordings::ApproximateRate rate;
  for (int frame = 0; frame < frames; ++frame)
    rate.add(frame, static_cast<std::int64_t>(frame / framesPerSecond));
  return rate;
}

TEST(ApproximateRate, IsTheUsualOneThatFits)
{
  for (const double framesPerSecond : {30.0, 25.0, 24.0, 60.0, 50.0, 15.0, 10.0})
  {
    const auto rate = shownAt(framesPerSecond, 3000).rate();
    ASSERT_TRUE(rate) << framesPerSecond;
    EXPECT_DOUBLE_EQ(framesPerSecond, rate->framesPerSecond);
    EXPECT_EQ("", rate->warning) << framesPerSecond;
  }
}

TEST(ApproximateRate, IsBetweenTheBoundsIfNoUsualOneFits)
{
  const auto rate = shownAt(37.0, 3000).rate();
  ASSERT_TRUE(rate);
  EXPECT_NEAR(37.0, rate->framesPerSecond, 0.5);
}

TEST(ApproximateRate, IsDoubtfulIfTheBoundsAreFarApart)
{
  KV::recordings::ApproximateRate rate;
  rate.add(20, 0);
  rate.add(40, 1);
  EXPECT_DOUBLE_EQ(30.0, rate.rate().value().framesPerSecond);
  EXPECT_EQ("the times in whole seconds leave open which rate from 20 to 40 frames/s the video had: 30 are assumed",
            rate.rate().value().warning);
  EXPECT_EQ("give it", rate.rate().value().advice);
}

TEST(ApproximateRate, IsUnknownBeforeTheFirstSecondIsOver)
{
  EXPECT_FALSE(KV::recordings::ApproximateRate().rate());
  EXPECT_FALSE(shownAt(25.0, 25).rate());
}

TEST(ApproximateRate, IsUnknownIfTheTimesContradictEachOther)
{
  KV::recordings::ApproximateRate rate;
  rate.add(100, 1);
  rate.add(110, 10);
  EXPECT_FALSE(rate.rate());
}

}  // namespace
