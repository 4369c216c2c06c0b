#include <skeigiot/session/liveview.hpp>

#include "report/reportinputs.hpp"

#include <skeigiot/personobservation.hpp>
#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/pacer.hpp>

#include <boost/chrono/duration.hpp>
#include <boost/optional/optional.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace KV::session
{

namespace
{

/// Numbers with a fraction are single precision, and so have the shortest text that reads back as the same number.
using Json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

const boost::chrono::seconds longestUnseen(60);

constexpr std::size_t mostOthers = 10'000;  // are counted one by one
constexpr std::size_t mostSources = 1000;   // the library has some twenty

/// Names and messages come from outside, and need not be UTF-8.
std::string textOf(const Json& object)
{
  return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::vector<float> boundaryValues()
{
  std::vector<float> values;
  for (const Boundary& boundary : boundaries())
    values.push_back(boundary.get());
  return values;
}

Json namesOf(const std::vector<std::string>& sources)
{
  Json names = Json::array();
  for (const std::string& source : sources)
    names.push_back(sourceName(source));
  return names;
}

Json boundariesJson(const std::vector<float>& first)
{
  Json all = Json::array();
  for (std::size_t i = 0; i < first.size(); ++i)
  {
    const Boundary& boundary = boundaries().at(i);
    all.push_back({{"option", boundary.option},
                   {"description", boundary.description},
                   {"interval", boundary.interval},
                   {"value", boundary.get()},
                   {"first", first[i]}});
  }
  return all;
}

/// Adds to a list, which loses its oldest where it is full.
void keep(std::vector<Json>& all, Json added)
{
  if (all.size() == LiveView::mostKept)
    all.erase(all.begin());
  all.push_back(std::move(added));
}

/// A page that comes later gets the events of the last minute again. By the number, it knows which it already has.
Json verdictJson(std::size_t number, const ScopeVerdict& verdict)
{
  Json persons = Json::array();
  for (const auto& [person, ofPerson] : verdict.persons)
  {
    if (persons.size() == LiveView::mostPersons)
      break;
    persons.push_back(
        {{"id", person}, {"name", ofPerson.summary.name()}, {"verdict", ofPerson.word}, {"updates", ofPerson.updates}});
  }
  return {{"number", number},
          {"scope", verdict.name},
          {"from", verdict.from.count()},
          {"to", verdict.to.count()},
          {"end", scopeEndName(verdict.end)},
          {"persons", std::move(persons)}};
}

Json inputJson(const LiveInput& input, std::size_t others)
{
  Json object = {{"name", input.name},
                 {"unit", input.unit},
                 {"speed", static_cast<float>(input.speed)},
                 {"lines", input.lines},
                 {"refused", input.refused},
                 {"lastError", input.lastError},
                 {"rate", static_cast<float>(input.rate)},
                 {"delay", nullptr},
                 {"ended", input.ended},
                 {"others", others}};
  if (input.delay)
    object["delay"] = static_cast<float>(*input.delay);
  return object;
}

Json inputsJson(const KV::PersonObservation& observation)
{
  Json inputs = Json::object();
  const ReportInputValues values = reportInputsOf(observation);
  for (std::size_t i = 0; i < values.size(); ++i)
  {
    if (!std::isnan(values.at(i)))
      inputs[reportInputs().at(i).name] = values.at(i);
  }
  return inputs;
}

}  // namespace

struct LiveView::Record
{
  /// A force, its source being a number of the table of names.
  struct ForceOfSource
  {
    std::size_t source = 0;
    KV::Force force;
  };

  /// The last update of a person since the last news.
  struct Update
  {
    Snapshot snapshot;
    KV::PersonObservation inputs;
    std::vector<ForceOfSource> forces;
    std::size_t count = 0;
  };

  std::size_t numberOfSource(std::string_view name);
  bool isShown(const Snapshot& snapshot);
  void removeOld(TimePoint now);
  Json updatesJson();

  // Of the steps that no update has taken in yet, and of the update that is under way
  std::map<std::int32_t, KV::PersonObservation> inputs;
  std::vector<ForceOfSource> forces;

  // Since the last news
  std::map<std::int32_t, Update> updates;
  std::set<std::int32_t> left;
  std::vector<Json> newVerdicts;
  std::vector<Json> newWarnings;
  bool roomChanged = false;
  bool scopesChanged = false;
  bool sourcesChanged = false;
  bool boundariesChanged = false;

  std::map<std::int32_t, TimePoint> lastSeen;  // of persons who are shown
  std::set<std::int32_t> others;               // since the last state of the input
  boost::optional<TimePoint> start;
  std::vector<std::string> sources;
  const std::vector<float> firstBoundaries = boundaryValues();
  std::set<std::string> scopes;  // that are open
  Json room;                     // null: nothing is known of it
  std::vector<Json> verdicts;
  std::vector<Json> warnings;
  std::size_t verdictCount = 0;
  std::size_t warningCount = 0;
};

std::size_t LiveView::Record::numberOfSource(std::string_view name)
{
  const auto found = std::find(sources.begin(), sources.end(), name);
  const auto number = static_cast<std::size_t>(found - sources.begin());
  if (found == sources.end() && number < mostSources)
  {
    sources.emplace_back(name);
    sourcesChanged = true;
  }
  return number;
}

/// Gives the person a place among those who are shown, if there is one.
bool LiveView::Record::isShown(const Snapshot& snapshot)
{
  const auto known = lastSeen.find(snapshot.person);
  if (known != lastSeen.end())
  {
    if (snapshot.seen)
      known->second = snapshot.time;
    return true;
  }
  if (lastSeen.size() < mostPersons)
  {
    lastSeen[snapshot.person] = snapshot.time;
    return true;
  }
  if (others.size() < mostOthers)
    others.insert(snapshot.person);
  return false;
}

void LiveView::Record::removeOld(TimePoint now)
{
  for (auto person = lastSeen.begin(); person != lastSeen.end();)
  {
    if (now - person->second > longestUnseen)
    {
      left.insert(person->first);
      updates.erase(person->first);
      person = lastSeen.erase(person);
    }
    else
      ++person;
  }
}

Json LiveView::Record::updatesJson()
{
  Json persons = Json::array();
  for (const auto& [person, update] : updates)
  {
    const Snapshot& state = update.snapshot;
    Json pulls = Json::array();
    for (const auto& [source, force] : update.forces)
      pulls.push_back(
          {source, static_cast<int>(force.quantity), force.target, force.weight, force.before, force.after});
    persons.push_back({{"id", person},
                       {"name", state.name},
                       {"time", state.sinceStart.count()},
                       {"updates", update.count},
                       {"seen", state.seen},
                       {"valence", {state.valence.value, state.valence.confidence, state.isValenceKnown()}},
                       {"attention", {state.attention.value, state.attention.confidence, state.isAttentionKnown()}},
                       {"zone", zoneName(state.zone)},
                       {"pleasure", pleasureName(state.pleasure)},
                       {"ease", {state.ease.level, state.ease.confidence, easeName(state.ease)}},
                       {"inputs", inputsJson(update.inputs)},
                       {"forces", std::move(pulls)}});
  }
  updates.clear();
  return persons;
}

LiveView::LiveView() : _record(std::make_unique<Record>()) {}

LiveView::~LiveView() = default;

void LiveView::stepBegins(const recordings::Step& step)
{
  _record->forces.clear();
  if (!_record->start)
    _record->start = step.time;
  for (const recordings::ScopeStart& scope : step.scopeStarts)
  {
    if (_record->scopes.size() < Scopes::mostOpen)
      _record->scopesChanged = _record->scopes.insert(scope.name).second || _record->scopesChanged;
  }
  if (step.person)
    takeNewest(_record->inputs[*step.person], step.observation);
}

void LiveView::forceActed(const KV::Force& force)
{
  _record->forces.push_back({_record->numberOfSource(force.source), force});
  _record->forces.back().force.source = {};  // it is valid during this call only
}

void LiveView::personUpdated(const Snapshot& snapshot)
{
  const auto inputs = _record->inputs.find(snapshot.person);
  if (_record->isShown(snapshot))
  {
    Record::Update& update = _record->updates[snapshot.person];
    update.snapshot = snapshot;
    if (inputs != _record->inputs.end())
      takeNewest(update.inputs, inputs->second);
    update.forces = std::exchange(_record->forces, {});
    ++update.count;
  }
  _record->forces.clear();
  if (inputs != _record->inputs.end())
    _record->inputs.erase(inputs);
}

void LiveView::ambianceUpdated(float agitation, KV::ExcitationState excitation)
{
  _record->room = {{"agitation", agitation}, {"excited", excitation == KV::AmbianceExcited}};
  _record->roomChanged = true;
}

void LiveView::scopeJudged(const ScopeVerdict& verdict)
{
  _record->scopesChanged = _record->scopes.erase(verdict.name) > 0 || _record->scopesChanged;
  const Json json = verdictJson(++_record->verdictCount, verdict);
  keep(_record->verdicts, json);
  keep(_record->newVerdicts, json);
}

void LiveView::remove(std::int32_t person)
{
  _record->inputs.erase(person);
  _record->updates.erase(person);
  if (_record->lastSeen.erase(person) > 0)
    _record->left.insert(person);
}

void LiveView::warn(const std::string& warning)
{
  const Json json = {{"number", ++_record->warningCount}, {"text", warning}};
  keep(_record->warnings, json);
  keep(_record->newWarnings, json);
}

void LiveView::boundariesChanged()
{
  _record->boundariesChanged = true;
}

void LiveView::putBoundariesBack()
{
  for (std::size_t i = 0; i < _record->firstBoundaries.size(); ++i)
    boundaries().at(i).set(_record->firstBoundaries[i]);
  boundariesChanged();
}

bool LiveView::hasNews() const
{
  const Record& record = *_record;
  return !record.updates.empty() || !record.left.empty() || !record.newVerdicts.empty() ||
         !record.newWarnings.empty() || record.roomChanged || record.scopesChanged || record.boundariesChanged;
}

std::string LiveView::takeNews(TimePoint now, const LiveInput* input)
{
  Record& record = *_record;
  record.removeOld(now);
  Json news = {{"now", record.start ? (now - *record.start).count() : 0}};
  if (std::exchange(record.sourcesChanged, false))
  {
    news["sources"] = record.sources;
    news["sourceNames"] = namesOf(record.sources);
  }
  if (!record.updates.empty())
    news["persons"] = record.updatesJson();
  if (!record.left.empty())
    news["left"] = std::exchange(record.left, {});
  if (std::exchange(record.roomChanged, false))
    news["room"] = record.room;
  if (std::exchange(record.scopesChanged, false))
    news["scopes"] = record.scopes;
  if (!record.newVerdicts.empty())
    news["verdicts"] = std::exchange(record.newVerdicts, {});
  if (!record.newWarnings.empty())
    news["warnings"] = std::exchange(record.newWarnings, {});
  if (std::exchange(record.boundariesChanged, false))
    news["boundaries"] = boundariesJson(record.firstBoundaries);
  if (input != nullptr)
    news["input"] = inputJson(*input, std::exchange(record.others, {}).size());
  return textOf(news);
}

std::string LiveView::facts() const
{
  const Record& record = *_record;
  return textOf({{"sources", record.sources},
                 {"sourceNames", namesOf(record.sources)},
                 {"boundaries", boundariesJson(record.firstBoundaries)},
                 {"scopes", record.scopes},
                 {"verdicts", record.verdicts},
                 {"warnings", record.warnings},
                 {"room", record.room},
                 {"mostPersons", mostPersons}});
}

}  // namespace KV::session
