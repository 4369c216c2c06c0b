#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/forceobserver.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// A force that acted; its source is a text of its own.
struct SKEIGIOT_API ActedForce
{
  /// Copies the force, so that it outlives the update.
  explicit ActedForce(const KV::Force& force)
    : source(force.source),
      quantity(force.quantity),
      target(force.target),
      weight(force.weight),
      before(force.before),
      after(force.after)
  {}

  std::string source;     ///< name of the source, such as "smile"
  KV::Quantity quantity;  ///< what the force moved
  float target;           ///< where it pulled, in units of the quantity
  float weight;           ///< which share of the way it went, in [0, 1]
  float before;           ///< the quantity before the force acted
  float after;            ///< the quantity after it acted
};

/// A change of the attention zone that was seen.
struct SKEIGIOT_API SeenZoneChange
{
  /// Copies the change.
  explicit SeenZoneChange(const KV::ZoneChange& change)
    : from(change.from), to(change.to), evidence(change.evidence), time(change.time)
  {}

  ko::human::AttentionState from;  ///< the zone before
  ko::human::AttentionState to;    ///< the zone after
  KV::ZoneEvidence evidence;       ///< from which reading it was seen
  TimePoint time;                  ///< of that reading
};

/// One update of one person, and why it came out as it did.
struct SKEIGIOT_API Explanation
{
  Snapshot before;                 ///< after the update before it; that of an unknown person for the first update
  Snapshot after;                  ///< after the update
  std::vector<ActedForce> forces;  ///< in the order in which they acted
  std::vector<SeenZoneChange> zoneChanges;  ///< in the order in which they happened
};

}  // namespace KV::session
