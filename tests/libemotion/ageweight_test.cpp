#include "ageweight.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

namespace
{

/// The values of the tables, computed once more.
float computed(std::int64_t ageInMs, float halfLife)
{
  return KV::softStep(static_cast<float>(ageInMs) * 0.001f, halfLife);
}

std::uint32_t bitsOf(float number)
{
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

constexpr std::int64_t firstAge = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t lastAge = std::numeric_limits<std::int64_t>::max();

template <typename Weights>
class AgeWeights : public ::testing::Test
{};

using AllHalfLives = ::testing::Types<KV::AgeWeights<1000>, KV::AgeWeights<3000>, KV::AgeWeights<4000>>;
TYPED_TEST_SUITE(AgeWeights, AllHalfLives, );

TYPED_TEST(AgeWeights, AreThoseOfTheFunctionForEachMillisecondThatTheTableHolds)
{
  for (const char* pass : {"filled", "read"})
    for (std::int64_t age = 0; age < static_cast<std::int64_t>(TypeParam::size); ++age)
      ASSERT_EQ(bitsOf(computed(age, TypeParam::halfLife)), bitsOf(TypeParam::at(age))) << pass << ' ' << age << " ms";
}

TYPED_TEST(AgeWeights, HoldEveryAgeOfAReadingThatIsRememberedAndNotAtTheFloor)
{
  const auto size = static_cast<std::int64_t>(TypeParam::size);
  EXPECT_FALSE(KV::isAtSoftStepFloor(KV::softStepArgument(KV::secondsOf(size - 1), TypeParam::halfLife)));
  for (std::int64_t age = size; age <= KV::readingHorizon.count(); ++age)
    ASSERT_EQ(KV::softStepFloor, TypeParam::at(age)) << age << " ms";
}

TYPED_TEST(AgeWeights, AreThoseOfTheFunctionBehindTheTableToo)
{
  for (auto age = static_cast<std::int64_t>(TypeParam::size); age < 30000; ++age)
    ASSERT_EQ(bitsOf(computed(age, TypeParam::halfLife)), bitsOf(TypeParam::at(age))) << age << " ms";
}

TYPED_TEST(AgeWeights, AreComputedForAgesOutsideOfTheTable)
{
  const auto size = static_cast<std::int64_t>(TypeParam::size);
  for (const std::int64_t age : {firstAge, std::int64_t{-7000}, std::int64_t{-1}, size, size + 1, lastAge})
    EXPECT_EQ(bitsOf(computed(age, TypeParam::halfLife)), bitsOf(TypeParam::at(age))) << age << " ms";
}

TEST(AgeWeights, HaveTheHalfLifeInSeconds)
{
  EXPECT_EQ(1.f, KV::AgeWeights<1000>::halfLife);
  EXPECT_EQ(2.5f, KV::AgeWeights<2500>::halfLife);
  EXPECT_EQ(0.5f, KV::AgeWeights<1000>::at(1000));
}

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

TEST(LifetimeWeights, AreThoseOfTheFunctionForEachMillisecondThatTheTableHolds)
{
  for (const float halfLife : {3.f, 0.f, -0.f, 0.5f, 1000.f, 2500.f, -1.f, 1e-42f, infinity, -infinity, notANumber})
    for (const char* pass : {"filled", "read"})
      for (std::int64_t age = 0; age < static_cast<std::int64_t>(KV::LifetimeWeights::size); ++age)
        ASSERT_EQ(bitsOf(computed(age, halfLife)), bitsOf(KV::LifetimeWeights::at(age, halfLife)))
            << pass << ' ' << age << " ms, half-life " << halfLife << " s";
}

TEST(LifetimeWeights, HoldEveryAgeOfAContextEmotionThatIsRemembered)
{
  EXPECT_GT(KV::LifetimeWeights::size, static_cast<std::size_t>(KV::contextHorizon.count()));
}

TEST(LifetimeWeights, AreComputedForAgesOutsideOfTheTable)
{
  const auto size = static_cast<std::int64_t>(KV::LifetimeWeights::size);
  for (const float halfLife : {3.f, 40.f})
    for (const std::int64_t age : {firstAge, std::int64_t{-20000}, std::int64_t{-1}, size, size + 1, lastAge})
      EXPECT_EQ(bitsOf(computed(age, halfLife)), bitsOf(KV::LifetimeWeights::at(age, halfLife))) << age << " ms";
}

TEST(LifetimeWeights, DistinguishZeroFromMinusZero)
{
  for (int pass = 0; pass < 2; ++pass)
  {
    EXPECT_EQ(bitsOf(computed(600, 0.f)), bitsOf(KV::LifetimeWeights::at(600, 0.f)));
    EXPECT_EQ(bitsOf(computed(600, -0.f)), bitsOf(KV::LifetimeWeights::at(600, -0.f)));
  }
  EXPECT_NE(KV::LifetimeWeights::at(600, 0.f), KV::LifetimeWeights::at(600, -0.f));
}

TEST(LifetimeWeights, StayRightWhereHalfLivesReplaceEachOther)
{
  // More entries than the table has, so that many are shared.
  std::vector<float> halfLives;
  for (int i = 1; i <= 40; ++i)
    halfLives.push_back(static_cast<float>(i) * 0.37f);

  for (int pass = 0; pass < 2; ++pass)
    for (std::int64_t age = 0; age <= KV::contextHorizon.count(); age += 33)
      for (const float halfLife : halfLives)
        ASSERT_EQ(bitsOf(computed(age, halfLife)), bitsOf(KV::LifetimeWeights::at(age, halfLife)))
            << age << " ms, half-life " << halfLife << " s";
}

TEST(LifetimeWeights, AreFilledByManyThreadsAtOnce)
{
  std::atomic<int> differences{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([&differences, thread] {
      const float halfLife = thread % 2 == 0 ? 5.f : 6.f;
      for (std::int64_t age = 0; age < 5000; ++age)
        differences += KV::LifetimeWeights::at(age, halfLife) != computed(age, halfLife) ||
                       KV::AgeWeights<2000>::at(age) != computed(age, 2.f);
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(0, differences);
}

}  // namespace
