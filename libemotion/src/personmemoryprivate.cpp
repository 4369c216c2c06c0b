#include "personmemoryprivate.hpp"

#include <skeigiot/readings.hpp>

#include <ko/log.hpp>

#include <boost/thread/lock_guard.hpp>

#include <cstddef>
#include <stdexcept>
#include <tuple>
#include <type_traits>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("kvmood.personmemory");

constexpr const char* separator = " | ";

template <typename T>
bool hasRecords(ShortTermMemory<T>& memory)
{
  const boost::lock_guard<boost::mutex> lock(memory.mutex());
  memory._forgetOld();
  return !memory.records().empty();
}

/// For values that are written unchanged.
template <typename T>
void writeYoungest(DiagnosticText& out, ShortTermMemory<T>& memory)
{
  out << memory.youngest().value;
}

/// For values with a confidence, which is not reported.
template <typename T>
void writeValue(DiagnosticText& out, ShortTermMemory<ValueConfidence<T>>& memory)
{
  out << memory.youngest().value.value;
}

/// Asks for the youngest record once per value.
void writeExpressions(DiagnosticText& out, ShortTermMemory<Expressions>& memory)
{
  out << memory.youngest().value.calm.value << separator;
  out << memory.youngest().value.joy.value << separator;
  out << memory.youngest().value.surprise.value << separator;
  out << memory.youngest().value.anger.value << separator;
  out << memory.youngest().value.sorrow.value;
}

/// For records with the members yaw and pitch.
template <typename T>
void writeYawAndPitch(DiagnosticText& out, ShortTermMemory<T>& memory)
{
  const T& youngest = memory.youngest().value;
  out << youngest.yaw << separator << youngest.pitch;
}

void writeHeadPosture(DiagnosticText& out, ShortTermMemory<HeadPosture>& memory)
{
  const HeadPosture& youngest = memory.youngest().value;
  out << youngest.yaw() << separator << youngest.pitch() << separator << youngest.roll();
}

void writeSmile(DiagnosticText& out, ShortTermMemory<Smile>& memory)
{
  const Smile& youngest = memory.youngest().value;
  out << youngest.value << separator << youngest.confidence;
}

void writeFacialPoints(DiagnosticText& out, ShortTermMemory<FacialPoints>& memory)
{
  out << memory.youngest().value.globalConfidence();
}

template <typename T>
using FieldOf = PersonObservation::Reading<T> PersonObservation::*;

template <typename T>
using MemoryOf = ShortTermMemory<T> PersonMemoryPrivate::*;

/// Where a reading is filed.
template <typename T>
struct Filing
{
  FieldOf<T> reading;
  MemoryOf<T> memory;
};

/// As above, with a line of the report about it.
template <typename T>
struct ReportedFiling
{
  FieldOf<T> reading;
  MemoryOf<T> memory;
  const char* label;
  void (*write)(DiagnosticText& report, ShortTermMemory<T>& memory);
};

template <typename T>
constexpr Filing<T> filing(FieldOf<T> reading, MemoryOf<T> memory)
{
  return {reading, memory};
}

template <typename T>
constexpr ReportedFiling<T> filing(FieldOf<T> reading, MemoryOf<T> memory, const char* label,
                                   void (*write)(DiagnosticText&, ShortTermMemory<T>&) = writeYoungest<T>)
{
  return {reading, memory, label, write};
}

using Observation = PersonObservation;
using Memories = PersonMemoryPrivate;

/// In the order of storing, which differs from the order of readings: the report and the clock readings follow it.
constexpr auto filings = std::make_tuple(
    filing(&Observation::age, &Memories::ageMemory, "\t Age : ", writeValue<unsigned int>),
    filing(&Observation::faceDetected, &Memories::faceDetectedMemory, "\t Face detected : "),
    filing(&Observation::distance, &Memories::distanceMemory, "\t Distance : "),
    filing(&Observation::expressions, &Memories::expressionsMemory, "\t Expressions : ", writeExpressions),
    filing(&Observation::gaze, &Memories::gazeMemory, "\t Gaze Direction : ", writeYawAndPitch<Gaze>),
    filing(&Observation::gender, &Memories::genderMemory, "\t Gender : ", writeValue<bool>),
    filing(&Observation::headPosture, &Memories::headPostureMemory, "\t Head Posture : ", writeHeadPosture),
    filing(&Observation::smile, &Memories::smileMemory, "\t Smile from youngest: ", writeSmile),
    filing(&Observation::lookingAtRobot, &Memories::lookingAtRobotMemory, "\t Looking At Robot : "),
    filing(&Observation::facialPoints, &Memories::facialPointsMemory, "\t Facial Points : ", writeFacialPoints),
    filing(&Observation::touchEmotion, &Memories::touchEmotionMemory, "\t Touch Emotion : "),
    filing(&Observation::asrEmotion, &Memories::asrEmotionMemory),
    filing(&Observation::contextEmotion, &Memories::contextEmotionMemory),
    filing(&Observation::speaking, &Memories::speakingMemory, "\t Speaking Memory : "),
    filing(&Observation::robotHeadPosture, &Memories::robotHeadPostureMemory,
           "\t Robot Head Posture : ", writeYawAndPitch<RobotHeadPosture>));

/// Readings that act on the state alone.
constexpr auto neverRemembered = std::make_tuple(&Observation::headHeight, &Observation::voiceEmotion);

template <typename Field, typename Other>
constexpr bool isSame(Field field, Other other)
{
  if constexpr (std::is_same_v<Field, Other>)
    return field == other;
  else
    return false;
}

template <typename T>
constexpr std::size_t timesListed(const NamedReading<T>& known)
{
  const auto filed = [&known](const auto&... all) { return (std::size_t{isSame(all.reading, known.field)} + ...); };
  const auto others = [&known](auto... fields) { return (std::size_t{isSame(fields, known.field)} + ...); };
  return std::apply(filed, filings) + std::apply(others, neverRemembered);
}

constexpr bool isEachListedOnce()
{
  return std::apply([](const auto&... known) { return ((timesListed(known) == 1) && ...); }, readings);
}

static_assert(isEachListedOnce(), "a reading is missing from the filings, and is not listed as never remembered");

/// Files the reading, if there is one.
template <typename T>
void file(const Filing<T>& place, const PersonObservation& observation, PersonMemoryPrivate& memories, DiagnosticText&)
{
  if (const auto& reading = observation.*place.reading)
    (memories.*place.memory).record(*reading);
}

/// Files the reading, if there is one, and reports the youngest record, which need not be the reading just filed.
template <typename T>
void file(const ReportedFiling<T>& place, const PersonObservation& observation, PersonMemoryPrivate& memories,
          DiagnosticText& report)
{
  const PersonObservation::Reading<T>& reading = observation.*place.reading;
  if (!reading)
    return;
  ShortTermMemory<T>& memory = memories.*place.memory;
  memory.record(*reading);
  if (!hasRecords(memory))
    return;
  report << place.label;
  try
  {
    place.write(report, memory);
  }
  catch (const std::range_error&)
  {
    // The last record has expired since it was counted: nothing to write.
  }
  report << '\n';
}

}  // namespace

void PersonMemoryPrivate::add(const PersonObservation& observation)
{
  DiagnosticText report;
  add(observation, report);
}

void PersonMemoryPrivate::add(const PersonObservation& observation, DiagnosticText& report)
{
  report << "Person updated with observations :\n";
  std::apply([&](const auto&... places) { (file(places, observation, *this, report), ...); }, filings);
}

template <typename T>
const ShortTermMemory<T>* PersonMemoryPrivate::memoryOf(FieldOf<T> reading) const
{
  const ShortTermMemory<T>* memory = nullptr;
  const auto compare = [&](const auto& place) {
    if constexpr (std::is_same_v<decltype(place.reading), FieldOf<T>>)
    {
      if (place.reading == reading)
        memory = &(this->*place.memory);
    }
  };
  std::apply([&compare](const auto&... places) { (compare(places), ...); }, filings);
  return memory;
}

// Each kind of value of the readings.
template const ShortTermMemory<HeadPosture>* PersonMemoryPrivate::memoryOf(FieldOf<HeadPosture>) const;
template const ShortTermMemory<float>* PersonMemoryPrivate::memoryOf(FieldOf<float>) const;
template const ShortTermMemory<bool>* PersonMemoryPrivate::memoryOf(FieldOf<bool>) const;
template const ShortTermMemory<Smile>* PersonMemoryPrivate::memoryOf(FieldOf<Smile>) const;
template const ShortTermMemory<Gaze>* PersonMemoryPrivate::memoryOf(FieldOf<Gaze>) const;
template const ShortTermMemory<Expressions>* PersonMemoryPrivate::memoryOf(FieldOf<Expressions>) const;
template const ShortTermMemory<ValueConfidence<bool>>* PersonMemoryPrivate::memoryOf(
    FieldOf<ValueConfidence<bool>>) const;
template const ShortTermMemory<ValueConfidence<unsigned int>>* PersonMemoryPrivate::memoryOf(
    FieldOf<ValueConfidence<unsigned int>>) const;
template const ShortTermMemory<FacialPoints>* PersonMemoryPrivate::memoryOf(FieldOf<FacialPoints>) const;
template const ShortTermMemory<VoiceEmotion>* PersonMemoryPrivate::memoryOf(FieldOf<VoiceEmotion>) const;
template const ShortTermMemory<std::int32_t>* PersonMemoryPrivate::memoryOf(FieldOf<std::int32_t>) const;
template const ShortTermMemory<ContextEmotion>* PersonMemoryPrivate::memoryOf(FieldOf<ContextEmotion>) const;
template const ShortTermMemory<RobotHeadPosture>* PersonMemoryPrivate::memoryOf(FieldOf<RobotHeadPosture>) const;

}  // namespace KV
