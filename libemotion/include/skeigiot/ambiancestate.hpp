#pragma once

#include <skeigiot/api.hpp>

#include <boost/thread/mutex.hpp>

#include <iosfwd>

namespace KV
{

/// The choices of AmbianceState::ambientActivityLevel().
enum AmbianceDescription : int
{
  AmbianceActivity = 0,  ///< the agitation, in [0, 1]
  AmbianceCalm = 1       ///< the calm, in [0, 1]
};

/// How excited a room is.
enum ExcitationState : int
{
  ExcitationUnknown = 0,   ///< never returned
  AmbianceNotExcited = 1,  ///< agitation below the boundary
  AmbianceExcited = 2      ///< agitation at the boundary or above
};

/// How agitated or calm the room is: a smoothed activity measure, raised by the movements counted between updates.
///
/// Where two locks are held, the state's mutex is taken before that of the boundary.
class SKEIGIOT_API AmbianceState
{
public:
  /// Makes a state with all values 0. Deliberate: the calm level is not 1 before the first update.
  AmbianceState() = default;
  /// Copies the values and makes a mutex of its own. Takes no lock: the caller keeps the source from changing.
  AmbianceState(const AmbianceState& other);
  /// Copies the values under this state's own mutex. Takes no lock on the source.
  AmbianceState& operator=(const AmbianceState& other);

  /// Makes one step of exponential smoothing towards ten times `activity`, and consumes the counted movements.
  ///
  ///     agitation' = ((10 activity - agitation) * 0.2 + agitation) + (movements / 5) * 0.2, held in [0, 1]
  ///     calm'      = 1 - agitation'
  ///
  /// A result that is NaN becomes 0.
  ///
  /// \par Thread safety
  ///   Takes the state's mutex.
  void updateAmbiance(float activity);

  /// Sets the agitation, held in [0, 1], and the calm to 1 minus it; the count of movements stays.
  ///
  /// \par Thread safety
  ///   Not synchronised.
  void _setAmbientActivityLevel(float level);

  /// Returns the agitation or the calm level.
  ///
  /// \throws std::invalid_argument "Unknown emotional expression descriptor <description>" for any other description.
  /// \par Thread safety
  ///   Not synchronised.
  float ambientActivityLevel(AmbianceDescription description) const;

  /// Returns AmbianceExcited if the agitation has reached the boundary, else AmbianceNotExcited.
  ///
  /// \par Thread safety
  ///   Takes the state's mutex, then the mutex of the boundary.
  ExcitationState excitationState();

  /// Counts one movement for the next update.
  ///
  /// \par Thread safety
  ///   Takes the state's mutex.
  void incrementMovementDetected();

  /// Sets the process-wide excitation boundary (0.4 by default) if `boundary` lies strictly between 0.0 and 1.0.
  ///
  /// Any other value, NaN included, changes nothing and is reported by a warning in the category "kvmood.ambiance".
  ///
  /// \par Thread safety
  ///   Takes the mutex of the boundary.
  static void setBinaryBoundaryExcited(float boundary);

  /// Returns the process-wide excitation boundary.
  ///
  /// \par Thread safety
  ///   Takes the mutex of the boundary.
  static float getBinaryBoundaryExcited();

  // Guarded by _mutex in the operations that lock; public as the members that describe the record.
  float agitationLevel = 0.f;  ///< smoothed activity, in [0, 1]
  float calmLevel = 0.f;       ///< 1 - agitationLevel after the first update or set, 0 before
  float movementCount = 0.f;   ///< movements counted since the last update

private:
  boost::mutex _mutex;
};

/// Writes activity and calm, a line each, without a line end after the last.
SKEIGIOT_API std::ostream& operator<<(std::ostream& stream, const AmbianceState& state);

}  // namespace KV
