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
  explicit ActedForce(const KV::Force& force)
    : source(force.source),
      quantity(force.quantity),
      target(force.target),
      weight(force.weight),
      before(force.before),
      after(force.after)
  {}

  std::string source;
  KV::Quantity quantity;
  float target;
  float weight;
  float before;
  float after;
};

/// A change of the attention zone that was seen.
struct SKEIGIOT_API SeenZoneChange
{
  explicit SeenZoneChange(const KV::ZoneChange& change)
    : from(change.from), to(change.to), evidence(change.evidence), time(change.time)
  {}

  ko::human::AttentionState from;
  ko::human::AttentionState to;
  KV::ZoneEvidence evidence;
  TimePoint time;
};

/// One update of one person, and why it came out as it did.
struct SKEIGIOT_API Explanation
{
  Snapshot before;  ///< after the update before it; as of somebody unknown, if there was none
  Snapshot after;
  std::vector<ActedForce> forces;           ///< in the order in which they acted
  std::vector<SeenZoneChange> zoneChanges;  ///< likewise
};

}  // namespace KV::session
