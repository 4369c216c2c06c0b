#include "face/personsinview.hpp"

namespace KV::recordings
{
namespace
{
constexpr int seenNow = -1;
}

bool PersonsInView::see(std::int32_t person)
{
  const auto [entry, isNew] = _cyclesMissed.emplace(person, seenNow);
  if (!isNew && entry->second == seenNow)
    return false;
  entry->second = seenNow;
  return true;
}

std::vector<std::int32_t> PersonsInView::endCycle()
{
  std::vector<std::int32_t> missing;
  for (auto entry = _cyclesMissed.begin(); entry != _cyclesMissed.end();)
  {
    auto& [person, cyclesMissed] = *entry;
    ++cyclesMissed;
    if (cyclesMissed > longestAbsence)
    {
      entry = _cyclesMissed.erase(entry);
      continue;
    }
    if (cyclesMissed > 0)
      missing.push_back(person);
    ++entry;
  }
  return missing;
}

}  // namespace KV::recordings
