// Sensors that are too fast, and crowds: the memory is bounded, and readings stay with their persons.

#include "goodperson.hpp"
#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include "support/clocktest.hpp"
#include "support/estimate.hpp"

#include <skeigiot/emotionrecorder.hpp>
#include <skeigiot/person.hpp>
#include <skeigiot/shorttermmemory.hpp>
#include <skeigiot/socialgraph.hpp>

#include <gtest/gtest.h>

#include <boost/smart_ptr/weak_ptr.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <sstream>
#include <vector>

namespace
{

using namespace hostile;
using support::milliseconds;

constexpr int tooFast = 10000;  // readings a second
constexpr support::nanoseconds betweenThem(1000000000 / tooFast);

class FastSensor : public support::ClockTest
{};

TEST_F(FastSensor, FillsAMemoryToRateTimesHorizonAndNoFurther)
{
  constexpr int horizonInMs = 200;
  KV::ShortTermMemory<float> memory{milliseconds(horizonInMs)};
  std::size_t most = 0;
  for (int i = 0; i < tooFast; ++i)
  {
    memory.record({ko::SystemClock::now(), static_cast<float>(i)});
    most = std::max(most, memory.records().size());
    clock.advance(betweenThem);
  }
  // An age counts in whole milliseconds, so a record stays for one more than the horizon.
  EXPECT_EQ(static_cast<std::size_t>((horizonInMs + 1) * tooFast / 1000), most);
  EXPECT_EQ(static_cast<float>(tooFast - 1), memory.youngest().value);
}

TEST_F(FastSensor, LeavesNothingBehind)
{
  KV::Person undisturbed;
  KV::Person disturbed;
  const auto& memory = disturbed.personMemory._p->gazeMemory;
  int lastDifference = 0;
  for (int frame = 0; frame < 300; ++frame)
  {
    const KV::PersonObservation observation = goodObservation(frame, ko::SystemClock::now());
    undisturbed.update(observation);
    disturbed.update(observation);
    if (!(support::estimateOf(*undisturbed.personState._p) == support::estimateOf(*disturbed.personState._p)))
      lastDifference = frame;
    if (frame == 100)
      for (int i = 1; i < tooFast / 10; ++i)  // until the next frame
        disturbed.updateMemory([i] {
          KV::PersonObservation burst;
          burst.gaze.emplace(ko::SystemClock::now() + i * betweenThem, KV::Gaze(50.f, 0.f));
          return burst;
        }());
    clock.advance(frameTime);
  }
  EXPECT_GT(lastDifference, 100) << "the burst had no effect";
  EXPECT_LE(lastDifference, 100 + 71 + 40) << "a memory, and what the estimate takes to follow";
  EXPECT_LE(memory.records().size(), 71U);
}

TEST_F(FastSensor, IsBoundedWhereManyReadingsHaveOneTime)
{
  KV::Person person;
  for (int i = 0; i < 1000; ++i)
    person.update(goodObservation(i, support::start));
  EXPECT_EQ(1U, person.personMemory._p->gazeMemory.records().size());
  EXPECT_EQ(1U, person.personMemory._p->facialPointsMemory.records().size());
}

class Crowd : public support::ClockTest
{};

TEST_F(Crowd, OfAHundredThousandIsKeptApartAndLeavesNothingBehind)
{
  constexpr int count = 100000;
  boost::weak_ptr<KV::PersonStatePrivate> stateOfOne;
  boost::weak_ptr<KV::PersonMemoryPrivate> memoryOfOne;
  {
    KV::SocialGraph graph;
    for (int id = 0; id < count; ++id)
      graph.updateOrCreate(id, [](KV::Person& person) {
        KV::PersonObservation observation;
        observation.touchEmotion.emplace(ko::SystemClock::now(), person.personID % 2);
        person.update(observation);
      });

    const std::vector<KV::Person> persons = graph.persons();
    ASSERT_EQ(static_cast<std::size_t>(count), persons.size());
    for (int id = 0; id < count; ++id)
    {
      const KV::Person& person = persons[static_cast<std::size_t>(id)];
      ASSERT_EQ(id, person.personID);
      ASSERT_EQ(id % 2 == 1, person.personState.personValence().value > 0.f) << id;
    }
    stateOfOne = persons[12345].personState._p;
    memoryOfOne = persons[12345].personMemory._p;
    for (int id = count - 1; id >= 0; --id)
      graph.remove(id);
    EXPECT_TRUE(graph.persons().empty());
    EXPECT_FALSE(stateOfOne.expired()) << "the copy shares the record";
  }
  EXPECT_TRUE(stateOfOne.expired());
  EXPECT_TRUE(memoryOfOne.expired());
}

TEST_F(Crowd, MayHaveIdentifiersAtBothEndsOfInt)
{
  constexpr int least = std::numeric_limits<int>::min();
  constexpr int greatest = std::numeric_limits<int>::max();
  const std::vector<int> ids{0, greatest, least, -1, greatest - 1, 1, least + 1};
  KV::SocialGraph graph;
  for (const int id : ids)
  {
    graph.add(id);
    graph.add(id);
  }

  std::vector<int> found;
  for (const KV::Person& person : graph.persons())
    found.push_back(person.personID);
  EXPECT_EQ((std::vector<int>{least, least + 1, -1, 0, 1, greatest - 1, greatest}), found);

  std::ostringstream text;
  text << *graph.find(least) << *graph.find(greatest);
  EXPECT_EQ("Person (US#-2147483648) Person (US#2147483647) ", text.str());

  graph.remove(least);
  graph.remove(greatest);
  EXPECT_FALSE(graph.find(least));
  EXPECT_FALSE(graph.find(greatest));
  EXPECT_EQ(5U, graph.persons().size());
}

TEST_F(Crowd, MayBeRecordedForAnyNumberOfSamples)
{
  KV::KVEmotionRecorder recorder;
  recorder.startRecording("least", std::numeric_limits<std::int32_t>::min());
  recorder.startRecording("greatest", std::numeric_limits<std::int32_t>::max());
  recorder.startRecording("none", 0);
  for (int i = 0; i < 10; ++i)
    recorder.update_notMutexed(KV::PersonState(0.5f, 1.f, 0.5f, 1.f));

  EXPECT_EQ(10U, recorder.stopRecording("least").second.size());
  EXPECT_EQ(10U, recorder.stopRecording("greatest").second.size());
  EXPECT_EQ(0U, recorder.stopRecording("none").second.size());
}

}  // namespace
