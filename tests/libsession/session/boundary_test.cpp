#include "support/thrown.hpp"

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

/// Each boundary in turn, set back to what it was when the test is over.
class BoundaryOption : public ::testing::TestWithParam<std::string>
{
protected:
  BoundaryOption() : former(boundary().get()) {}
  ~BoundaryOption() override { boundary().set(former); }

  static const Boundary& boundary()
  {
    for (const Boundary& candidate : KV::session::boundaries())
    {
      if (candidate.option == GetParam())
        return candidate;
    }
    throw std::logic_error("no such boundary");
  }

  static std::string refusalOf(float value)
  {
    return support::textThrownBy<std::invalid_argument>([value] { setBoundary(boundary(), value); });
  }

  static bool isOfValence() { return boundary().interval == "strictly between -1 and 1"; }

  float former;
};

TEST_P(BoundaryOption, IsSetAndLeavesTheOthersAlone)
{
  std::vector<float> before;
  for (const Boundary& other : KV::session::boundaries())
    before.push_back(other.get());

  setBoundary(boundary(), 0.125f);

  for (std::size_t i = 0; i < before.size(); ++i)
  {
    const Boundary& other = KV::session::boundaries()[i];
    EXPECT_EQ(other.option == GetParam() ? 0.125f : before[i], other.get()) << other.option;
  }
}

TEST_P(BoundaryOption, TakesWhatLiesStrictlyInItsInterval)
{
  const float largest = std::nextafter(1.f, 0.f);
  setBoundary(boundary(), largest);
  EXPECT_EQ(largest, boundary().get());
  const float smallest = isOfValence() ? -largest : std::numeric_limits<float>::denorm_min();
  setBoundary(boundary(), smallest);
  EXPECT_EQ(smallest, boundary().get());
}

TEST_P(BoundaryOption, RefusesTheEndsOfItsInterval)
{
  const std::string end = " does not lie " + boundary().interval;
  EXPECT_EQ("--" + GetParam() + ": 1" + end, refusalOf(1.f));
  if (isOfValence())
    EXPECT_EQ("--" + GetParam() + ": -1" + end, refusalOf(-1.f));
  else
    EXPECT_EQ("--" + GetParam() + ": 0" + end, refusalOf(0.f));
  EXPECT_EQ("--" + GetParam() + ": nan" + end, refusalOf(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ(former, boundary().get());
}

INSTANTIATE_TEST_SUITE_P(All, BoundaryOption, ::testing::ValuesIn(optionNames()), [](const auto& row) {
  std::string name = row.param;
  name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
  return name;
});

TEST(Boundaries, ArePartOfTheCommandLineAllSix)
{
  EXPECT_EQ(
      (std::vector<std::string>{"boundary-positive", "boundary-negative", "boundary-confidence",
                                "boundary-looking-at-robot", "boundary-strictly-looking-at-robot", "boundary-excited"}),
      optionNames());
}

}  // namespace
