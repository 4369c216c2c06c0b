#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/clocktest.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <ko/log.hpp>

#include <boost/function.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

using ko::log::Level;
using ko::log::Record;
using support::start;
using ::testing::ElementsAre;

/// Writes one warning whose place does not matter to the test.
void warn(const std::string& message)
{
  ko::log::log(Level::Warning, "test.log", message, "test", "warn", 1);
}

/// A handler for as long as it lives.
class ScopedHandler
{
public:
  explicit ScopedHandler(boost::function<void(const Record&)> handler) : _id(ko::log::addHandler(handler)) {}
  ~ScopedHandler() { ko::log::removeHandler(_id); }
  ScopedHandler(const ScopedHandler&) = delete;
  ScopedHandler& operator=(const ScopedHandler&) = delete;

private:
  ko::log::HandlerId _id;
};

TEST(LogLevel, GrowsFromSilentOverGraveToDetailed)
{
  EXPECT_EQ(0, static_cast<int>(Level::Silent));
  EXPECT_EQ(1, static_cast<int>(Level::Fatal));
  EXPECT_EQ(2, static_cast<int>(Level::Error));
  EXPECT_EQ(3, static_cast<int>(Level::Warning));
  EXPECT_EQ(4, static_cast<int>(Level::Info));
  EXPECT_EQ(5, static_cast<int>(Level::Verbose));
  EXPECT_EQ(6, static_cast<int>(Level::Debug));
}

TEST(LogCategory, CarriesTheNameItWasRegisteredUnder)
{
  EXPECT_EQ("test.named", ko::log::addCategory("test.named").name());
  EXPECT_EQ("", ko::log::addCategory("").name());
}

TEST(LogCategory, IsTheSameWhenRegisteredAgain)
{
  const ko::log::Category first = ko::log::addCategory("test.twice");
  const ko::log::Category second = ko::log::addCategory(std::string("test.") + "twice");

  EXPECT_TRUE(first == second);
  EXPECT_FALSE(first != second);
  EXPECT_EQ(&first.name(), &second.name());
}

TEST(LogCategory, DiffersFromOneOfAnotherName)
{
  const ko::log::Category first = ko::log::addCategory("test.one");
  const ko::log::Category second = ko::log::addCategory("test.other");

  EXPECT_FALSE(first == second);
  EXPECT_TRUE(first != second);
}

TEST(LogCategory, KeepsItsNameWhenManyOthersFollow)
{
  const ko::log::Category category = ko::log::addCategory("test.kept");
  const std::string* const name = &category.name();

  for (int i = 0; i < 1000; ++i)
    ko::log::addCategory("test.many." + std::to_string(i));

  EXPECT_EQ("test.kept", category.name());
  EXPECT_EQ(name, &ko::log::addCategory("test.kept").name());
}

TEST(LogCategory, IsListedOnceInAscendingOrder)
{
  ko::log::addCategory("test.listed.b");
  ko::log::addCategory("test.listed.a");
  ko::log::addCategory("test.listed.b");

  const std::vector<std::string> names = ko::log::categories();

  EXPECT_EQ(1, std::count(names.begin(), names.end(), "test.listed.a"));
  EXPECT_EQ(1, std::count(names.begin(), names.end(), "test.listed.b"));
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
}

TEST(LogCategory, IsOneForAllThreadsThatRegisterIt)
{
  constexpr int threadCount = 4;
  constexpr int nameCount = 50;
  std::vector<std::vector<const std::string*>> seen(threadCount);

  std::vector<std::thread> threads;
  for (std::vector<const std::string*>& names : seen)
    threads.emplace_back([&names] {
      for (int i = 0; i < nameCount; ++i)
        names.push_back(&ko::log::addCategory("test.shared." + std::to_string(i)).name());
    });
  std::size_t listed = 0;
  threads.emplace_back([&listed] {
    for (int i = 0; i < nameCount; ++i)
      listed = ko::log::categories().size();
  });
  for (std::thread& thread : threads)
    thread.join();

  for (const std::vector<const std::string*>& names : seen)
    EXPECT_EQ(seen.front(), names);
  EXPECT_EQ("test.shared.49", *seen.front().back());
  EXPECT_LE(listed, ko::log::categories().size());
}

class Log : public support::ClockTest
{};

TEST_F(Log, HandsTheWholeRecordToAHandler)
{
  const support::CapturedLog log;

  ko::log::log(Level::Info, "test.record", "the message", "libko/tests/log", "theFunction", 42);

  ASSERT_EQ(1u, log.size());
  const Record record = log.records().front();
  EXPECT_EQ(Level::Info, record.level);
  EXPECT_EQ("test.record", record.category);
  EXPECT_EQ("the message", record.message);
  EXPECT_EQ("libko/tests/log", record.file);
  EXPECT_EQ("theFunction", record.function);
  EXPECT_EQ(42, record.line);
  EXPECT_EQ(start, record.time);
}

TEST_F(Log, TakesACategoryByItsHandle)
{
  const support::CapturedLog log;

  ko::log::log(Level::Error, ko::log::addCategory("test.handle"), "the message", "file", "function", -7);

  ASSERT_EQ(1u, log.size());
  const Record record = log.records().front();
  EXPECT_EQ(Level::Error, record.level);
  EXPECT_EQ("test.handle", record.category);
  EXPECT_EQ("the message", record.message);
  EXPECT_EQ("file", record.file);
  EXPECT_EQ("function", record.function);
  EXPECT_EQ(-7, record.line);
}

TEST_F(Log, DoesNotRegisterACategoryThatItIsGivenByName)
{
  const support::CapturedLog log;

  ko::log::log(Level::Info, "test.unregistered", "", "", "", 0);

  EXPECT_THAT(ko::log::categories(), ::testing::Not(::testing::Contains("test.unregistered")));
}

TEST_F(Log, StampsEachRecordWithTheTimeOfWriting)
{
  const support::CapturedLog log;

  warn("first");
  clock.advance(support::milliseconds(5));
  warn("second");

  ASSERT_EQ(2u, log.size());
  EXPECT_EQ(start, log.records()[0].time);
  EXPECT_EQ(start + support::milliseconds(5), log.records()[1].time);
}

TEST_F(Log, StampsARecordWithOneTimeForAllHandlers)
{
  const ScopedHandler slow([this](const Record&) { clock.advance(support::milliseconds(5)); });
  const support::CapturedLog log;

  warn("message");

  ASSERT_EQ(1u, log.size());
  EXPECT_EQ(start, log.records().front().time);
}

TEST_F(Log, CallsHandlersInTheOrderOfAdding)
{
  std::string order;
  const ScopedHandler first([&order](const Record&) { order += '1'; });
  const ScopedHandler second([&order](const Record&) { order += '2'; });
  {
    const ScopedHandler third([&order](const Record&) { order += '3'; });
    warn("message");
    EXPECT_EQ("123", order);
  }
  const ScopedHandler fourth([&order](const Record&) { order += '4'; });

  order.clear();
  warn("message");

  EXPECT_EQ("124", order);
}

TEST_F(Log, CallsAHandlerOncePerTimeThatItWasAdded)
{
  int calls = 0;
  const boost::function<void(const Record&)> handler = [&calls](const Record&) { ++calls; };
  const ScopedHandler first(handler);
  {
    const ScopedHandler second(handler);
    warn("message");
    EXPECT_EQ(2, calls);
  }

  warn("message");

  EXPECT_EQ(3, calls);
}

TEST_F(Log, NeverGivesAnIdTwice)
{
  const auto ignore = [](const Record&) {};
  std::vector<ko::log::HandlerId> ids;
  for (int i = 0; i < 5; ++i)
  {
    ids.push_back(ko::log::addHandler(ignore));
    ko::log::removeHandler(ids.back());
  }

  EXPECT_EQ(ids.end(), std::adjacent_find(ids.begin(), ids.end(), std::greater_equal<>()));
}

TEST_F(Log, RemovesOnlyTheHandlerOfTheId)
{
  std::string order;
  const ScopedHandler kept([&order](const Record&) { order += 'k'; });
  const ko::log::HandlerId removed = ko::log::addHandler([&order](const Record&) { order += 'r'; });

  ko::log::removeHandler(removed);
  warn("message");

  EXPECT_EQ("k", order);
}

TEST_F(Log, IgnoresTheRemovalOfAnUnknownId)
{
  const support::CapturedLog log;

  ko::log::removeHandler(-1);
  const ko::log::HandlerId removed = ko::log::addHandler([](const Record&) {});
  ko::log::removeHandler(removed);
  ko::log::removeHandler(removed);
  warn("message");

  EXPECT_THAT(log.messages(), ElementsAre("message"));
}

TEST_F(Log, RefusesAnEmptyHandler)
{
  EXPECT_EQ("call to empty boost::function", support::textThrownBy<boost::wrapexcept<boost::bad_function_call>>(
                                                 [] { ko::log::addHandler(boost::function<void(const Record&)>()); }));
  EXPECT_THROW(ko::log::addHandler(boost::function<void(const Record&)>()), boost::bad_function_call);

  const support::CapturedStandardError standardError;
  warn("message");
  EXPECT_FALSE(standardError.text().empty()) << "a refused handler must not count as a handler";
}

TEST_F(Log, LetsAHandlerRemoveItself)
{
  int calls = 0;
  ko::log::HandlerId self = 0;
  self = ko::log::addHandler([&](const Record&) {
    ++calls;
    ko::log::removeHandler(self);
  });
  const support::CapturedLog log;

  warn("first");
  warn("second");

  EXPECT_EQ(1, calls);
  EXPECT_THAT(log.messages(), ElementsAre("first", "second"));
}

/// Logs when its last copy is destroyed.
class LogsAtItsEnd
{
public:
  void operator()(const Record&) const {}

private:
  std::shared_ptr<int> _end = std::shared_ptr<int>(new int(0), [](const int* number) {
    delete number;
    warn("last words");
  });
};

TEST_F(Log, LetsTheEndOfAHandlerLog)
{
  const support::CapturedLog log;
  const ko::log::HandlerId id = ko::log::addHandler(LogsAtItsEnd());

  ko::log::removeHandler(id);

  EXPECT_THAT(log.messages(), ElementsAre("last words"));
}

TEST_F(Log, LetsAHandlerAddAnother)
{
  std::vector<std::string> seen;
  ko::log::HandlerId added = 0;
  const ScopedHandler adder([&](const Record&) {
    if (added == 0)
      added = ko::log::addHandler([&seen](const Record& record) { seen.push_back(record.message); });
  });

  warn("first");
  seen.clear();
  warn("second");
  ko::log::removeHandler(added);
  warn("third");

  EXPECT_THAT(seen, ElementsAre("second"));
}

TEST_F(Log, LetsAHandlerLog)
{
  const ScopedHandler echo([](const Record& record) {
    if (record.message == "question")
      warn("answer");
  });
  const support::CapturedLog log;

  warn("question");

  EXPECT_THAT(log.messages(), ElementsAre("answer", "question"));
}

TEST_F(Log, ReportsAHandlerThatFailsAndGoesOn)
{
  const support::CapturedStandardError standardError;
  const ScopedHandler failing([](const Record&) { throw std::runtime_error("the disk is full"); });
  const support::CapturedLog log;

  EXPECT_NO_THROW(warn("message"));

  EXPECT_THAT(log.messages(), ElementsAre("message"));
  EXPECT_EQ("A log handler failed: the disk is full\n", standardError.text());
}

TEST_F(Log, ReportsAHandlerThatFailsWithoutAText)
{
  const support::CapturedStandardError standardError;
  const ScopedHandler failing([](const Record&) { throw 42; });
  const support::CapturedLog log;

  EXPECT_NO_THROW(warn("message"));

  EXPECT_THAT(log.messages(), ElementsAre("message"));
  EXPECT_EQ("A log handler failed: unknown exception\n", standardError.text());
}

struct LevelCase
{
  const char* name;
  Level level;
  const char* standardError;  ///< the text that is written without a handler
};

class LogAtLevel : public support::ClockTestWithParam<LevelCase>
{};

TEST_P(LogAtLevel, WritesOnlyGraveRecordsToStandardErrorWithoutAHandler)
{
  const support::CapturedStandardError standardError;

  ko::log::log(GetParam().level, "test.level", "the message", "the/file", "theFunction", 42);

  EXPECT_EQ(GetParam().standardError, standardError.text());
}

TEST_P(LogAtLevel, ReachesAHandlerAndNotStandardError)
{
  const support::CapturedStandardError standardError;
  const support::CapturedLog log;

  ko::log::log(GetParam().level, "test.level", "the message", "the/file", "theFunction", 42);

  ASSERT_EQ(1u, log.size());
  EXPECT_EQ(GetParam().level, log.records().front().level);
  EXPECT_EQ("", standardError.text());
}

INSTANTIATE_TEST_SUITE_P(
    Each, LogAtLevel,
    ::testing::Values(LevelCase{"BelowSilent", static_cast<Level>(-1), ""}, LevelCase{"Silent", Level::Silent, ""},
                      LevelCase{"Fatal", Level::Fatal, "[fatal] test.level: the message (the/file:42, theFunction)\n"},
                      LevelCase{"Error", Level::Error, "[error] test.level: the message (the/file:42, theFunction)\n"},
                      LevelCase{"Warning", Level::Warning,
                                "[warning] test.level: the message (the/file:42, theFunction)\n"},
                      LevelCase{"Info", Level::Info, ""}, LevelCase{"Verbose", Level::Verbose, ""},
                      LevelCase{"Debug", Level::Debug, ""}, LevelCase{"BeyondDebug", static_cast<Level>(7), ""}),
    support::RowName());

TEST_F(Log, GoesToStandardErrorAgainWhenTheLastHandlerIsGone)
{
  const support::CapturedStandardError standardError;
  {
    const support::CapturedLog log;
    warn("kept");
  }

  warn("shown");

  EXPECT_EQ("[warning] test.log: shown (test:1, warn)\n", standardError.text());
}

/// Messages "thread index" of one thread, in the order in which a handler saw them.
std::vector<std::string> messagesOfThread(const std::vector<std::string>& messages, int thread)
{
  const std::string prefix = std::to_string(thread) + " ";
  std::vector<std::string> own;
  for (const std::string& message : messages)
    if (message.compare(0, prefix.size(), prefix) == 0)
      own.push_back(message);
  return own;
}

TEST(LogThreads, LosesNoRecordWhileHandlersComeAndGo)
{
  constexpr int threadCount = 3;
  constexpr int recordCount = 200;
  const support::CapturedLog log;
  std::atomic<int> guestCalls{0};

  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread)
    threads.emplace_back([thread] {
      for (int i = 0; i < recordCount; ++i)
        warn(std::to_string(thread) + " " + std::to_string(i));
    });
  threads.emplace_back([&guestCalls] {
    for (int i = 0; i < recordCount; ++i)
    {
      const ScopedHandler guest([&guestCalls](const Record&) { ++guestCalls; });
      warn("of the guest's thread");
    }
  });
  for (std::thread& thread : threads)
    thread.join();

  const std::vector<std::string> messages = log.messages();
  EXPECT_EQ(static_cast<std::size_t>((threadCount + 1) * recordCount), messages.size());
  EXPECT_GE(guestCalls, recordCount) << "each guest is there when its own thread logs";
  std::vector<std::string> expected(recordCount);
  for (int thread = 0; thread < threadCount; ++thread)
  {
    for (int i = 0; i < recordCount; ++i)
      expected[static_cast<std::size_t>(i)] = std::to_string(thread) + " " + std::to_string(i);
    EXPECT_EQ(expected, messagesOfThread(messages, thread));
  }
}

}  // namespace
