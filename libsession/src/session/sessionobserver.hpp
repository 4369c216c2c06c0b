#pragma once

#include "recording.hpp"
#include "scopes.hpp"
#include "snapshot.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/forceobserver.hpp>

namespace tools
{

/// Watches one session after the other.
class SessionObserver
{
public:
  SessionObserver() = default;
  SessionObserver(const SessionObserver&) = delete;
  SessionObserver& operator=(const SessionObserver&) = delete;
  virtual ~SessionObserver() = default;

  /// A force acted on the person whose update is told next; only a session that watches forces tells of them.
  virtual void forceActed(const KV::Force&) {}

  /// The attention zone of that person changed; told likewise.
  virtual void zoneChanged(const KV::ZoneChange&) {}

  /// The step is about to be played; it stays what it is until the next one.
  virtual void stepBegins(const RecordingEntry&) {}

  /// A person was updated, or aged.
  virtual void personUpdated(const Snapshot&) {}

  /// The ambiance of the room was updated.
  virtual void ambianceUpdated(float /*agitation*/, KV::ExcitationState) {}

  /// A scope ended.
  virtual void scopeJudged(const ScopeVerdict&) {}
};

}  // namespace tools
