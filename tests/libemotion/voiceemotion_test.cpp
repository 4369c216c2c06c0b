#include <skeigiot/voiceemotion.hpp>

#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

namespace
{

using Score = KV::ValueConfidence<float>;

const KV::VoiceEmotion& sixScores()
{
  static const KV::VoiceEmotion emotion({1.f, 0.1f}, {2.f, 0.2f}, {3.f, 0.3f}, {4.f, 0.4f}, {5.f, 0.5f}, {6.f, 0.6f});
  return emotion;
}

void expectScore(float value, float confidence, const Score& score)
{
  EXPECT_EQ(value, score.value);
  EXPECT_EQ(confidence, score.confidence);
}

TEST(VoiceEmotion, IsAllZeroByDefault)
{
  const KV::VoiceEmotion emotion;

  expectScore(0.f, 0.f, emotion.calm());
  expectScore(0.f, 0.f, emotion.anger());
  expectScore(0.f, 0.f, emotion.joy());
  expectScore(0.f, 0.f, emotion.sorrow());
  expectScore(0.f, 0.f, emotion.laughter());
  expectScore(0.f, 0.f, emotion.excitement());
  expectScore(0.f, 0.f, emotion.surprise);
}

TEST(VoiceEmotion, TakesSixScoresFromCalmToExcitement)
{
  expectScore(1.f, 0.1f, sixScores().calm());
  expectScore(2.f, 0.2f, sixScores().anger());
  expectScore(3.f, 0.3f, sixScores().joy());
  expectScore(4.f, 0.4f, sixScores().sorrow());
  expectScore(5.f, 0.5f, sixScores().laughter());
  expectScore(6.f, 0.6f, sixScores().excitement());
}

TEST(VoiceEmotion, HasNoScoreForSurprise)
{
  expectScore(0.f, 0.f, sixScores().surprise);
}

TEST(VoiceEmotion, IsReadAsExpressions)
{
  const KV::Expressions& expressions = sixScores();

  expectScore(1.f, 0.1f, expressions.calm);
  expectScore(2.f, 0.2f, expressions.anger);
  expectScore(3.f, 0.3f, expressions.joy);
  expectScore(4.f, 0.4f, expressions.sorrow);
  expectScore(5.f, 0.5f, expressions.laughter);
  expectScore(6.f, 0.6f, expressions.excitement);
  expectScore(0.f, 0.f, expressions.surprise);
}

TEST(VoiceEmotion, ReturnsCopies)
{
  EXPECT_TRUE((std::is_same_v<Score, decltype(sixScores().calm())>));
  EXPECT_TRUE((std::is_same_v<Score, decltype(sixScores().anger())>));
  EXPECT_TRUE((std::is_same_v<Score, decltype(sixScores().joy())>));
  EXPECT_TRUE((std::is_same_v<Score, decltype(sixScores().sorrow())>));
  EXPECT_TRUE((std::is_same_v<Score, decltype(sixScores().laughter())>));
  EXPECT_TRUE((std::is_same_v<Score, decltype(sixScores().excitement())>));
}

TEST(VoiceEmotion, IsWrittenAsACaptionOnly)
{
  std::ostringstream stream;

  stream << sixScores();

  EXPECT_EQ("Calm : ", stream.str());
}

TEST(VoiceEmotion, ReturnsTheStreamItIsWrittenTo)
{
  std::ostringstream stream;

  EXPECT_EQ(&stream, &(stream << sixScores()));
}

TEST(VoiceEmotion, IsAPlainValue)
{
  EXPECT_TRUE(std::is_trivially_copyable_v<KV::VoiceEmotion>);
  EXPECT_FALSE(std::is_polymorphic_v<KV::VoiceEmotion>);
}

}  // namespace
