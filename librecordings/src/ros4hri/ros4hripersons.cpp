#include "ros4hri/ros4hripersons.hpp"

#include "input/utf8text.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::size_t mostDescribed = 5;
constexpr int mostAliases = 30;         // in a row
constexpr std::size_t longestId = 247;  // as long as the name of a topic may be in ROS
}  // namespace

void RosbagPersons::setAlias(const std::string& person, const std::string& other)
{
  if (!_canBeKnown(person) || !_canBeKnown(other) || other.size() > longestId)
    return;
  const PersonPointer alias = _personOf(person);
  alias->use = ++_uses;
  if (other.empty() || other == person)
    return _separate(alias);
  const PersonPointer real = _personOf(other);
  if (alias->real == real)
    return;
  PersonPointer last = real;
  int aliases = alias->aliases + 1;
  for (; last->real && last->real != alias; last = last->real)
    ++aliases;
  if (aliases > mostAliases)
    return;

  _separate(last);  // which was an alias of this one
  const bool isNew = !std::exchange(alias->real, real);
  aliases = alias->aliases;
  for (PersonPointer next = real; next; next = next->real)
    next->aliases = std::max(next->aliases, ++aliases);
  if (!isNew)
    return;
  _passNumber(alias, last);
  _former.insert(alias->number);
}

void RosbagPersons::setAnonymous(const std::string& person, bool isAnonymous)
{
  if (_canBeKnown(person))
    _personOf(person)->isAnonymous = isAnonymous;
}

std::optional<std::int32_t> RosbagPersons::ofFace(const std::string& face)
{
  const auto found = _faces.find(face);
  if (found != _faces.end())
    return _numberOf(found->second);
  if (!_makeRoom(_faces, face))
    return {};
  return _numberOf(_faces[face] = {_make(face, false)});
}

std::optional<std::int32_t> RosbagPersons::ofVoice(const std::string& voice)
{
  const auto found = _voices.find(voice);
  return found == _voices.end() ? std::nullopt : std::make_optional(_numberOf(found->second));
}

std::string RosbagPersons::nameOf(std::int32_t person) const
{
  const auto found = _all.find(person);
  return found == _all.end() ? std::string() : found->second->name;
}

void RosbagPersons::forgetFace(const std::string& face)
{
  const auto found = _faces.find(face);
  if (found == _faces.end() || (found->second.person->isNamed && _faces.size() <= mostFaces / 2))
    return;
  _lose(found->second.person);
  _faces.erase(found);
}

void RosbagPersons::forgetFormer(const std::set<std::int32_t>& kept)
{
  for (auto number = _former.begin(); number != _former.end();)
  {
    if (kept.count(*number) > 0)
    {
      ++number;
      continue;
    }
    _all.erase(*number);
    number = _former.erase(number);
  }
}

void RosbagPersons::renumber(std::int32_t person)
{
  const auto found = _all.find(person);
  if (found == _all.end())
    return;
  const PersonPointer known = found->second;
  _all.erase(found);
  if (_former.erase(person) > 0)
    return;
  known->number = _next++;
  known->isUsed = false;
  _all[known->number] = known;
}

std::string RosbagPersons::describe() const
{
  std::vector<std::string> parts;
  for (const auto& [number, person] : _all)
  {
    if (!person->isNamed || person->real)
      continue;
    if (parts.size() == mostDescribed)
    {
      parts.emplace_back("and so on");
      break;
    }
    parts.push_back(std::to_string(number) + " is " + quote(person->name));
  }
  return parts.empty() ? "each face is a person, in the order of appearance" : "person " + listed(parts);
}

void RosbagPersons::_add(OwnedById& owned, const std::string& person, const std::string& id)
{
  if (id.empty() || !_makeRoom(owned, id))
    return;
  const PersonPointer owner = _personOf(person);
  Owned& entry = owned[id];
  if (entry.person)
  {
    if (entry.person != owner && entry.person->isAnonymous && !entry.person->real)
      _passNumber(entry.person, _realOf(owner));
    _lose(entry.person);
  }
  entry.person = owner;
  _use(entry);
}

// Returns whether an entry with this id is there or can be added.
bool RosbagPersons::_makeRoom(OwnedById& owned, const std::string& id)
{
  if (owned.size() < mostFaces || owned.count(id) > 0)
    return true;
  if (!_isLive)
    return false;
  const auto oldest = std::min_element(owned.begin(), owned.end(), [](const auto& left, const auto& right) {
    return left.second.use < right.second.use;
  });
  _lose(oldest->second.person);
  owned.erase(oldest);
  return true;
}

RosbagPersons::PersonPointer RosbagPersons::_realOf(PersonPointer person)
{
  while (person->real)
    person = person->real;
  return person;
}

// Makes an alias a person again, with the former number if that is still known.
void RosbagPersons::_separate(const PersonPointer& alias)
{
  if (!std::exchange(alias->real, nullptr) || _former.erase(alias->number) > 0)
    return;
  alias->number = _next++;
  alias->isUsed = false;
  _all[alias->number] = alias;
}

std::int32_t RosbagPersons::_numberOf(Owned& owned)
{
  _use(owned);
  const PersonPointer person = _realOf(owned.person);
  person->use = owned.use;
  person->isUsed = true;
  return person->number;
}

void RosbagPersons::_use(Owned& owned)
{
  owned.use = owned.person->use = ++_uses;
}

// Exchanges the numbers of two persons if the second one should have that of the first one.
void RosbagPersons::_passNumber(const PersonPointer& from, const PersonPointer& to)
{
  const bool isBetter = from->isUsed || from->number < to->number;
  if (to->isUsed || !isBetter)
    return;
  std::swap(from->number, to->number);
  std::swap(from->isUsed, to->isUsed);
  _all[from->number] = from;
  _all[to->number] = to;
}

// The name stays known as long as the person is reported as missing.
void RosbagPersons::_lose(const PersonPointer& person)
{
  if (!person->isNamed)
    _former.insert(person->number);
}

RosbagPersons::PersonPointer RosbagPersons::_make(const std::string& name, bool isNamed)
{
  auto made = std::make_shared<Person>();
  made->number = _next++;
  made->name = utf8Of(name);
  made->isNamed = isNamed;
  made->use = ++_uses;
  _all[made->number] = made;
  return made;
}

RosbagPersons::PersonPointer RosbagPersons::_personOf(const std::string& person)
{
  const auto found = _named.find(person);
  if (found != _named.end())
    return found->second;
  if (_isLive && _named.size() >= mostFaces)
    _forgetOldestPerson();
  return _named[person] = _make(person, true);
}

// In a bag, new persons who have neither face nor voice are left out as soon as there are too many.
bool RosbagPersons::_canBeKnown(const std::string& person) const
{
  return _isLive || _named.size() < mostFaces || person.empty() || _named.count(person) > 0;
}

void RosbagPersons::_forgetOldestPerson()
{
  const auto oldest = std::min_element(_named.begin(), _named.end(), [](const auto& left, const auto& right) {
    return left.second->use < right.second->use;
  });
  for (OwnedById* const owned : {&_faces, &_voices})
    for (auto entry = owned->begin(); entry != owned->end();)
      entry = entry->second.person == oldest->second ? owned->erase(entry) : std::next(entry);
  for (auto& [id, person] : _named)
    if (person->real == oldest->second)
      _separate(person);
  _former.insert(oldest->second->number);
  _named.erase(oldest);
}

}  // namespace KV::recordings
