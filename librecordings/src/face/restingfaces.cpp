#include "face/restingfaces.hpp"

#include <skeigiot/recordings/description.hpp>

#include <algorithm>
#include <cmath>

namespace KV::recordings
{
namespace
{
constexpr std::size_t mostScoresNamed = 4;
constexpr std::size_t mostPersonsNamed = 8;

std::string hundredths(float share)
{
  return shortNumber(std::round(share * 100.f) / 100.f);
}

std::string textOf(const std::vector<LearnedScore>& scores)
{
  std::vector<std::string> parts;
  for (std::size_t i = 0; i < std::min(scores.size(), mostScoresNamed); ++i)
    if (const std::string rest = hundredths(scores[i].rest); rest != hundredths(scores[i].typical))
      parts.push_back(scores[i].name + " " + hundredths(scores[i].typical) + " -> " + rest);
  return listed(parts);
}

}  // namespace

RestingFace& RestingFaces::of(std::int32_t person, ko::SystemClock::time_point now)
{
  _start = _start.value_or(now);
  const auto [found, isNew] = _faces.try_emplace(person, Entry{RestingFace(*_start), now});
  found->second.seen = now;
  if (isNew && _faces.size() > mostPersons)
    _forgetOldest();
  return found->second.face;
}

std::vector<std::string> RestingFaces::describe() const
{
  std::vector<std::string> lines;
  for (const auto& [person, entry] : _faces)
  {
    const std::string text = textOf(entry.face.learned());
    if (!text.empty())
      lines.push_back("rest of person " + std::to_string(person) + ", in parts of the full scale: " + text);
    if (lines.size() == mostPersonsNamed)
      break;
  }
  return lines;
}

void RestingFaces::_forgetOldest()
{
  _faces.erase(std::min_element(_faces.begin(), _faces.end(), [](const auto& left, const auto& right) {
    return left.second.seen < right.second.seen;
  }));
}

}  // namespace KV::recordings
