#pragma once

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/api.hpp>
#include <skeigiot/forceobserver.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/nonfinitereadings.hpp>
#include <skeigiot/session/pacer.hpp>
#include <skeigiot/session/scopes.hpp>
#include <skeigiot/session/sessionobserver.hpp>
#include <skeigiot/socialgraph.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KV::session
{

/// Runs one recording through the library, with the clock of the calling thread set to the recording's time.
///
/// Readings that are not finite are left out, and counted.
///
/// A Pacer updates the persons. If no step about a person comes for a cycle after an update was due, the person is
/// updated then with the readings that wait, also when the next step is about another person.
class SKEIGIOT_API Session
{
public:
  /// Makes a session in which nobody is known yet; the observers must outlive it.
  Session(const std::vector<ScopeSpan>& spans, std::vector<SessionObserver*> observers, Cycle cycle = Cycle());

  /// Says whether the times of the steps have a date, which is so by default; snapshots have it.
  void setDated(bool isDated) { _isDated = isDated; }

  /// Takes one step: scope starts, ambiance, person, scope stops. A scope that would be one too many is not started.
  void play(const recordings::Step& step);

  /// Returns why the scopes that the step starts cannot all be open beside those that are open now, see
  /// Scopes::mostOpen, as a message for the sender of the step; empty if they can.
  std::string whyScopesCannotStart(const recordings::Step& step) const;

  /// Returns whether no open scope would leave out the person of the step, see Scopes::hasRoomFor().
  bool hasRoomInScopes(const recordings::Step& step) const { return !step.person || _scopes.hasRoomFor(*step.person); }

  /// Forgets a person: who comes back under that number is somebody new.
  void forget(std::int32_t person);

  /// Lets the next observation of a person update at once, see Pacer::restart().
  void restartCycle(std::int32_t person) { _pacer.restart(person); }

  /// Ends the recording: updates the persons whose observations still wait, and judges the scopes that are still open.
  void finish();

  /// Returns a line about the readings that were left out since the last call, or an empty text.
  std::string takeOmittedReadings() { return _nonFinite.take(); }

  /// Returns a line about the scopes that were not started since the last call, and about the updates that were left
  /// out of scopes; or an empty text.
  std::string takeNotesOnScopes();

  /// Returns the lines of takeOmittedReadings() and takeNotesOnScopes(), for a program that shows them as it runs.
  std::vector<std::string> takeNotes();

  /// Returns how much of the recording was played.
  Duration length() const { return _now - _start.value_or(_now); }

private:
  void _watchForces();
  void _startScopes(const recordings::Step& step);
  void _updateAmbiance(const recordings::Step& step);
  void _updatePerson(const recordings::Step& step);
  void _setTime(TimePoint time);
  void _updateWhoWaitedTooLong(TimePoint now);
  void _updateWaiting(std::int32_t waiting);
  Snapshot _snapshot(const KV::Person& person, bool seen) const;
  void _report(const KV::Person& person, bool seen);
  void _reportWaiting(const KV::Person& person);
  void _report(const ScopeVerdict& verdict);
  void _report(const std::vector<ScopeVerdict>& verdicts);

  ko::ManualClock _clock;
  ko::ScopedClockSource _clockOfThisThread;
  boost::optional<TimePoint> _start;
  TimePoint _now;
  bool _isDated = true;

  NonFiniteReadings _nonFinite;
  Pacer _pacer;
  KV::SocialGraph _graph;
  std::map<std::int32_t, std::string> _names;  // of persons who have one
  KV::AmbianceState _ambiance;
  Scopes _scopes;
  std::size_t _notStarted = 0;  // scopes that were too many
  std::string _firstNotStarted;
  std::vector<SessionObserver*> _observers;
  std::vector<SessionObserver*> _forceObservers;    // those of them that watch forces
  std::vector<SessionObserver*> _waitingObservers;  // those of them that watch who waits
  boost::optional<KV::ScopedForceObserver> _forceWatch;
};

}  // namespace KV::session
