#include "support/tablename.hpp"

#include <skeigiot/session/exactnumber.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

namespace
{

template <typename Number>
std::string exact(Number number)
{
  std::string text;
  KV::session::appendExact(text, number);
  return text;
}

std::string exactSeconds(std::int64_t nanoseconds)
{
  std::string text;
  KV::session::appendExactSeconds(text, KV::session::Duration(nanoseconds));
  return text;
}

TEST(ExactNumber, IsAsShortAsItCanBe)
{
  EXPECT_EQ("0.1", exact(0.1f));
  EXPECT_EQ("-0", exact(-0.f));
  EXPECT_EQ("1e-07", exact(1e-7f));
  EXPECT_EQ("-2147483648", exact(std::numeric_limits<int>::min()));
}

TEST(ExactNumber, NamesWhatIsNoNumber)
{
  EXPECT_EQ("nan", exact(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ("nan", exact(-std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ("-inf", exact(-std::numeric_limits<float>::infinity()));
}

TEST(ExactNumber, ReadsBackAsTheSameFloat)
{
  constexpr std::mt19937::result_type seed = 11;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  for (int i = 0; i < 100'000; ++i)
  {
    const auto bits = static_cast<std::uint32_t>(random());
    float number = 0.f;
    std::memcpy(&number, &bits, sizeof number);
    if (number != number)
      continue;
    const float back = std::strtof(exact(number).c_str(), nullptr);
    ASSERT_EQ(0, std::memcmp(&number, &back, sizeof number)) << exact(number);
  }
}

struct SecondsCase
{
  const char* name;
  std::int64_t nanoseconds;
  const char* text;
};

class ExactSeconds : public ::testing::TestWithParam<SecondsCase>
{};

TEST_P(ExactSeconds, AreExactToTheNanosecond)
{
  EXPECT_EQ(GetParam().text, exactSeconds(GetParam().nanoseconds));
}

INSTANTIATE_TEST_SUITE_P(Durations, ExactSeconds,
                         ::testing::Values(SecondsCase{"Zero", 0, "0"}, SecondsCase{"WholeSeconds", 3'000'000'000, "3"},
                                           SecondsCase{"WithoutZerosAtTheEnd", 1'500'000'000, "1.5"},
                                           SecondsCase{"OneNanosecond", 1, "0.000000001"},
                                           SecondsCase{"TimeOfDay", 1'577'836'800'033'333'333, "1577836800.033333333"},
                                           SecondsCase{"NegativeBelowASecond", -500'000'000, "-0.5"},
                                           SecondsCase{"NegativeBeyondASecond", -1'250'000'000, "-1.25"},
                                           SecondsCase{"TheLowest", std::numeric_limits<std::int64_t>::min(),
                                                       "-9223372036.854775808"}),
                         support::RowName());

}  // namespace
