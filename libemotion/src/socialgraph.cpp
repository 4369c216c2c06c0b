#include <skeigiot/socialgraph.hpp>

#include <ko/log.hpp>

#include <boost/thread/lock_types.hpp>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("kvmood.socialgraph");

using Lock = boost::unique_lock<boost::mutex>;

}  // namespace

void SocialGraph::add(int id)
{
  const Lock lock(_mutex);
  _persons.emplace(id, Person(id));
}

void SocialGraph::remove(int id)
{
  const Lock lock(_mutex);
  _persons.erase(id);
}

std::vector<Person> SocialGraph::persons() const
{
  const Lock lock(_mutex);
  std::vector<Person> persons;
  persons.reserve(_persons.size());
  for (const auto& [id, person] : _persons)
    persons.push_back(person);
  return persons;
}

boost::optional<Person> SocialGraph::find(int id) const
{
  const Lock lock(_mutex);
  const auto found = _persons.find(id);
  if (found == _persons.end())
    return boost::none;
  return found->second;
}

void SocialGraph::updateOrCreate(int id, boost::function<void(Person&)> f)
{
  const Lock lock(_mutex);
  auto found = _persons.lower_bound(id);
  if (found == _persons.end() || id < found->first)
    found = _persons.emplace_hint(found, id, Person(id));
  if (f)
    f(found->second);
}

void SocialGraph::update(int id, boost::function<void(Person&)> f)
{
  const Lock lock(_mutex);
  const auto found = _persons.find(id);
  if (found != _persons.end())
    f(found->second);
}

void SocialGraph::read(int id, boost::function<void(const Person&)> f) const
{
  const Lock lock(_mutex);
  const auto found = _persons.find(id);
  if (found != _persons.end())
    f(found->second);
}

}  // namespace KV
