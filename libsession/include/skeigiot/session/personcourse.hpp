#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <vector>

namespace KV::session
{

/// The estimate of one person over a recording, as pieces of time in which nothing changes.
class SKEIGIOT_API PersonCourse
{
public:
  /// One update, for as long as it holds.
  struct Piece
  {
    double from = 0.;                                  ///< [s] since the first step of the recording
    double to = 0.;                                    ///< [s]
    float valence = 0.f;                               ///< in [-1, 1]
    float attention = 0.f;                             ///< in [0, 1]
    bool seen = false;                                 ///< false: the person was not observed
    bool valenceKnown = false;                         ///< its confidence is at the boundary or above
    bool attentionKnown = false;                       ///< its confidence is at the boundary or above
    KV::PleasureState pleasure = KV::PleasureUnknown;  ///< the mood, in a word
    ko::human::AttentionState zone = ko::human::AttentionState::Unknown;  ///< where the person looks
    bool engaged = false;                                                 ///< the attention is at the boundary or above
  };

  /// Adds an update, which must not be before the last one.
  void add(const Snapshot& snapshot);

  /// Lets the last update hold as long as the one before it; call it once, after the last.
  void finish();

  /// Returns the pieces by time. Updates that hold for no time have none.
  const std::vector<Piece>& pieces() const { return _pieces; }

private:
  void _endLast(double to);

  std::vector<Piece> _pieces;
  boost::optional<Piece> _last;
  double _lastInterval = 0.;  // [s]
};

}  // namespace KV::session
