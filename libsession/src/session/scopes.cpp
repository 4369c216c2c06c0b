#include <skeigiot/session/scopes.hpp>

#include <algorithm>

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

Scopes::Scopes(const std::vector<ScopeSpan>& spans)
{
  for (const ScopeSpan& span : spans)
    _spans.push_back({span, boost::none, false});
}

std::vector<ScopeVerdict> Scopes::advance(Duration now)
{
  std::vector<ScopeVerdict> verdicts;
  for (Span& span : _spans)
  {
    if (span.closed)
      continue;
    if (span.span.to && *span.span.to < now)
    {
      // A span may fall between two steps: it was passed, though no update lies in it.
      const Open passed{span.span.from, -1, {}};
      verdicts.push_back(_judge(span.span.name, span.open.value_or(passed), *span.span.to, ScopeEnd::Complete));
      span.open = boost::none;
      span.closed = true;
    }
    else if (!span.open && span.span.from <= now)
      span.open = Open{span.span.from, -1, {}};
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
  for (auto& [name, scope] : _started)
    _add(scope, snapshot, state);
  for (Span& span : _spans)
  {
    if (span.open)
      _add(*span.open, snapshot, state);
  }
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
  _started.clear();
  return verdicts;
}

void Scopes::_add(Open& scope, const Snapshot& snapshot, const KV::PersonState& state)
{
  Tally& tally = scope.tallies[snapshot.person];
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
