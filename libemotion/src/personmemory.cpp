#include <skeigiot/personmemory.hpp>

#include "age.hpp"
#include "personmemoryprivate.hpp"

#include <ko/log.hpp>
#include <ko/systemclock.hpp>

#include <boost/thread/lock_guard.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("kvmood.personmemory");

}  // namespace

PersonMemory::PersonMemory() : _p(new PersonMemoryPrivate) {}

PersonMemory::~PersonMemory() = default;

void PersonMemory::add(const PersonObservation& observation)
{
  _p->add(observation);
}

template <typename T>
Remembered<T> PersonMemory::remembered(PersonObservation::Reading<T> PersonObservation::*reading) const
{
  Remembered<T> result;
  const ShortTermMemory<T>* const memory = _p->memoryOf(reading);
  if (!memory)
    return result;
  const boost::lock_guard<boost::mutex> lock(memory->mutex());
  const auto& records = memory->records();  // newest first
  const auto isRemembered = [now = ko::SystemClock::now(), horizon = memory->horizon().count()](
                                const Timestamped<T>& record) { return ageInMs(record.time, now) <= horizon; };
  const auto end = std::partition_point(records.begin(), records.end(), isRemembered);
  result.count = static_cast<std::size_t>(end - records.begin());
  if (result.count > 0)
    result.youngest = *records.begin();
  return result;
}

template <typename T>
using FieldOf = PersonObservation::Reading<T> PersonObservation::*;

// Each kind of value of the readings.
template SKEIGIOT_API Remembered<HeadPosture> PersonMemory::remembered(FieldOf<HeadPosture>) const;
template SKEIGIOT_API Remembered<float> PersonMemory::remembered(FieldOf<float>) const;
template SKEIGIOT_API Remembered<bool> PersonMemory::remembered(FieldOf<bool>) const;
template SKEIGIOT_API Remembered<Smile> PersonMemory::remembered(FieldOf<Smile>) const;
template SKEIGIOT_API Remembered<Gaze> PersonMemory::remembered(FieldOf<Gaze>) const;
template SKEIGIOT_API Remembered<Expressions> PersonMemory::remembered(FieldOf<Expressions>) const;
template SKEIGIOT_API Remembered<ValueConfidence<bool>> PersonMemory::remembered(FieldOf<ValueConfidence<bool>>) const;
template SKEIGIOT_API Remembered<ValueConfidence<unsigned int>> PersonMemory::remembered(
    FieldOf<ValueConfidence<unsigned int>>) const;
template SKEIGIOT_API Remembered<FacialPoints> PersonMemory::remembered(FieldOf<FacialPoints>) const;
template SKEIGIOT_API Remembered<VoiceEmotion> PersonMemory::remembered(FieldOf<VoiceEmotion>) const;
template SKEIGIOT_API Remembered<std::int32_t> PersonMemory::remembered(FieldOf<std::int32_t>) const;
template SKEIGIOT_API Remembered<ContextEmotion> PersonMemory::remembered(FieldOf<ContextEmotion>) const;
template SKEIGIOT_API Remembered<RobotHeadPosture> PersonMemory::remembered(FieldOf<RobotHeadPosture>) const;

}  // namespace KV
