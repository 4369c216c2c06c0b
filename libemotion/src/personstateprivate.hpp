#pragma once

#include <skeigiot/bodylanguagestate.hpp>
#include <skeigiot/classification/logregmoodscore.hpp>
#include <skeigiot/expressions.hpp>
#include <skeigiot/forceobserver.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/smile.hpp>
#include <skeigiot/valueconfidence.hpp>

#include "diagnostictext.hpp"

#include <ko/human/attentionstate.hpp>
#include <ko/systemclock.hpp>

#include <boost/thread/mutex.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace KV
{

class PersonMemory;
struct PersonObservation;

/// The attention zones by row (up, level, down) and column (left, centre, right): index row * 3 + column.
extern const std::array<ko::human::AttentionState, 9> attentionZones;

/// The channels whose last time stamp the state keeps.
enum ObservationChannel : std::size_t
{
  HeadPostureChannel,  ///< youngest of the memory
  SmileChannel,        ///< from the observation
  ExpressionsChannel,  ///< from the observation
  VoiceChannel,        ///< from the observation
  AsrChannel,          ///< youngest of the memory
  GazeChannel,         ///< youngest of the memory
  TouchChannel,        ///< youngest of the memory
  ContextChannel,      ///< youngest of the memory
  ObservationChannelCount
};

/// The channels from which the attention is mixed.
enum AttentionChannel : std::size_t
{
  HeadAttention,
  GazeAttention,
  AttentionChannelCount
};

/// The record behind PersonState.
///
/// Estimates move only by forces: a quantity q becomes q + weight * (target - q), then clamped. The values of the
/// valences lie in [-1, 1], everything else in [0, 1].
///
/// Where two locks are held, observationsMutex is taken first, then the mutex of a memory or of a quantity.
struct PersonStatePrivate
{
  PersonStatePrivate();

  /// Makes the record that a clone of the state gets: mutexes of its own, and the other's values with four exceptions.
  ///
  /// Deliberate: the body-language record is shared, the unsmoothed valence starts at 0 with confidence 0, the two
  /// attention vectors are empty (the next update fills them with the defaults), and no observation time is kept (all
  /// are 0, unlike a new record's).
  PersonStatePrivate(const PersonStatePrivate& other);
  PersonStatePrivate& operator=(const PersonStatePrivate&) = delete;

  /// \name Setters: clamp and store, silently, without a lock
  /// @{
  void _setValence(float value);
  void _setValenceConfidence(float value);
  void _setAttention(float value);
  void _setAttentionConfidence(float value);
  void _setUnsmoothedValence(float value);
  void _setUnsmoothedValenceConfidence(float value);
  /// @}

  /// \name Forces
  /// Move a quantity by `weight` of the way to `target`, under the mutex of that quantity. A weight of 0 changes
  /// nothing, one of 1 sets the target; others are not refused. A force on the valence moves the unsmoothed valence as
  /// well, from its own present value.
  /// @{
  void _applyForceValence(float target, float weight, std::string_view source);
  void _applyForceValenceConfidence(float target, float weight, std::string_view source);
  void _applyForceAttention(float target, float weight, std::string_view source);
  void _applyForceAttentionConfidence(float target, float weight, std::string_view source);
  /// @}

  /// Returns a soft step over `x`, in [0.01, 1]; see softstep.hpp.
  static float _computeWeight(float x, float reference);

  /// Returns the same step with a linear term, so that it keeps falling beyond the step: 0.5 at the reference, about
  /// -0.495 at four times it, not clamped.
  ///
  ///     S = ((W - (x - reference) / (2 reference)) + 0.5) / 2
  static float _computeWeightSmoothed(float x, float reference);

  /// Returns weight / count^0.7, infinite for a count of 0.
  static float _computeDampingFactor(float weight, float count);

  /// Logs a warning if the age is above 3.0 s; `ageInMs` in milliseconds, an empty source is left out.
  static void _warnIfObservationOld(std::int64_t ageInMs, std::string_view source);

  /// Returns the age in milliseconds of the youngest source of valence (smile, expressions, voice, speech, touch) and
  /// of attention (head posture, gaze); each source's age is taken with a clock reading of its own. A source never seen
  /// counts as seen 1 ms before the epoch.
  std::int64_t _lastTimeStampedObservationValence() const;
  std::int64_t _lastTimeStampedObservationAttention() const;
  std::int64_t _youngestAgeInMs(std::initializer_list<ObservationChannel> channels) const;

  /// Ages the state by one cycle without the person: four forces towards 0 with the source "Not visible".
  void _decreaseSinceNotSeen();

  /// \name Limits of the face sensor
  /// It is trusted up to a distance of about 1.4 and a head height of about 1.9 [m].
  /// @{
  void _handleOkaoValenceLimitations(float distance, float height);           ///< moves the valence confidence
  float _handleOkaoAttentionLimitations(float distance, float height) const;  ///< returns the ceiling, in [0, 1]
  /// @}

  /// Returns the zone that the angles [deg] point to.
  ///
  /// Left of -yawThreshold, right from yawThreshold on; down below -pitchThreshold, up from pitchThreshold on, and in
  /// the centre column already from 0.6 pitchThreshold on. The method "gaze" mirrors the yaw, any other text does not.
  /// NaN and angles past a thousand thresholds count as right and up.
  static ko::human::AttentionState _computeAttentionZone(float yaw, float pitch, float yawThreshold,
                                                         float pitchThreshold, std::string_view method);

  /// Stores the zone under the attention mutex; `evidence` is passed to an observer when the zone changes.
  void _setAttentionZone(ko::human::AttentionState zone, ZoneEvidence evidence = NoAttentionEvidence);

  // NOLINTBEGIN(clang-diagnostic-reserved-identifier): the update keeps its name with two underscores.
  /// Fuses the records of the memory with the observation; see personstateupdate.cpp for the order of sources.
  void __update(const PersonObservation& observation, const PersonMemory& memory);

  /// As above, and appends the trace of the update to `trace`.
  void __update(const PersonObservation& observation, const PersonMemory& memory, DiagnosticText& trace);
  // NOLINTEND(clang-diagnostic-reserved-identifier)

  /// The first contents of attentionAngles (no angle: any first one differs by more than the dead band) and of
  /// attentionEstimates.
  static std::vector<float> initialAttentionAngles();
  static std::vector<float> initialAttentionEstimates();

  BodyLanguageState bodyLanguageState;
  ValueConfidence<float> valence;            ///< smoothed
  ValueConfidence<float> unsmoothedValence;  ///< follows every force on the valence from its own first value
  bool hadValenceEvidence = false;           ///< a source of valence other than body language has acted
  ValueConfidence<float> attention;
  ko::human::AttentionState attentionZone = ko::human::AttentionState::Unknown;
  Smile smile;
  Gaze gaze;
  Expressions expressions;
  float headHeight = 0.f;  ///< [m]
  HeadPosture headAngles;
  float frequencyGaze = 1000.f;           ///< [Hz]; the update does not read it
  float frequencyFace = 1000.f;           ///< [Hz]; the update does not read it
  std::vector<float> attentionAngles;     ///< [deg] per AttentionChannel, the angle seen at the previous update
  std::vector<float> attentionEstimates;  ///< per AttentionChannel, the estimate kept while the angle hardly moves
  std::array<ko::SystemClock::time_point, ObservationChannelCount> lastObservationTimes;

  boost::mutex valenceMutex;              ///< values of valence and unsmoothedValence
  boost::mutex attentionMutex;            ///< value of attention, and attentionZone
  boost::mutex valenceConfidenceMutex;    ///< confidences of valence and unsmoothedValence
  boost::mutex attentionConfidenceMutex;  ///< confidence of attention
  boost::mutex headHeightMutex;           ///< headHeight
  boost::mutex observationsMutex;         ///< held while the speech, touch and context memories act
  // The update takes over these readings without a lock; their mutexes are there for callers that share a record.
  boost::mutex smileMutex;
  boost::mutex gazeMutex;
  boost::mutex expressionsMutex;
  boost::mutex headAnglesMutex;

  /// The scores of the three valence classes.
  static const classification::LogregMoodScore _reg_pos;
  static const classification::LogregMoodScore _reg_neu;
  static const classification::LogregMoodScore _reg_neg;
};

}  // namespace KV
