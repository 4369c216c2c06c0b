// The recorder, whose scopes are opened and closed from any thread.

#include "threads/together.hpp"

#include "support/clocktest.hpp"

#include <skeigiot/emotionrecorder.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <mutex>
#include <string>

namespace
{

constexpr int count = 4;
constexpr int rounds = 100;

TEST(RecorderOfThreads, OpensAndClosesScopesFromEach)
{
  KV::KVEmotionRecorder recorder;
  std::atomic<int> wrong{0};
  threads::runOnThreads(count, rounds, [&](int thread, int round) {
    const std::string own = "scope " + std::to_string(thread);
    recorder.startRecording(own, round);
    recorder.startRecording("shared", -1);
    const auto result = recorder.stopRecording(own);
    wrong += static_cast<int>(result.first != "neutral") + static_cast<int>(!result.second.empty());
    wrong += static_cast<int>(recorder.stopRecording(own).first != "error");
  });

  EXPECT_EQ(0, wrong);
  EXPECT_TRUE(recorder.hasAnOpenScope_notMutexed()) << "the shared one";
  EXPECT_EQ("neutral", recorder.stopRecording("shared").first);
  EXPECT_FALSE(recorder.hasAnOpenScope_notMutexed());
}

// Functions that end in _notMutexed rely on the caller, who keeps every other operation away.
TEST(RecorderOfThreads, LosesNoSampleUnderAMutexOfTheCaller)
{
  support::TestClock time;
  KV::KVEmotionRecorder recorder;
  std::mutex ofCaller;
  recorder.startRecording("all", -1);
  recorder.startRecording("some", 10);
  std::atomic<int> samples{0};
  threads::runOnThreads(count, rounds, [&](int thread, int) {
    const std::string own = "scope " + std::to_string(thread);
    const KV::PersonState state(0.5f, 1.f, 0.5f, 1.f);
    const std::lock_guard<std::mutex> lock(ofCaller);
    recorder.startRecording(own, -1);
    recorder.update_notMutexed(state);
    samples += static_cast<int>(recorder.stopRecording(own).second.size());
  });

  EXPECT_EQ(count * rounds, samples);
  const auto all = recorder.stopRecording("all");
  EXPECT_EQ("positive", all.first);
  EXPECT_EQ(static_cast<std::size_t>(count * rounds), all.second.size());
  EXPECT_EQ(10U, recorder.stopRecording("some").second.size());
}

}  // namespace
