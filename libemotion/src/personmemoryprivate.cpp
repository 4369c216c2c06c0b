#include "personmemoryprivate.hpp"

#include <ko/log.hpp>

#include <boost/thread/lock_guard.hpp>

#include <stdexcept>

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

/// Files the reading, if there is one, without a line in the report.
template <typename T>
void file(const PersonObservation::Reading<T>& reading, ShortTermMemory<T>& memory)
{
  if (reading)
    memory.record(*reading);
}

/// Files the reading, if there is one, and reports the youngest record, which need not be the reading just filed.
///
/// `write` receives the report and the memory.
template <typename T, typename Write>
void fileAndReport(const PersonObservation::Reading<T>& reading, ShortTermMemory<T>& memory, DiagnosticText& report,
                   const char* label, Write write)
{
  if (!reading)
    return;
  memory.record(*reading);
  if (!hasRecords(memory))
    return;
  report << label;
  try
  {
    write(report, memory);
  }
  catch (const std::range_error&)
  {
    // The last record has passed its horizon since it was counted: there is nothing to write.
  }
  report << '\n';
}

/// As above, for values that are written as they are.
template <typename T>
void fileAndReport(const PersonObservation::Reading<T>& reading, ShortTermMemory<T>& memory, DiagnosticText& report,
                   const char* label)
{
  fileAndReport(reading, memory, report, label,
                [](DiagnosticText& out, ShortTermMemory<T>& from) { out << from.youngest().value; });
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

}  // namespace

void PersonMemoryPrivate::add(const PersonObservation& observation)
{
  DiagnosticText report;
  add(observation, report);
}

void PersonMemoryPrivate::add(const PersonObservation& observation, DiagnosticText& report)
{
  report << "Person updated with observations :\n";
  fileAndReport(observation.age, ageMemory, report, "\t Age : ", writeValue<unsigned int>);
  fileAndReport(observation.faceDetected, faceDetectedMemory, report, "\t Face detected : ");
  fileAndReport(observation.distance, distanceMemory, report, "\t Distance : ");
  fileAndReport(observation.expressions, expressionsMemory, report, "\t Expressions : ", writeExpressions);
  fileAndReport(observation.gaze, gazeMemory, report, "\t Gaze Direction : ", writeYawAndPitch<Gaze>);
  fileAndReport(observation.gender, genderMemory, report, "\t Gender : ", writeValue<bool>);
  fileAndReport(observation.headPosture, headPostureMemory, report, "\t Head Posture : ", writeHeadPosture);
  fileAndReport(observation.smile, smileMemory, report, "\t Smile from youngest: ", writeSmile);
  fileAndReport(observation.lookingAtRobot, lookingAtRobotMemory, report, "\t Looking At Robot : ");
  fileAndReport(observation.facialPoints, facialPointsMemory, report, "\t Facial Points : ", writeFacialPoints);
  fileAndReport(observation.touchEmotion, touchEmotionMemory, report, "\t Touch Emotion : ");
  file(observation.asrEmotion, asrEmotionMemory);
  file(observation.contextEmotion, contextEmotionMemory);
  fileAndReport(observation.speaking, speakingMemory, report, "\t Speaking Memory : ");
  fileAndReport(observation.robotHeadPosture, robotHeadPostureMemory, report,
                "\t Robot Head Posture : ", writeYawAndPitch<RobotHeadPosture>);
}

}  // namespace KV
