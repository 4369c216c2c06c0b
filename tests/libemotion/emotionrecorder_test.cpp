#include <skeigiot/emotionrecorder.hpp>

#include "personstateprivate.hpp"

#include "support/clocktest.hpp"
#include "support/heldmutex.hpp"
#include "support/restoredboundaries.hpp"
#include "support/revealedmutex.hpp"
#include "support/scriptedclock.hpp"

#include <ko/log.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <list>
#include <string>
#include <thread>
#include <vector>

namespace support
{

boost::mutex& mutexOf(KV::KVEmotionRecorder& recorder);
template struct RevealedMutex<KV::KVEmotionRecorder, &KV::KVEmotionRecorder::_mutex>;

}  // namespace support

namespace
{

using KV::KVEmotionRecorder;
using KV::PersonState;
using support::milliseconds;
using support::start;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Recorder : public support::ClockTest
{
protected:
  void record(float valence, float confidence = 1.f)
  {
    recorder.update_notMutexed(PersonState(valence, confidence, 0.f, 0.f));
  }

  std::size_t samplesIn(const std::string& name) { return recorder.stopRecording(name).second.size(); }
  std::string verdictOn(const std::string& name) { return recorder.stopRecording(name).first; }

  static std::vector<float> valencesOf(const std::list<KVEmotionRecorder::Sample>& samples)
  {
    std::vector<float> valences;
    for (const KVEmotionRecorder::Sample& sample : samples)
      valences.push_back(sample.second.personValence().value);
    return valences;
  }

  KVEmotionRecorder recorder;
};

// Scopes

TEST_F(Recorder, HasNoScopeAtFirst)
{
  EXPECT_FALSE(recorder.hasAnOpenScope_notMutexed());
}

TEST_F(Recorder, AnswersErrorForAScopeThatIsNotOpen)
{
  const auto result = recorder.stopRecording("x");
  EXPECT_EQ("error", result.first);
  EXPECT_THAT(result.second, IsEmpty());
}

TEST_F(Recorder, LeavesTheOtherScopesAloneWhenThereIsNone)
{
  recorder.startRecording("y", -1);
  record(1.f);
  recorder.stopRecording("x");
  EXPECT_EQ(1U, samplesIn("y"));
}

TEST_F(Recorder, ClosesAScopeForGood)
{
  recorder.startRecording("x", -1);
  EXPECT_TRUE(recorder.hasAnOpenScope_notMutexed());
  recorder.stopRecording("x");
  EXPECT_FALSE(recorder.hasAnOpenScope_notMutexed());
  EXPECT_EQ("error", verdictOn("x"));
}

TEST_F(Recorder, HasAnOpenScopeEvenIfItTakesNoMoreSamples)
{
  recorder.startRecording("x", 0);
  EXPECT_TRUE(recorder.hasAnOpenScope_notMutexed());
}

TEST_F(Recorder, HasAnOpenScopeUntilTheLastOneIsClosed)
{
  recorder.startRecording("x", 1);
  recorder.startRecording("y", 1);
  recorder.stopRecording("x");
  EXPECT_TRUE(recorder.hasAnOpenScope_notMutexed());
  recorder.stopRecording("y");
  EXPECT_FALSE(recorder.hasAnOpenScope_notMutexed());
}

TEST_F(Recorder, TakesAnEmptyNameLikeAnyOther)
{
  recorder.startRecording("", 1);
  record(1.f);
  EXPECT_EQ("positive", verdictOn(""));
}

// Samples

TEST_F(Recorder, TakesAsManySamplesAsAskedFor)
{
  recorder.startRecording("x", 2);
  record(0.1f);
  record(0.2f);
  record(0.3f);
  EXPECT_THAT(valencesOf(recorder.stopRecording("x").second), ElementsAre(0.1f, 0.2f));
}

TEST_F(Recorder, TakesOneSampleIfOneIsAskedFor)
{
  recorder.startRecording("x", 1);
  record(0.1f);
  record(0.2f);
  EXPECT_THAT(valencesOf(recorder.stopRecording("x").second), ElementsAre(0.1f));
}

TEST_F(Recorder, TakesEverySampleForANegativeCount)
{
  recorder.startRecording("x", -1);
  recorder.startRecording("y", std::numeric_limits<std::int32_t>::min());
  for (int i = 0; i < 50; ++i)
    record(0.1f);
  EXPECT_EQ(50U, samplesIn("x"));
  EXPECT_EQ(50U, samplesIn("y"));
}

TEST_F(Recorder, TakesNoSampleForACountOfZeroAndCallsItNeutral)
{
  recorder.startRecording("x", 0);
  record(1.f);
  record(1.f);
  const auto result = recorder.stopRecording("x");
  EXPECT_EQ("neutral", result.first);
  EXPECT_THAT(result.second, IsEmpty());
}

TEST_F(Recorder, CallsAScopeNeutralThatWasStoppedBeforeItsFirstSample)
{
  recorder.startRecording("x", 5);
  EXPECT_EQ("neutral", verdictOn("x"));
}

TEST_F(Recorder, DropsTheSamplesOfAScopeThatIsStartedAgain)
{
  recorder.startRecording("x", 5);
  record(0.1f);
  record(0.2f);
  recorder.startRecording("x", 1);
  record(0.3f);
  record(0.4f);
  EXPECT_THAT(valencesOf(recorder.stopRecording("x").second), ElementsAre(0.3f));
}

TEST_F(Recorder, TakesSamplesAgainInAScopeThatWasFull)
{
  recorder.startRecording("x", 1);
  record(0.1f);
  recorder.startRecording("x", 2);
  record(0.2f);
  record(0.3f);
  EXPECT_EQ(2U, samplesIn("x"));
}

TEST_F(Recorder, StampsTheSamplesOfAllScopesWithOneTime)
{
  recorder.startRecording("x", -1);
  recorder.startRecording("y", -1);
  support::ScriptedClock running([](int reading) { return start + milliseconds(reading); });
  const ko::ScopedClockSource runningScope(running);
  record(0.1f);
  record(0.2f);
  EXPECT_EQ(2, running.readings());

  const auto x = recorder.stopRecording("x").second;
  const auto y = recorder.stopRecording("y").second;
  ASSERT_EQ(2U, x.size());
  ASSERT_EQ(2U, y.size());
  EXPECT_EQ(start, x.front().first);
  EXPECT_EQ(start, y.front().first);
  EXPECT_EQ(start + milliseconds(1), x.back().first);
  EXPECT_EQ(start + milliseconds(1), y.back().first);
}

TEST_F(Recorder, RecordsOnlyInTheScopesThatStillTakeSamples)
{
  recorder.startRecording("a", 0);
  recorder.startRecording("b", 1);
  recorder.startRecording("c", 2);
  recorder.startRecording("d", -1);
  record(0.1f);
  record(0.2f);
  record(0.3f);
  EXPECT_EQ(0U, samplesIn("a"));
  EXPECT_EQ(1U, samplesIn("b"));
  EXPECT_EQ(2U, samplesIn("c"));
  EXPECT_EQ(3U, samplesIn("d"));
}

TEST_F(Recorder, ShowsALiveRecordAsItIsWhenRead)
{
  PersonState state(1.f, 1.f, 0.f, 0.f);
  recorder.startRecording("x", -1);
  recorder.update_notMutexed(state);
  state._setValence(-1.f);

  const auto result = recorder.stopRecording("x");

  EXPECT_EQ("negative", result.first);
  EXPECT_EQ(state._p, result.second.front().second._p);
}

// Verdicts

TEST_F(Recorder, JudgesByTheConfidenceWeightedMean)
{
  recorder.startRecording("x", -1);
  record(1.f, 0.25f);
  record(-0.5f, 1.f);
  EXPECT_EQ("neutral", verdictOn("x"));  // -0.25 / 1.25 is at the boundary

  recorder.startRecording("y", -1);
  record(1.f, 1.f);
  record(-0.5f, 0.25f);
  EXPECT_EQ("positive", verdictOn("y"));

  recorder.startRecording("z", -1);
  record(1.f, 0.25f);
  record(-0.75f, 1.f);
  EXPECT_EQ("negative", verdictOn("z"));
}

TEST_F(Recorder, DoesNotJudgeWithoutConfidence)
{
  recorder.startRecording("x", -1);
  record(1.f, 0.39f);
  record(-1.f, 0.4f);
  EXPECT_EQ("unknown", verdictOn("x"));
  EXPECT_FALSE(recorder.hasAnOpenScope_notMutexed());
}

TEST_F(Recorder, ReturnsTheSamplesWhateverTheVerdict)
{
  recorder.startRecording("x", -1);
  record(0.5f, 0.f);
  const auto result = recorder.stopRecording("x");
  EXPECT_EQ("unknown", result.first);
  EXPECT_EQ(1U, result.second.size());
}

TEST_F(Recorder, JudgesByTheBoundariesAtTheEndOfTheScope)
{
  const support::RestoredBoundaries restored;
  recorder.startRecording("x", -1);
  record(0.5f);
  PersonState::setBinaryBoundaryPositive(0.6f);
  EXPECT_EQ("neutral", verdictOn("x"));
}

// Copies and threads

TEST_F(Recorder, CopiesItsScopesWithTheirSamplesAndCounts)
{
  recorder.startRecording("x", 2);
  record(0.1f);
  KVEmotionRecorder copy(recorder);
  copy.update_notMutexed(PersonState(0.2f, 1.f, 0.f, 0.f));
  copy.update_notMutexed(PersonState(0.3f, 1.f, 0.f, 0.f));
  record(0.4f);

  EXPECT_THAT(valencesOf(copy.stopRecording("x").second), ElementsAre(0.1f, 0.2f));
  EXPECT_THAT(valencesOf(recorder.stopRecording("x").second), ElementsAre(0.1f, 0.4f));
}

TEST_F(Recorder, SharesTheRecordsOfItsSamplesWithItsCopies)
{
  recorder.startRecording("x", 1);
  record(0.1f);
  KVEmotionRecorder copy(recorder);
  EXPECT_EQ(recorder.stopRecording("x").second.front().second._p, copy.stopRecording("x").second.front().second._p);
}

TEST_F(Recorder, WaitsForItsMutexToStartAndToStop)
{
  boost::mutex& mutex = support::mutexOf(recorder);
  EXPECT_TRUE(support::waitsFor(mutex, [this] { recorder.startRecording("x", 1); }));
  EXPECT_TRUE(support::waitsFor(mutex, [this] { recorder.stopRecording("x"); }));
  EXPECT_TRUE(support::isFree(mutex));
}

TEST_F(Recorder, TakesNoMutexWhereItsCallerHoldsOne)
{
  recorder.startRecording("x", -1);
  EXPECT_TRUE(support::endsDespite({&support::mutexOf(recorder)}, [this] { record(0.5f); }));
  EXPECT_TRUE(support::endsDespite({&support::mutexOf(recorder)}, [this] { recorder.hasAnOpenScope_notMutexed(); }));
  EXPECT_EQ(1U, samplesIn("x"));
}

TEST_F(Recorder, LosesNoScopeOfSeveralThreads)
{
  constexpr int threadCount = 4;
  constexpr int roundCount = 200;
  std::atomic<int> closed{0};
  std::atomic<int> errors{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread)
    threads.emplace_back([&, name = "scope " + std::to_string(thread)] {
      for (int round = 0; round < roundCount; ++round)
      {
        recorder.startRecording(name, 3);
        if (recorder.stopRecording(name).first == "neutral")
          ++closed;
        if (recorder.stopRecording(name).first == "error")
          ++errors;
      }
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(threadCount * roundCount, closed);
  EXPECT_EQ(threadCount * roundCount, errors);
  EXPECT_FALSE(recorder.hasAnOpenScope_notMutexed());
}

TEST_F(Recorder, RegistersItsLogCategory)
{
  EXPECT_THAT(ko::log::categories(), ::testing::Contains("KVMoodRecorder"));
}

}  // namespace
