#include "replayrecord.hpp"

#include "exportfields.hpp"
#include "forcenames.hpp"

namespace binding
{

void ReplayRecord::forceActed(const KV::Force& force)
{
  Columns& forces = _tables.forces;
  forces.beginRow();
  forces("row", _updates);
  forces("source", force.source);
  forces("quantity", tools::quantityName(force.quantity));
  forces("target", force.target);
  forces("weight", force.weight);
  forces("before", force.before);
  forces("after", force.after);
}

void ReplayRecord::zoneChanged(const KV::ZoneChange& change)
{
  Columns& zoneChanges = _tables.zoneChanges;
  zoneChanges.beginRow();
  zoneChanges("row", _updates);
  zoneChanges("from", tools::zoneName(change.from));
  zoneChanges("to", tools::zoneName(change.to));
  zoneChanges("evidence", tools::evidenceName(change.evidence));
}

void ReplayRecord::stepBegins(const tools::RecordingEntry& entry)
{
  if (!_begun)
    _start = entry.time;
  _begun = true;
  _now = entry.time;
}

void ReplayRecord::personUpdated(const tools::Snapshot& snapshot)
{
  _tables.updates.beginRow();
  tools::forEachExportedField(_recording, snapshot, _tables.updates);
  ++_updates;
}

void ReplayRecord::ambianceUpdated(float agitation, KV::ExcitationState excitation)
{
  Columns& ambiance = _tables.ambiance;
  ambiance.beginRow();
  ambiance("time", _now - _start);
  ambiance("clock", _now.time_since_epoch());
  ambiance("agitation", agitation);
  ambiance("excited", excitation == KV::AmbianceExcited);
}

}  // namespace binding
