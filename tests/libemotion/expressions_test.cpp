#include <skeigiot/expressions.hpp>

#include <gtest/gtest.h>

#include <type_traits>

namespace
{

TEST(Expressions, AreAllZeroByDefault)
{
  const KV::Expressions expressions;

  for (const KV::ValueConfidence<float>* score :
       {&expressions.calm, &expressions.anger, &expressions.joy, &expressions.sorrow, &expressions.laughter,
        &expressions.excitement, &expressions.surprise})
  {
    EXPECT_EQ(0.f, score->value);
    EXPECT_EQ(0.f, score->confidence);
  }
}

TEST(Expressions, AreSevenScoresFromCalmToSurprise)
{
  const KV::Expressions expressions{{1.f, 0.1f}, {2.f, 0.2f}, {3.f, 0.3f}, {4.f, 0.4f},
                                    {5.f, 0.5f}, {6.f, 0.6f}, {7.f, 0.7f}};

  EXPECT_EQ(1.f, expressions.calm.value);
  EXPECT_EQ(2.f, expressions.anger.value);
  EXPECT_EQ(3.f, expressions.joy.value);
  EXPECT_EQ(4.f, expressions.sorrow.value);
  EXPECT_EQ(5.f, expressions.laughter.value);
  EXPECT_EQ(6.f, expressions.excitement.value);
  EXPECT_EQ(7.f, expressions.surprise.value);
  EXPECT_EQ(0.1f, expressions.calm.confidence);
  EXPECT_EQ(0.7f, expressions.surprise.confidence);
  EXPECT_EQ(sizeof(float) * 14, sizeof expressions);
}

TEST(Expressions, AreAPlainValue)
{
  EXPECT_TRUE(std::is_trivially_copyable_v<KV::Expressions>);
  EXPECT_FALSE(std::is_polymorphic_v<KV::Expressions>);
}

}  // namespace
