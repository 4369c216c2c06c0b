#include "operations.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/bodylanguageease.hpp>
#include <skeigiot/classification/argmaxclassifiertype.hpp>
#include <skeigiot/classification/linregmoodscore.hpp>
#include <skeigiot/classification/logregmoodscore.hpp>
#include <skeigiot/classification/moodclassifier.hpp>
#include <skeigiot/facialpoints.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/person.hpp>
#include <skeigiot/personstate.hpp>
#include <skeigiot/ramp.hpp>
#include <skeigiot/shorttermmemory.hpp>
#include <skeigiot/verdict.hpp>

#include <ko/systemclock.hpp>

#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace tables
{

namespace
{

using nlohmann::json;

constexpr std::int64_t startInNs = 1577836800000000000;  // 2020-01-01T00:00:00Z

ko::SystemClock::time_point startPlus(std::int64_t nanoseconds)
{
  return ko::SystemClock::time_point(boost::chrono::nanoseconds(startInNs + nanoseconds));
}

float number(const json& arguments, const char* name)
{
  return numberFrom(arguments.at(name));
}

std::vector<float> numbers(const json& list)
{
  std::vector<float> result;
  for (const json& element : list)
    result.push_back(numberFrom(element));
  return result;
}

template <typename T>
std::string written(const T& object)
{
  std::ostringstream stream;
  stream << object;
  return stream.str();
}

// Readings

json headPosture(const json& arguments)
{
  const KV::HeadPosture posture(number(arguments, "yaw"), number(arguments, "pitch"), number(arguments, "roll"));
  return {{"isUp", posture.isUp()},
          {"isDown", posture.isDown()},
          {"isLeft", posture.isLeft()},
          {"isRight", posture.isRight()},
          {"text", written(posture)}};
}

json facialPoint(const json& arguments)
{
  const auto point = static_cast<KV::PointDescription>(arguments.at("point").get<int>());
  KV::FacialPoints points;
  points.setFacialPoint(point, {{1.5f, -2.5f}, number(arguments, "confidence")});
  return {{"x", numberOf(points.facialPoint(point).value.first)},
          {"y", numberOf(points.facialPoint(point).value.second)},
          {"confidence", numberOf(points.facialPoint(point).confidence)},
          {"globalConfidence", numberOf(points.globalConfidence())}};
}

json shortTermMemory(const json& arguments)
{
  ko::ManualClock clock(startPlus(0));
  const ko::ScopedClockSource scope(clock);
  const KV::Timestamped<float> reading(startPlus(-arguments.at("ageInNs").get<std::int64_t>()), 0.5f);
  KV::ShortTermMemory<float> memory(boost::chrono::milliseconds(arguments.at("horizonInMs").get<std::int64_t>()));
  const bool tooOld = memory._isTooOld(reading);
  memory.record(reading);
  return {{"isTooOld", tooOld}, {"remembered", memory.records().size()}};
}

json emptyMemory(const json&)
{
  KV::ShortTermMemory<float> memory(boost::chrono::milliseconds(7000));
  return {{"youngest", numberOf(memory.youngest().value)}};
}

// Formulas

json ramp(const json& arguments)
{
  const float center = number(arguments, "center");
  const float width = number(arguments, "width");
  const float amplitude = number(arguments, "amplitude");
  const float x = number(arguments, "x");
  return {{"falling", numberOf(KV::Ramp<KV::RampDown, float, float>(center, width, amplitude)(x))},
          {"rising", numberOf(KV::Ramp<KV::RampUp, float, float>(center, width, amplitude)(x))}};
}

template <typename Score>
json regression(const json& arguments)
{
  using KV::classification::Coefficient;
  const json& set = arguments.at("coefficient");
  const Coefficient coefficient = set == "positive"  ? Score::COEFFICIENT_POS()
                                  : set == "neutral" ? Score::COEFFICIENT_NEU()
                                  : set == "negative"
                                      ? Score::COEFFICIENT_NEG()
                                      : Coefficient(numbers(set.at("weights")), number(set, "intercept"));
  const Score score(coefficient);
  const KV::classification::MoodClass unread("", 0, score);
  return {{"score", numberOf(score.calculateScore(unread, numbers(arguments.at("features"))))}};
}

json argmax(const json& arguments)
{
  using namespace KV::classification;
  const LinregMoodScore score(0, 0.f);
  std::vector<MoodClass> classes;
  for (const float given : numbers(arguments.at("scores")))
  {
    classes.emplace_back("", static_cast<std::int32_t>(classes.size()), score);
    classes.back().score = given;
  }
  const ArgmaxClassifierType type(number(arguments, "threshold"));
  const MoodClass winner = MoodClassifier(type).classify(classes);
  json sorted = json::array();
  for (const MoodClass& moodClass : classes)
    sorted.push_back(numberOf(moodClass.score));
  return {{"winner", winner.value}, {"sorted", sorted}};
}

// Body language and the room

json bodyLanguageEase(const json& arguments)
{
  return {{"text", written(KV::BodyLanguageEase(number(arguments, "level"), number(arguments, "confidence")))}};
}

/// The postures are a millisecond apart, the first is the newest.
json bodyLanguage(const json& arguments)
{
  ko::ManualClock clock(startPlus(0));
  const ko::ScopedClockSource scope(clock);
  KV::PersonMemory memory;
  std::int64_t ageInNs = 0;
  for (const json& posture : arguments.at("postures"))
  {
    KV::PersonObservation observation;
    observation.headPosture = KV::Timestamped<KV::HeadPosture>(
        startPlus(-ageInNs), KV::HeadPosture(number(posture, "yaw"), number(posture, "pitch"), 0.f));
    memory.add(observation);
    ageInNs += 1000000;
  }
  KV::BodyLanguageState state;
  state.update(memory);
  const KV::BodyLanguageEase ease = state.bodyLanguageState(KV::BodyLanguageEaseDescription);
  return {{"level", numberOf(ease.level)}, {"confidence", numberOf(ease.confidence)}};
}

json ambiance(const json& arguments)
{
  KV::AmbianceState state;
  for (const json& step : arguments.at("steps"))
    if (step == "movement")
      state.incrementMovementDetected();
    else if (step.contains("activity"))
      state.updateAmbiance(number(step, "activity"));
    else
      state._setAmbientActivityLevel(number(step, "level"));
  return {{"agitation", numberOf(state.ambientActivityLevel(KV::AmbianceActivity))},
          {"calm", numberOf(state.ambientActivityLevel(KV::AmbianceCalm))},
          {"movements", numberOf(state.movementCount)},
          {"excitation", static_cast<int>(state.excitationState())},
          {"text", written(state)}};
}

// The state of a person

json scored(const KV::ValueConfidence<float>& value)
{
  return {numberOf(value.value), numberOf(value.confidence)};
}

json personState(const json& arguments)
{
  const KV::PersonState state(number(arguments, "valence"), number(arguments, "valenceConfidence"),
                              number(arguments, "attention"), number(arguments, "attentionConfidence"));
  return {{"valence", scored(state.personValence())},
          {"attention", scored(state.personAttention())},
          {"positive", scored(state.personEmotion(KV::Positive))},
          {"negative", scored(state.personEmotion(KV::Negative))},
          {"binary", state.personValenceBinary().value},
          {"unsmoothedBinary", state.personUnsmoothedValenceBinary().value},
          {"pleasure", static_cast<int>(state.personPleasureState())},
          {"zone", state.personAttentionZone()},
          {"message", state.emotionLogMessage()},
          {"text", written(state)}};
}

json description(const json& arguments)
{
  const int asked = arguments.at("description").get<int>();
  const json& query = arguments.at("query");
  if (query == "personEmotion")
    return {{"value", scored(KV::PersonState().personEmotion(static_cast<KV::PersonDescription>(asked)))}};
  if (query == "ambientActivityLevel")
    return {{"value", numberOf(KV::AmbianceState().ambientActivityLevel(static_cast<KV::AmbianceDescription>(asked)))}};
  const KV::BodyLanguageEase ease =
      KV::BodyLanguageState().bodyLanguageState(static_cast<KV::BodyLanguageDescription>(asked));
  return {{"value", {numberOf(ease.level), numberOf(ease.confidence)}}};
}

json boundary(const json& arguments)
{
  struct Boundary
  {
    void (*set)(float);
    float (*get)();
  };
  using KV::PersonState;
  static const std::map<std::string, Boundary> boundaries = {
      {"Positive", {PersonState::setBinaryBoundaryPositive, PersonState::getBinaryBoundaryPositive}},
      {"Negative", {PersonState::setBinaryBoundaryNegative, PersonState::getBinaryBoundaryNegative}},
      {"LookingAtRobot", {PersonState::setBinaryBoundaryLookingAtRobot, PersonState::getBinaryBoundaryLookingAtRobot}},
      {"StrictlyLookingAtRobot",
       {PersonState::setBinaryBoundaryStrictlyLookingAtRobot, PersonState::getBinaryBoundaryStrictlyLookingAtRobot}},
      {"Confidence", {PersonState::setBinaryBoundaryConfidence, PersonState::getBinaryBoundaryConfidence}},
      {"Excited", {KV::AmbianceState::setBinaryBoundaryExcited, KV::AmbianceState::getBinaryBoundaryExcited}}};
  const Boundary& asked = boundaries.at(arguments.at("boundary").get<std::string>());
  const float before = asked.get();
  asked.set(number(arguments, "value"));
  const float after = asked.get();
  asked.set(before);
  return {{"before", numberOf(before)}, {"after", numberOf(after)}};
}

json verdict(const json& arguments)
{
  KV::Verdict verdict;
  for (const json& state : arguments.at("states"))
    verdict.add(KV::PersonState(numberFrom(state.at(0)), numberFrom(state.at(1)), 0.f, 0.f));
  return {{"word", verdict.word()}};
}

/// One update of a new person; head and gaze are optional.
json attentionZone(const json& arguments)
{
  ko::ManualClock clock(startPlus(0));
  const ko::ScopedClockSource scope(clock);
  KV::PersonObservation observation;
  if (const auto head = arguments.find("head"); head != arguments.end())
    observation.headPosture = KV::Timestamped<KV::HeadPosture>(
        startPlus(0), KV::HeadPosture(number(*head, "yaw"), number(*head, "pitch"), 0.f));
  if (const auto gaze = arguments.find("gaze"); gaze != arguments.end())
    observation.gaze = KV::Timestamped<KV::Gaze>(startPlus(0), KV::Gaze(number(*gaze, "yaw"), number(*gaze, "pitch")));
  KV::Person person;
  person.update(observation);
  return {{"zone", static_cast<int>(person.personDescriptor().second)},
          {"name", person.personState.personAttentionZone()},
          {"attention", scored(person.personState.personAttention())}};
}

}  // namespace

float numberFrom(const json& number)
{
  if (!number.is_string())
    return static_cast<float>(number.get<double>());
  const auto text = number.get<std::string>();
  if (text == "NaN")
    return std::numeric_limits<float>::quiet_NaN();
  return text == "Infinity" ? std::numeric_limits<float>::infinity() : -std::numeric_limits<float>::infinity();
}

json numberOf(float number)
{
  if (std::isnan(number))
    return "NaN";
  if (std::isinf(number))
    return number > 0.f ? "Infinity" : "-Infinity";
  return static_cast<double>(number);
}

const std::map<std::string, Operation>& operations()
{
  using KV::classification::LinregMoodScore;
  using KV::classification::LogregMoodScore;
  static const std::map<std::string, Operation> known = {{"ambiance", &ambiance},
                                                         {"argmax", &argmax},
                                                         {"attentionzone", &attentionZone},
                                                         {"bodylanguage", &bodyLanguage},
                                                         {"bodylanguageease", &bodyLanguageEase},
                                                         {"boundary", &boundary},
                                                         {"description", &description},
                                                         {"emptymemory", &emptyMemory},
                                                         {"facialpoint", &facialPoint},
                                                         {"headposture", &headPosture},
                                                         {"linearregression", &regression<LinregMoodScore>},
                                                         {"logisticregression", &regression<LogregMoodScore>},
                                                         {"personstate", &personState},
                                                         {"ramp", &ramp},
                                                         {"shorttermmemory", &shortTermMemory},
                                                         {"verdict", &verdict}};
  return known;
}

}  // namespace tables
