#pragma once

#include <skeigiot/personobservation.hpp>
#include <skeigiot/shorttermmemory.hpp>

#include "diagnostictext.hpp"

#include <boost/chrono/duration.hpp>

#include <cstdint>

namespace KV
{

/// How long a reading is remembered, and how long a context emotion, which is valid for longer.
constexpr boost::chrono::milliseconds readingHorizon(7000);
constexpr boost::chrono::milliseconds contextHorizon(20000);

/// The record behind PersonMemory: one memory for each kind of reading.
struct PersonMemoryPrivate
{
  /// Files each reading of the observation into its memory.
  ///
  /// Composes a report of the content of the memories and drops it; see DiagnosticText.
  ///
  /// \par Thread safety
  ///   Takes the mutex of one memory at a time, never two at once.
  void add(const PersonObservation& observation);

  /// As above, and appends the report to `report`.
  void add(const PersonObservation& observation, DiagnosticText& report);

  /// Returns the memory of this reading; null if the reading is never remembered.
  template <typename T>
  const ShortTermMemory<T>* memoryOf(PersonObservation::Reading<T> PersonObservation::*reading) const;

  ShortTermMemory<HeadPosture> headPostureMemory{readingHorizon};
  ShortTermMemory<float> distanceMemory{readingHorizon};
  ShortTermMemory<bool> lookingAtRobotMemory{readingHorizon};
  ShortTermMemory<Smile> smileMemory{readingHorizon};
  ShortTermMemory<Gaze> gazeMemory{readingHorizon};
  ShortTermMemory<Expressions> expressionsMemory{readingHorizon};
  ShortTermMemory<ValueConfidence<bool>> genderMemory{readingHorizon};
  ShortTermMemory<ValueConfidence<unsigned int>> ageMemory{readingHorizon};
  ShortTermMemory<bool> faceDetectedMemory{readingHorizon};
  ShortTermMemory<FacialPoints> facialPointsMemory{readingHorizon};
  ShortTermMemory<std::int32_t> touchEmotionMemory{readingHorizon};
  ShortTermMemory<float> asrEmotionMemory{readingHorizon};
  ShortTermMemory<ContextEmotion> contextEmotionMemory{contextHorizon};
  ShortTermMemory<bool> speakingMemory{readingHorizon};
  ShortTermMemory<RobotHeadPosture> robotHeadPostureMemory{readingHorizon};
};

}  // namespace KV
