#pragma once

#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include "support/heldmutex.hpp"

#include <skeigiot/person.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

/// \file
/// Conditions that hold for a person in any case, however the last update ended.

namespace faults
{

/// Calls `visit` with each memory of the person.
template <typename Visit>
void forEachMemory(KV::PersonMemoryPrivate& memory, Visit visit)
{
  visit(memory.headPostureMemory);
  visit(memory.distanceMemory);
  visit(memory.lookingAtRobotMemory);
  visit(memory.smileMemory);
  visit(memory.gazeMemory);
  visit(memory.expressionsMemory);
  visit(memory.genderMemory);
  visit(memory.ageMemory);
  visit(memory.faceDetectedMemory);
  visit(memory.facialPointsMemory);
  visit(memory.touchEmotionMemory);
  visit(memory.asrEmotionMemory);
  visit(memory.contextEmotionMemory);
  visit(memory.speakingMemory);
  visit(memory.robotHeadPostureMemory);
}

using Times = std::vector<ko::SystemClock::time_point>;

/// Returns the times of the records of each memory, in the order of forEachMemory().
inline std::vector<Times> rememberedTimes(const KV::Person& person)
{
  std::vector<Times> all;
  forEachMemory(*person.personMemory._p, [&all](const auto& memory) {
    Times times;
    for (const auto& record : memory.records())
      times.push_back(record.time);
    all.push_back(times);
  });
  return all;
}

/// Expects that no mutex of the person is held, that the memories are in order, and the estimates in their ranges.
inline void expectSound(const KV::Person& person)
{
  forEachMemory(*person.personMemory._p, [](auto& memory) {
    EXPECT_TRUE(support::isFree(memory.mutex()));
    const auto& records = memory.records();
    const auto isNotNewer = [](const auto& left, const auto& right) { return left.time <= right.time; };
    EXPECT_EQ(records.end(), std::adjacent_find(records.begin(), records.end(), isNotNewer)) << "not newest first";
  });

  KV::PersonStatePrivate& state = *person.personState._p;
  for (boost::mutex* mutex : {&state.valenceMutex, &state.attentionMutex, &state.valenceConfidenceMutex,
                              &state.attentionConfidenceMutex, &state.headHeightMutex, &state.observationsMutex,
                              &state.smileMutex, &state.gazeMutex, &state.expressionsMutex, &state.headAnglesMutex})
    EXPECT_TRUE(support::isFree(*mutex));
  for (const float value : {state.valence.value, state.unsmoothedValence.value})
    EXPECT_TRUE(value >= -1.f && value <= 1.f) << value;
  for (const float value : {state.attention.value, state.attention.confidence, state.valence.confidence,
                            state.unsmoothedValence.confidence})
    EXPECT_TRUE(value >= 0.f && value <= 1.f) << value;
  EXPECT_EQ(std::size_t{KV::AttentionChannelCount}, state.attentionAngles.size());
  EXPECT_EQ(std::size_t{KV::AttentionChannelCount}, state.attentionEstimates.size());
}

/// Expects that the person still remembers every record from before.
inline void expectRemembers(const KV::Person& person, const std::vector<Times>& former)
{
  const std::vector<Times> now = rememberedTimes(person);
  for (std::size_t i = 0; i < now.size(); ++i)
    EXPECT_TRUE(std::includes(now[i].begin(), now[i].end(), former[i].begin(), former[i].end(), std::greater<>()))
        << "memory " << i << " lost a record";
}

}  // namespace faults
