#pragma once

#include <skeigiot/api.hpp>

#include <ko/human/attentionstate.hpp>
#include <ko/systemclock.hpp>

#include <boost/function.hpp>

#include <string_view>

namespace KV
{

/// The quantities of an estimate that forces move.
enum Quantity : int
{
  ValenceQuantity,                      ///< in [-1, 1]
  UnsmoothedValenceQuantity,            ///< in [-1, 1]
  ValenceConfidenceQuantity,            ///< in [0, 1]
  UnsmoothedValenceConfidenceQuantity,  ///< in [0, 1]
  AttentionQuantity,                    ///< in [0, 1]
  AttentionConfidenceQuantity           ///< in [0, 1]
};

/// One pull at one quantity of one person: it went from `before` to `after`, which is
/// `before + weight * (target - before)` in single precision, held in the range of the quantity.
struct Force
{
  Quantity quantity = ValenceQuantity;  ///< what was pulled at
  float target = 0.f;                   ///< where the source pulled to; may lie outside the range of the quantity
  float weight = 0.f;                   ///< share of the way to the target
  float before = 0.f;                   ///< value of the quantity before the pull
  float after = 0.f;                    ///< value of the quantity after the pull
  std::string_view source;  ///< what pulled, such as "Touch emotion" or "Not visible"; valid during the callback only
  ko::SystemClock::time_point time;  ///< when it acted, by the clock of the thread
};

/// The reading that decided an attention zone.
enum ZoneEvidence : int
{
  NoAttentionEvidence,     ///< neither head nor gaze was seen lately: no zone
  HeadTurnedAwayEvidence,  ///< the head is turned too far for any zone
  AttentionEvidence,       ///< the attention is that of somebody who looks at the robot
  HeadEvidence,            ///< the yaw of the head, with the pitch of the gaze
  GazeEvidence             ///< the gaze
};

/// A change of the attention zone.
struct ZoneChange
{
  ko::human::AttentionState from = ko::human::AttentionState::Unknown;  ///< the zone before
  ko::human::AttentionState to = ko::human::AttentionState::Unknown;    ///< the zone from now on, another one
  ZoneEvidence evidence = NoAttentionEvidence;                          ///< what decided on the new zone
  ko::SystemClock::time_point time;                                     ///< when it changed, by the clock of the thread
};

/// While it lives, every force that an estimate is moved by on the thread that made it is shown to a callback, in
/// order: so an estimate can be explained, or rebuilt to the last bit from the one before.
///
/// Scopes nest: the innermost one counts, and its end brings the one around it back. Destroy a scope on the thread that
/// made it, in reverse order of making. Without one, a force costs one look at the thread's storage more.
///
/// A callback runs after the force has acted, and no mutex of an estimated quantity or of a memory is held: it may read
/// the person's state, and read and write the person's memories. It must not update the person, whose update is
/// running. A record that it adds does not act before the next update, unless its memory is read later in this one.
/// An exception of the callback reaches the caller of the update: earlier forces of that update stay applied, and no
/// mutex stays locked.
/// While it is watched, a force reads the clock once more, for its time.
///
/// \par Thread safety
///   Concerns the thread that made it alone.
class SKEIGIOT_API ScopedForceObserver
{
public:
  /// Takes each force, after it has acted.
  using OnForce = boost::function<void(const Force&)>;
  /// Takes each change of the attention zone, after it was made.
  using OnZoneChange = boost::function<void(const ZoneChange&)>;

  /// Shows forces and changes of the zone from now on; either callback may be empty.
  explicit ScopedForceObserver(OnForce onForce, OnZoneChange onZoneChange = {});
  ~ScopedForceObserver();
  ScopedForceObserver(const ScopedForceObserver&) = delete;
  ScopedForceObserver& operator=(const ScopedForceObserver&) = delete;

private:
  friend class ForceWatch;

  const OnForce _onForce;
  const OnZoneChange _onZoneChange;
  const ScopedForceObserver* const _outer;
};

}  // namespace KV
