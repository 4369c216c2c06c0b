#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/sessionobserver.hpp>
#include <skeigiot/session/timelinerow.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <map>
#include <vector>

namespace KV::session
{

/// Collects what a timeline of each person shows.
///
/// How long the recording is, and so how long a readable row must be, turns out at its end. Until then rows are kept
/// finer than they are shown, and are merged into coarser ones as the recording goes on: the memory for each person is
/// bounded. With a given step there is one row for each step with an update.
class SKEIGIOT_API Timeline : public SessionObserver
{
public:
  /// Makes an empty timeline; `step` is the length of a row if the user wants a certain one, and `explained` says
  /// whether rows have the sources that changed the estimates.
  explicit Timeline(const boost::optional<Duration>& step, bool explained = false);

  bool watchesForces() const override { return _explained; }
  void forceActed(const KV::Force& force) override { _changes.add(force); }
  void stepBegins(const recordings::Step& step) override;
  void personUpdated(const Snapshot& snapshot) override;

  /// Returns how long a row is: the given step, or the shortest readable one with which the recording so far takes at
  /// most 40 rows. It is shorter than a second only where each row of each person has an update.
  ///
  /// \par Complexity
  ///   Linear in the number of rows of all persons.
  Duration step() const;

  /// Returns the rows of each person, by time; stretches without an update have none. Linear, as step().
  std::map<std::int32_t, std::vector<TimelineRow>> rows() const;

private:
  using Rows = std::vector<TimelineRow>;

  void _keepWithin(Duration time);
  bool _fillsRowsOf(Duration step) const;

  boost::optional<Duration> _givenStep;
  bool _explained;
  Duration _keptStep;
  Duration _last{0};
  std::map<std::int32_t, Rows> _rows;
  Changes _changes;                                        // of the update that is under way
  std::map<std::int32_t, HeadDirections> _headDirections;  // since the last update of the person
};

}  // namespace KV::session
