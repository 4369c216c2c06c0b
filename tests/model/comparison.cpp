#include "model/comparison.hpp"

#include "bodylanguagestateprivate.hpp"
#include "model/translation.hpp"
#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string_view>

namespace model
{

namespace
{

std::uint32_t bitsOf(float value)
{
  std::uint32_t bits = 0;
  static_assert(sizeof(bits) == sizeof(value));
  std::memcpy(&bits, &value, sizeof(bits));
  return bits;
}

bool same(float a, float b)
{
  return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

template <typename T>
bool same(const T& a, const T& b)
{
  return a == b;
}

/// Keeps the first difference.
class Comparison
{
public:
  const std::string& firstDifference() const { return _firstDifference; }

  /// `part` names the compared part of the field.
  template <typename T>
  void compare(std::string_view field, const T& library, const T& model, std::string_view part = "")
  {
    if (!_firstDifference.empty() || same(library, model))
      return;
    std::ostringstream text;
    text << std::hexfloat << field << part << ": library " << library << ", model " << model;
    _firstDifference = text.str();
  }

  void compare(std::string_view field, const KV::ValueConfidence<float>& library, const Scored& model)
  {
    compare(field, library.value, model.value, ".value");
    compare(field, library.confidence, model.confidence, ".confidence");
  }

  template <typename L, typename M>
  void compare(std::string_view memory, const KV::ShortTermMemory<L>& library, const Memory<M>& model)
  {
    compare(memory, library.records().size(), model.readings.size(), ".size");
    if (!library.records().empty() && !model.readings.empty())
      compare(memory, toNanoseconds(library.records().begin()->time), model.readings.front().time, ".newest");
  }

private:
  std::string _firstDifference;
};

void compareEstimates(Comparison& comparison, const KV::PersonStatePrivate& library, const State& model)
{
  comparison.compare("valence", library.valence, model.valence);
  comparison.compare("unsmoothedValence", library.unsmoothedValence, model.unsmoothedValence);
  comparison.compare("attention", library.attention, model.attention);
  comparison.compare("attentionZone", static_cast<int>(library.attentionZone), model.attentionZone);
  comparison.compare("attentionAngles.size", library.attentionAngles.size(), std::size_t{2});
  comparison.compare("attentionAngles[0]", library.attentionAngles.at(KV::HeadAttention), model.headMagnitude);
  comparison.compare("attentionAngles[1]", library.attentionAngles.at(KV::GazeAttention), model.gazeMagnitude);
  comparison.compare("attentionEstimates.size", library.attentionEstimates.size(), std::size_t{2});
  comparison.compare("attentionEstimates[0]", library.attentionEstimates.at(KV::HeadAttention), model.headAttention);
  comparison.compare("attentionEstimates[1]", library.attentionEstimates.at(KV::GazeAttention), model.gazeAttention);
  const KV::BodyLanguageEase& ease = library.bodyLanguageState._p->ease;
  comparison.compare("ease.level", ease.level, model.ease.value);
  comparison.compare("ease.confidence", ease.confidence, model.ease.confidence);
}

void compareKeptReadings(Comparison& comparison, const KV::PersonStatePrivate& library, const State& model)
{
  comparison.compare("smile", library.smile.smile(), model.smile);
  comparison.compare("gaze.yaw", library.gaze.yaw, model.gaze.yaw);
  comparison.compare("gaze.pitch", library.gaze.pitch, model.gaze.pitch);
  comparison.compare("headAngles.yaw", library.headAngles.yaw(), model.headAngles.yaw);
  comparison.compare("headAngles.pitch", library.headAngles.pitch(), model.headAngles.pitch);
  comparison.compare("headAngles.roll", library.headAngles.roll(), model.headAngles.roll);
  comparison.compare("headHeight", library.headHeight, model.headHeight);
  comparison.compare("expressions.calm", library.expressions.calm, model.expressions.calm);
  comparison.compare("expressions.anger", library.expressions.anger, model.expressions.anger);
  comparison.compare("expressions.joy", library.expressions.joy, model.expressions.joy);
  comparison.compare("expressions.sorrow", library.expressions.sorrow, model.expressions.sorrow);
  comparison.compare("expressions.laughter", library.expressions.laughter, model.expressions.laughter);
  comparison.compare("expressions.excitement", library.expressions.excitement, model.expressions.excitement);
  comparison.compare("expressions.surprise", library.expressions.surprise, model.expressions.surprise);
  comparison.compare("frequencyGaze", library.frequencyGaze, 1000.f);  // no update touches the frequencies
  comparison.compare("frequencyFace", library.frequencyFace, 1000.f);
}

void compareLastTimes(Comparison& comparison, const KV::PersonStatePrivate& library, const State& model)
{
  const auto compare = [&](std::string_view name, KV::ObservationChannel channel, Nanoseconds expected) {
    comparison.compare(name, toNanoseconds(library.lastObservationTimes.at(channel)), expected);
  };
  compare("lastObservationTimes[0] (head posture)", KV::HeadPostureChannel, model.lastHeadPosture);
  compare("lastObservationTimes[1] (smile)", KV::SmileChannel, model.lastSmile);
  compare("lastObservationTimes[2] (expressions)", KV::ExpressionsChannel, model.lastExpressions);
  compare("lastObservationTimes[3] (voice emotion)", KV::VoiceChannel, model.lastVoiceEmotion);
  compare("lastObservationTimes[4] (asr emotion)", KV::AsrChannel, model.lastAsrEmotion);
  compare("lastObservationTimes[5] (gaze)", KV::GazeChannel, model.lastGaze);
  compare("lastObservationTimes[6] (touch emotion)", KV::TouchChannel, model.lastTouchEmotion);
  compare("lastObservationTimes[7] (context emotion)", KV::ContextChannel, model.lastContextEmotion);
}

void compareMemories(Comparison& comparison, const KV::PersonMemoryPrivate& library, const Memories& model)
{
  comparison.compare("headPostureMemory", library.headPostureMemory, model.headPosture);
  comparison.compare("distanceMemory", library.distanceMemory, model.distance);
  comparison.compare("lookingAtRobotMemory", library.lookingAtRobotMemory, model.lookingAtRobot);
  comparison.compare("smileMemory", library.smileMemory, model.smile);
  comparison.compare("gazeMemory", library.gazeMemory, model.gaze);
  comparison.compare("expressionsMemory", library.expressionsMemory, model.expressions);
  comparison.compare("genderMemory", library.genderMemory, model.gender);
  comparison.compare("ageMemory", library.ageMemory, model.age);
  comparison.compare("faceDetectedMemory", library.faceDetectedMemory, model.faceDetected);
  comparison.compare("facialPointsMemory", library.facialPointsMemory, model.facialPoints);
  comparison.compare("touchEmotionMemory", library.touchEmotionMemory, model.touchEmotion);
  comparison.compare("asrEmotionMemory", library.asrEmotionMemory, model.asrEmotion);
  comparison.compare("contextEmotionMemory", library.contextEmotionMemory, model.contextEmotion);
  comparison.compare("speakingMemory", library.speakingMemory, model.speaking);
  comparison.compare("robotHeadPostureMemory", library.robotHeadPostureMemory, model.robotHeadPosture);
}

void compareQueries(Comparison& comparison, const KV::PersonState& library, const State& model)
{
  comparison.compare("personValence()", library.personValence(), model.valence);
  comparison.compare("personAttention()", library.personAttention(), model.attention);
  comparison.compare("personValenceBinary()", library.personValenceBinary().value, ternary(model.valence.value));
  comparison.compare("personUnsmoothedValenceBinary()", library.personUnsmoothedValenceBinary().value,
                     ternary(model.unsmoothedValence.value));
  comparison.compare("personPleasureState()", static_cast<int>(library.personPleasureState()),
                     static_cast<int>(pleasure(model.valence)));
  comparison.compare("personAttentionZone()", library.personAttentionZone(), zoneName(model.attentionZone));
}

}  // namespace

std::string firstDifference(const KV::Person& library, const Person& person)
{
  Comparison comparison;
  compareEstimates(comparison, *library.personState._p, person.state);
  compareKeptReadings(comparison, *library.personState._p, person.state);
  compareLastTimes(comparison, *library.personState._p, person.state);
  compareMemories(comparison, *library.personMemory._p, person.memories);
  compareQueries(comparison, library.personState, person.state);
  return comparison.firstDifference();
}

}  // namespace model
