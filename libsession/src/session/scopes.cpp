#include <skeigiot/session/scopes.hpp>

#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/signallimits.hpp>

#include <algorithm>
#include <utility>

namespace KV::session
{

const char* scopeEndName(ScopeEnd end)
{
  switch (end)
  {
    case ScopeEnd::Complete:
      return "complete";
    case ScopeEnd::NotStopped:
      return "not stopped";
    case ScopeEnd::CutShort:
      return "cut short";
    case ScopeEnd::NotReached:
      return "not reached";
    case ScopeEnd::NotOpen:
      return "not open";
  }
  return "";
}

ScopeVerdict::OfPerson ScopeVerdict::of(std::int32_t person) const
{
  if (end == ScopeEnd::NotOpen)
    return {"error", 0, {}};
  if (end == ScopeEnd::NotReached)
    return {"-", 0, {}};
  const auto found = persons.find(person);
  return found == persons.end() ? OfPerson{KV::Verdict().word(), 0, {}} : found->second;
}

Scopes::Scopes(const std::vector<ScopeSpan>& spans) : _room(recordings::limits::mostPersonsInScopes)
{
  for (const ScopeSpan& span : spans)
    _spans.push_back({span, boost::none, false});
}

std::vector<ScopeVerdict> Scopes::advance(Duration now)
{
  if (now < _nextChange)
    return {};
  _nextChange = Duration::max();
  _openSpans.clear();
  std::vector<ScopeVerdict> verdicts;
  for (std::size_t place = 0; place < _spans.size(); ++place)
  {
    Span& span = _spans[place];
    if (span.closed)
      continue;
    if (span.span.to && *span.span.to < now)
    {
      // A scope may be between two steps: then it was played, although it has no update.
      const Open passed{span.span.from, -1, {}};
      verdicts.push_back(_judge(span.span.name, span.open.value_or(passed), *span.span.to, ScopeEnd::Complete));
      span.open = boost::none;
      span.closed = true;
    }
    else if (!span.open && span.span.from <= now)
      span.open = Open{span.span.from, -1, {}};
    if (span.open)
      _openSpans.push_back(place);
    if (!span.open && !span.closed)
      _nextChange = std::min(_nextChange, span.span.from);
    else if (span.open && span.span.to && *span.span.to < Duration::max())
      _nextChange = std::min(_nextChange, *span.span.to + Duration(1));
  }
  return verdicts;
}

bool Scopes::start(const std::string& name, std::int32_t samples, Duration now)
{
  if (openCount() >= mostOpen && !isOpen(name))
    return false;
  _started[name] = Open{now, samples, {}};
  return true;
}

void Scopes::update(const Snapshot& snapshot, const KV::PersonState& state)
{
  ++_room;
  for (const std::size_t place : _openSpans)  // first, since the first of them is the whole recording
    _add(_spans[place].span.name, *_spans[place].open, snapshot, state);
  for (auto& [name, scope] : _started)
    _add(name, scope, snapshot, state);
}

bool Scopes::hasRoomFor(std::int32_t person) const
{
  if (_room + 1 >= _started.size() + _openSpans.size())
    return true;
  std::size_t wanted = 0;
  for (const auto& [name, scope] : _started)
    wanted += scope.tallies.count(person) == 0 ? 1 : 0;
  for (const std::size_t place : _openSpans)
    wanted += _spans[place].open->tallies.count(person) == 0 ? 1 : 0;
  return wanted <= _room + 1;
}

std::string Scopes::takeOmittedUpdates()
{
  if (_leftOut == 0)
    return {};
  std::string text = "updates were left out of scopes " + std::to_string(std::exchange(_leftOut, 0)) +
                     " times, since the scopes have too many persons together (" +
                     std::to_string(recordings::limits::mostPersonsInScopes) + " more than updates); the first was " +
                     recordings::quote(_firstLeftOut);
  _firstLeftOut.clear();
  return text;
}

ScopeVerdict Scopes::stop(const std::string& name, Duration now)
{
  const auto found = _started.find(name);
  if (found == _started.end())
    return {name, now, now, ScopeEnd::NotOpen, {}};
  ScopeVerdict verdict = _judge(name, found->second, now, ScopeEnd::Complete);
  _started.erase(found);
  return verdict;
}

std::vector<ScopeVerdict> Scopes::finish(Duration now)
{
  std::vector<ScopeVerdict> verdicts;
  for (const Span& span : _spans)
  {
    if (!span.closed)
      verdicts.push_back(_judgeAtTheEnd(span, now));
  }
  for (const auto& [name, scope] : _started)
    verdicts.push_back(_judge(name, scope, now, ScopeEnd::NotStopped));
  _spans.clear();
  _openSpans.clear();
  _started.clear();
  return verdicts;
}

void Scopes::_add(const std::string& name, Open& scope, const Snapshot& snapshot, const KV::PersonState& state)
{
  const auto [found, isNew] = scope.tallies.try_emplace(snapshot.person);
  if (isNew && _room == 0)
  {
    scope.tallies.erase(found);
    if (_leftOut++ == 0)
      _firstLeftOut = name;
    return;
  }
  _room -= isNew ? 1 : 0;
  Tally& tally = found->second;
  const bool full = scope.samples >= 0 && tally.updates >= static_cast<std::size_t>(scope.samples);
  if (full)
    return;
  tally.verdict.add(state);
  ++tally.updates;
  tally.summary.add(snapshot);
}

ScopeVerdict Scopes::_judge(const std::string& name, const Open& scope, Duration to, ScopeEnd end)
{
  ScopeVerdict verdict{name, scope.from, to, end, {}};
  for (const auto& [person, tally] : scope.tallies)
  {
    ScopeVerdict::OfPerson& ofPerson = verdict.persons[person];
    ofPerson = {tally.verdict.word(), tally.updates, tally.summary};
    ofPerson.summary.finish();
  }
  return verdict;
}

ScopeVerdict Scopes::_judgeAtTheEnd(const Span& span, Duration now)
{
  if (!span.open)
    return {span.span.name, span.span.from, span.span.to.value_or(span.span.from), ScopeEnd::NotReached, {}};
  const bool complete = !span.span.to || *span.span.to <= now;
  return _judge(span.span.name, *span.open, now, complete ? ScopeEnd::Complete : ScopeEnd::CutShort);
}

}  // namespace KV::session
