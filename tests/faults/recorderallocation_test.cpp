#include "everyallocation.hpp"

#include "support/clocktest.hpp"
#include "support/scriptedclock.hpp"

#include <skeigiot/emotionrecorder.hpp>

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <stdexcept>

namespace
{

using faults::failEveryAllocation;
using faults::Outcome;
using Recorder = std::unique_ptr<KV::KVEmotionRecorder>;

/// Too long to be stored inside a string, so that its copies allocate.
const std::string longName = "the first scope, in which the person is greeted";

class RecorderWithoutMemory : public support::ClockTest
{
protected:
  /// Makes a recorder with two scopes that take two samples more, and one without limit.
  Recorder recording() const
  {
    auto recorder = std::make_unique<KV::KVEmotionRecorder>();
    recorder->startRecording(longName, 3);
    recorder->startRecording("second", 3);
    recorder->startRecording("third", -1);
    recorder->update_notMutexed(state);
    return recorder;
  }

  /// Returns the samples of the scope, stopped from another thread, which would wait for ever for a lock.
  static std::size_t samplesIn(KV::KVEmotionRecorder& recorder, const std::string& scope)
  {
    return std::async(std::launch::async, [&] { return recorder.stopRecording(scope).second.size(); }).get();
  }

  const KV::PersonState state{0.5f, 1.f, 0.5f, 1.f};
};

TEST_F(RecorderWithoutMemory, OpensAScopeOrNone)
{
  const std::size_t failures =
      failEveryAllocation([] { return std::make_unique<KV::KVEmotionRecorder>(); },
                          [](Recorder& recorder) { recorder->startRecording(longName, 3); },
                          [](Recorder& recorder, Outcome outcome) {
                            EXPECT_EQ(Outcome::Threw, outcome);
                            EXPECT_FALSE(recorder->hasAnOpenScope_notMutexed());
                            std::async(std::launch::async, [&] { recorder->startRecording(longName, 3); }).get();
                            EXPECT_TRUE(recorder->hasAnOpenScope_notMutexed());
                          });
  EXPECT_EQ(2U, failures);  // the scope and its name
}

TEST_F(RecorderWithoutMemory, OpensAScopeAnewWithoutAny)
{
  const std::size_t failures =
      failEveryAllocation([this] { return recording(); },
                          [](Recorder& recorder) { recorder->startRecording(longName, 1); }, [](Recorder&, Outcome) {});
  EXPECT_EQ(0U, failures);
}

TEST_F(RecorderWithoutMemory, CountsNoSampleThatCouldNotBeKept)
{
  const std::size_t failures = failEveryAllocation([this] { return recording(); },
                                                   [this](Recorder& recorder) { recorder->update_notMutexed(state); },
                                                   [this](Recorder& recorder, Outcome outcome) {
                                                     EXPECT_EQ(Outcome::Threw, outcome);
                                                     for (int i = 0; i < 5; ++i)
                                                       recorder->update_notMutexed(state);
                                                     EXPECT_EQ(3U, samplesIn(*recorder, longName));
                                                     EXPECT_EQ(3U, samplesIn(*recorder, "second"));
                                                     EXPECT_GE(samplesIn(*recorder, "third"), 6U);
                                                   });
  EXPECT_EQ(3U, failures);  // one for each scope
}

TEST_F(RecorderWithoutMemory, GivesASampleToEveryScopeOrToNone)
{
  failEveryAllocation([this] { return recording(); },
                      [this](Recorder& recorder) { recorder->update_notMutexed(state); },
                      [](Recorder& recorder, Outcome) {
                        EXPECT_EQ(1U, samplesIn(*recorder, longName));
                        EXPECT_EQ(1U, samplesIn(*recorder, "second"));
                        EXPECT_EQ(1U, samplesIn(*recorder, "third"));
                      });
}

TEST_F(RecorderWithoutMemory, ClosesAScopeWithoutAny)
{
  const std::size_t failures =
      failEveryAllocation([this] { return recording(); },
                          [](Recorder& recorder) { EXPECT_EQ("positive", recorder->stopRecording(longName).first); },
                          [](Recorder&, Outcome) {});
  EXPECT_EQ(0U, failures);
}

TEST_F(RecorderWithoutMemory, IsCopiedWholeOrNotAtAll)
{
  const std::size_t failures = failEveryAllocation(
      [this] { return recording(); }, [](Recorder& recorder) { const KV::KVEmotionRecorder copy(*recorder); },
      [](Recorder& recorder, Outcome outcome) {
        EXPECT_EQ(Outcome::Threw, outcome);
        EXPECT_EQ(1U, samplesIn(*recorder, longName));
      });
  EXPECT_GE(failures, 7U);  // three scopes with a sample each, one with a long name
}

TEST_F(RecorderWithoutMemory, RecordsNothingUnderAClockThatThrows)
{
  const Recorder recorder = recording();
  support::ScriptedClock broken([](int) -> ko::SystemClock::time_point { throw std::runtime_error("clock"); });
  {
    const ko::ScopedClockSource inner(broken);
    EXPECT_THROW(recorder->update_notMutexed(state), std::runtime_error);
  }
  for (int i = 0; i < 5; ++i)
    recorder->update_notMutexed(state);
  EXPECT_EQ(3U, samplesIn(*recorder, longName));
  EXPECT_EQ(6U, samplesIn(*recorder, "third"));
}

}  // namespace
