#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <ko/human/attentionstate.hpp>

#include <boost/optional/optional.hpp>

#include <array>
#include <cstddef>
#include <string>

namespace KV::session
{

/// Means and shares of one person over a recording or a scope.
///
/// Means and shares are over time: what an update says holds until the next one, for a second at most, so that a
/// stretch without updates does not count for what was last said before it. Valence and attention count while they are
/// known, see Snapshot::isValenceKnown().
class SKEIGIOT_API PersonSummary
{
public:
  /// Adds the next update of the person; updates come in the order of their times.
  void add(const Snapshot& snapshot);

  /// Lets the last update count; call it once, after the last.
  void finish();

  /// Returns what the recording calls the person; empty if they have no name, or there was no update.
  std::string name() const { return _last ? _last->name : std::string(); }

  /// Returns when the first update was, since the start of the recording.
  Duration from() const { return _from; }
  /// Returns when the last update was; there must be one.
  Duration to() const { return _last->sinceStart; }
  /// Returns how many updates were added.
  std::size_t updates() const { return _updates; }

  /// Returns whether the valence was known at any time.
  bool isValenceKnown() const { return _valenceKnown > 0.; }
  /// Returns whether the attention was known at any time.
  bool isAttentionKnown() const { return _attentionKnown > 0.; }

  // Means over the time in which the estimate was known.
  /// Returns the mean valence, in [-1, 1]; NaN if it was never known.
  double valence() const { return _valence / _valenceKnown; }
  /// Returns the mean confidence of the valence, in [0, 1]; NaN if it was never known.
  double valenceConfidence() const { return _valenceConfidence / _valenceKnown; }
  /// Returns the mean attention, in [0, 1]; NaN if it was never known.
  double attention() const { return _attention / _attentionKnown; }
  /// Returns the mean confidence of the attention, in [0, 1]; NaN if it was never known.
  double attentionConfidence() const { return _attentionConfidence / _attentionKnown; }

  // Shares of the time.
  /// Returns in which share of the time the person was seen, in [0, 1].
  double seenShare() const { return _seen / _time; }
  double share(ko::human::AttentionState zone) const;  ///< seen, and looking there
  double share(KV::PleasureState pleasure) const;      ///< with this mood, seen or not
  /// Returns the share with a known valence, in [0, 1].
  double valenceKnownShare() const { return _valenceKnown / _time; }
  /// Returns the share with a known attention, in [0, 1].
  double attentionKnownShare() const { return _attentionKnown / _time; }
  /// Returns the share in which the person was seen, with an attention at the boundary or above; NaN if the attention
  /// was never known.
  double lookingAtRobotShare() const { return _ifAttentionKnown(_lookingAtRobot / _time); }
  /// Returns the same share for the strict boundary; NaN if the attention was never known.
  double strictlyLookingAtRobotShare() const { return _ifAttentionKnown(_strictlyLookingAtRobot / _time); }

private:
  void _countLast(double seconds);
  double _ifAttentionKnown(double share) const;

  std::size_t _updates = 0;
  Duration _from{0};
  boost::optional<Snapshot> _last;
  double _lastInterval = 0.;  // [s]

  // Sums over the time, in seconds
  double _time = 0.;
  double _seen = 0.;
  double _valenceKnown = 0.;
  double _valence = 0.;
  double _valenceConfidence = 0.;
  double _attentionKnown = 0.;
  double _attention = 0.;
  double _attentionConfidence = 0.;
  double _lookingAtRobot = 0.;
  double _strictlyLookingAtRobot = 0.;
  std::array<double, 10> _zones{};
  std::array<double, 4> _pleasures{};
};

}  // namespace KV::session
