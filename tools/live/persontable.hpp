#pragma once

#include "history.hpp"
#include "sessionobserver.hpp"

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <map>
#include <string>

namespace tools
{

/// What is known of one person at the moment.
struct PersonRow
{
  /// Returns in a few words what the estimate rests on.
  ///
  /// The place for the forces that moved it most, once the library tells them.
  std::string why(TimePoint now) const;

  Snapshot last;
  boost::optional<TimePoint> lastSeen;
  History valence;
  History attention;
};

/// Keeps the state of everybody who was seen during the last minute.
class PersonTable : public SessionObserver
{
public:
  void personUpdated(const Snapshot& snapshot) override;

  void remove(std::int32_t person) { _rows.erase(person); }

  /// Drops whoever was not seen for a minute.
  void removeOld(TimePoint now);

  const std::map<std::int32_t, PersonRow>& rows() const { return _rows; }

private:
  std::map<std::int32_t, PersonRow> _rows;
};

}  // namespace tools
