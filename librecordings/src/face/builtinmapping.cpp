#include <skeigiot/recordings/builtinmapping.hpp>

#include "face/mapping.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KV::recordings
{
namespace
{
// Members keep their order, and numbers are written as the shortest text of a float.
using Json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

Json termsJson(const std::vector<ScoreTerm>& terms)
{
  Json json = Json::array();
  for (const ScoreTerm& term : terms)
    json.push_back({{"of", term.of}, {"weight", term.weight}});
  return json;
}

Json compositionJson(const Composition& composition)
{
  if (composition.sum.empty())
    return nullptr;
  Json json = {{"sum", termsJson(composition.sum)}};
  if (!composition.limit.empty())
    json["limit"] = termsJson(composition.limit);
  return json;
}

Json restJson(const std::map<std::string, RestingScore>& rest)
{
  Json json = Json::object();
  for (const auto& [name, score] : rest)
    json[name] = {{"typical", score.typical}, {"most", score.most}};
  return json;
}

Json tableJson(const ScoreTable& table)
{
  Json json = Json::object();
  for (const ScoreTableMember& member : scoreTableMembers())
    json[member.name] = compositionJson(table.*member.composition);
  return json;
}

Json tableWithRestJson(const ScoreTable& table)
{
  Json json = tableJson(table);
  json["rest"] = restJson(table.rest);
  return json;
}

}  // namespace

std::string builtInMapping()
{
  const Mapping mapping = readMapping({});
  Json json = {{"actionUnits", tableWithRestJson(mapping.actionUnits)},
               {"pyFeatActionUnits", {{"rest", restJson(mapping.pyFeatActionUnits.rest)}}},
               {"blendshapes", tableWithRestJson(mapping.blendshapes)},
               {"arkit", tableWithRestJson(mapping.arkit)},
               {"emotions", tableJson(mapping.emotions)},
               {"pyFeat",
                {{"gazeYaw", mapping.pyFeat.gazeYawIsLeft ? "left" : "right"},
                 {"gazePitch", mapping.pyFeat.gazePitchIsUp ? "up" : "down"}}}};
  json["blendshapes"]["eyes"] = {{"yaw", mapping.eyes.yaw}, {"pitch", mapping.eyes.pitch}};
  return json.dump(2) + "\n";
}

}  // namespace KV::recordings
