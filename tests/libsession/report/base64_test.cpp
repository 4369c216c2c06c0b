#include "report/base64.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace
{

TEST(Base64, FillsUpToFourCharacters)
{
  EXPECT_EQ("", KV::session::base64(""));
  EXPECT_EQ("Zg==", KV::session::base64("f"));
  EXPECT_EQ("Zm8=", KV::session::base64("fo"));
  EXPECT_EQ("Zm9v", KV::session::base64("foo"));
  EXPECT_EQ("Zm9vYmFy", KV::session::base64("foobar"));
}

TEST(Base64, TakesBytesBeyondAscii)
{
  EXPECT_EQ("/4A=", KV::session::base64("\xff\x80"));
}

TEST(Base64, TakesNumbersAsTheyLieInMemory)
{
  EXPECT_EQ("AACAPwAAAMA=", KV::session::base64(std::vector<float>{1.f, -2.f}));
  EXPECT_EQ("AQAAAA==", KV::session::base64(std::vector<std::uint32_t>{1}));
}

}  // namespace
