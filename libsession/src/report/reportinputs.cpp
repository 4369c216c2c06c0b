#include <skeigiot/session/reportinputs.hpp>

#include <algorithm>
#include <limits>

namespace KV::session
{

namespace
{

using KV::Expressions;
using KV::PersonObservation;
using Score = KV::ValueConfidence<float>;

constexpr float missing = std::numeric_limits<float>::quiet_NaN();

template <auto reading>
float number(const PersonObservation& observation)
{
  const auto& value = observation.*reading;
  return value ? static_cast<float>(value->value) : missing;
}

/// A score with confidence 0 was not measured.
float measured(const Score& score)
{
  return score.confidence == 0.f ? missing : score.value;
}

template <Score Expressions::*score>
float face(const PersonObservation& observation)
{
  return observation.expressions ? measured(observation.expressions->value.*score) : missing;
}

template <Score Expressions::*score>
float voice(const PersonObservation& observation)
{
  if (!observation.voiceEmotion)
    return missing;
  const Expressions& scores = observation.voiceEmotion->value;
  return measured(scores.*score);
}

float smile(const PersonObservation& observation)
{
  return observation.smile ? observation.smile->value.value : missing;
}

float headYaw(const PersonObservation& observation)
{
  return observation.headPosture ? observation.headPosture->value.yaw() : missing;
}

float headPitch(const PersonObservation& observation)
{
  return observation.headPosture ? observation.headPosture->value.pitch() : missing;
}

float gazeYaw(const PersonObservation& observation)
{
  return observation.gaze ? observation.gaze->value.yaw : missing;
}

float gazePitch(const PersonObservation& observation)
{
  return observation.gaze ? observation.gaze->value.pitch : missing;
}

float context(const PersonObservation& observation)
{
  return observation.contextEmotion ? static_cast<float>(observation.contextEmotion->value.valence) : missing;
}

}  // namespace

const ReportInputs& reportInputs()
{
  static const ReportInputs all{{{"smile", smile, false},
                                 {"joy", face<&Expressions::joy>, false},
                                 {"sorrow", face<&Expressions::sorrow>, false},
                                 {"anger", face<&Expressions::anger>, false},
                                 {"surprise", face<&Expressions::surprise>, false},
                                 {"calm", face<&Expressions::calm>, false},
                                 {"voiceJoy", voice<&Expressions::joy>, false},
                                 {"voiceSorrow", voice<&Expressions::sorrow>, false},
                                 {"voiceAnger", voice<&Expressions::anger>, false},
                                 {"voiceCalm", voice<&Expressions::calm>, false},
                                 {"headYaw", headYaw, false},
                                 {"headPitch", headPitch, false},
                                 {"gazeYaw", gazeYaw, false},
                                 {"gazePitch", gazePitch, false},
                                 {"distance", number<&PersonObservation::distance>, false},
                                 {"headHeight", number<&PersonObservation::headHeight>, false},
                                 {"speaking", number<&PersonObservation::speaking>, false},
                                 {"speech", number<&PersonObservation::asrEmotion>, true},
                                 {"touch", number<&PersonObservation::touchEmotion>, true},
                                 {"context", context, true}}};
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
