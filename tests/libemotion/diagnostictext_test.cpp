#include "support/tablename.hpp"

#include "diagnostictext.hpp"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

namespace
{

template <typename T>
std::string asAStreamWritesIt(const T& item)
{
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << item;
  return stream.str();
}

template <typename T>
std::string asATextWritesIt(const T& item)
{
  KV::DiagnosticText text;
  text << item;
  return text.text();
}

TEST(DiagnosticText, IsEmptyAtFirst)
{
  EXPECT_EQ("", KV::DiagnosticText().text());
}

TEST(DiagnosticText, WritesWordsCharactersAndNumbersInTurn)
{
  KV::DiagnosticText text;
  text << "Age : " << 42U << " | " << true << ' ' << -7 << std::string(" end") << '\n';
  EXPECT_EQ("Age : 42 | 1 -7 end\n", text.text());
}

TEST(DiagnosticText, KeepsTextsOfAnyLength)
{
  const std::string word(1000, 'x');
  KV::DiagnosticText text;
  text << word << word;
  EXPECT_EQ(word + word, text.text());
}

struct NumberCase
{
  const char* name;
  float number;
  const char* written;
};
class DiagnosticTextNumber : public ::testing::TestWithParam<NumberCase>
{};

TEST_P(DiagnosticTextNumber, ReadsAsAStreamWouldWriteIt)
{
  EXPECT_EQ(GetParam().written, asATextWritesIt(GetParam().number));
  EXPECT_EQ(GetParam().written, asAStreamWritesIt(GetParam().number));
}

using Limits = std::numeric_limits<float>;
INSTANTIATE_TEST_SUITE_P(Numbers, DiagnosticTextNumber,
                         ::testing::Values(NumberCase{"Zero", 0.f, "0"}, NumberCase{"NegativeZero", -0.f, "-0"},
                                           NumberCase{"SixDigits", 3.14159265f, "3.14159"},
                                           NumberCase{"NoTrailingZeros", 65.f, "65"},
                                           NumberCase{"LastFixedNotation", 999999.f, "999999"},
                                           NumberCase{"FirstScientificNotation", 1e6f, "1e+06"},
                                           NumberCase{"SmallestFixedNotation", 0.0001f, "0.0001"},
                                           NumberCase{"SmallerIsScientific", 0.00001f, "1e-05"},
                                           NumberCase{"Denormal", Limits::denorm_min(), "1.4013e-45"},
                                           NumberCase{"Largest", Limits::max(), "3.40282e+38"},
                                           NumberCase{"Infinity", Limits::infinity(), "inf"},
                                           NumberCase{"NegativeInfinity", -Limits::infinity(), "-inf"},
                                           NumberCase{"Nan", Limits::quiet_NaN(), "nan"}),
                         support::RowName());

TEST(DiagnosticText, WritesEveryFloatAsAStreamDoes)
{
  constexpr std::uint32_t seed = 4711;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (int i = 0; i < 200000; ++i)
  {
    const auto bits = static_cast<std::uint32_t>(random());
    float number = 0.f;
    std::memcpy(&number, &bits, sizeof number);
    ASSERT_EQ(asAStreamWritesIt(number), asATextWritesIt(number)) << "bits " << bits;
  }
}

// Where the number of places changes, where six digits are rounded, and where a half goes to the even digit.
TEST(DiagnosticText, WritesFloatsNextToEveryPowerOfTenAsAStreamDoes)
{
  for (int exponent = -6; exponent <= 7; ++exponent)
    for (const double factor : {1., 0.9999995, 9.999995, 1.0000005, 1.5, 1.234565, 1.0000015, 2.5})
    {
      const auto middle = static_cast<float>(factor * std::pow(10., exponent));
      for (const float magnitude : {std::nextafter(middle, 0.f), middle, std::nextafter(middle, 1e9f)})
        for (const float number : {magnitude, -magnitude})
          ASSERT_EQ(asAStreamWritesIt(number), asATextWritesIt(number)) << std::hexfloat << number;
    }
  for (const float half : {0.5f, 100000.5f, 100001.5f, 999998.5f, 999999.5f, 12345.25f, 12345.75f, 1234.125f})
    ASSERT_EQ(asAStreamWritesIt(half), asATextWritesIt(half)) << half;
}

TEST(DiagnosticText, WritesNumbersWhateverRoundingTheProcessorIsSetTo)
{
  for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO})
  {
    std::fesetround(rounding);
    const std::string written = asATextWritesIt(0.1234565f) + " " + asATextWritesIt(2.f / 3.f);
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ("0.123457 0.666667", written) << rounding;
  }
}

}  // namespace
