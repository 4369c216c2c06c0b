#include "base64.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace
{

TEST(Base64, FillsUpToFourCharacters)
{
  EXPECT_EQ("", tools::base64(""));
  EXPECT_EQ("Zg==", tools::base64("f"));
  EXPECT_EQ("Zm8=", tools::base64("fo"));
  EXPECT_EQ("Zm9v", tools::base64("foo"));
  EXPECT_EQ("Zm9vYmFy", tools::base64("foobar"));
}

TEST(Base64, TakesBytesBeyondAscii)
{
  EXPECT_EQ("/4A=", tools::base64("\xff\x80"));
}

TEST(Base64, TakesNumbersAsTheyLieInMemory)
{
  EXPECT_EQ("AACAPwAAAMA=", tools::base64(std::vector<float>{1.f, -2.f}));
  EXPECT_EQ("AQAAAA==", tools::base64(std::vector<std::uint32_t>{1}));
}

}  // namespace
