#include "report/reportinputs.hpp"

#include <skeigiot/readings.hpp>

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace KV::session
{

namespace
{

using Number = std::function<float(const KV::PersonObservation&)>;

constexpr float missing = std::numeric_limits<float>::quiet_NaN();

/// A score with confidence 0 was not measured.
float numberOf(const KV::ValueConfidence<float>& score)
{
  return score.confidence == 0.f ? missing : score.value;
}

template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
float numberOf(T number)
{
  return static_cast<float>(number);
}

/// The numbers that readings consist of, by their names: "distance", "gaze.yaw", "expressions.joy". The points of a
/// face have no such numbers.
std::map<std::string, Number> numbersOfReadings()
{
  std::map<std::string, Number> all;
  forEachReading([&all](const auto& known) {
    using Value = typename std::decay_t<decltype(known)>::Value;
    if constexpr (!std::is_same_v<Value, KV::FacialPoints>)
      forEachPart<Value>([&all, known](const auto& part) {
        const bool isValue = std::string_view(part.name) == "value";
        all[isValue ? known.name : known.name + std::string(".") + part.name] =
            [known, part](const KV::PersonObservation& observation) {
              const auto& reading = known.in(observation);
              return reading ? numberOf(part.in(reading->value)) : missing;
            };
      });
  });
  return all;
}

ReportInputs makeReportInputs()
{
  const auto numbers = numbersOfReadings();
  return {{{"smile", numbers.at("smile"), false},
           {"joy", numbers.at("expressions.joy"), false},
           {"sorrow", numbers.at("expressions.sorrow"), false},
           {"anger", numbers.at("expressions.anger"), false},
           {"surprise", numbers.at("expressions.surprise"), false},
           {"calm", numbers.at("expressions.calm"), false},
           {"voiceJoy", numbers.at("voiceEmotion.joy"), false},
           {"voiceSorrow", numbers.at("voiceEmotion.sorrow"), false},
           {"voiceAnger", numbers.at("voiceEmotion.anger"), false},
           {"voiceCalm", numbers.at("voiceEmotion.calm"), false},
           {"headYaw", numbers.at("headPosture.yaw"), false},
           {"headPitch", numbers.at("headPosture.pitch"), false},
           {"gazeYaw", numbers.at("gaze.yaw"), false},
           {"gazePitch", numbers.at("gaze.pitch"), false},
           {"distance", numbers.at("distance"), false},
           {"headHeight", numbers.at("headHeight"), false},
           {"speaking", numbers.at("speaking"), false},
           {"speech", numbers.at("asrEmotion"), true},
           {"touch", numbers.at("touchEmotion"), true},
           {"context", numbers.at("contextEmotion.valence"), true}}};
}

}  // namespace

const ReportInputs& reportInputs()
{
  static const ReportInputs all = makeReportInputs();
  return all;
}

ReportInputValues reportInputsOf(const KV::PersonObservation& observation)
{
  ReportInputValues values{};
  std::transform(reportInputs().begin(), reportInputs().end(), values.begin(),
                 [&observation](const ReportInput& input) { return input.of(observation); });
  return values;
}

}  // namespace KV::session
