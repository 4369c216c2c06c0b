#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/session/changes.hpp>
#include <skeigiot/session/explanation.hpp>
#include <skeigiot/session/history.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KV::session
{

/// The present state of one person.
struct SKEIGIOT_API PersonRow
{
  /// Returns in a few words what the estimate rests on, with the source that moved it most in the last update.
  std::string why(TimePoint now) const;

  Snapshot last;                   ///< after the last update
  Changes changes;                 ///< of the last update
  std::vector<ActedForce> forces;  ///< of the last update, in the order in which they acted
  PersonObservation readings;      ///< the newest of each kind that came in while the person had a row
  boost::optional<TimePoint>
      lastSeen;       ///< time of the last update with an observation; none if there was no such update
  History valence;    ///< in [-1, 1]
  History attention;  ///< in [0, 1]
};

/// Keeps the state of everybody who was seen during the last minute.
class SKEIGIOT_API PersonTable : public SessionObserver
{
public:
  bool watchesForces() const override { return true; }
  void stepBegins(const recordings::Step& step) override;
  void forceActed(const KV::Force& force) override;
  void personUpdated(const Snapshot& snapshot) override;

  /// Drops the person; nothing happens if the number is unknown.
  void remove(std::int32_t person) { _rows.erase(person); }

  /// Drops persons who were not seen for a minute.
  void removeOld(TimePoint now);

  /// Returns the rows by the numbers of the persons.
  const std::map<std::int32_t, PersonRow>& rows() const { return _rows; }

private:
  std::map<std::int32_t, PersonRow> _rows;
  // Of the update that is under way
  Changes _changes;
  std::vector<ActedForce> _forces;

  // Of the step that was begun, if it is about somebody without a row
  boost::optional<std::int32_t> _newcomer;
  PersonObservation _readingsOfNewcomer;
};

}  // namespace KV::session
