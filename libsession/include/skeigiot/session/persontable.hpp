#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/changes.hpp>
#include <skeigiot/session/history.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <map>
#include <string>

namespace KV::session
{

/// What is known of one person at the moment.
struct SKEIGIOT_API PersonRow
{
  /// Returns in a few words what the estimate rests on, with the source that moved it most in the last update.
  std::string why(TimePoint now) const;

  Snapshot last;    ///< after the last update
  Changes changes;  ///< of the last update
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
  void forceActed(const KV::Force& force) override { _changes.add(force); }
  void personUpdated(const Snapshot& snapshot) override;

  /// Drops the person; nothing happens if there is none of that number.
  void remove(std::int32_t person) { _rows.erase(person); }

  /// Drops whoever was not seen for a minute.
  void removeOld(TimePoint now);

  /// Returns the rows by the numbers of the persons.
  const std::map<std::int32_t, PersonRow>& rows() const { return _rows; }

private:
  std::map<std::int32_t, PersonRow> _rows;
  Changes _changes;  // of the update that is under way
};

}  // namespace KV::session
