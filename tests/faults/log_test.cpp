#include "everyallocation.hpp"
#include "everyreading.hpp"
#include "scopedhandler.hpp"
#include "silencedstream.hpp"
#include "soundness.hpp"

#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/clocktest.hpp"
#include "support/estimate.hpp"
#include "support/scriptedclock.hpp"

#include <skeigiot/person.hpp>
#include <skeigiot/personstate.hpp>

#include <ko/log.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <stdexcept>
#include <string>

namespace
{

using faults::failEveryAllocation;
using faults::Outcome;
using faults::ScopedHandler;
using ko::log::Level;
using ko::log::Record;

void logOne()
{
  ko::log::log(Level::Warning, "faults", "a message that is longer than a string keeps inside", "file", "function", 1);
}

class FailingLog : public support::ClockTest
{
protected:
  /// An observation of which the update warns.
  static KV::PersonObservation oldVoice()
  {
    KV::PersonObservation observation;
    observation.voiceEmotion.emplace(support::start - support::seconds(4),
                                     KV::VoiceEmotion({}, {}, {0.8f, 1.f}, {}, {}, {}));
    return observation;
  }
};

TEST_F(FailingLog, ChangesNothingInAnUpdateIfAHandlerThrows)
{
  KV::Person undisturbed;
  {
    const support::CapturedLog log;
    undisturbed.update(oldVoice());
    ASSERT_EQ(1U, log.size());
  }
  ASSERT_GT(undisturbed.personState.personValence().value, 0.f);

  const support::CapturedStandardError errors;
  for (const boost::function<void(const Record&)>& handler :
       {boost::function<void(const Record&)>([](const Record&) { throw std::runtime_error("no room"); }),
        boost::function<void(const Record&)>([](const Record&) { throw 42; })})
  {
    const ScopedHandler failing(handler);
    KV::Person person;
    person.update(oldVoice());
    EXPECT_EQ(support::estimateOf(*undisturbed.personState._p), support::estimateOf(*person.personState._p));
    faults::expectSound(person);
  }
  EXPECT_EQ("A log handler failed: no room\nA log handler failed: unknown exception\n", errors.text());
}

TEST_F(FailingLog, LeavesARefusedBoundaryIfAHandlerThrows)
{
  const support::CapturedStandardError errors;
  const ScopedHandler failing([](const Record&) { throw std::runtime_error("no room"); });
  const float former = KV::PersonState::getBinaryBoundaryConfidence();
  KV::PersonState::setBinaryBoundaryConfidence(2.f);
  EXPECT_EQ(former, KV::PersonState::getBinaryBoundaryConfidence());
  EXPECT_EQ("A log handler failed: no room\n", errors.text());
}

TEST_F(FailingLog, ReportsAHandlerThatRanOutOfMemoryWithoutAny)
{
  const support::CapturedLog behind;
  std::size_t before = 0;
  std::size_t allocated = 0;
  std::string errorText;
  {
    const support::CapturedStandardError errors;
    const ScopedHandler failing([&before](const Record&) {
      before = faults::allocationCount();
      throw std::runtime_error("x");
    });
    const ScopedHandler after([&](const Record&) { allocated = faults::allocationCount() - before; });
    logOne();
    errorText = errors.text();
  }
  EXPECT_EQ("A log handler failed: x\n", errorText);
  // The text of the exception itself, and the memory of the captured stream.
  EXPECT_LE(allocated, 3U);
  EXPECT_EQ(1U, behind.size());
}

TEST_F(FailingLog, CutsAnEndlessComplaintOfAHandler)
{
  const support::CapturedStandardError errors;
  const ScopedHandler failing([](const Record&) { throw std::runtime_error(std::string(5000, 'x')); });
  logOne();
  const std::string errorText = errors.text();
  EXPECT_EQ(0U, errorText.find("A log handler failed: xxx"));
  EXPECT_LE(errorText.size(), 1024U);
  EXPECT_EQ(1, std::count(errorText.begin(), errorText.end(), '\n'));
  EXPECT_EQ('\n', errorText.back());
}

/// A handler that allocates for itself, as most do.
TEST_F(FailingLog, ReachesEveryHandlerOrNone)
{
  const faults::SilencedStandardError silenced;
  int first = 0;
  int last = 0;
  std::size_t written = 0;
  const ScopedHandler counting([&first](const Record&) { ++first; });
  const ScopedHandler copying([&written](const Record& record) {
    const std::string copy = record.message + record.message;
    written += copy.size();
  });
  const ScopedHandler countingToo([&last](const Record&) { ++last; });
  const std::size_t failures = failEveryAllocation(
      [&] {
        first = last = 0;
        return 0;
      },
      [](int) { logOne(); },
      [&](int, Outcome outcome) {
        EXPECT_EQ(outcome == Outcome::Returned ? 1 : 0, first);
        EXPECT_EQ(first, last);
        std::async(std::launch::async, logOne).get();
        EXPECT_EQ(2, first + (outcome == Outcome::Threw ? 1 : 0));
      });
  EXPECT_GT(failures, 1U);
}

TEST_F(FailingLog, AddsAHandlerOrNone)
{
  int calls = 0;
  int added = 0;
  const ScopedHandler counting([&calls](const Record&) { ++calls; });
  const boost::function<void(const Record&)> handler = [&added](const Record&) { ++added; };
  const std::size_t failures =
      failEveryAllocation([] { return ko::log::HandlerId{0}; },
                          [&](ko::log::HandlerId& id) {
                            id = ko::log::addHandler(handler);
                            ko::log::removeHandler(id);
                          },
                          [&](ko::log::HandlerId&, Outcome) {
                            calls = 0;
                            added = 0;
                            std::async(std::launch::async, logOne).get();
                            EXPECT_EQ(1, calls);
                            EXPECT_EQ(0, added);
                            ko::log::removeHandler(ko::log::addHandler(handler));  // drops the skipped handlers
                          });
  EXPECT_GT(failures, 5U);
}

TEST_F(FailingLog, RemovesAHandlerEvenWithoutMemory)
{
  int calls = 0;
  const ko::log::HandlerId id = ko::log::addHandler([&calls](const Record&) { ++calls; });
  {
    const faults::AllocationFault fault(0);
    ko::log::removeHandler(id);
    EXPECT_TRUE(fault.happened());
  }
  {
    const faults::AllocationFault fault(0);
    ko::log::removeHandler(id + 1000);  // an id that does not exist
    EXPECT_TRUE(fault.happened());
  }
  const support::CapturedStandardError errors;
  logOne();
  EXPECT_EQ(0, calls);
  EXPECT_EQ(0U, errors.text().find("[warning] faults: a message")) << "nobody is left to hear it";
  ko::log::removeHandler(id);
  ko::log::removeHandler(id);
}

TEST_F(FailingLog, RegistersACategoryOrNone)
{
  const std::string name = "faults.a category whose name is longer than a string keeps inside";
  const auto isKnown = [&name] {
    const std::vector<std::string> names = ko::log::categories();
    return std::count(names.begin(), names.end(), name) == 1;
  };
  for (std::size_t which = 0;; ++which)
  {
    const faults::AllocationFault fault(which);
    try
    {
      EXPECT_EQ(name, ko::log::addCategory(name).name());
      break;
    }
    catch (const std::bad_alloc&)
    {
      EXPECT_FALSE(isKnown());
    }
  }
  EXPECT_TRUE(isKnown());
}

TEST_F(FailingLog, SaysNothingUnderAClockThatThrows)
{
  const support::CapturedLog log;
  support::ScriptedClock broken([](int) -> ko::SystemClock::time_point { throw std::runtime_error("clock"); });
  const float former = KV::PersonState::getBinaryBoundaryPositive();
  {
    const ko::ScopedClockSource inner(broken);
    EXPECT_THROW(logOne(), std::runtime_error);
    EXPECT_THROW(KV::PersonState::setBinaryBoundaryPositive(1.5f), std::runtime_error);
  }
  EXPECT_EQ(former, KV::PersonState::getBinaryBoundaryPositive());
  EXPECT_TRUE(log.empty());
  std::async(std::launch::async, logOne).get();
  EXPECT_EQ(1U, log.size());
}

}  // namespace
