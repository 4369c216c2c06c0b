#include "report/thinning.hpp"
#include "libsession/report/moments.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

namespace
{

using boost::chrono::milliseconds;
using KV::session::Moment;
using reporttests::momentAt;
using Moments = std::vector<Moment>;

std::vector<long> timesOf(const Moments& moments)
{
  std::vector<long> times;
  for (const Moment& moment : moments)
    times.push_back(boost::chrono::duration_cast<milliseconds>(moment.snapshot.sinceStart).count());
  return times;
}

std::size_t inputNamed(const std::string& name)
{
  const auto& inputs = KV::session::reportInputs();
  const auto found = std::find_if(inputs.begin(), inputs.end(), [&](const auto& input) { return name == input.name; });
  return static_cast<std::size_t>(found - inputs.begin());
}

TEST(Thinning, KeepsTheFirstTheExtremesAndTheLastOfAll)
{
  Moments moments{momentAt(0, 0.1f),    momentAt(100, 0.2f), momentAt(200, 0.9f), momentAt(300, 0.2f),
                  momentAt(400, -0.9f), momentAt(500, 0.f),  momentAt(600, 0.1f), momentAt(700, 0.f)};
  KV::session::thin(moments, milliseconds(1000));
  EXPECT_EQ((std::vector<long>{0, 200, 400, 700}), timesOf(moments));
}

TEST(Thinning, LooksAtEachStretchByItself)
{
  Moments moments{momentAt(0, 0.f), momentAt(900, 0.5f), momentAt(1000, 0.1f), momentAt(1500, 0.2f),
                  momentAt(1900, 0.3f)};
  KV::session::thin(moments, milliseconds(1000));
  EXPECT_EQ((std::vector<long>{0, 900, 1000, 1900}), timesOf(moments));
}

TEST(Thinning, KeepsTheExtremesOfInputs)
{
  Moments moments;
  for (int i = 0; i < 9; ++i)
    moments.push_back(momentAt(100 * i, 0.f));
  const std::size_t smile = inputNamed("smile");
  for (const int i : {2, 3, 4})
    moments[static_cast<std::size_t>(i)].inputs.at(smile) = 0.5f;
  moments[5].inputs.at(smile) = 0.7f;
  KV::session::thin(moments, milliseconds(1000));
  EXPECT_EQ((std::vector<long>{0, 200, 500, 800}), timesOf(moments));
}

TEST(Thinning, KeepsEventsAndChangesOfState)
{
  Moments moments;
  for (int i = 0; i < 9; ++i)
    moments.push_back(momentAt(100 * i, 0.f));
  moments[3].inputs.at(inputNamed("touch")) = 1.f;
  for (std::size_t i = 6; i < moments.size(); ++i)
    moments[i].snapshot.seen = false;
  KV::session::thin(moments, milliseconds(1000));
  EXPECT_EQ((std::vector<long>{0, 300, 600, 800}), timesOf(moments));
}

TEST(Thinning, AddsWhatIsLeftOutToTheNextMoment)
{
  Moments moments{momentAt(0, 0.f), momentAt(100, 0.f), momentAt(200, 0.f), momentAt(300, 0.f)};
  for (Moment& moment : moments)
    moment.changes = {{0, KV::ValenceQuantity, 0.25}, {1, KV::AttentionQuantity, -0.5}};
  KV::session::thin(moments, milliseconds(1000));
  ASSERT_EQ((std::vector<long>{0, 300}), timesOf(moments));
  EXPECT_EQ(1U, moments[0].updates);
  EXPECT_EQ(3U, moments[1].updates);
  ASSERT_EQ(2U, moments[1].changes.size());
  EXPECT_DOUBLE_EQ(0.75, moments[1].changes[0].distance);
  EXPECT_DOUBLE_EQ(-1.5, moments[1].changes[1].distance);
}

TEST(Thinning, KeepsTheExtremesOfTheOriginalWhenItIsRepeated)
{
  constexpr unsigned seed = 7;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  Moments moments;
  for (int i = 0; i < 2000; ++i)
    moments.push_back(momentAt(10 * i, std::uniform_real_distribution<float>(-1.f, 1.f)(random)));
  Moments once = moments;
  KV::session::thin(once, milliseconds(2000));
  for (const int stretch : {250, 500, 1000, 2000})
    KV::session::thin(moments, milliseconds(stretch));
  EXPECT_LT(moments.size(), 50U);
  EXPECT_EQ(timesOf(once), timesOf(moments));
}

TEST(Thinning, LeavesNothingAsItIs)
{
  Moments moments;
  KV::session::thin(moments, milliseconds(1000));
  EXPECT_TRUE(moments.empty());
}

}  // namespace
