#include "serve/eventlog.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

namespace
{

using KV::tools::EventLog;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr EventLog::Clock::time_point morning{std::chrono::hours(5)};
constexpr milliseconds noWait(0);

std::string textsFrom(const EventLog& log, std::uint64_t from)
{
  std::string texts;
  for (const EventLog::Event& event : log.read(from, noWait).events)
    texts += std::to_string(event.number) + *event.text + " ";
  return texts;
}

TEST(EventLog, GivesEachReaderTheEventsFromItsNumberOn)
{
  EventLog log;
  EXPECT_EQ(1U, log.first());
  log.publish("a", morning);
  log.publish("b", morning);
  EXPECT_EQ("1a 2b ", textsFrom(log, 1));
  EXPECT_EQ("2b ", textsFrom(log, 2));
  EXPECT_EQ("", textsFrom(log, 3));
}

TEST(EventLog, GivesAReaderWhoIsBehindSoManyEventsAtOnce)
{
  EventLog log({seconds(60), std::size_t{4} << 20U});
  for (int i = 0; i < 201; ++i)
    log.publish("a", morning);
  EXPECT_EQ(200U, log.read(1, noWait).events.size());
  for (int i = 0; i < 4; ++i)
    log.publish(std::string(100 << 10, 'b'), morning);
  EXPECT_EQ(3U, log.read(202, noWait).events.size()) << "the third is the first one after which there is enough";
  EXPECT_EQ(1U, log.read(205, noWait).events.size());
}

TEST(EventLog, ForgetsEventsThatAreTooOld)
{
  EventLog log({seconds(60), 1000});
  log.publish("a", morning);
  log.publish("b", morning + seconds(60));
  EXPECT_EQ(1U, log.first()) << "exactly as old as the limit";
  log.publish("c", morning + seconds(60) + milliseconds(1));
  EXPECT_EQ(2U, log.first());
  EXPECT_EQ("2b 3c ", textsFrom(log, 2));
}

TEST(EventLog, KeepsSoManyBytes)
{
  EventLog log({seconds(60), 10});
  log.publish("aaaaa", morning);
  log.publish("bbbbb", morning);
  EXPECT_EQ(1U, log.first());
  log.publish("c", morning);
  EXPECT_EQ(2U, log.first());
  log.publish(std::string(100, 'd'), morning);
  EXPECT_EQ(4U, log.first()) << "the newest is kept, however long it is";
}

TEST(EventLog, SaysThatAReaderIsTooSlow)
{
  EventLog log({seconds(60), 1});
  log.publish("a", morning);
  log.publish("b", morning);
  EXPECT_TRUE(log.read(1, noWait).tooSlow);
  EXPECT_FALSE(log.read(2, noWait).tooSlow);
}

TEST(EventLog, WaitsForTheNextEvent)
{
  EventLog log;
  std::thread publisher([&log] { log.publish("a", morning); });
  const EventLog::Read read = log.read(1, seconds(20));
  publisher.join();
  ASSERT_EQ(1U, read.events.size());
  EXPECT_EQ("a", *read.events.front().text);
}

TEST(EventLog, LetsReadersEnd)
{
  EventLog log;
  log.publish("a", morning);
  std::thread closer([&log] { log.close(); });
  EXPECT_TRUE(log.read(2, seconds(20)).closed);
  closer.join();
  EXPECT_EQ(1U, log.read(1, seconds(20)).events.size()) << "what is there can still be read";
}

TEST(EventLog, SendsTheFactsAsTheyAreNow)
{
  EventLog log;
  EXPECT_EQ("", *log.facts());
  log.setFacts("old");
  const EventLog::Text before = log.facts();
  log.setFacts("new");
  EXPECT_EQ("old", *before);
  EXPECT_EQ("new", *log.facts());
}

}  // namespace
