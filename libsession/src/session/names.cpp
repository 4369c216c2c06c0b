#include <skeigiot/session/names.hpp>

namespace KV::session
{

namespace
{

constexpr float uneasyBelow = -0.25f;
constexpr float atEaseFrom = 0.25f;

}  // namespace

std::string zoneName(ko::human::AttentionState zone)
{
  const auto found = KV::attentionZonesStringMapping.find(zone);
  return found == KV::attentionZonesStringMapping.end() ? "Unknown" : found->second;
}

std::string pleasureName(KV::PleasureState pleasure)
{
  switch (pleasure)
  {
    case KV::PleasureNegative:
      return "negative";
    case KV::PleasureNeutral:
      return "neutral";
    case KV::PleasurePositive:
      return "positive";
    default:
      return "unknown";
  }
}

std::string easeName(const KV::BodyLanguageEase& ease)
{
  const bool estimated = ease.confidence > 0.f;
  if (!estimated)
    return "-";
  if (ease.level < uneasyBelow)
    return "uneasy";
  return ease.level < atEaseFrom ? "neutral" : "at ease";
}

std::string personText(std::int32_t person, const std::string& name)
{
  const std::string number = "person " + std::to_string(person);
  return name.empty() ? number : name + " (" + number + ")";
}

}  // namespace KV::session
