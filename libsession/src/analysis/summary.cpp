#include <skeigiot/session/summary.hpp>

#include <algorithm>
#include <tuple>
#include <utility>

namespace KV::session
{

namespace
{

bool comesFirst(const ScopeVerdict& left, const ScopeVerdict& right)
{
  return std::make_tuple(left.from, -left.to) < std::make_tuple(right.from, -right.to);
}

}  // namespace

void Summary::personUpdated(const Snapshot& snapshot)
{
  _persons[snapshot.person].add(snapshot);
}

void Summary::ambianceUpdated(float agitation, KV::ExcitationState excitation)
{
  ++_ambiance.updates;
  _ambiance.excited += excitation == KV::AmbianceExcited ? 1 : 0;
  _ambiance.agitation += static_cast<double>(agitation);
  _ambiance.lastAgitation = agitation;
}

void Summary::scopeJudged(const ScopeVerdict& verdict)
{
  _verdicts.push_back(verdict);
}

void Summary::finish()
{
  for (auto& [person, summary] : _persons)
    summary.finish();
  std::stable_sort(_verdicts.begin(), _verdicts.end(), comesFirst);
}

}  // namespace KV::session
