#pragma once

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/api.hpp>
#include <skeigiot/forceobserver.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/scopes.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// Watches one session after the other.
class SKEIGIOT_API SessionObserver
{
public:
  SessionObserver() = default;
  SessionObserver(const SessionObserver&) = delete;
  SessionObserver& operator=(const SessionObserver&) = delete;
  virtual ~SessionObserver() = default;

  /// Returns whether the session should call forceActed() and zoneChanged(), which takes time. A session asks once,
  /// when it begins.
  virtual bool watchesForces() const { return false; }

  /// A force acted on a person. The next call of personUpdated() is about this person.
  virtual void forceActed(const KV::Force&) {}

  /// The attention zone of a person changed. The next call of personUpdated() is about this person.
  virtual void zoneChanged(const KV::ZoneChange&) {}

  /// The recording was opened: says how signs, units and rate are read. A player calls this before the first step.
  virtual void recordingDescribed(const std::vector<std::string>&) {}

  /// The recording was opened; says whether its times have a date, see recordings::Reader::isDated(). A player calls
  /// this before the first step.
  virtual void recordingDated(bool /*isDated*/) {}

  /// The step is about to be played; it stays what it is until the next one.
  virtual void stepBegins(const recordings::Step&) {}

  /// A person was updated, or aged. With a cycle this takes in all steps about the person since the last time; the
  /// time may lie between those of two steps, and the person need not be the one whom the step is about.
  virtual void personUpdated(const Snapshot&) {}

  /// Whether the session calls personWaits(); asked once, when the session is made.
  virtual bool watchesWaiting() const { return false; }

  /// The step is about a person who is updated later, when the cycle is over; has the state until then.
  virtual void personWaits(const Snapshot&) {}

  /// The ambiance of the room was updated.
  virtual void ambianceUpdated(float /*agitation*/, KV::ExcitationState) {}

  /// A scope ended.
  virtual void scopeJudged(const ScopeVerdict&) {}
};

}  // namespace KV::session
