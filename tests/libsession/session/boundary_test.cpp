#include "support/capturedstream.hpp"

#include <skeigiot/session/boundary.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::session::Boundary;
using KV::session::setBoundary;

std::vector<std::string> optionNames()
{
  std::vector<std::string> names;
  for (const Boundary& boundary : KV::session::boundaries())
    names.push_back(boundary.option);
  return names;
}

/// Each boundary in turn.
class BoundaryOption : public ::testing::TestWithParam<std::string>
{
protected:
  static const Boundary& boundary()
  {
    for (const Boundary& candidate : KV::session::boundaries())
    {
      if (candidate.option == GetParam())
        return candidate;
    }
    throw std::logic_error("no such boundary");
  }

  /// Sets the boundary; returns the reason if it was refused.
  static std::string refusalOf(float value)
  {
    return setBoundary(boundary(), value) ? "" : KV::session::boundaryRefusal(boundary(), value);
  }

  static bool isOfValence() { return boundary().interval == "strictly between -1 and 1"; }

  const KV::session::SavedBoundaries saved;
  const float former = boundary().get();
};

TEST_P(BoundaryOption, IsSetAndLeavesTheOthersAlone)
{
  std::vector<float> before;
  for (const Boundary& other : KV::session::boundaries())
    before.push_back(other.get());

  EXPECT_TRUE(setBoundary(boundary(), 0.125f));

  for (std::size_t i = 0; i < before.size(); ++i)
  {
    const Boundary& other = KV::session::boundaries()[i];
    EXPECT_EQ(other.option == GetParam() ? 0.125f : before[i], other.get()) << other.option;
  }
}

TEST_P(BoundaryOption, TakesWhatLiesStrictlyInItsInterval)
{
  const float largest = std::nextafter(1.f, 0.f);
  EXPECT_TRUE(setBoundary(boundary(), largest));
  EXPECT_EQ(largest, boundary().get());
  const float smallest = isOfValence() ? -largest : std::numeric_limits<float>::denorm_min();
  EXPECT_TRUE(setBoundary(boundary(), smallest));
  EXPECT_EQ(smallest, boundary().get());
}

TEST_P(BoundaryOption, RefusesTheEndsOfItsInterval)
{
  const std::string end = " does not lie " + boundary().interval;
  EXPECT_EQ("1" + end, refusalOf(1.f));
  if (isOfValence())
    EXPECT_EQ("-1" + end, refusalOf(-1.f));
  else
    EXPECT_EQ("0" + end, refusalOf(0.f));
  EXPECT_EQ("nan" + end, refusalOf(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ(former, boundary().get());
}

INSTANTIATE_TEST_SUITE_P(All, BoundaryOption, ::testing::ValuesIn(optionNames()), [](const auto& row) {
  std::string name = row.param;
  name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
  return name;
});

TEST_P(BoundaryOption, TakesTheValueThatItHas)
{
  EXPECT_TRUE(setBoundary(boundary(), former));
}

TEST_P(BoundaryOption, IsRefusedWithoutAWarning)
{
  const support::CapturedStandardError error;
  EXPECT_FALSE(setBoundary(boundary(), 2.f));
  EXPECT_EQ("", error.text());
}

std::vector<float> allValues()
{
  std::vector<float> values;
  for (const Boundary& boundary : KV::session::boundaries())
    values.push_back(boundary.get());
  return values;
}

TEST(SavedBoundaries, ComeBackAllSix)
{
  const std::vector<float> before = allValues();
  {
    const KV::session::SavedBoundaries saved;
    for (const Boundary& boundary : KV::session::boundaries())
      EXPECT_TRUE(setBoundary(boundary, 0.125f));
    EXPECT_EQ(std::vector<float>(6, 0.125f), allValues());
  }
  EXPECT_EQ(before, allValues());
}

TEST(SavedBoundaries, MayBeKeptAsTheyAreNow)
{
  const KV::session::SavedBoundaries around;
  {
    KV::session::SavedBoundaries saved;
    for (const Boundary& boundary : KV::session::boundaries())
      EXPECT_TRUE(setBoundary(boundary, 0.125f));
    saved.keep();
  }
  EXPECT_EQ(std::vector<float>(6, 0.125f), allValues());
}

TEST(Boundaries, ArePartOfTheCommandLineAllSix)
{
  EXPECT_EQ(
      (std::vector<std::string>{"boundary-positive", "boundary-negative", "boundary-confidence",
                                "boundary-looking-at-robot", "boundary-strictly-looking-at-robot", "boundary-excited"}),
      optionNames());
  std::vector<std::string> descriptions;
  for (const Boundary& boundary : KV::session::boundaries())
    descriptions.push_back(boundary.description);
  EXPECT_EQ((std::vector<std::string>{
                "valence from which a mood is positive", "valence below which a mood is negative",
                "confidence below which a mood is unknown", "attention from which a person counts as engaged",
                "attention from which a person counts as strictly engaged", "agitation from which a room is excited"}),
            descriptions);
}

}  // namespace
