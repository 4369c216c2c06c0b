#include "support/clocktest.hpp"
#include "support/groupinglocale.hpp"
#include "support/scriptedclock.hpp"
#include "support/tablename.hpp"

#include <skeigiot/personobservation.hpp>

#include "diagnostictext.hpp"
#include "personmemoryprivate.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <string>

namespace
{

using KV::PersonMemoryPrivate;
using KV::PersonObservation;
using KV::Timestamped;
using support::milliseconds;
using support::start;
using Time = ko::SystemClock::time_point;

const std::string header = "Person updated with observations :\n";

/// Stores the observation, and returns the report.
std::string reportOf(PersonMemoryPrivate& memory, const PersonObservation& observation)
{
  KV::DiagnosticText report;
  memory.add(observation, report);
  return report.text();
}

/// Seven scores with different values; their confidences are never reported.
KV::Expressions expressions(float scale)
{
  return {{1.f * scale, 0.91f}, {2.f * scale, 0.92f}, {3.f * scale, 0.93f}, {4.f * scale, 0.94f},
          {5.f * scale, 0.95f}, {6.f * scale, 0.96f}, {7.f * scale, 0.97f}};
}

/// Points with this global confidence.
KV::FacialPoints facialPoints(float confidence)
{
  KV::FacialPoints points;
  points.setFacialPoint(KV::FacialPoint5, {{0.f, 0.f}, confidence * 12.f});
  return points;
}

/// A kind of reading with two readings of it and the line that reports each.
struct LineCase
{
  const char* name;
  std::function<void(PersonObservation&, Time)> observeOne;
  std::function<void(PersonObservation&, Time)> observeOther;
  std::string lineOfOne;
  std::string lineOfOther;
  milliseconds horizon;
};

void PrintTo(const LineCase& row, std::ostream* stream)
{
  *stream << row.name;
}

template <typename T>
LineCase line(const char* name, PersonObservation::Reading<T> PersonObservation::*reading, const T& one, const T& other,
              const char* lineOfOne, const char* lineOfOther, milliseconds horizon = milliseconds(7000))
{
  const auto observe = [reading](const T& value) {
    return [reading, value](PersonObservation& observation, Time time) {
      observation.*reading = Timestamped<T>(time, value);
    };
  };
  return {name, observe(one), observe(other), lineOfOne, lineOfOther, horizon};
}

class PersonMemoryReportLine : public support::ClockTestWithParam<LineCase>
{
protected:
  PersonObservation oneAt(Time time) const
  {
    PersonObservation observation;
    GetParam().observeOne(observation, time);
    return observation;
  }

  PersonObservation otherAt(Time time) const
  {
    PersonObservation observation;
    GetParam().observeOther(observation, time);
    return observation;
  }

  PersonMemoryPrivate memory;
};

TEST_P(PersonMemoryReportLine, ReportsTheReading)
{
  EXPECT_EQ(header + GetParam().lineOfOne, reportOf(memory, oneAt(start)));
}

TEST_P(PersonMemoryReportLine, ReportsTheYoungestReadingAndNotTheOneFiled)
{
  memory.add(otherAt(start));

  EXPECT_EQ(header + GetParam().lineOfOther, reportOf(memory, oneAt(start - milliseconds(40))));
}

TEST_P(PersonMemoryReportLine, ReportsTheYoungestReadingWhenTheOneFiledIsTooOld)
{
  memory.add(otherAt(start));

  EXPECT_EQ(header + GetParam().lineOfOther, reportOf(memory, oneAt(start - GetParam().horizon - milliseconds(1))));
}

TEST_P(PersonMemoryReportLine, ReportsTheFirstReadingOfOneTime)
{
  memory.add(otherAt(start));

  EXPECT_EQ(header + GetParam().lineOfOther, reportOf(memory, oneAt(start)));
}

TEST_P(PersonMemoryReportLine, IsLeftOutWhenTheReadingIsForgottenAtOnce)
{
  EXPECT_EQ(header, reportOf(memory, oneAt(start - GetParam().horizon - milliseconds(1))));
}

TEST_P(PersonMemoryReportLine, IsThereAtTheEndOfTheHorizon)
{
  EXPECT_EQ(header + GetParam().lineOfOne, reportOf(memory, oneAt(start - GetParam().horizon)));
}

TEST_P(PersonMemoryReportLine, IsLeftOutWhenTheReadingIsAbsent)
{
  memory.add(oneAt(start));

  EXPECT_EQ(header, reportOf(memory, PersonObservation()));
}

using O = PersonObservation;
INSTANTIATE_TEST_SUITE_P(
    Each, PersonMemoryReportLine,
    ::testing::Values(
        line("Age", &O::age, {40u, 0.5f}, {4000000000u, 0.25f}, "\t Age : 40\n", "\t Age : 4000000000\n"),
        line("FaceDetected", &O::faceDetected, true, false, "\t Face detected : 1\n", "\t Face detected : 0\n"),
        line("Distance", &O::distance, 1.23456789f, 1e10f, "\t Distance : 1.23457\n", "\t Distance : 1e+10\n"),
        line("Expressions", &O::expressions, expressions(1.f), expressions(0.5f),
             "\t Expressions : 1 | 3 | 7 | 2 | 4\n", "\t Expressions : 0.5 | 1.5 | 3.5 | 1 | 2\n"),
        line("Gaze", &O::gaze, KV::Gaze(1.5f, -2.25f), KV::Gaze(0.f, 3.f), "\t Gaze Direction : 1.5 | -2.25\n",
             "\t Gaze Direction : 0 | 3\n"),
        line("Gender", &O::gender, {true, 0.5f}, {false, 0.25f}, "\t Gender : 1\n", "\t Gender : 0\n"),
        line("HeadPosture", &O::headPosture, KV::HeadPosture(1.5f, -2.25f, 3.f), KV::HeadPosture(4.f, 5.f, 6.f),
             "\t Head Posture : 1.5 | -2.25 | 3\n", "\t Head Posture : 4 | 5 | 6\n"),
        line("Smile", &O::smile, KV::Smile(0.75f, 0.5f), KV::Smile(0.25f, 0.125f),
             "\t Smile from youngest: 0.75 | 0.5\n", "\t Smile from youngest: 0.25 | 0.125\n"),
        line("LookingAtRobot", &O::lookingAtRobot, true, false, "\t Looking At Robot : 1\n",
             "\t Looking At Robot : 0\n"),
        line("FacialPoints", &O::facialPoints, facialPoints(0.5f), facialPoints(0.25f), "\t Facial Points : 0.5\n",
             "\t Facial Points : 0.25\n"),
        line("TouchEmotion", &O::touchEmotion, -1, 1000000, "\t Touch Emotion : -1\n", "\t Touch Emotion : 1000000\n"),
        line("AsrEmotionHasNone", &O::asrEmotion, 0.5f, -0.5f, "", ""),
        line("ContextEmotionHasNone", &O::contextEmotion, KV::ContextEmotion(1, 2.f), KV::ContextEmotion(-1, 3.f), "",
             "", milliseconds(20000)),
        line("Speaking", &O::speaking, true, false, "\t Speaking Memory : 1\n", "\t Speaking Memory : 0\n"),
        line("RobotHeadPosture", &O::robotHeadPosture, KV::RobotHeadPosture(1.5f, -2.25f),
             KV::RobotHeadPosture(0.f, 3.f), "\t Robot Head Posture : 1.5 | -2.25\n",
             "\t Robot Head Posture : 0 | 3\n")),
    support::RowName());

class PersonMemoryReport : public support::ClockTest
{
protected:
  PersonMemoryPrivate memory;
  PersonObservation observation;
};

TEST_F(PersonMemoryReport, IsTheHeaderAloneForAnEmptyObservation)
{
  EXPECT_EQ("Person updated with observations :\n", reportOf(memory, observation));
}

TEST_F(PersonMemoryReport, IsAppendedToWhatIsThere)
{
  KV::DiagnosticText report;
  report << "before\n";

  memory.add(observation, report);

  EXPECT_EQ("before\n" + header, report.text());
}

TEST_F(PersonMemoryReport, ReportsNeitherHeadHeightNorVoice)
{
  observation.headHeight = Timestamped<float>(start, 1.7f);
  observation.voiceEmotion = Timestamped<KV::VoiceEmotion>(start, KV::VoiceEmotion());

  EXPECT_EQ(header, reportOf(memory, observation));
}

/// An observation with all seventeen readings, all of the same time.
PersonObservation fullObservation()
{
  PersonObservation full;
  full.lookingAtRobot = Timestamped<bool>(start, false);
  full.headHeight = Timestamped<float>(start, 1.7f);
  full.distance = Timestamped<float>(start, 1.25f);
  full.gaze = Timestamped<KV::Gaze>(start, KV::Gaze(11.f, 12.f));
  full.smile = Timestamped<KV::Smile>(start, KV::Smile(0.5f, 0.75f));
  full.expressions = Timestamped<KV::Expressions>(start, expressions(1.f));
  full.headPosture = Timestamped<KV::HeadPosture>(start, KV::HeadPosture(21.f, 22.f, 23.f));
  full.gender = Timestamped<KV::ValueConfidence<bool>>(start, {true, 0.5f});
  full.age = Timestamped<KV::ValueConfidence<unsigned int>>(start, {33u, 0.5f});
  full.faceDetected = Timestamped<bool>(start, true);
  full.facialPoints = Timestamped<KV::FacialPoints>(start, facialPoints(0.5f));
  full.voiceEmotion = Timestamped<KV::VoiceEmotion>(start, KV::VoiceEmotion());
  full.asrEmotion = Timestamped<float>(start, 0.5f);
  full.touchEmotion = Timestamped<std::int32_t>(start, 2);
  full.contextEmotion = Timestamped<KV::ContextEmotion>(start, KV::ContextEmotion(1, 2.f));
  full.speaking = Timestamped<bool>(start, true);
  full.robotHeadPosture = Timestamped<KV::RobotHeadPosture>(start, KV::RobotHeadPosture(41.f, 42.f));
  return full;
}

TEST_F(PersonMemoryReport, ReportsAFullObservationInItsOwnOrder)
{
  EXPECT_EQ(
      "Person updated with observations :\n"
      "\t Age : 33\n"
      "\t Face detected : 1\n"
      "\t Distance : 1.25\n"
      "\t Expressions : 1 | 3 | 7 | 2 | 4\n"
      "\t Gaze Direction : 11 | 12\n"
      "\t Gender : 1\n"
      "\t Head Posture : 21 | 22 | 23\n"
      "\t Smile from youngest: 0.5 | 0.75\n"
      "\t Looking At Robot : 0\n"
      "\t Facial Points : 0.5\n"
      "\t Touch Emotion : 2\n"
      "\t Speaking Memory : 1\n"
      "\t Robot Head Posture : 41 | 42\n",
      reportOf(memory, fullObservation()));
}

TEST_F(PersonMemoryReport, IsTheSameUnderAnyLocale)
{
  observation.touchEmotion = Timestamped<std::int32_t>(start, 1000000);
  observation.distance = Timestamped<float>(start, 1.5f);
  const support::GroupingLocale german;

  EXPECT_EQ(header + "\t Distance : 1.5\n\t Touch Emotion : 1000000\n", reportOf(memory, observation));
}

TEST_F(PersonMemoryReport, ReportsANanDistance)
{
  observation.distance = Timestamped<float>(start, std::numeric_limits<float>::quiet_NaN());

  EXPECT_EQ(header + "\t Distance : nan\n", reportOf(memory, observation));
}

// Reporting prunes the memory again, once for each reading of its youngest record.

TEST_F(PersonMemoryReport, AsksForTheYoungestExpressionsOncePerScore)
{
  observation.expressions = Timestamped<KV::Expressions>(start, expressions(1.f));
  support::ScriptedClock counting(support::standingAt(start));
  const ko::ScopedClockSource countingScope(counting);

  reportOf(memory, observation);

  EXPECT_EQ(1 + 1 + 5, counting.readings()) << "recording, counting, and five scores";
}

TEST_F(PersonMemoryReport, AsksForTheYoungestDistanceOnce)
{
  observation.distance = Timestamped<float>(start, 1.f);
  support::ScriptedClock counting(support::standingAt(start));
  const ko::ScopedClockSource countingScope(counting);

  reportOf(memory, observation);

  EXPECT_EQ(1 + 1 + 1, counting.readings()) << "recording, counting, and the distance";
}

TEST_F(PersonMemoryReport, DoesNotReadAgainWhatItDoesNotReport)
{
  observation.asrEmotion = Timestamped<float>(start, 1.f);
  observation.contextEmotion = Timestamped<KV::ContextEmotion>(start, KV::ContextEmotion(1, 2.f));
  support::ScriptedClock counting(support::standingAt(start));
  const ko::ScopedClockSource countingScope(counting);

  reportOf(memory, observation);

  EXPECT_EQ(1 + 1, counting.readings()) << "recording each";
}

TEST_F(PersonMemoryReport, IsComposedEvenWhenNobodyReadsIt)
{
  observation.distance = Timestamped<float>(start, 1.f);
  support::ScriptedClock counting(support::standingAt(start));
  const ko::ScopedClockSource countingScope(counting);

  memory.add(observation);

  EXPECT_EQ(3, counting.readings());
}

TEST_F(PersonMemoryReport, LeavesOutAReadingThatExpiresOnceItIsRecorded)
{
  observation.distance = Timestamped<float>(start, 1.f);
  support::ScriptedClock jumping([](int number) { return number == 0 ? start : start + milliseconds(7001); });
  const ko::ScopedClockSource jumpingScope(jumping);

  EXPECT_EQ(header, reportOf(memory, observation));
  EXPECT_TRUE(memory.distanceMemory.records().empty());
}

TEST_F(PersonMemoryReport, FilesTheRestWhenARecordExpiresBetweenCountAndLine)
{
  observation.distance = Timestamped<float>(start, 1.f);
  observation.speaking = Timestamped<bool>(start + milliseconds(7001), true);
  support::ScriptedClock jumping([](int number) { return start + milliseconds(number < 2 ? 7000 : 7001); });
  const ko::ScopedClockSource jumpingScope(jumping);

  EXPECT_EQ(header + "\t Distance : \n\t Speaking Memory : 1\n", reportOf(memory, observation));
  EXPECT_TRUE(memory.distanceMemory.records().empty());
  EXPECT_EQ(1U, memory.speakingMemory.records().size());
}

}  // namespace
