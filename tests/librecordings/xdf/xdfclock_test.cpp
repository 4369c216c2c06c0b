#include "xdf/xdfclock.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <vector>

namespace
{
using KV::recordings::clockSegmentsOf;
using KV::recordings::removeJitter;
using KV::recordings::synchronise;
using KV::recordings::XdfClockOffset;
using KV::recordings::XdfClockSegment;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr double precision = 1e-9;  // double precision, some operations

/// Measurements each 5 s from a time on.
std::vector<XdfClockOffset> measured(double from, int count, double value, double slope = 0.)
{
  std::vector<XdfClockOffset> offsets;
  for (int i = 0; i < count; ++i)
    offsets.push_back({from + 5. * i, value + slope * 5. * i});
  return offsets;
}

TEST(XdfClock, WithoutMeasurementsStaysAsItIs)
{
  EXPECT_THAT(clockSegmentsOf({}), IsEmpty());
  std::vector<double> times = {1., 2.};
  synchronise(times, {});
  EXPECT_THAT(times, ElementsAre(1., 2.));
}

TEST(XdfClock, OfOneMeasurementIsMovedByIt)
{
  std::vector<double> times = {1., 200.};
  synchronise(times, clockSegmentsOf({{100., -0.25}}));
  EXPECT_THAT(times, ElementsAre(0.75, 199.75));
}

TEST(XdfClock, ThatDriftsIsMovedAlongALine)
{
  std::vector<double> times = {1000., 1100., 990.};
  synchronise(times, clockSegmentsOf(measured(1000., 21, -3., 0.001)));
  EXPECT_NEAR(997., times[0], precision);
  EXPECT_NEAR(1097.1, times[1], precision);
  EXPECT_NEAR(986.99, times[2], precision) << "before the first measurement";
}

TEST(XdfClock, IsNotMovedByAnOutlier)
{
  std::vector<XdfClockOffset> offsets = measured(0., 41, 2.);
  offsets[20].value = 2.5;
  const std::vector<XdfClockSegment> segments = clockSegmentsOf(offsets);
  ASSERT_THAT(segments, SizeIs(1));
  EXPECT_NEAR(2., segments[0].offset, 1e-4) << "an ordinary mean would be off by 0.01 s";
}

TEST(XdfClock, ThatWasSetHasASegmentBeforeAndOneAfter)
{
  std::vector<XdfClockOffset> offsets = measured(5000., 20, -4000.);
  for (const XdfClockOffset& after : measured(10., 20, 1200.))
    offsets.push_back(after);
  const std::vector<XdfClockSegment> segments = clockSegmentsOf(offsets);
  ASSERT_THAT(segments, SizeIs(2));
  EXPECT_EQ(5095., segments[0].to);
  EXPECT_EQ(10., segments[1].from);

  std::vector<double> times = {4990., 5000., 5090., 5098., 1., 10., 100., 200.};
  synchronise(times, segments);
  EXPECT_THAT(times, ElementsAre(990., 1000., 1090., 1098., 1201., 1210., 1300., 1400.));
}

TEST(XdfClock, ThatWasSetToTimesItHadBeforeGoesOnWithTheNextSegment)
{
  std::vector<XdfClockOffset> offsets = measured(100., 20, 0.);
  for (const XdfClockOffset& after : measured(100., 20, 500.))
    offsets.push_back(after);
  std::vector<double> times = {100., 150., 195., 100., 150.};
  synchronise(times, clockSegmentsOf(offsets));
  EXPECT_THAT(times, ElementsAre(100., 150., 195., 600., 650.));
}

TEST(XdfClock, ThatIsMeasuredLateButNotMovedWasNotSet)
{
  std::vector<XdfClockOffset> offsets = measured(0., 20, 1.);
  for (const XdfClockOffset& after : measured(1000., 20, 1.))
    offsets.push_back(after);
  EXPECT_THAT(clockSegmentsOf(offsets), SizeIs(1));
}

TEST(XdfJitter, IsRemovedFromRegularTimes)
{
  std::vector<double> times;
  for (int i = 0; i < 100; ++i)
    times.push_back(10. + 0.1 * i + (i % 2 == 0 ? 0.01 : -0.01));
  removeJitter(times, 10.);
  for (std::size_t i = 1; i < times.size(); ++i)
    EXPECT_NEAR(0.1, times[i] - times[i - 1], 1e-4);
  EXPECT_NEAR(10., times.front(), 1e-3);
}

TEST(XdfJitter, StaysInIrregularTimes)
{
  std::vector<double> times = {1., 1.5, 7.};
  removeJitter(times, 0.);
  EXPECT_THAT(times, ElementsAre(1., 1.5, 7.));
}

TEST(XdfJitter, IsRemovedBeforeAndAfterABreakApart)
{
  std::vector<double> times;
  for (int i = 0; i < 10; ++i)
    times.push_back(i);
  for (int i = 0; i < 10; ++i)
    times.push_back(1000. + 2. * i);
  removeJitter(times, 1.);  // 500 samples are 500 s
  EXPECT_NEAR(0., times[0], precision);
  EXPECT_NEAR(9., times[9], precision);
  EXPECT_NEAR(1000., times[10], precision);
  EXPECT_NEAR(1018., times[19], precision);
}

TEST(XdfJitter, NeedsSamples)
{
  std::vector<double> none;
  removeJitter(none, 10.);
  EXPECT_THAT(none, IsEmpty());
  std::vector<double> one = {3.};
  removeJitter(one, 10.);
  EXPECT_THAT(one, ElementsAre(3.));
}

}  // namespace
