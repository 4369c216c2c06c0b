#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/classification/argmaxclassifiertype.hpp>
#include <skeigiot/classification/logregmoodscore.hpp>
#include <skeigiot/classification/moodclassifier.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::classification::ArgmaxClassifierType;
using KV::classification::LogregMoodScore;
using KV::classification::MoodClass;
using KV::classification::MoodClassifier;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// One class per score, whose value is its index in the list.
std::vector<MoodClass> classesOf(const std::vector<float>& scores)
{
  static const LogregMoodScore unused(0, 0.f);
  std::vector<MoodClass> classes;
  for (const float score : scores)
  {
    classes.emplace_back("class " + std::to_string(classes.size()), static_cast<std::int32_t>(classes.size()), unused);
    classes.back().score = score;
  }
  return classes;
}

std::vector<float> scoresOf(const std::vector<MoodClass>& classes)
{
  std::vector<float> scores;
  for (const MoodClass& moodClass : classes)
    scores.push_back(moodClass.score);
  return scores;
}

struct WinnerCase
{
  const char* name;
  std::vector<float> scores;
  float threshold;
  std::int32_t winner;  ///< place of the winner in `scores`
  std::vector<float> sorted;
};

void PrintTo(const WinnerCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class ArgmaxWinner : public ::testing::TestWithParam<WinnerCase>
{};

TEST_P(ArgmaxWinner, IsTheBestOfTheSortedList)
{
  std::vector<MoodClass> classes = classesOf(GetParam().scores);
  const ArgmaxClassifierType type(GetParam().threshold);

  const MoodClass& winner = type.classify(MoodClassifier(type), classes);

  EXPECT_EQ(GetParam().winner, winner.value);
  EXPECT_EQ("class " + std::to_string(GetParam().winner), winner.name);
  EXPECT_EQ(&classes[0], &winner) << "the result is inside the list";
  EXPECT_EQ(GetParam().sorted, scoresOf(classes));
}

INSTANTIATE_TEST_SUITE_P(
    Of, ArgmaxWinner,
    ::testing::Values(
        WinnerCase{"ThreeWithTheBestInTheMiddle", {0.2f, 0.7f, 0.1f}, 0.f, 1, {0.7f, 0.2f, 0.1f}},
        WinnerCase{"ThreeWithTheBestLast", {0.1f, 0.2f, 0.7f}, 0.f, 2, {0.7f, 0.2f, 0.1f}},
        WinnerCase{"ThreeInOrder", {0.7f, 0.2f, 0.1f}, 0.f, 0, {0.7f, 0.2f, 0.1f}},
        WinnerCase{"Two", {-0.5f, -0.25f}, 0.f, 1, {-0.25f, -0.5f}},
        WinnerCase{"TheLeastLead", {0.5f, std::nextafter(0.5f, 0.f)}, 0.f, 0, {0.5f, std::nextafter(0.5f, 0.f)}},
        WinnerCase{"ALeadOfATenthInSinglePrecision", {0.6f, 0.5f}, 0.1f, 0, {0.6f, 0.5f}},
        WinnerCase{"ALeadBeyondOneHalf", {0.9f, 0.1f}, 0.5f, 0, {0.9f, 0.1f}},
        WinnerCase{"ALeadJustOverTheThreshold", {0.25f, 0.75f}, std::nextafter(0.5f, 0.f), 1, {0.75f, 0.25f}},
        WinnerCase{"ATieForTheSecondPlace", {0.1f, 0.5f, 0.1f}, 0.f, 1, {0.5f, 0.1f, 0.1f}},
        WinnerCase{"TheLeadOverTheSecondOnly", {0.5f, 0.75f, 0.f}, 0.2f, 1, {0.75f, 0.5f, 0.f}},
        WinnerCase{"InfinityOverANumber", {0.5f, infinity}, 0.f, 1, {infinity, 0.5f}}),
    support::RowName());

TEST(Argmax, LetsATieThroughUnderANegativeThreshold)
{
  std::vector<MoodClass> classes = classesOf({0.5f, 0.1f, 0.5f});
  const ArgmaxClassifierType type(-0.25f);

  EXPECT_EQ(0.5f, type.classify(MoodClassifier(type), classes).score);
}

struct NoWinnerCase
{
  const char* name;
  std::vector<float> scores;
  float threshold;
};

void PrintTo(const NoWinnerCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class ArgmaxNoWinner : public ::testing::TestWithParam<NoWinnerCase>
{};

TEST_P(ArgmaxNoWinner, Throws)
{
  std::vector<MoodClass> classes = classesOf(GetParam().scores);
  const ArgmaxClassifierType type(GetParam().threshold);

  EXPECT_EQ("unknown state: no clear winner found",
            support::textThrownBy<std::runtime_error>([&] { type.classify(MoodClassifier(type), classes); }));
}

INSTANTIATE_TEST_SUITE_P(Of, ArgmaxNoWinner,
                         ::testing::Values(NoWinnerCase{"ATieForTheFirstPlace", {0.5f, 0.1f, 0.5f}, 0.f},
                                           NoWinnerCase{"ATieOfTwo", {0.5f, 0.5f}, 0.f},
                                           NoWinnerCase{"ALeadOfExactlyTheThreshold", {0.25f, 0.75f}, 0.5f},
                                           NoWinnerCase{
                                               "ALeadJustUnderTheThreshold", {0.25f, 0.75f}, std::nextafter(0.5f, 1.f)},
                                           NoWinnerCase{"ALeadOfExactlyANegativeThreshold", {0.5f, 0.5f}, -0.f},
                                           NoWinnerCase{"NanInTheFirstPlace", {nan, 0.5f}, 0.f},
                                           NoWinnerCase{"NanInTheSecondPlace", {0.5f, nan}, 0.f},
                                           NoWinnerCase{"NothingButNan", {nan, nan, nan}, -1.f},
                                           NoWinnerCase{"InfinityOverInfinity", {infinity, infinity}, 0.f},
                                           NoWinnerCase{"ANanThreshold", {0.75f, 0.25f}, nan}),
                         support::RowName());

TEST(Argmax, LeavesTheListSortedWithoutAWinner)
{
  std::vector<MoodClass> classes = classesOf({0.5f, 0.1f, 0.5f});
  const ArgmaxClassifierType type(0.f);

  EXPECT_THROW(type.classify(MoodClassifier(type), classes), std::runtime_error);

  EXPECT_EQ((std::vector<float>{0.5f, 0.5f, 0.1f}), scoresOf(classes));
}

}  // namespace
