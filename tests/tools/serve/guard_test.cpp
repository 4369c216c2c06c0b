#include "serve/guard.hpp"
#include "serve/advancingclock.hpp"
#include "serve/listenaddress.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <stdexcept>
#include <string>

namespace
{

using namespace KV::tools;

constexpr int port = 8080;

TEST(RandomToken, IsAnotherOneEachTime)
{
  std::set<std::string> tokens;
  for (int i = 0; i < 100; ++i)
    tokens.insert(randomToken());
  EXPECT_EQ(100U, tokens.size());
  for (const std::string& token : tokens)
  {
    EXPECT_EQ(32U, token.size());
    EXPECT_EQ(std::string::npos, token.find_first_not_of("0123456789abcdef"));
  }
}

TEST(Secret, IsTheSameOnlyAsAWhole)
{
  EXPECT_TRUE(isSameSecret("abc", "abc"));
  EXPECT_FALSE(isSameSecret("abc", "abd"));
  EXPECT_FALSE(isSameSecret("abc", "ab"));
  EXPECT_FALSE(isSameSecret("", "abc"));
}

TEST(Loopback, IsOfThisMachineAlone)
{
  for (const char* const own : {"127.0.0.1", "127.1.2.3", "::1", "localhost"})
    EXPECT_TRUE(isLoopback(own)) << own;
  for (const char* const other : {"0.0.0.0", "192.168.1.1", "::", "127.0.0.1.example", "127.example", ""})
    EXPECT_FALSE(isLoopback(other)) << other;
}

TEST(Host, IsANumberWithThePort)
{
  for (const char* const own : {"127.0.0.1:8080", "localhost:8080", "[::1]:8080"})
  {
    EXPECT_TRUE(isOwnHost(own, port, true)) << own;
    EXPECT_TRUE(isOwnHost(own, port, false)) << own;
  }
  for (const char* const other : {"192.168.1.1:8080", "[2001:db8::1]:8080"})
  {
    EXPECT_FALSE(isOwnHost(other, port, true)) << other;
    EXPECT_TRUE(isOwnHost(other, port, false)) << other;
  }
  for (const char* const foreign : {"evil.example:8080", "127.0.0.1:80", "127.0.0.1", ":8080", "", "[localhost]:8080",
                                    "::1:8080", "127.0.0.1 :8080", "LOCALHOST.:8080"})
    EXPECT_FALSE(isOwnHost(foreign, port, false)) << foreign;
}

TEST(Host, MayLeaveOutTheUsualPort)
{
  for (const char* const own : {"127.0.0.1", "localhost", "[::1]", "127.0.0.1:80", "[::1]:80"})
    EXPECT_TRUE(isOwnHost(own, 80, true)) << own;
  EXPECT_FALSE(isOwnHost("192.168.1.1", 80, true));
  EXPECT_TRUE(isOwnHost("192.168.1.1", 80, false));
  for (const char* const foreign : {"evil.example", "127.0.0.1:8080", "::1", "", ":80", "127.0.0.1:", "127.0.0.1:080"})
    EXPECT_FALSE(isOwnHost(foreign, 80, false)) << foreign;
}

TEST(Origin, IsThatOfTheHost)
{
  EXPECT_TRUE(isOwnOrigin("http://127.0.0.1:8080", "127.0.0.1:8080"));
  EXPECT_FALSE(isOwnOrigin("http://localhost:8080", "127.0.0.1:8080"));
  EXPECT_FALSE(isOwnOrigin("https://127.0.0.1:8080", "127.0.0.1:8080"));
  EXPECT_FALSE(isOwnOrigin("null", "127.0.0.1:8080"));
}

TEST(ListenAddress, IsANumberWithOrWithoutAPort)
{
  const auto isRead = [](const std::string& text, const std::string& host, int number) {
    const ListenAddress address = parseListenAddress(text);
    EXPECT_EQ(host, address.host) << text;
    EXPECT_EQ(number, address.port) << text;
  };
  isRead("127.0.0.1", "127.0.0.1", 0);
  isRead("0.0.0.0:8080", "0.0.0.0", 8080);
  isRead("localhost:65535", "localhost", 65535);
  isRead("[::1]:1", "::1", 1);
  isRead("[::1]", "::1", 0);
  isRead("::1", "::1", 0);
}

TEST(ListenAddress, IsNothingElse)
{
  for (const std::string text : {"", "robot.example", "127.0.0.1:", "127.0.0.1:0", "127.0.0.1:65536", "127.0.0.1:x",
                                 ":80", "[::1", "1.2.3", "[]:80"})
    EXPECT_THROW(parseListenAddress(text), std::invalid_argument) << text;
}

class AdvancingClockTest : public ::testing::Test
{
protected:
  static KV::session::TimePoint at(std::int64_t nanoseconds)
  {
    return KV::session::TimePoint(KV::session::Duration(nanoseconds));
  }

  KV::session::TimePoint wall = at(1000);
  std::chrono::steady_clock::time_point steady{std::chrono::hours(1)};
  AdvancingClock clock{[this] { return wall; }, [this] { return steady; }};
};

TEST_F(AdvancingClockTest, FollowsTheWallClock)
{
  EXPECT_EQ(at(1000), clock());
  wall = at(5000);
  EXPECT_EQ(at(5000), clock());
}

TEST_F(AdvancingClockTest, AdvancesWhereTheWallClockDoesNot)
{
  EXPECT_EQ(at(1000), clock());
  EXPECT_EQ(at(1001), clock());
  EXPECT_EQ(at(1002), clock());
}

TEST_F(AdvancingClockTest, GoesOnWhileTheWallClockIsBehind)
{
  EXPECT_EQ(at(1000), clock());
  wall = at(200);
  steady += std::chrono::nanoseconds(300);
  EXPECT_EQ(at(1300), clock());
  wall = at(700);
  steady += std::chrono::nanoseconds(500);
  EXPECT_EQ(at(1800), clock());
  wall = at(2000);
  EXPECT_EQ(at(2000), clock());
}

}  // namespace
