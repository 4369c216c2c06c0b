#include <skeigiot/session/explanationjson.hpp>

#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/sentence.hpp>

#include <nlohmann/json.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace KV::session
{

namespace
{

using Json = nlohmann::ordered_json;

double secondsOf(Duration duration)
{
  return static_cast<double>(duration.count()) / 1e9;
}

/// Returns the double with the shortest decimal text that identifies the float; JSON has no other numbers.
double shortest(float number)
{
  if (!std::isfinite(number))
    return static_cast<double>(number);
  std::array<char, 32> text{};
  const char* const end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  double result = 0.;
  std::from_chars(text.data(), end, result);
  return result;
}

Json stateJson(const Snapshot& snapshot)
{
  return {{"valence", shortest(snapshot.valence.value)},
          {"valenceConfidence", shortest(snapshot.valence.confidence)},
          {"valenceKnown", snapshot.isValenceKnown()},
          {"attention", shortest(snapshot.attention.value)},
          {"attentionConfidence", shortest(snapshot.attention.confidence)},
          {"attentionKnown", snapshot.isAttentionKnown()},
          {"zone", zoneName(snapshot.zone)}};
}

/// A person without a name has no member name.
Json beginningOf(const Snapshot& snapshot, const std::string& recording)
{
  Json json = {{"recording", recording}, {"person", snapshot.person}};
  if (!snapshot.name.empty())
    json["name"] = snapshot.name;
  return json;
}

Json zoneChangesJson(const std::vector<SeenZoneChange>& changes, TimePoint start)
{
  Json json = Json::array();
  for (const SeenZoneChange& change : changes)
    json.push_back({{"time", secondsOf(change.time - start)},
                    {"from", zoneName(change.from)},
                    {"to", zoneName(change.to)},
                    {"evidence", evidenceName(change.evidence)}});
  return json;
}

TimePoint startOf(const Snapshot& snapshot)
{
  return snapshot.time - snapshot.sinceStart;
}

Json forcesJson(const std::vector<ActedForce>& forces, double time)
{
  Json json = Json::array();
  for (const ActedForce& force : forces)
    json.push_back({{"time", time},
                    {"source", force.source},
                    {"sourceName", sourceName(force.source)},
                    {"quantity", quantityName(force.quantity)},
                    {"target", shortest(force.target)},
                    {"weight", shortest(force.weight)},
                    {"before", shortest(force.before)},
                    {"after", shortest(force.after)}});
  return json;
}

Json sharesJson(const Changes& all)
{
  Json json = Json::array();
  for (const KV::Quantity quantity : allQuantities)
  {
    const std::vector<SourceChange> changes = all.of(quantity);
    const double total = totalDistance(changes);
    for (const SourceChange& change : changes)
      json.push_back({{"quantity", quantityName(quantity)},
                      {"source", change.source},
                      {"sourceName", sourceName(change.source)},
                      {"forces", change.forces},
                      {"share", total > 0. ? change.distance() / total : 0.},
                      {"moved", change.distance()},
                      {"net", change.net()}});
  }
  return json;
}

std::string textOf(const Json& json)
{
  constexpr int indentation = 2;
  return json.dump(indentation, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string explanationJson(const Explanation& explanation, const std::string& recording)
{
  const Snapshot& after = explanation.after;
  const double time = secondsOf(after.sinceStart);
  Json json = beginningOf(after, recording);
  json.update({{"time", time},
               {"seen", after.seen},
               {"before", stateJson(explanation.before)},
               {"after", stateJson(after)},
               {"forces", forcesJson(explanation.forces, time)},
               {"zoneChanges", zoneChangesJson(explanation.zoneChanges, startOf(after))},
               {"sentences", sentencesOn(explanation)}});
  return textOf(json);
}

std::string explanationJson(const SpanExplanation& explanation, const std::string& recording)
{
  const Snapshot& after = explanation.after;
  Json json = beginningOf(after, recording);
  json.update({{"updates", explanation.updates},
               {"first", secondsOf(explanation.first)},
               {"last", secondsOf(after.sinceStart)},
               {"before", stateJson(explanation.before)},
               {"after", stateJson(after)},
               {"shares", sharesJson(explanation.changes)},
               {"zoneChanges", zoneChangesJson(explanation.zoneChanges, startOf(after))},
               {"sentences", sentencesOn(explanation)}});
  return textOf(json);
}

}  // namespace KV::session
