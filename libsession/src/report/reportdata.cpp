#include "report/reportdata.hpp"

#include "report/base64.hpp"

#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/names.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
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

/// Returns the values of `of` for all things, in base64.
template <typename Number, typename Things, typename Of>
std::string series(const Things& things, Of of)
{
  std::vector<Number> numbers;
  numbers.reserve(things.size());
  for (const auto& thing : things)
    numbers.push_back(static_cast<Number>(of(thing)));
  return base64(numbers);
}

using Moments = std::vector<Moment>;

Json inputsOf(const Moments& moments)
{
  Json inputs = Json::object();
  for (std::size_t i = 0; i < reportInputCount; ++i)
  {
    const auto value = [i](const Moment& moment) { return moment.inputs.at(i); };
    const auto isThere = [&](const Moment& moment) { return !std::isnan(value(moment)); };
    if (std::any_of(moments.begin(), moments.end(), isThere))
      inputs[reportInputs().at(i).name] = series<float>(moments, value);
  }
  return inputs;
}

float changeOf(const Moment& moment, KV::Quantity quantity, std::size_t source)
{
  for (const MomentChange& change : moment.changes)
  {
    if (change.quantity == quantity && change.source == source)
      return static_cast<float>(change.distance);
  }
  return 0.f;
}

Json changesOf(const Moments& moments, KV::Quantity quantity, const std::vector<std::string>& sources)
{
  Json changes = Json::object();
  for (std::size_t source = 0; source < sources.size(); ++source)
  {
    const auto distance = [=](const Moment& moment) { return changeOf(moment, quantity, source); };
    const auto isMoved = [&](const Moment& moment) { return distance(moment) != 0.f; };
    if (std::any_of(moments.begin(), moments.end(), isMoved))
      changes[std::to_string(source)] = series<float>(moments, distance);
  }
  return changes;
}

Json forcesOf(const Moments& moments)
{
  std::vector<MomentForce> forces;
  std::vector<std::uint32_t> ends;
  for (const Moment& moment : moments)
  {
    forces.insert(forces.end(), moment.forces.begin(), moment.forces.end());
    ends.push_back(static_cast<std::uint32_t>(forces.size()));
  }
  return {{"ends", base64(ends)},
          {"source", series<std::uint8_t>(forces, [](const MomentForce& force) { return force.source; })},
          {"quantity", series<std::uint8_t>(forces, [](const MomentForce& force) { return force.quantity; })},
          {"target", series<float>(forces, [](const MomentForce& force) { return force.target; })},
          {"weight", series<float>(forces, [](const MomentForce& force) { return force.weight; })},
          {"before", series<float>(forces, [](const MomentForce& force) { return force.before; })},
          {"after", series<float>(forces, [](const MomentForce& force) { return force.after; })}};
}

Json summaryOf(const PersonSummary& summary)
{
  Json zones = Json::object();
  for (std::int32_t zone = 0; zone <= static_cast<std::int32_t>(ko::human::AttentionState::LookingDownRight); ++zone)
  {
    const auto state = static_cast<ko::human::AttentionState>(zone);
    zones[zoneName(state)] = summary.share(state);
  }
  Json pleasures = Json::object();
  for (const KV::PleasureState pleasure :
       {KV::PleasurePositive, KV::PleasureNeutral, KV::PleasureNegative, KV::PleasureUnknown})
    pleasures[pleasureName(pleasure)] = summary.share(pleasure);
  return {{"from", secondsOf(summary.from())},
          {"to", secondsOf(summary.to())},
          {"updates", summary.updates()},
          {"visible", summary.seenShare()},
          {"valence", summary.valence()},
          {"valenceConfidence", summary.valenceConfidence()},
          {"attention", summary.attention()},
          {"attentionConfidence", summary.attentionConfidence()},
          {"engaged", summary.lookingAtRobotShare()},
          {"strictlyEngaged", summary.strictlyLookingAtRobotShare()},
          {"zones", std::move(zones)},
          {"pleasures", std::move(pleasures)}};
}

Json personOf(std::int32_t person, const Moments& moments, const ReportRecorder& recorder)
{
  const auto number = [&](auto of) { return series<float>(moments, of); };
  const auto state = [&](auto of) { return series<std::uint8_t>(moments, of); };
  return {{"id", person},
          {"name", recorder.summary().persons().at(person).name()},
          {"summary", summaryOf(recorder.summary().persons().at(person))},
          {"moments", moments.size()},
          {"time", series<double>(moments, [](const Moment& moment) { return secondsOf(moment.snapshot.sinceStart); })},
          {"updates", series<std::uint32_t>(moments, [](const Moment& moment) { return moment.updates; })},
          {"valence", number([](const Moment& moment) { return moment.snapshot.valence.value; })},
          {"valenceConfidence", number([](const Moment& moment) { return moment.snapshot.valence.confidence; })},
          {"attention", number([](const Moment& moment) { return moment.snapshot.attention.value; })},
          {"attentionConfidence", number([](const Moment& moment) { return moment.snapshot.attention.confidence; })},
          {"zone", state([](const Moment& moment) { return static_cast<std::int32_t>(moment.snapshot.zone); })},
          {"pleasure", state([](const Moment& moment) { return moment.snapshot.pleasure; })},
          {"seen", state([](const Moment& moment) { return moment.snapshot.seen ? 1 : 0; })},
          {"valenceKnown", state([](const Moment& moment) { return moment.snapshot.isValenceKnown() ? 1 : 0; })},
          {"attentionKnown", state([](const Moment& moment) { return moment.snapshot.isAttentionKnown() ? 1 : 0; })},
          {"inputs", inputsOf(moments)},
          {"valenceChanges", changesOf(moments, KV::ValenceQuantity, recorder.sources())},
          {"attentionChanges", changesOf(moments, KV::AttentionQuantity, recorder.sources())},
          {"forces", forcesOf(moments)}};
}

Json scopesOf(const ReportRecorder& recorder)
{
  Json scopes = Json::array();
  for (const ScopeVerdict& scope : recorder.scopes())
  {
    Json persons = Json::array();
    for (const auto& [person, moments] : recorder.moments())
    {
      const ScopeVerdict::OfPerson verdict = scope.of(person);
      if (verdict.updates > 0)  // the others would be a product of persons and scopes
        persons.push_back({{"id", person}, {"verdict", verdict.word}, {"updates", verdict.updates}});
    }
    scopes.push_back({{"name", scope.name},
                      {"from", secondsOf(scope.from)},
                      {"to", secondsOf(scope.to)},
                      {"end", scopeEndName(scope.end)},
                      {"persons", std::move(persons)}});
  }
  return scopes;
}

Json ambianceOf(const std::vector<ReportRecorder::Ambiance>& ambiance)
{
  using Ambiance = ReportRecorder::Ambiance;
  return {{"time", series<double>(ambiance, [](const Ambiance& one) { return secondsOf(one.time); })},
          {"agitation", series<float>(ambiance, [](const Ambiance& one) { return one.agitation; })},
          {"excited", series<std::uint8_t>(ambiance, [](const Ambiance& one) { return one.excited ? 1 : 0; })}};
}

Json boundarySettings()
{
  Json settings = Json::array();
  for (const Boundary& boundary : boundaries())
    settings.push_back({{"option", boundary.option}, {"description", boundary.description}, {"value", boundary.get()}});
  return settings;
}

Json originOf(const ReportRecorder& recorder, const ReportOrigin& origin)
{
  Json files = Json::array();
  for (const ReportOrigin::File& file : origin.files)
    files.push_back({{"path", file.path}, {"bytes", file.bytes ? Json(*file.bytes) : Json()}, {"format", file.format}});
  return {{"files", std::move(files)},
          {"readAs", recorder.description()},
          {"options", origin.options},
          {"version", origin.version},
          {"made", origin.made}};
}

Json zoneNames()
{
  Json names = Json::array();
  for (std::int32_t zone = 0; zone <= static_cast<std::int32_t>(ko::human::AttentionState::LookingDownRight); ++zone)
    names.push_back(zoneName(static_cast<ko::human::AttentionState>(zone)));
  return names;
}

Json pleasureNames()
{
  Json names = Json::array();
  for (int pleasure = KV::PleasureUnknown; pleasure <= KV::PleasurePositive; ++pleasure)
    names.push_back(pleasureName(static_cast<KV::PleasureState>(pleasure)));
  return names;
}

Json namesOf(const std::vector<std::string>& sources)
{
  Json names = Json::array();
  for (const std::string& source : sources)
    names.push_back(sourceName(source));
  return names;
}

}  // namespace

Json reportData(const ReportRecorder& recorder, const ReportOrigin& origin)
{
  const Inspection& inspection = recorder.inspection();
  Json persons = Json::array();
  for (const auto& [person, moments] : recorder.moments())
    persons.push_back(personOf(person, moments, recorder));
  Json inputs = Json::array();
  for (const ReportOrigin::File& file : origin.files)
    inputs.push_back(file.path);
  return {{"inputs", std::move(inputs)},
          {"notes", origin.notes},
          {"origin", originOf(recorder, origin)},
          {"trust", trustIn(inspection)},
          {"begins", recorder.isDated() ? Json(secondsOf(inspection.first().time_since_epoch())) : Json()},
          {"length", secondsOf(inspection.length())},
          {"updatesPerSecond", inspection.timesPerSecond()},
          {"gaps",
           {{"count", inspection.gaps().count},
            {"longest", secondsOf(inspection.gaps().longest)},
            {"at", secondsOf(inspection.gaps().at)}}},
          {"stretch", secondsOf(recorder.stretch())},
          {"zoneNames", zoneNames()},
          {"pleasureNames", pleasureNames()},
          {"sources", recorder.sources()},
          {"sourceNames", namesOf(recorder.sources())},
          {"boundaries", boundarySettings()},
          {"scopes", scopesOf(recorder)},
          {"ambiance", ambianceOf(recorder.ambiance())},
          {"persons", std::move(persons)}};
}

std::string textForScript(const Json& data)
{
  // A name may be invalid UTF-8; and "<" occurs only in strings, where it may be written as its number.
  const std::string text = data.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string escaped;
  escaped.reserve(text.size());
  for (const char character : text)
  {
    if (character == '<')
      escaped += "\\u003c";
    else
      escaped += character;
  }
  return escaped;
}

}  // namespace KV::session
