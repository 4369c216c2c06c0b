#include "personstateprivate.hpp"

#include "age.hpp"
#include "ageweight.hpp"
#include "clamp.hpp"
#include "forces.hpp"
#include "forcewatch.hpp"
#include "initialisedearly.hpp"
#include "personmemoryprivate.hpp"
#include "softstep.hpp"

#include <skeigiot/classification/argmaxclassifiertype.hpp>
#include <skeigiot/classification/moodclass.hpp>
#include <skeigiot/classification/moodclassifier.hpp>
#include <skeigiot/personmemory.hpp>
#include <skeigiot/personobservation.hpp>

#include <boost/container/small_vector.hpp>
#include <boost/thread/lock_guard.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace KV
{

using classification::ArgmaxClassifierType;
using classification::LogregMoodScore;
using classification::MoodClass;
using classification::MoodClassifier;
using ko::human::AttentionState;

SKEIGIOT_INITIALISED_EARLY const LogregMoodScore PersonStatePrivate::_reg_pos(LogregMoodScore::COEFFICIENT_POS());
SKEIGIOT_INITIALISED_EARLY const LogregMoodScore PersonStatePrivate::_reg_neu(LogregMoodScore::COEFFICIENT_NEU());
SKEIGIOT_INITIALISED_EARLY const LogregMoodScore PersonStatePrivate::_reg_neg(LogregMoodScore::COEFFICIENT_NEG());

namespace
{

/// How hard the sources pull: factors of their weights.
namespace gain
{
constexpr float emotion = 0.65f;  // every source of valence but body language, and the attention
constexpr float confidence = 0.7f;
constexpr float bodyLanguage = 0.065f;
constexpr float voiceScore = 0.7f;
constexpr float speaking = 0.5f;
constexpr float noWinner = 0.5f;
}  // namespace gain

/// At which age [s] a reading's weight has fallen to one half.
namespace halfLife
{
constexpr float facialPoints = 3.f;
constexpr float speaking = 2.f;
constexpr float angles = 1.f;
constexpr float asr = 4.f;
constexpr float touch = 4.f;
constexpr float anySource = 2.5f;
}  // namespace halfLife

/// The weights that each update needs often, by age in milliseconds.
using FacialPointsWeights = AgeWeights<inMilliseconds(halfLife::facialPoints)>;
using AngleWeights = AgeWeights<inMilliseconds(halfLife::angles)>;
using AsrWeights = AgeWeights<inMilliseconds(halfLife::asr)>;
using TouchWeights = AgeWeights<inMilliseconds(halfLife::touch)>;

/// The age [s] from which on a reading does not count.
namespace lifetime
{
constexpr float speaking = 4.f;
constexpr float angles = 1.f;
constexpr float robotHead = 1.f;
}  // namespace lifetime

/// The meaning of head and gaze angles [deg].
namespace angle
{
constexpr float frontalFace = 20.f;  // half trust in the expressions of a face turned this far
constexpr float attentiveHead = 15.f;
constexpr float attentiveGaze = 20.f;
constexpr float deadBand = 0.3f;     // an attention estimate is kept while its angle moves by less
constexpr float gazeOnlyYaw = 10.f;  // below this head yaw the gaze alone decides
constexpr float evenYaw = 30.f;      // here head and gaze count alike
constexpr float headOnlyYaw = 35.f;  // above this head yaw the head alone decides
constexpr float lostYaw = 40.f;      // beyond these head angles the person has no zone
constexpr float lostPitch = 30.f;
constexpr float headZoneYaw = 15.f;
constexpr float gazeZoneYaw = 12.f;
constexpr float zonePitch = 10.f;
constexpr float robotYawStep = 7.f;  // half trust in a robot head that turned this far
constexpr float robotPitchStep = 3.5f;
}  // namespace angle

constexpr float robotAtRest = 0.95f;  // weights from here on mean that the robot's head did not move; they do not count
constexpr float robotShare = 0.2f;    // of the attention confidence; the rest is the sensor's
constexpr float sensorShare = 0.8f;
constexpr float attendingTarget = 0.9f;   // an attention target from here on is the robot's own zone
constexpr float headDecidesZone = 0.35f;  // a head's share from here on makes its yaw decide the zone

constexpr float touchTarget(std::int32_t touch)
{
  return touch > 0 ? 1.f : -1.f;  // Deliberate: 0 is unpleasant.
}

constexpr float asrTarget(float asr)
{
  return asr < 0.f ? -1.f : 1.f;
}

/// How far a head is turned away: two thirds of its yaw and one third of its pitch.
float headMagnitude(float yaw, float pitch)
{
  const double x = 2.0 * static_cast<double>(yaw) / 3.0;
  const double y = static_cast<double>(pitch) / 3.0;
  return static_cast<float>(std::sqrt(x * x + y * y));
}

float gazeMagnitude(float yaw, float pitch)
{
  const auto x = static_cast<double>(yaw);
  const auto y = static_cast<double>(pitch);
  return static_cast<float>(std::sqrt(x * x + y * y));
}

/// The head's share in the attention by the head's mean yaw: 0 below 10 deg, 1 above 35 deg. The gaze has the rest.
///
/// Deliberate: it jumps at both ends. A NaN yaw leaves the gaze alone.
float headShare(float meanYaw)
{
  const float yaw = std::fabs(meanYaw);
  if (yaw > angle::headOnlyYaw)
    return 1.f;
  if (yaw >= angle::gazeOnlyYaw)
    return 1.f - PersonStatePrivate::_computeWeightSmoothed(yaw, angle::evenYaw);
  return 0.f;
}

/// A mean of angles, weighted by their ages.
class MeanAngles
{
public:
  void add(float yaw, float pitch, float weight)
  {
    _yawSum += weight * yaw;
    _pitchSum += weight * pitch;
    _weightSum += weight;
  }

  float yaw() const { return _yawSum / _weightSum; }
  float pitch() const { return _pitchSum / _weightSum; }

private:
  float _yawSum = 0.f;
  float _pitchSum = 0.f;
  float _weightSum = 0.f;
};

/// One update of one state: run() has the order of the sources; each source acts on the result of those before it.
class StateUpdate
{
public:
  StateUpdate(PersonStatePrivate& state, const PersonObservation& observation, PersonMemoryPrivate& memory,
              DiagnosticText& trace)
    : _state(state), _observation(observation), _memory(memory), _trace(trace)
  {}

  void run()
  {
    _trace << "State updated with:\n";
    _weighFacialPoints();
    _weighSpeaking();
    _takeOverReadings();
    _trustFrontalFaces();
    _pullByFaceCharacteristics();
    _pullBySmile();
    _followHead();
    _followGaze();
    _pullByVoice();
    _pullByRememberedEmotions();

    if (_valenceObserved)
      _limitValenceConfidence();
    else
      _decayValence();

    if (_attentionObserved)
      _pullAttention();
    else
      _decayAttention();

    _report();
  }

private:
  /// Prunes the memory and hands its records to `read`, newest first, under the memory's mutex; returns the result of
  /// `read`.
  ///
  /// Forces act after the mutex is released, so an observer of forces may use the memory.
  template <typename T, typename Read>
  static auto _readPruned(ShortTermMemory<T>& memory, Read read)
  {
    const boost::lock_guard<boost::mutex> lock(memory.mutex());
    memory._forgetOld();
    return read(memory.records());
  }

  // Sources of the valence confidence

  /// Well seen facial points raise the valence confidence towards their own.
  void _weighFacialPoints()
  {
    struct Seen
    {
      float confidence;
      float weight;
    };
    const auto seen = _readPruned(_memory.facialPointsMemory, [](const auto& records) -> std::optional<Seen> {
      if (records.empty())
        return std::nullopt;
      float confidenceSum = 0.f;
      float weightSum = 0.f;
      for (const Timestamped<FacialPoints>& record : records)
      {
        const float weight = FacialPointsWeights::at(ageInMs(record.time));
        confidenceSum += weight * record.value.globalConfidence();
        weightSum += weight;
      }
      const float confidence = maximum(0.f, confidenceSum / weightSum);
      return Seen{confidence, FacialPointsWeights::at(ageInMs(records.begin()->time))};
    });
    if (!seen)
    {
      _trace << "\t - NO FACIAL POINTS IN MEMORY\n";
      return;
    }
    _trace << "\t - Confidence: " << seen->confidence << " with weight " << seen->weight << '\n';
    _state._applyForceValenceConfidence(seen->confidence * seen->weight, gain::confidence, "Points confidence");
  }

  /// A speaking mouth shows less of the mood.
  void _weighSpeaking()
  {
    const auto age = _readPruned(_memory.speakingMemory, [](const auto& records) -> std::optional<float> {
      for (const Timestamped<bool>& record : records)
      {
        if (!record.value)
          continue;
        const float ageOfRecord = ageInSeconds(record.time);
        if (ageOfRecord < lifetime::speaking)
          return ageOfRecord;
      }
      return std::nullopt;
    });
    if (!age)
      return;
    _state._applyForceValenceConfidence(0.f, gain::speaking * softStep(*age, halfLife::speaking), "User is speaking");
    _speaking = true;
  }

  // Readings of the observation itself

  void _takeOverReadings()
  {
    _newSmile = _takeOverIfNew(_observation.smile, SmileChannel, _state.smile);
    _newExpressions = _takeOverIfNew(_observation.expressions, ExpressionsChannel, _state.expressions);
    if (_observation.gaze)
      _state.gaze = _observation.gaze->value;
    if (_observation.headPosture)
      _state.headAngles = _observation.headPosture->value;
  }

  /// Keeps the reading and its time if it is there and its time differs from the kept one; returns whether it did.
  template <typename T>
  bool _takeOverIfNew(const PersonObservation::Reading<T>& reading, ObservationChannel channel, T& kept)
  {
    if (!_isNew(reading, channel))
      return false;
    kept = reading->value;
    return true;
  }

  /// Returns whether the reading is there and was not seen before, and keeps its time.
  template <typename T>
  bool _isNew(const PersonObservation::Reading<T>& reading, ObservationChannel channel)
  {
    if (!reading || reading->time == _state.lastObservationTimes[channel])
      return false;
    _state.lastObservationTimes[channel] = reading->time;
    return true;
  }

  /// A face that is turned away lowers the trust in its expressions.
  void _trustFrontalFaces()
  {
    _readPruned(_memory.headPostureMemory, [this](const auto& records) {
      if (records.empty())
        return;
      const HeadPosture& youngest = records.begin()->value;
      const float trust = softStep(headMagnitude(youngest.yaw(), youngest.pitch()), angle::frontalFace);
      Expressions& kept = _state.expressions;
      for (ValueConfidence<float>* score : {&kept.calm, &kept.anger, &kept.joy, &kept.sorrow, &kept.surprise})
        score->confidence = trust;
    });
  }

  // Sources of the valence

  /// New expressions of a silent face pull the valence to the mood class that wins, if one does.
  void _pullByFaceCharacteristics()
  {
    if (_speaking || !_newExpressions)
      return;

    std::vector<MoodClass> classes = {MoodClass("positive", 1, PersonStatePrivate::_reg_pos),
                                      MoodClass("neutral", 0, PersonStatePrivate::_reg_neu),
                                      MoodClass("negative", -1, PersonStatePrivate::_reg_neg)};
    const Expressions& kept = _state.expressions;
    const std::vector<float> features = {_state.smile.value * _state.smile.confidence, kept.calm.value, kept.joy.value,
                                         kept.anger.value, kept.sorrow.value};
    for (MoodClass& moodClass : classes)
      moodClass.calculateScore(features);

    if (const std::optional<std::int32_t> winner = _winnerOf(classes))
      _pullValence(static_cast<float>(*winner), gain::emotion, "Face characteristics");
    else
      _state._applyForceValenceConfidence(0.f, gain::noWinner, "Winner unknown");
  }

  /// Returns the value of the winning class, or nothing if there is no clear winner.
  static std::optional<std::int32_t> _winnerOf(std::vector<MoodClass>& classes)
  {
    static const ArgmaxClassifierType argMax(0.f);
    try
    {
      return MoodClassifier(argMax).classify(classes).value;
    }
    catch (const std::runtime_error&)
    {
      return std::nullopt;
    }
  }

  /// While the person speaks, a new smile replaces the expressions.
  ///
  /// Deliberate: a new smile of a silent person moves nothing by itself.
  void _pullBySmile()
  {
    if (_newSmile && _speaking)
      _pullValence(_state.smile.value, _state.smile.confidence * gain::emotion, "Smile");
  }

  void _pullByVoice()
  {
    if (!_isNew(_observation.voiceEmotion, VoiceChannel))
      return;
    PersonStatePrivate::_warnIfObservationOld(ageInMs(_observation.voiceEmotion->time), "Voice Emotion");

    const VoiceEmotion& voice = _observation.voiceEmotion->value;
    _pullByVoiceScore(voice.calm(), 0.f);
    _pullByVoiceScore(voice.anger(), -1.f);
    _pullByVoiceScore(voice.joy(), 1.f);
    _pullByVoiceScore(voice.sorrow(), -0.5f);
  }

  void _pullByVoiceScore(const ValueConfidence<float>& score, float target)
  {
    _pullValence(target, (score.value * gain::voiceScore) * gain::emotion, "Voice emotion");
  }

  /// Every remembered speech, touch and context emotion pulls in every cycle, newest first.
  void _pullByRememberedEmotions()
  {
    const boost::lock_guard<boost::mutex> lock(_state.observationsMutex);
    _pullByMemory(_memory.asrEmotionMemory, AsrChannel, "Asr emotion", [](float asr, std::int64_t age) {
      return Pull{asrTarget(asr), AsrWeights::at(age) * gain::emotion};
    });
    _pullByMemory(_memory.touchEmotionMemory, TouchChannel, "Touch emotion", [](std::int32_t touch, std::int64_t age) {
      return Pull{touchTarget(touch), TouchWeights::at(age) * gain::emotion};
    });
    _pullByMemory(
        _memory.contextEmotionMemory, ContextChannel, "Context emotion",
        [](const ContextEmotion& context, std::int64_t age) {
          return Pull{static_cast<float>(context.valence), LifetimeWeights::at(age, context.lifetime) * gain::emotion};
        });
  }

  /// Keeps the time of the youngest record, and pulls the valence by each record's force; `forceOf` returns the force
  /// of a value and its age [ms].
  ///
  /// The values are read, with their ages, under the memory's mutex; the forces act without it. While forces are
  /// observed, the values are copied, and each age is read just before its forces instead, since they read the clock
  /// for their times: so the clock is read in one order, observed or not. If the clock fails, the forces of the records
  /// before it remain.
  ///
  /// Inlined always: the source is a constant at each call.
  template <typename T, typename ForceOf>
  __attribute__((always_inline)) void _pullByMemory(ShortTermMemory<T>& memory, ObservationChannel channel,
                                                    std::string_view source, ForceOf forceOf)
  {
    const bool observed = ForceWatch::isOn();
    boost::container::small_vector<Timestamped<T>, 16> observedRecords;
    Pulls forces;  // of the others
    const auto pullOneByOne = [&] {
      for (const Pull& force : forces)
        _pullValence(force.target, force.weight, source);
    };
    try
    {
      _readPruned(memory, [&](const auto& records) {
        if (records.empty())
          return;
        _state.lastObservationTimes[channel] = records.begin()->time;
        if (observed)
        {
          observedRecords.assign(records.begin(), records.end());
          return;
        }
        forces.reserve(records.size());
        for (const Timestamped<T>& record : records)
          forces.push_back(forceOf(record.value, ageInMs(record.time)));
      });
    }
    catch (...)
    {
      pullOneByOne();
      throw;
    }
    if (ForceWatch::isOn())
      pullOneByOne();
    else if (!forces.empty())
      _pullValenceUnobserved(forces, source);
    for (const Timestamped<T>& record : observedRecords)
    {
      const Pull force = forceOf(record.value, ageInMs(record.time));
      _pullValence(force.target, force.weight, source);
    }
  }

  /// As _pullValence() for each of the forces, which are not empty.
  __attribute__((always_inline)) void _pullValenceUnobserved(const Pulls& forces, std::string_view source)
  {
    applyForces("valence", forces, source, _state.valenceMutex,  // GCOV_EXCL_LINE
                Pulled<clampValence>{ValenceQuantity, _state.valence.value},
                Pulled<clampValence>{UnsmoothedValenceQuantity, _state.unsmoothedValence.value});
    _valenceObserved = true;
    _state.hadValenceEvidence = true;
  }

  void _pullValence(float target, float weight, std::string_view source)
  {
    _state._applyForceValence(target, weight, source);
    _valenceObserved = true;
    _state.hadValenceEvidence = true;
  }

  // Head and gaze

  /// A recent head posture pulls the valence by its body language, and shows how much attention the person pays.
  void _followHead()
  {
    const bool seenLately = _readPruned(_memory.headPostureMemory, [this](const auto& records) {
      if (records.empty())
        return false;
      _state.lastObservationTimes[HeadPostureChannel] = records.begin()->time;
      return ageInSeconds(records.begin()->time) < lifetime::angles;
    });
    if (!seenLately)
      return;

    const BodyLanguageEase ease = _state.bodyLanguageState.bodyLanguageState(BodyLanguageEaseDescription);
    _state._applyForceValence(ease.level, gain::bodyLanguage, "Body Language");

    const std::optional<MeanAngles> mean = _meanOfHeadPostures();
    if (!mean)
      return;
    _meanHeadYaw = mean->yaw();
    _meanHeadPitch = mean->pitch();
    _headShare = headShare(_meanHeadYaw);
    _estimateAttention(HeadAttention, headMagnitude(_meanHeadYaw, _meanHeadPitch), angle::attentiveHead);
    _reportAttention("head", _meanHeadYaw, _meanHeadPitch, HeadAttention);
  }

  /// Nothing if the memory is empty, which an observer of forces can cause.
  std::optional<MeanAngles> _meanOfHeadPostures()
  {
    const boost::lock_guard<boost::mutex> lock(_memory.headPostureMemory.mutex());
    const auto& records = _memory.headPostureMemory.records();
    if (records.empty())
      return std::nullopt;
    MeanAngles mean;
    for (const Timestamped<HeadPosture>& record : records)
      mean.add(record.value.yaw(), record.value.pitch(), AngleWeights::at(ageInMs(record.time)));
    return mean;
  }

  /// A recent gaze shows how much attention the person pays.
  void _followGaze()
  {
    _readPruned(_memory.gazeMemory, [this](const auto& records) {
      if (records.empty() || !(ageInSeconds(records.begin()->time) < lifetime::angles))
        return;
      _state.lastObservationTimes[GazeChannel] = records.begin()->time;

      MeanAngles mean;
      for (const Timestamped<Gaze>& record : records)
        mean.add(record.value.yaw, record.value.pitch, AngleWeights::at(ageInMs(record.time)));
      _meanGazeYaw = mean.yaw();
      _meanGazePitch = mean.pitch();
      _estimateAttention(GazeAttention, gazeMagnitude(_meanGazeYaw, _meanGazePitch), angle::attentiveGaze);
      _reportAttention("gaze", _meanGazeYaw, _meanGazePitch, GazeAttention);
    });
  }

  /// Estimates the channel's attention again, unless its angle has hardly moved since the previous cycle.
  ///
  /// Deliberate: a slow drift, or a NaN difference, never renews the estimate, since the angle is kept in any case.
  void _estimateAttention(AttentionChannel channel, float magnitude, float reference)
  {
    if (std::fabs(magnitude - _state.attentionAngles[channel]) >= angle::deadBand)
      _state.attentionEstimates[channel] = PersonStatePrivate::_computeWeightSmoothed(magnitude, reference);
    _state.attentionAngles[channel] = magnitude;
    _attentionObserved = true;
  }

  void _reportAttention(const char* what, float yaw, float pitch, AttentionChannel channel)
  {
    _trace << "Final value of " << what << ": " << yaw << " | " << pitch << " | " << _state.attentionEstimates[channel]
           << '\n';
  }

  // Without a source, and with one

  /// How much the last reading of a group of sources still counts, at the age `ageInMs`.
  static float _silenceWeight(std::int64_t ageInMs)
  {
    return ageInMs < 1 ? 0.f : weightOfAge(ageInMs, halfLife::anySource);
  }

  /// Without any source the valence drifts to neutral; the longer all have been silent, the faster.
  void _decayValence()
  {
    const float weight = _silenceWeight(_state._lastTimeStampedObservationValence());
    _trace << "No valence observations\nforce: " << weight << '\n';
    _state._applyForceValence(0.f, (1.f - weight) * gain::emotion, "No observation");
    _state._applyForceValenceConfidence(0.f, gain::confidence, "No observation");
  }

  void _limitValenceConfidence()
  {
    _keepHeadHeight();
    _state._handleOkaoValenceLimitations(_distance(), _state.headHeight);
  }

  void _decayAttention()
  {
    const float weight = _silenceWeight(_state._lastTimeStampedObservationAttention());
    _trace << "No attention observations\n";
    _state._applyForceAttention(0.f, (1.f - weight) * gain::emotion, "No observation");
    _state._applyForceAttentionConfidence(0.f, gain::confidence, "No observation");
    _state._setAttentionZone(AttentionState::Unknown, NoAttentionEvidence);
  }

  void _pullAttention()
  {
    _keepHeadHeight();
    const float ceiling = _state._handleOkaoAttentionLimitations(_distance(), _state.headHeight);
    const float confidence = sensorShare * ceiling + robotShare * _robotMovementFactor();
    _state._applyForceAttentionConfidence(confidence, gain::confidence, "Okao and robot movement limits");

    const float byHead = _state.attentionEstimates[HeadAttention];
    const float byGaze = _state.attentionEstimates[GazeAttention];
    const float target = _headShare * byHead + (1.f - _headShare) * byGaze;
    _state._applyForceAttention(target, gain::emotion, "Gaze and head based attention");
    _decideZone(target);
  }

  /// 1 for a robot head at rest, less if it moved lately: its images are blurred, and its angles late.
  float _robotMovementFactor()
  {
    float sum = 0.f;
    float count = 0.f;
    const auto countIfMoved = [&](float weight) {
      if (!(weight < robotAtRest))
        return;
      sum += weight;
      count += 1.f;
    };
    _readPruned(_memory.robotHeadPostureMemory, [&](const auto& records) {
      const RobotHeadPosture* newer = nullptr;
      for (const Timestamped<RobotHeadPosture>& record : records)
      {
        if (!(ageInSeconds(record.time) < lifetime::robotHead))
          continue;
        const RobotHeadPosture& current = record.value;
        const RobotHeadPosture& before = newer ? *newer : current;
        countIfMoved(softStep(std::fabs(before.yaw - current.yaw), angle::robotYawStep));
        countIfMoved(softStep(std::fabs(before.pitch - current.pitch), angle::robotPitchStep));
        newer = &current;
      }
    });
    return count > 0.f ? sum / count : 1.f;
  }

  /// Decides to which zone the person attends.
  ///
  /// Deliberate: the row comes from the gaze alone; the head's pitch only decides whether there is a zone at all.
  void _decideZone(float attentionTarget)
  {
    if (std::fabs(_meanHeadPitch) > angle::lostPitch || std::fabs(_meanHeadYaw) > angle::lostYaw)
      _state._setAttentionZone(AttentionState::Unknown, HeadTurnedAwayEvidence);
    else if (attentionTarget >= attendingTarget)
      _state._setAttentionZone(AttentionState::LookingAtRobot, AttentionEvidence);
    else if (_headShare >= headDecidesZone)
      _state._setAttentionZone(_zone(_meanHeadYaw, angle::headZoneYaw, "head"), HeadEvidence);
    else
      _state._setAttentionZone(_zone(_meanGazeYaw, angle::gazeZoneYaw, "gaze"), GazeEvidence);
  }

  AttentionState _zone(float yaw, float yawThreshold, std::string_view method) const
  {
    return PersonStatePrivate::_computeAttentionZone(yaw, _meanGazePitch, yawThreshold, angle::zonePitch, method);
  }

  void _keepHeadHeight()
  {
    if (!_observation.headHeight)
      return;
    const boost::lock_guard<boost::mutex> lock(_state.headHeightMutex);
    _state.headHeight = _observation.headHeight->value;
  }

  float _distance() const { return _observation.distance ? _observation.distance->value : 0.f; }

  void _report()
  {
    _trace << "Computed states:\n";
    _reportQuantity("Valence: ", _state.valence);
    _reportQuantity("Attention: ", _state.attention);
  }

  void _reportQuantity(const char* title, const ValueConfidence<float>& quantity)
  {
    _trace << title << "\n\t - Value: \t" << quantity.value << "\n\t - Confidence: \t" << quantity.confidence << '\n';
  }

  PersonStatePrivate& _state;
  const PersonObservation& _observation;
  PersonMemoryPrivate& _memory;
  DiagnosticText& _trace;

  bool _valenceObserved = false;
  bool _attentionObserved = false;
  bool _speaking = false;
  bool _newSmile = false;
  bool _newExpressions = false;

  float _headShare = 0.f;
  float _meanHeadYaw = 0.f;  // all four [deg], 0 when the reading is missing or too old
  float _meanHeadPitch = 0.f;
  float _meanGazeYaw = 0.f;
  float _meanGazePitch = 0.f;
};

}  // namespace

void PersonStatePrivate::__update(const PersonObservation& observation, const PersonMemory& memory)
{
  DiagnosticText trace;
  __update(observation, memory, trace);
}

void PersonStatePrivate::__update(const PersonObservation& observation, const PersonMemory& memory,
                                  DiagnosticText& trace)
{
  if (attentionAngles.empty())
    attentionAngles = initialAttentionAngles();
  if (attentionEstimates.empty())
    attentionEstimates = initialAttentionEstimates();
  StateUpdate(*this, observation, *memory._p, trace).run();
}

}  // namespace KV
