#include "libsession/entries.hpp"

#include <skeigiot/session/history.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace
{

using namespace replaytests;
using KV::session::History;
using KV::session::sparkline;
using testing::Each;
using testing::ElementsAre;
using testing::IsNan;

constexpr double none = std::numeric_limits<double>::quiet_NaN();

TEST(History, KnowsNothingAtFirst)
{
  EXPECT_THAT(History().means(start, 4), ElementsAre(IsNan(), IsNan(), IsNan(), IsNan()));
}

TEST(History, ShowsTheNewestLast)
{
  History history;
  history.add(start, 0.5f);
  EXPECT_THAT(history.means(start, 3), ElementsAre(IsNan(), IsNan(), 0.5));
  EXPECT_THAT(history.means(start + seconds(20), 3), ElementsAre(IsNan(), 0.5, IsNan()));
  EXPECT_THAT(history.means(start + seconds(59), 3), ElementsAre(0.5, IsNan(), IsNan()));
  EXPECT_THAT(history.means(start + seconds(60), 3), Each(IsNan()));
}

TEST(History, ReturnsTheMeanOfAStretch)
{
  History history;
  for (int i = 0; i < 60; ++i)
    history.add(start + seconds(i), i < 30 ? 0.f : 1.f);
  EXPECT_THAT(history.means(start + seconds(59), 2), ElementsAre(0., 1.));
  EXPECT_THAT(history.means(start + seconds(74), 2), ElementsAre(0.5, 1.));
}

TEST(History, ReturnsTheMeanOfAllValuesOfASecond)
{
  History history;
  history.add(start, 0.f);
  history.add(start + milliseconds(500), 0.5f);
  history.add(start + milliseconds(999), 1.f);
  EXPECT_DOUBLE_EQ(0.5, history.means(start + milliseconds(999), 60).back());
}

TEST(History, ForgetsWhatIsAMinuteOld)
{
  History history;
  history.add(start, 0.f);
  history.add(start + seconds(60), 1.f);
  EXPECT_EQ(1., history.means(start + seconds(60), 60).back());
  EXPECT_THAT(history.means(start + seconds(60), 1), ElementsAre(1.));
}

TEST(History, PassesOverWhatIsNoNumber)
{
  History history;
  history.add(start, std::nanf(""));
  EXPECT_THAT(history.means(start, 1), ElementsAre(IsNan()));
}

TEST(Sparkline, GrowsWithTheValue)
{
  EXPECT_EQ("▁▁▃▅▇█", sparkline({-1., -0.9, -0.5, 0., 0.6, 1.}, -1., 1.));
}

TEST(Sparkline, IsHeldAtItsEnds)
{
  EXPECT_EQ("▁█", sparkline({-7., 7.}, 0., 1.));
}

TEST(Sparkline, IsBlankWhereThereIsNothing)
{
  EXPECT_EQ(" ▁ ", sparkline({none, 0., none}, 0., 1.));
}

}  // namespace
