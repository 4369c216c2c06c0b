#include <skeigiot/session/session.hpp>

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>
#include <utility>

namespace KV::session
{

namespace
{

/// The count at which a float stops growing by steps of 1.
constexpr int largestMovementCount = 1 << std::numeric_limits<float>::digits;

/// Counts all movements at once; the result is that of incrementMovementDetected() called for each of them.
void addMovements(KV::AmbianceState& ambiance, int movements)
{
  const std::int64_t room = largestMovementCount - static_cast<std::int64_t>(ambiance.movementCount);
  ambiance.movementCount += static_cast<float>(std::clamp<std::int64_t>(movements, 0, room));
}

Snapshot snapshotOf(const KV::PersonState& state)
{
  Snapshot snapshot;
  snapshot.valence = state.personValence();
  snapshot.hadValenceEvidence = state.hadValenceEvidence();
  snapshot.valenceBinary = state.personValenceBinary();
  snapshot.unsmoothedValenceBinary = state.personUnsmoothedValenceBinary();
  snapshot.attention = state.personAttention();
  snapshot.zone = state.personAttentionState();
  snapshot.pleasure = state.personPleasureState();
  snapshot.ease = state.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription);
  return snapshot;
}

}  // namespace

Session::Session(const std::vector<ScopeSpan>& spans, std::vector<SessionObserver*> observers, Cycle cycle)
  : _clock(TimePoint()), _clockOfThisThread(_clock), _pacer(cycle), _scopes(spans), _observers(std::move(observers))
{
  std::copy_if(_observers.begin(), _observers.end(), std::back_inserter(_forceObservers),
               [](const SessionObserver* observer) { return observer->watchesForces(); });
  if (!_forceObservers.empty())
    _watchForces();
  std::copy_if(_observers.begin(), _observers.end(), std::back_inserter(_waitingObservers),
               [](const SessionObserver* observer) { return observer->watchesWaiting(); });
}

void Session::play(const recordings::Step& step)
{
  if (!_start)
    _start = step.time;
  _updateWhoWaitedTooLong(step.time);
  _setTime(step.time);

  for (SessionObserver* observer : _observers)
    observer->stepBegins(step);
  _report(_scopes.advance(length()));
  _startScopes(step);
  _updateAmbiance(step);
  _updatePerson(step);
  for (const std::string& scope : step.scopeStops)
    _report(_scopes.stop(scope, length()));
}

std::string Session::whyScopesCannotStart(const recordings::Step& step) const
{
  std::set<std::string> started;
  for (const recordings::ScopeStart& scope : step.scopeStarts)
  {
    if (!_scopes.isOpen(scope.name))
      started.insert(scope.name);
  }
  if (_scopes.openCount() + started.size() <= Scopes::mostOpen)
    return {};
  return "more than " + std::to_string(Scopes::mostOpen) + " scopes would be open: stop scopes that are over first";
}

std::string Session::takeNotesOnScopes()
{
  std::string omitted = _scopes.takeOmittedUpdates();
  if (_notStarted == 0)
    return omitted;
  const std::string scopes = _notStarted == 1 ? "1 scope was" : std::to_string(_notStarted) + " scopes were";
  std::string text = scopes + " not started, since " + std::to_string(Scopes::mostOpen) +
                     " were open already; the first was '" + _firstNotStarted + "'";
  _notStarted = 0;
  _firstNotStarted.clear();
  return omitted.empty() ? text : text + "; " + omitted;
}

std::vector<std::string> Session::takeNotes()
{
  std::vector<std::string> notes;
  for (std::string note : {takeOmittedReadings(), takeNotesOnScopes()})
  {
    if (!note.empty())
      notes.push_back(std::move(note));
  }
  return notes;
}

void Session::forget(std::int32_t person)
{
  _pacer.forget(person);
  _graph.remove(person);
  _names.erase(person);
}

void Session::finish()
{
  while (const auto waiting = _pacer.firstWaiting())
    _updateWaiting(waiting->person);
  _report(_scopes.finish(length()));
}

void Session::_setTime(TimePoint time)
{
  _now = time;
  _clock.set(_now);
}

/// A person without steps for a cycle may be gone: the last observations act while they are new, not at the end.
void Session::_updateWhoWaitedTooLong(TimePoint now)
{
  for (auto waiting = _pacer.firstWaiting(); waiting && waiting->latest < now; waiting = _pacer.firstWaiting())
  {
    _setTime(std::max(_now, waiting->latest));
    _report(_scopes.advance(length()));
    _updateWaiting(waiting->person);
  }
}

void Session::_updateWaiting(std::int32_t waiting)
{
  _graph.update(waiting, [&](KV::Person& person) {
    _pacer.finish(person);
    _report(person, true);
  });
}

void Session::_watchForces()
{
  const auto showForce = [this](const KV::Force& force) {
    for (SessionObserver* observer : _forceObservers)
      observer->forceActed(force);
  };
  const auto showZoneChange = [this](const KV::ZoneChange& change) {
    for (SessionObserver* observer : _forceObservers)
      observer->zoneChanged(change);
  };
  _forceWatch.emplace(showForce, showZoneChange);
}

void Session::_startScopes(const recordings::Step& step)
{
  for (const recordings::ScopeStart& scope : step.scopeStarts)
  {
    if (_scopes.start(scope.name, scope.samples, length()))
      continue;
    if (_notStarted++ == 0)
      _firstNotStarted = scope.name;
  }
}

void Session::_updateAmbiance(const recordings::Step& step)
{
  addMovements(_ambiance, step.movements);
  if (!step.ambianceActivity)
    return;
  _ambiance.updateAmbiance(*step.ambianceActivity);
  const float agitation = _ambiance.ambientActivityLevel(KV::AmbianceActivity);
  const KV::ExcitationState excitation = _ambiance.excitationState();
  for (SessionObserver* observer : _observers)
    observer->ambianceUpdated(agitation, excitation);
}

void Session::_updatePerson(const recordings::Step& step)
{
  if (!step.person)
    return;
  if (!step.personName.empty())
    _names[*step.person] = step.personName;
  if (step.seen)
    _graph.updateOrCreate(*step.person, [&](KV::Person& person) {
      if (_pacer.take(person, _nonFinite.withoutThem(step, length())))
        _report(person, true);
      else
        _reportWaiting(person);
    });
  else
    _graph.update(*step.person, [&](KV::Person& person) {
      const bool wasSeen = _pacer.isWaiting(person.personID);
      if (_pacer.takeNotSeen(person))
        _report(person, wasSeen);
      else
        _reportWaiting(person);
    });
}

Snapshot Session::_snapshot(const KV::Person& person, bool seen) const
{
  Snapshot snapshot = snapshotOf(person.personState);
  snapshot.time = _now;
  snapshot.sinceStart = length();
  snapshot.isDated = _isDated;
  snapshot.person = person.personID;
  if (const auto name = _names.find(person.personID); name != _names.end())
    snapshot.name = name->second;
  snapshot.seen = seen;
  return snapshot;
}

void Session::_report(const KV::Person& person, bool seen)
{
  const Snapshot snapshot = _snapshot(person, seen);
  _scopes.update(snapshot, person.personState);
  for (SessionObserver* observer : _observers)
    observer->personUpdated(snapshot);
}

void Session::_reportWaiting(const KV::Person& person)
{
  if (_waitingObservers.empty())
    return;
  const Snapshot snapshot = _snapshot(person, _pacer.isWaiting(person.personID));
  for (SessionObserver* observer : _waitingObservers)
    observer->personWaits(snapshot);
}

void Session::_report(const ScopeVerdict& verdict)
{
  for (SessionObserver* observer : _observers)
    observer->scopeJudged(verdict);
}

void Session::_report(const std::vector<ScopeVerdict>& verdicts)
{
  for (const ScopeVerdict& verdict : verdicts)
    _report(verdict);
}

}  // namespace KV::session
