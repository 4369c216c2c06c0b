#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/changes.hpp>
#include <skeigiot/session/headdirection.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <boost/optional/optional.hpp>

#include <array>
#include <cstddef>

namespace KV::session
{

/// The updates of one person in one stretch of a recording, summed up.
class SKEIGIOT_API TimelineRow
{
public:
  /// Makes an empty row that begins `from` after the start of the recording.
  explicit TimelineRow(Duration from) : _from(from) {}

  /// Adds one update.
  void add(const Snapshot& snapshot);
  /// Adds what moved the estimates in one update.
  void add(const Changes& changes) { _changes.add(changes); }
  /// Adds what the body language saw.
  void add(const HeadDirections& directions);
  /// Adds the row of the stretch behind this one.
  void add(const TimelineRow& later);

  /// Returns where the stretch begins, since the start of the recording.
  Duration from() const { return _from; }

  /// Returns whether the person was seen in at least half of the updates.
  bool seen() const { return 2 * _seen >= _updates; }

  /// Returns whether the valence was known in any of the updates, see Snapshot::isValenceKnown().
  bool isValenceKnown() const { return _valenceKnown > 0; }
  /// Returns whether the attention was known in any of the updates.
  bool isAttentionKnown() const { return _attentionKnown > 0; }

  // Means over the updates in which the estimate was known.
  /// Returns the mean valence, in [-1, 1]; NaN if it was never known.
  double valence() const { return _mean(_valence, _valenceKnown); }
  /// Returns the mean confidence of the valence, in [0, 1]; NaN if it was never known.
  double valenceConfidence() const { return _mean(_valenceConfidence, _valenceKnown); }
  /// Returns the mean attention, in [0, 1]; NaN if it was never known.
  double attention() const { return _mean(_attention, _attentionKnown); }
  /// Returns the mean confidence of the attention, in [0, 1]; NaN if it was never known.
  double attentionConfidence() const { return _mean(_attentionConfidence, _attentionKnown); }

  // The state of most updates.
  /// Returns the zone of most updates; of several, the first in the order of the enumeration.
  ko::human::AttentionState zone() const;
  /// Returns the mood of most updates; of several, the first in the order of the enumeration.
  KV::PleasureState pleasure() const;

  /// The ease after the last update.
  KV::BodyLanguageEase ease() const { return _ease; }

  /// Returns what the body language saw most often; of several, the first in the order of the enumeration; none without
  /// a head posture.
  boost::optional<HeadDirection> headDirection() const;

  /// Returns the changes of the estimates; empty if they were not observed.
  const Changes& changes() const { return _changes; }

private:
  static double _mean(double sum, std::size_t count) { return sum / static_cast<double>(count); }

  Duration _from;
  std::size_t _updates = 0;
  std::size_t _seen = 0;
  std::size_t _valenceKnown = 0;
  double _valence = 0.;
  double _valenceConfidence = 0.;
  std::size_t _attentionKnown = 0;
  double _attention = 0.;
  double _attentionConfidence = 0.;
  std::array<std::size_t, 10> _zones{};
  std::array<std::size_t, 4> _pleasures{};
  HeadDirections _headDirections{};
  KV::BodyLanguageEase _ease;
  Changes _changes;
};

}  // namespace KV::session
