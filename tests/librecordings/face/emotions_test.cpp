#include "face/emotions.hpp"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using KV::recordings::emotionNamed;
using KV::recordings::emotionNames;
using KV::recordings::EmotionScores;

TEST(Emotions, HaveAScoreEach)
{
  EmotionScores scores;
  float next = 0.125f;
  for (const std::string& name : emotionNames())
    scores.*emotionNamed(name) = next += 0.125f;
  EXPECT_THAT((std::vector<float>{scores.neutral, scores.happy, scores.sad, scores.surprise, scores.fear,
                                  scores.disgust, scores.anger}),
              ::testing::ElementsAre(0.25f, 0.375f, 0.5f, 0.625f, 0.75f, 0.875f, 1.f));
}

TEST(Emotions, HaveNoScoreOfAnotherName)
{
  try
  {
    emotionNamed("joy");
    FAIL() << "joy is a reading, not a score";
  }
  catch (const std::invalid_argument& error)
  {
    EXPECT_STREQ("There is no emotion with this name.", error.what());
  }
}

}  // namespace
