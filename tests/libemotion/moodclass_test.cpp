#include "support/thrown.hpp"

#include <skeigiot/classification/logregmoodscore.hpp>
#include <skeigiot/classification/moodclass.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::classification::LogregMoodScore;
using KV::classification::MoodClass;
using KV::classification::MoodScore;

/// Sums the features, and keeps its arguments.
class RecordingScore final : public MoodScore
{
public:
  float calculateScore(const MoodClass& moodClass, const std::vector<float>& features) const override
  {
    askedFor = &moodClass;
    float sum = 0.f;
    for (const float feature : features)
      sum += feature;
    return sum;
  }

  mutable const MoodClass* askedFor = nullptr;
};

MoodClass scored(float score)
{
  static const RecordingScore unused;
  MoodClass moodClass("name", 0, unused);
  moodClass.score = score;
  return moodClass;
}

TEST(MoodClass, KeepsNameValueAndTheAddressOfItsScore)
{
  const RecordingScore score;
  const MoodClass moodClass("negative", -1, score);

  EXPECT_EQ("negative", moodClass.name);
  EXPECT_EQ(-1, moodClass.value);
  EXPECT_EQ(&score, moodClass.moodScore);
}

TEST(MoodClass, KeepsACopyOfItsName)
{
  const RecordingScore score;
  std::string name = "positive";
  const MoodClass moodClass(name, 1, score);

  name = "other";

  EXPECT_EQ("positive", moodClass.name);
}

TEST(MoodClass, KeepsWhatItsScoreRates)
{
  const RecordingScore score;
  MoodClass moodClass("positive", 1, score);

  moodClass.calculateScore({1.f, 2.5f});

  EXPECT_EQ(3.5f, moodClass.score);
  EXPECT_EQ(&moodClass, score.askedFor);
}

TEST(MoodClass, KeepsOnlyTheLatestScore)
{
  const RecordingScore score;
  MoodClass moodClass("positive", 1, score);

  moodClass.calculateScore({1.f});
  moodClass.calculateScore({7.f});

  EXPECT_EQ(7.f, moodClass.score);
}

TEST(MoodClass, KeepsItsScoreWhenRatingFails)
{
  const LogregMoodScore score(2, 0.f);
  MoodClass moodClass("positive", 1, score);
  moodClass.calculateScore({0.f, 0.f});

  EXPECT_EQ("Z vector size does not match the feature size",
            support::textThrownBy<std::runtime_error>([&] { moodClass.calculateScore({1.f}); }));

  EXPECT_EQ(0.5f, moodClass.score);
}

TEST(MoodClass, SharesItsScoreObjectWithACopy)
{
  const RecordingScore score;
  MoodClass original("positive", 1, score);
  original.score = 0.25f;

  MoodClass copy = original;
  copy.calculateScore({9.f});

  EXPECT_EQ(&score, copy.moodScore);
  EXPECT_EQ("positive", copy.name);
  EXPECT_EQ(1, copy.value);
  EXPECT_EQ(9.f, copy.score);
  EXPECT_EQ(0.25f, original.score);
}

TEST(MoodClass, IsGreaterByItsScoreAlone)
{
  MoodClass better = scored(0.5f);
  MoodClass worse = scored(std::nextafter(0.5f, 0.f));
  better.name = "a";
  better.value = -5;
  worse.name = "z";
  worse.value = 5;

  EXPECT_TRUE(better > worse);
  EXPECT_FALSE(worse > better);
}

TEST(MoodClass, IsNotGreaterThanOneOfTheSameScore)
{
  MoodClass one = scored(0.5f);
  MoodClass other = scored(0.5f);
  other.name = "other";
  other.value = 1;

  EXPECT_FALSE(one > other);
  EXPECT_FALSE(other > one);
}

TEST(MoodClass, IsNotComparableByANan)
{
  EXPECT_FALSE(scored(std::nanf("")) > scored(0.f));
  EXPECT_FALSE(scored(0.f) > scored(std::nanf("")));
}

TEST(MoodClass, SortsBestFirst)
{
  std::vector<MoodClass> classes{scored(0.2f), scored(0.7f), scored(-0.1f)};

  std::sort(classes.begin(), classes.end(), std::greater<MoodClass>());

  EXPECT_EQ(0.7f, classes[0].score);
  EXPECT_EQ(0.2f, classes[1].score);
  EXPECT_EQ(-0.1f, classes[2].score);
}

}  // namespace
