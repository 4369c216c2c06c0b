#include <skeigiot/session/forcenames.hpp>

#include <algorithm>
#include <cctype>

namespace KV::session
{

namespace
{

struct Source
{
  std::string_view name;  ///< fixed by the library
  const char* plain;
  bool showsMood;  ///< its target is a mood that a person showed, and not a resting value
};

constexpr std::array<Source, 16> sources{
    {{"Face characteristics", "facial expressions", true},
     {"Smile", "smile", true},
     {"Voice emotion", "voice", true},
     {"Asr emotion", "words", true},
     {"Touch emotion", "touch", true},
     {"Context emotion", "context", true},
     {"Body Language", "body language", true},
     {"Gaze and head based attention", "gaze and head", false},
     {"No observation", "lack of observations", false},
     {"Not visible", "not being visible", false},
     {"Points confidence", "facial points", false},
     {"User is speaking", "speaking", false},
     {"Winner unknown", "unclear expressions", false},
     {"Distance limitation", "distance", false},
     {"Height limitation", "height of the head", false},
     {"Okao and robot movement limits", "limits of the sensor and the robot's motion", false}}};

const Source* find(std::string_view name)
{
  const auto* const found =
      std::find_if(sources.begin(), sources.end(), [name](const Source& source) { return source.name == name; });
  return found == sources.end() ? nullptr : found;
}

std::string moodOf(const SourceChange& change)
{
  if (change.leastTarget > 0.f)
    return "positive";
  if (change.greatestTarget < 0.f)
    return "negative";
  return change.leastTarget == 0.f && change.greatestTarget == 0.f ? "neutral" : "mixed";
}

}  // namespace

std::string quantityName(KV::Quantity quantity)
{
  switch (quantity)
  {
    case KV::ValenceQuantity:
      return "valence";
    case KV::UnsmoothedValenceQuantity:
      return "unsmoothed valence";
    case KV::ValenceConfidenceQuantity:
      return "valence confidence";
    case KV::UnsmoothedValenceConfidenceQuantity:
      return "unsmoothed valence confidence";
    case KV::AttentionQuantity:
      return "attention";
    case KV::AttentionConfidenceQuantity:
      return "attention confidence";
  }
  return "unknown";
}

std::string evidenceName(KV::ZoneEvidence evidence)
{
  switch (evidence)
  {
    case KV::NoAttentionEvidence:
      return "no head or gaze";
    case KV::HeadTurnedAwayEvidence:
      return "head turned away";
    case KV::AttentionEvidence:
      return "attention";
    case KV::HeadEvidence:
      return "head";
    case KV::GazeEvidence:
      return "gaze";
  }
  return "unknown";
}

std::string plainSource(const std::string& source)
{
  const Source* const known = find(source);
  return known == nullptr ? source : known->plain;
}

std::string sourceName(std::string_view source)
{
  const Source* const known = find(source);
  std::string name(known == nullptr ? source : known->plain);
  if (known != nullptr)
    name.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(name.front())));
  return name;
}

std::string describeSource(const SourceChange& change)
{
  const Source* const known = find(change.source);
  const bool showsMood = known != nullptr && known->showsMood;
  return plainSource(change.source) + (showsMood ? " (" + moodOf(change) + ")" : "");
}

}  // namespace KV::session
