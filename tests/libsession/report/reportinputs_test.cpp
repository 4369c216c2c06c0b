#include "report/reportinputs.hpp"

#include <skeigiot/readings.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <type_traits>

namespace
{

using ::testing::HasSubstr;

/// Inputs that a report does not show: no force depends on them, or they mean nothing to its reader.
const std::set<std::string> notShown = {"lookingAtRobot", "gender",       "age",
                                        "faceDetected",   "facialPoints", "robotHeadPosture"};

template <typename Value>
void setConfidence(Value& value)
{
  if constexpr (std::is_base_of_v<KV::Expressions, Value>)
    KV::forEachPart<Value>([&value](const auto& part) { part.put({0.5f, 1.f}, value); });
}

bool isAnyInput(const KV::PersonObservation& observation)
{
  for (const float value : KV::session::reportInputsOf(observation))
    if (!std::isnan(value))
      return true;
  return false;
}

TEST(ReportInputs, ShowEveryReadingSaveThoseThatAreListedAsNotShown)
{
  KV::forEachReading([](const auto& known) {
    auto value = KV::blankReading<typename std::decay_t<decltype(known)>::Value>();
    setConfidence(value);
    KV::PersonObservation observation;
    known.in(observation).emplace(ko::SystemClock::time_point(), value);
    EXPECT_EQ(notShown.count(known.name) == 0, isAnyInput(observation)) << known.name;
  });
}

TEST(ReportInputs, AreNoneOfAnEmptyObservation)
{
  EXPECT_FALSE(isAnyInput(KV::PersonObservation()));
}

TEST(ReportInputs, HaveWordsOnThePage)
{
  std::ifstream file(SKEIGIOT_SOURCE_DIR "/web/shared/readings.ts");
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  for (const KV::session::ReportInput& input : KV::session::reportInputs())
    EXPECT_THAT(page, HasSubstr("\n  " + std::string(input.name) + ": { name: "));
}

}  // namespace
