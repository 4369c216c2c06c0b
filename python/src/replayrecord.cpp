#include "replayrecord.hpp"

#include <skeigiot/session/exportfields.hpp>
#include <skeigiot/session/forcenames.hpp>

namespace binding
{

void ReplayRecord::forceActed(const KV::Force& force)
{
  Columns& forces = _tables.forces;
  forces.beginRow();
  forces("row", _updates);
  forces("source", force.source);
  forces("source_name", KV::session::sourceName(force.source));
  forces("quantity", KV::session::quantityName(force.quantity));
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
  zoneChanges("from", KV::session::zoneName(change.from));
  zoneChanges("to", KV::session::zoneName(change.to));
  zoneChanges("evidence", KV::session::evidenceName(change.evidence));
}

void ReplayRecord::stepBegins(const KV::recordings::Step& entry)
{
  if (!_begun)
    _start = entry.time;
  _begun = true;
  _now = entry.time;
}

void ReplayRecord::personUpdated(const KV::session::Snapshot& snapshot)
{
  _tables.updates.beginRow();
  KV::session::forEachExportedField(_session, snapshot, _tables.updates);
  ++_updates;
}

void ReplayRecord::ambianceUpdated(float agitation, KV::ExcitationState excitation)
{
  Columns& ambiance = _tables.ambiance;
  ambiance.beginRow();
  ambiance("time", _now - _start);
  ambiance("clock", boost::make_optional(_isDated, _now.time_since_epoch()));
  ambiance("agitation", agitation);
  ambiance("excited", excitation == KV::AmbianceExcited);
}

}  // namespace binding
