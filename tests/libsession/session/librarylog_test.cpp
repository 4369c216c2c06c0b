#include "support/capturedstream.hpp"

#include <skeigiot/session/librarylog.hpp>

#include <gmock/gmock.h>

#include <thread>

namespace
{

using KV::session::LibraryLog;
using ::testing::ElementsAre;
using Level = ko::log::Level;

void write(Level level, const std::string& message, int line = 1)
{
  ko::log::log(level, "category", message, "file", "function", line);
}

TEST(LibraryLog, KeepsWarningsInsteadOfLettingThemThrough)
{
  const support::CapturedStandardError errors;
  LibraryLog log;
  write(Level::Warning, "too old");
  EXPECT_THAT(log.take(), ElementsAre("category: too old"));
  EXPECT_EQ("", errors.text());
}

TEST(LibraryLog, CountsWarningsFromTheSamePlace)
{
  LibraryLog log;
  write(Level::Warning, "3.1 s old");
  write(Level::Warning, "3.2 s old");
  write(Level::Warning, "3.3 s old");
  write(Level::Error, "another", 2);
  EXPECT_THAT(log.take(), ElementsAre("category: 3.1 s old (and 2 more times)", "category: another"));
}

TEST(LibraryLog, DropsWhatIsNoWarning)
{
  LibraryLog log;
  write(Level::Info, "hello");
  write(Level::Silent, "hush");
  EXPECT_TRUE(log.take().empty());
}

TEST(LibraryLog, ForgetsWhatWasTaken)
{
  LibraryLog log;
  write(Level::Warning, "too old");
  log.take();
  EXPECT_TRUE(log.take().empty());
}

TEST(LibraryLog, LetsWarningsThroughWhenItIsOver)
{
  {
    const LibraryLog log;
  }
  const support::CapturedStandardError errors;
  write(Level::Warning, "too old");
  EXPECT_NE("", errors.text());
}

TEST(LibraryLog, KeepsTheWarningsOfItsOwnThread)
{
  LibraryLog log;
  std::thread other([] {
    LibraryLog logOfOther;
    write(Level::Warning, "of the other", 7);
    EXPECT_THAT(logOfOther.take(), ElementsAre("category: of the other"));
  });
  other.join();
  write(Level::Warning, "of this");
  EXPECT_THAT(log.take(), ElementsAre("category: of this"));
}

}  // namespace
