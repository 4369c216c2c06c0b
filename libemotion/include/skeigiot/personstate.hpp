#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/bodylanguagestate.hpp>
#include <skeigiot/expressions.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/smile.hpp>
#include <skeigiot/valueconfidence.hpp>

#include <ko/human/attentionstate.hpp>

#include <boost/smart_ptr/shared_ptr.hpp>

#include <iosfwd>
#include <map>
#include <string>

namespace KV
{

class PersonMemory;
struct PersonObservation;
struct PersonStatePrivate;

/// The choices of PersonState::personEmotion().
enum PersonDescription : int
{
  Positive = 0,  ///< the positive part of the valence
  Negative = 1,  ///< the negative part of the valence
  Attention = 2  ///< the attention
};

/// The valence as a discrete state, by the process-wide boundaries.
enum PleasureState : int
{
  PleasureUnknown = 0,   ///< confidence below the confidence boundary
  PleasureNegative = 1,  ///< valence below the negative boundary
  PleasureNeutral = 2,   ///< valence between the boundaries, or at the negative one
  PleasurePositive = 3   ///< valence at or above the positive boundary
};

/// The names of the attention zones 1 to 9; 0 ("no zone") has none.
SKEIGIOT_API extern const std::map<ko::human::AttentionState, std::string> attentionZonesStringMapping;

/// The estimated emotional and attentional state of one person.
///
/// A handle: copies share the record, so an update through one is seen through all.
///
/// \par Thread safety
///   Update one record from one thread at a time. Queries take no lock of the record: a query during an update of
///   another thread is a data race, and may see a half updated record. SocialGraph keeps the two apart.
class SKEIGIOT_API PersonState
{
public:
  /// Makes a record of its own: valence and attention 0 with confidence 0, no zone.
  PersonState();

  /// As above, with these values: valence clamped to [-1, 1], everything else to [0, 1].
  ///
  /// A NaN valence or attention is stored as it is, a NaN confidence as 0.
  PersonState(float valence, float valenceConfidence, float attention, float attentionConfidence);

  /// Makes a second handle on the record of the other.
  PersonState(const PersonState&) = default;
  /// Lets go of the record so far, and shares that of the other.
  PersonState& operator=(const PersonState&) = default;
  /// Hands the record over: the handle that was moved from has none, and may only be assigned to or destroyed.
  PersonState(PersonState&&) = default;
  /// As the move constructor; lets go of the record so far.
  PersonState& operator=(PersonState&&) = default;
  ~PersonState();

  /// \name Process-wide boundaries
  ///
  /// A setter stores a value that lies strictly inside its interval. Any other value, NaN included, changes nothing and
  /// is reported by a warning in the category "kvmood.emotionalstate". The boundaries are not checked against each
  /// other. Each is read and written under a mutex of its own.
  /// @{
  static void setBinaryBoundaryPositive(float boundary);                ///< in (-1, 1), 0.2 by default
  static void setBinaryBoundaryNegative(float boundary);                ///< in (-1, 1), -0.2 by default
  static void setBinaryBoundaryLookingAtRobot(float boundary);          ///< in (0, 1), 0.6 by default
  static void setBinaryBoundaryStrictlyLookingAtRobot(float boundary);  ///< in (0, 1), 0.9 by default
  static void setBinaryBoundaryConfidence(float boundary);              ///< in (0, 1), 0.4 by default
  static float getBinaryBoundaryPositive();                             ///< a valence from here on is pleasure
  static float getBinaryBoundaryNegative();                             ///< a valence below is displeasure
  static float getBinaryBoundaryLookingAtRobot();                       ///< an attention from here on is engaged
  static float getBinaryBoundaryStrictlyLookingAtRobot();  ///< an attention from here on is strictly engaged
  static float getBinaryBoundaryConfidence();              ///< a confidence below says nothing
  /// @}

  /// Returns the positive or negative part of the valence (0 or more), or the attention, each with its confidence.
  ///
  /// \throws std::invalid_argument "Unknown emotional expression descriptor <description>" for any other description.
  ValueConfidence<float> personEmotion(PersonDescription description) const;

  /// Returns the smoothed valence, from -1 (negative) to 1 (positive).
  ValueConfidence<float> personValence() const;

  /// Returns whether any source of valence ever acted on this record: face, smile, voice, words, touch or context.
  ///
  /// Until then the valence means nothing, though its confidence may be above 0: well seen facial points raise it, and
  /// body language alone moves the valence a little. A state made of numbers says true, and one that was read from its
  /// wire form false before its first update.
  bool hadValenceEvidence() const;

  /// Returns the valence as 1 (above 0.2), 0, or -1 (-0.2 or below, or NaN), with the valence's confidence.
  ///
  /// Deliberate: the limits are fixed numbers in double precision, not the process-wide boundaries, and the confidence
  /// does not gate the value.
  ValueConfidence<int> personValenceBinary() const;

  /// Returns the unsmoothed valence by the same rule.
  ValueConfidence<int> personUnsmoothedValenceBinary() const;

  /// Returns the attention, from 0 (absent) to 1 (attends to the robot).
  ValueConfidence<float> personAttention() const;

  /// Returns the name of the attention zone, or "Unknown" without a zone.
  std::string personAttentionZone() const;

  /// Returns the pleasure state by the process-wide boundaries, each read under its mutex when it is needed.
  ///
  /// A NaN valence with enough confidence is PleasurePositive.
  PleasureState personPleasureState() const;

  /// Returns the attention zone.
  ko::human::AttentionState personAttentionState() const;

  Smile smile() const;              ///< the last smile taken over
  Expressions expressions() const;  ///< the last facial expressions taken over
  Gaze gaze() const;                ///< the last gaze taken over
  HeadPosture headAngles() const;   ///< the last head posture taken over
  float headHeight() const;         ///< [m], the last head height taken over; 0 before the first

  /// Returns the body-language state inside the record; the reference is valid as long as the record lives.
  const BodyLanguageState& bodyLanguageState() const;
  /// As above, for the library's own components.
  BodyLanguageState& bodyLanguageState();

  /// Returns the mood and the engagement in words, a UTF-8 text of three lines.
  std::string emotionLogMessage() const;

  /// \name Rates of the channels
  /// Stored as given, in observations per second; the estimate does not depend on them. Not synchronised.
  /// @{
  void setFrequencyFace(float hz);  ///< [Hz] of the face; 1000 before the first call
  void setFrequencyGaze(float hz);  ///< [Hz] of the gaze; 1000 before the first call
  /// @}

  /// Ages the state by one cycle in which the person was not seen: valence and attention move 26 % of the way to 0,
  /// their confidences 70 %.
  ///
  /// \par Thread safety
  ///   Takes the mutex of one quantity at a time.
  void decreaseSinceNotSeen();

  /// Stores the valence, clamped to [-1, 1]; a NaN is stored as it is. Takes no lock.
  void _setValence(float valence);

  /// Updates the state from the readings in `memory` and in `observation`; see Person::update().
  ///
  /// The memory is read only: `observation` is not filed into it here.
  ///
  /// \throws boost::lock_error if a mutex cannot be taken; what was done until then stays done.
  /// \par Thread safety
  ///   Update one person from one thread at a time.
  void _update(const PersonObservation& observation, const PersonMemory& memory);

  boost::shared_ptr<PersonStatePrivate> _p;  ///< the shared record, for the library's own components
};

/// Writes positive, negative and attention with their confidences in percent, in nine lines each ended by std::endl.
SKEIGIOT_API std::ostream& operator<<(std::ostream& stream, const PersonState& state);

}  // namespace KV
