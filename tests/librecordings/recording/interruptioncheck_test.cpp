#include <skeigiot/recordings/interruptioncheck.hpp>

#include "librecordings/support.hpp"

#include <skeigiot/recordings/inputfile.hpp>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>

namespace
{
using KV::recordings::InputFile;

struct Ended
{};

/// Ends the reading when it has been asked that often.
class EndAfter
{
public:
  explicit EndAfter(int times) : _left(times) {}
  void operator()()
  {
    if (--_left <= 0)
      throw Ended();
  }

private:
  int _left;
};

TEST(InterruptionCheck, AsksTheNewestOfAThread)
{
  using KV::recordings::InterruptionCheck;
  std::string asked;
  InterruptionCheck::ask();
  {
    const InterruptionCheck outer([&asked] { asked += 'o'; });
    InterruptionCheck::ask();
    {
      const InterruptionCheck inner([&asked] { asked += 'i'; });
      InterruptionCheck::ask();
    }
    InterruptionCheck::ask();
    std::thread([] { InterruptionCheck::ask(); }).join();
  }
  InterruptionCheck::ask();
  EXPECT_EQ("oio", asked) << "and nobody on another thread";
}

TEST(InterruptionCheck, EndsALineWithoutAnEnd)
{
  const KV::recordings::InterruptionCheck check(EndAfter(200));
  InputFile file("/dev/zero");
  std::string_view line;
  EXPECT_THROW(file.readLine(line), Ended);
}

TEST(InterruptionCheck, EndsAStreamWithoutAnEnd)
{
  std::ifstream stream("/dev/zero", std::ios::binary);
  const KV::recordings::InterruptionCheck check(EndAfter(200));
  InputFile file(stream, "zeros");
  std::string_view line;
  EXPECT_THROW(file.readLine(line), Ended);
}

TEST(InterruptionCheck, EndsTheUnpackingOfALongLine)
{
  const support::TemporaryFolder folder;
  const std::string path = folder.writeCompressed("f.gz", std::string(std::size_t{64} << 20U, 'x'));
  const KV::recordings::InterruptionCheck check(EndAfter(2));
  EXPECT_THROW(
      {
        InputFile file(path);
        std::string_view line;
        file.readLine(line);
      },
      Ended);
}

TEST(InterruptionCheck, IsAskedWhileNobodyWritesIntoAPipe)
{
  const support::TemporaryFolder folder;
  ASSERT_EQ(0, mkfifo(folder.path("pipe").c_str(), 0600));
  const KV::recordings::InterruptionCheck check(EndAfter(3));
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THROW(InputFile(folder.path("pipe")), Ended);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10)) << "0.2 s on an idle machine";
}

TEST(InterruptionCheck, LetsAPipeBeReadToItsEnd)
{
  const support::TemporaryFolder folder;
  const std::string path = folder.path("pipe");
  ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
  std::thread writer([&path] { std::ofstream(path) << "a\n" << std::flush << "b"; });
  InputFile file(path);
  std::string_view line;
  ASSERT_TRUE(file.readLine(line));
  EXPECT_EQ("a", line);
  ASSERT_TRUE(file.readLine(line));
  EXPECT_EQ("b", line);
  EXPECT_FALSE(file.readLine(line));
  writer.join();
}

}  // namespace
