#include <skeigiot/session/explainer.hpp>

#include <utility>

namespace KV::session
{

Explainer::Explainer(boost::optional<std::int32_t> person, std::function<void(Explanation)> onUpdate)
  : _person(person), _onUpdate(std::move(onUpdate))
{}

void Explainer::forceActed(const KV::Force& force)
{
  _explanation.forces.emplace_back(force);
}

void Explainer::zoneChanged(const KV::ZoneChange& change)
{
  _explanation.zoneChanges.emplace_back(change);
}

void Explainer::personUpdated(const Snapshot& snapshot)
{
  _noteUpdate(snapshot);
  Explanation explanation = std::exchange(_explanation, {});
  if (_person && snapshot.person != *_person)
    return;
  explanation.before = std::exchange(_before[snapshot.person], snapshot);
  explanation.after = snapshot;
  _onUpdate(std::move(explanation));
}

void Explainer::_noteUpdate(const Snapshot& snapshot)
{
  const auto [updates, isNew] = _persons.try_emplace(snapshot.person);
  if (isNew)
    updates->second.first = snapshot.sinceStart;
  updates->second.last = snapshot.sinceStart;
  updates->second.name = snapshot.name;
}

}  // namespace KV::session
