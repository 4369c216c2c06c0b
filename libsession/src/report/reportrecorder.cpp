#include "report/reportrecorder.hpp"

#include "report/thinning.hpp"

#include <skeigiot/session/pacer.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

namespace KV::session
{

namespace
{

constexpr Duration shortestStretch = boost::chrono::milliseconds(250);
constexpr Duration longestStretch = Duration::max() / 2;

bool isShown(KV::Quantity quantity)
{
  return quantity == KV::ValenceQuantity || quantity == KV::AttentionQuantity;
}

std::vector<MomentChange> changesOf(const std::vector<MomentForce>& forces)
{
  std::map<std::pair<KV::Quantity, std::uint16_t>, double> distances;
  for (const MomentForce& force : forces)
  {
    if (isShown(force.quantity))
      distances[{force.quantity, force.source}] += static_cast<double>(force.after) - static_cast<double>(force.before);
  }
  std::vector<MomentChange> changes;
  changes.reserve(distances.size());
  for (const auto& [key, distance] : distances)
    changes.push_back({key.second, key.first, distance});
  return changes;
}

/// Keeps the first, the least and the greatest value of each stretch of time.
std::vector<ReportRecorder::Ambiance> thinned(const std::vector<ReportRecorder::Ambiance>& all, Duration stretch)
{
  const auto isCalmer = [](const auto& left, const auto& right) { return left.agitation < right.agitation; };
  std::vector<ReportRecorder::Ambiance> kept;
  for (auto begin = all.begin(); begin != all.end();)
  {
    const auto number = begin->time / stretch;
    const auto end = std::find_if(begin, all.end(), [&](const auto& other) { return other.time / stretch != number; });
    const auto [least, greatest] = std::minmax_element(begin, end, isCalmer);
    kept.push_back(*begin);
    for (const auto& extreme : {std::min(least, greatest), std::max(least, greatest)})
    {
      if (kept.back().time < extreme->time)
        kept.push_back(*extreme);
    }
    begin = end;
  }
  return kept;
}

bool comesFirst(const ScopeVerdict& left, const ScopeVerdict& right)
{
  return std::make_tuple(left.from, -left.to) < std::make_tuple(right.from, -right.to);
}

}  // namespace

void ReportRecorder::stepBegins(const recordings::Step& step)
{
  _forces.clear();
  _inspection.add(step);
  if (step.person)
    takeNewest(_inputs[*step.person], step.observation);
}

void ReportRecorder::forceActed(const KV::Force& force)
{
  _forces.push_back(
      {_numberOfSource(force.source), force.quantity, force.target, force.weight, force.before, force.after});
}

void ReportRecorder::personUpdated(const Snapshot& snapshot)
{
  _summary.personUpdated(snapshot);
  Moment moment;
  moment.snapshot = snapshot;
  moment.inputs = reportInputsOf(_inputs[snapshot.person]);
  _inputs.erase(snapshot.person);
  moment.changes = changesOf(_forces);
  moment.forces = std::exchange(_forces, {});
  ++_momentCount;
  _forceCount += moment.forces.size();
  _moments[snapshot.person].push_back(std::move(moment));
  if (_isTooMuch())
    _thin();
}

void ReportRecorder::ambianceUpdated(float agitation, KV::ExcitationState excitation)
{
  _summary.ambianceUpdated(agitation, excitation);
  _ambiance.push_back({_inspection.length(), agitation, excitation == KV::AmbianceExcited});
}

void ReportRecorder::scopeJudged(const ScopeVerdict& verdict)
{
  _scopes.push_back(verdict);
}

void ReportRecorder::finish()
{
  _summary.finish();
  std::stable_sort(_scopes.begin(), _scopes.end(), comesFirst);
  if (_ambiance.size() > _limits.moments)
    _ambiance = thinned(_ambiance, std::max(_stretch, _inspection.length() / static_cast<int>(_limits.moments / 3)));
}

std::uint16_t ReportRecorder::_numberOfSource(std::string_view name)
{
  const auto found = std::find(_sources.begin(), _sources.end(), name);
  const auto number = static_cast<std::uint16_t>(found - _sources.begin());
  if (found == _sources.end())
    _sources.emplace_back(name);
  return number;
}

/// Thins the new moments, and lengthens the stretches until there is room again for some time. If persons are too many
/// for that, room is made in proportion: so each moment is examined only a few times.
void ReportRecorder::_thin()
{
  const auto isFull = [this] { return _momentCount > _limits.moments * 4 / 5 || _forceCount > _limits.forces * 4 / 5; };
  _stretch = std::max(_stretch, shortestStretch);
  _thinAll();
  while (isFull() && _stretch < _inspection.length() && _stretch < longestStretch)
  {
    _stretch *= 2;
    _thinAll();
  }
  _mostNow.moments = std::max(_limits.moments, _momentCount / 4 * 5);
  _mostNow.forces = std::max(_limits.forces, _forceCount / 4 * 5);
}

void ReportRecorder::_thinAll()
{
  _thinningCost += _momentCount;
  for (auto& [person, moments] : _moments)
    thin(moments, _stretch);
  _count();
}

void ReportRecorder::_count()
{
  _momentCount = 0;
  _forceCount = 0;
  for (const auto& [person, moments] : _moments)
  {
    _momentCount += moments.size();
    for (const Moment& moment : moments)
      _forceCount += moment.forces.size();
  }
}

}  // namespace KV::session
