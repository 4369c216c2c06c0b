// Neither an estimate nor a text that the library writes depends on the locale of the process.

#include "randomlife.hpp"

#include "bodylanguagestateprivate.hpp"
#include "diagnostictext.hpp"
#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/groupinglocale.hpp"
#include "support/thrown.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/person.hpp>

#include <ko/cbor.hpp>
#include <ko/json.hpp>
#include <ko/log.hpp>
#include <ko/value.hpp>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <iostream>
#include <locale>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

namespace
{

using namespace properties;

/// Writes to a stream that stays in the classic locale.
template <typename T>
std::string printed(const T& object)
{
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << object;
  return stream.str();
}

/// All texts of the library with numbers above 1000 and with a fraction.
std::string allTexts()
{
  support::CapturedLog log;
  support::TestClock time;
  time.clock.set(support::start + support::nanoseconds(123456789));
  KV::Person person(1234567);
  KV::PersonObservation observation;
  const auto now = ko::SystemClock::now();
  observation.distance.emplace(now, 1234.5f);
  observation.headPosture.emplace(now, KV::HeadPosture(1234.5f, -0.25f, 12345678.f));
  observation.gaze.emplace(now, KV::Gaze(0.5f, -1234.5f));
  observation.smile.emplace(now, KV::Smile(0.75f, 0.25f));
  observation.expressions.emplace(now, KV::VoiceEmotion({0.5f, 1.f}, {0.1f, 1.f}, {0.2f, 1.f}, {0.3f, 1.f}, {}, {}));
  observation.touchEmotion.emplace(now, 1234567);
  observation.voiceEmotion.emplace(now - support::milliseconds(1234567890), KV::VoiceEmotion());  // causes a warning

  KV::DiagnosticText memoryReport;
  person.personMemory._p->add(observation, memoryReport);
  KV::DiagnosticText trace;
  person.personState.bodyLanguageState().update(person.personMemory);
  person.personState._p->__update(observation, person.personMemory, trace);

  KV::AmbianceState room;
  room.updateAmbiance(0.0123f);

  KV::PersonState::setBinaryBoundaryPositive(1234.5f);
  KV::PersonState::setBinaryBoundaryConfidence(-0.25f);
  KV::AmbianceState::setBinaryBoundaryExcited(1.5f);

  std::string all = memoryReport.text() + trace.text() + printed(person) + printed(person.personState) +
                    person.personState.emotionLogMessage() + printed(person.personState.headAngles()) +
                    printed(person.personState.bodyLanguageState()) +
                    printed(person.personState.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription)) +
                    printed(observation.voiceEmotion->value) + printed(room);
  all += support::textThrownBy<std::invalid_argument>(
      [&] { person.personState.personEmotion(static_cast<KV::PersonDescription>(1234567)); });
  all += support::textThrownBy<std::invalid_argument>(
      [&] { KV::FacialPoints().facialPoint(static_cast<KV::PointDescription>(1234567)); });
  for (const std::string& message : log.messages())
    all += message + "\n";

  const ko::Value value = ko::Value::from(person);
  const std::string json = ko::json::encode(value, 2);
  all += json + printed(value) + ko::json::encode(ko::json::decode(json));
  for (const std::uint8_t byte : ko::cbor::encode(value))
    all += std::to_string(byte) + " ";
  return all;
}

/// The line on standard error for a record without a handler.
std::string unhandledWarning()
{
  const support::CapturedStandardError errors;
  ko::log::log(ko::log::Level::Warning, "test", "message", "file", "function", 1234567);
  return errors.text();
}

/// While it lives, the whole process runs in a locale with a decimal comma: C functions and streams alike.
class CommaLocale
{
public:
  CommaLocale() : _formerC(std::setlocale(LC_ALL, nullptr))
  {
    _isThere = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
  }
  ~CommaLocale() { std::setlocale(LC_ALL, _formerC.c_str()); }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  bool isThere() const { return _isThere; }

private:
  support::GroupingLocale _streams;
  std::string _formerC;
  bool _isThere = false;
};

class LocaleProperties : public ::testing::Test
{
protected:
  LocaleProperties() { setenv("LOCPATH", SKEIGIOT_LOCALES, 1); }
};

TEST_F(LocaleProperties, AreTheSameWhereStreamsWriteACommaByThemselves)
{
  const std::string classicTexts = allTexts();
  const std::string classicWarning = unhandledWarning();
  const std::size_t classicLife = fingerprintOfLife(seeds[0]);
  ASSERT_NE(std::string::npos, classicTexts.find("1234.5"));
  {
    const support::GroupingLocale comma;
    std::ostringstream shows;
    shows << 1234.5;
    ASSERT_EQ("1.234,5", shows.str()) << "the locale has no effect: the comparison shows nothing";

    EXPECT_EQ(classicTexts, allTexts());
    EXPECT_EQ(classicWarning, unhandledWarning());
    EXPECT_EQ(classicLife, fingerprintOfLife(seeds[0]));
  }
}

TEST_F(LocaleProperties, AreTheSameWhereAllOfTheProcessWritesAComma)
{
  const std::string classicTexts = allTexts();
  const std::string classicWarning = unhandledWarning();
  const std::size_t classicLife = fingerprintOfLife(seeds[1]);
  const CommaLocale comma;
  if (!comma.isThere())
    GTEST_SKIP() << "no German locale, and no localedef to make one with";
  ASSERT_EQ("1234,500000", std::to_string(1234.5)) << "the locale has no effect: the comparison shows nothing";

  EXPECT_EQ(classicTexts, allTexts());
  EXPECT_EQ(classicWarning, unhandledWarning());
  EXPECT_EQ(classicLife, fingerprintOfLife(seeds[1]));
}

}  // namespace
