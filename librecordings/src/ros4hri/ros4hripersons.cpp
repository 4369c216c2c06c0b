#include "ros4hri/ros4hripersons.hpp"

#include "input/utf8text.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/recordings/quote.hpp>

namespace KV::recordings
{
namespace
{
constexpr std::size_t mostDescribed = 5;
}

void RosbagPersons::addFace(const std::string& person, const std::string& face)
{
  if (!face.empty())
    _faces[face] = _numberOf(person);
}

void RosbagPersons::addVoice(const std::string& person, const std::string& voice)
{
  if (!voice.empty())
    _voices[voice] = _numberOf(person);
}

std::optional<std::int32_t> RosbagPersons::ofFace(const std::string& face)
{
  const auto found = _faces.find(face);
  if (found != _faces.end())
    return found->second;
  if (_faces.size() >= mostFaces)
    return {};
  _all.push_back(utf8Of(face));
  return _faces[face] = _next++;
}

std::string RosbagPersons::nameOf(std::int32_t person) const
{
  const auto index = static_cast<std::size_t>(person);
  return person >= 0 && index < _all.size() ? _all[index] : std::string();
}

std::optional<std::int32_t> RosbagPersons::ofVoice(const std::string& voice) const
{
  const auto found = _voices.find(voice);
  return found == _voices.end() ? std::nullopt : std::make_optional(found->second);
}

std::string RosbagPersons::describe() const
{
  if (_names.empty())
    return "each face is a person, in the order of appearance";
  std::vector<std::string> parts;
  for (std::size_t number = 0; number < _names.size() && number < mostDescribed; ++number)
    parts.push_back(std::to_string(number) + " is " + quote(_names[number]));
  if (_names.size() > mostDescribed)
    parts.push_back("and so on");
  return "person " + listed(parts);
}

std::int32_t RosbagPersons::_numberOf(const std::string& person)
{
  const auto [entry, isNew] = _numbers.emplace(person, _next);
  if (isNew)
  {
    _names.push_back(person);
    _all.push_back(utf8Of(person));
    ++_next;
  }
  return entry->second;
}

}  // namespace KV::recordings
