// The log, with handlers that come and go.

#include "threads/together.hpp"

#include <ko/log.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace
{

using ko::log::Level;

constexpr int count = 3;
constexpr int rounds = 100;

void write(const std::string& message)
{
  ko::log::log(Level::Info, "threads", message, "file", "function", 1);
}

TEST(LogOfThreads, ReachesAHandlerOnceForEachRecord)
{
  std::atomic<int> received{0};
  const ko::log::HandlerId id = ko::log::addHandler([&received](const ko::log::Record&) { ++received; });
  threads::runOnThreads(count, rounds, [](int, int) { write("message"); });
  ko::log::removeHandler(id);

  write("after");

  EXPECT_EQ(count * rounds, received);
}

TEST(LogOfThreads, MayLoseAndGainHandlersMeanwhile)
{
  std::atomic<int> permanent{0};
  // A handler may still be running when it is removed, so it owns the data that it uses.
  const auto passing = std::make_shared<std::atomic<int>>(0);
  const ko::log::HandlerId id = ko::log::addHandler([&permanent](const ko::log::Record&) { ++permanent; });
  const auto addAndRemove = [passing](int) {
    const ko::log::HandlerId added = ko::log::addHandler([passing](const ko::log::Record&) { ++*passing; });
    ko::log::removeHandler(added);
    ko::log::removeHandler(added);  // no handler is left
  };
  const auto log = [](int) { write("message"); };
  threads::runTogether(rounds, log, log, addAndRemove, addAndRemove);
  const int before = *passing;
  write("after");
  ko::log::removeHandler(id);

  EXPECT_EQ(2 * rounds + 1, permanent);
  EXPECT_EQ(before, *passing) << "a handler that was removed is called no more";
  EXPECT_LE(before, 2 * rounds * 2) << "each record reaches two passing handlers at most";
}

TEST(LogOfThreads, GivesEachHandlerAnIdOfItsOwn)
{
  std::vector<std::vector<ko::log::HandlerId>> ids(count);
  threads::runOnThreads(count, rounds, [&ids](int thread, int) {
    ids[static_cast<std::size_t>(thread)].push_back(ko::log::addHandler([](const ko::log::Record&) {}));
  });
  std::set<ko::log::HandlerId> all;
  for (const auto& ofThread : ids)
    all.insert(ofThread.begin(), ofThread.end());
  for (const ko::log::HandlerId id : all)
    ko::log::removeHandler(id);

  EXPECT_EQ(static_cast<std::size_t>(count * rounds), all.size());
}

// No lock is held while a handler runs.
TEST(LogOfThreads, MayBeUsedByItsOwnHandlers)
{
  std::atomic<int> inner{0};
  const ko::log::HandlerId id = ko::log::addHandler([&inner](const ko::log::Record& record) {
    if (record.message != "outer")
    {
      ++inner;
      return;
    }
    write("inner");
    ko::log::removeHandler(ko::log::addHandler([](const ko::log::Record&) {}));
  });
  threads::runOnThreads(count, rounds, [](int, int) { write("outer"); });
  ko::log::removeHandler(id);

  EXPECT_EQ(count * rounds, inner);
}

TEST(LogOfThreads, RegistersACategoryOnce)
{
  std::atomic<int> different{0};
  const ko::log::Category first = ko::log::addCategory("threads 0");
  threads::runOnThreads(count, rounds, [&](int, int round) {
    const std::string name = "threads " + std::to_string(round % 5);
    different += static_cast<int>(ko::log::addCategory(name).name() != name);
    different += static_cast<int>(ko::log::addCategory("threads 0") != first);
    different += static_cast<int>(ko::log::categories().empty());
  });
  EXPECT_EQ(0, different);
  const std::vector<std::string> names = ko::log::categories();
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(1, std::count(names.begin(), names.end(), "threads " + std::to_string(i)));
}

}  // namespace
