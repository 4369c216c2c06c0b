#include <skeigiot/session/studyreport.hpp>

#include "report/reportdata.hpp"
#include "report/reportpage.hpp"
#include "study/groupedmeans.hpp"
#include "study/resultschema.hpp"
#include "study/resultsreader.hpp"
#include "study/studylabels.hpp"
#include "study/studypage.hpp"
#include "study/studypictures.hpp"

#include <skeigiot/recordings/error.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <utility>

namespace KV::session
{

namespace
{

using Json = nlohmann::ordered_json;

const std::vector<std::string>& shownQuantities()
{
  static const std::vector<std::string> quantities = {"valence", "attention", "engaged", "seen"};
  return quantities;
}

const std::vector<std::string>& quantitiesOfScopes()
{
  static const std::vector<std::string> quantities = {"valence", "attention"};
  return quantities;
}

Json listOf(const std::map<std::string, std::string>& pairs)
{
  Json list = Json::array();
  for (const auto& [name, value] : pairs)
    list.push_back({name, value});
  return list;
}

/// Of all scopes, those that most sessions have, in the order in which sessions have them.
std::vector<std::string> scopesOf(Database& database)
{
  std::vector<std::string> scopes;
  Statement row(database,
                "SELECT scope FROM (SELECT scope, count(DISTINCT session) AS sessions, min(number) AS first"
                " FROM main.summaries GROUP BY scope ORDER BY sessions DESC, first, scope LIMIT ?)"
                " ORDER BY first, scope");
  row.bind(StudyReport::mostScopes);
  while (row.step())
    scopes.push_back(row.text(0));
  return scopes;
}

std::vector<std::string> factorsOf(Database& database)
{
  std::vector<std::string> names;
  Statement row(database, "SELECT DISTINCT name FROM main.factors ORDER BY name");
  while (row.step())
    names.push_back(row.text(0));
  return names;
}

double rounded(double value)
{
  return std::round(value * 1e6) / 1e6;
}

static_assert(StudyReport::mostDots /
                      (4 * StudyReport::mostGroups * (StudyReport::mostScopes * (1 + StudyReport::mostFactors) + 1)) >=
                  2,
              "A group shows its least and its greatest person at least.");

/// Adds the comparisons to the page's data, with the participants that they name.
class Comparisons
{
public:
  void add(std::vector<StudyComparison> comparisons)
  {
    for (StudyComparison& comparison : comparisons)
      _all.push_back(std::move(comparison));
  }

  void addTo(Json& data)
  {
    std::size_t groups = 0;
    for (const StudyComparison& comparison : _all)
      groups += std::min(comparison.groups.size(), StudyReport::mostGroups);
    const std::size_t dots = StudyReport::mostDots / std::max<std::size_t>(groups, 1);  // of a group
    Json list = Json::array();
    for (const StudyComparison& comparison : _all)
    {
      Json shown = Json::array();
      for (const StudyGroup& group : comparison.groups)
        if (shown.size() < StudyReport::mostGroups)
          shown.push_back(_asJson(group, dots));
      list.push_back({{"quantity", comparison.question.quantity},
                      {"scope", comparison.question.scope},
                      {"by", comparison.question.by},
                      {"groupCount", comparison.groups.size()},
                      {"groups", std::move(shown)}});
    }
    data["comparisons"] = std::move(list);
    data["participants"] = std::move(_participants);
  }

private:
  /// Of more persons than that, those at equal distances in the order of their values.
  Json _asJson(const StudyGroup& group, std::size_t most)
  {
    std::vector<const StudyGroup::Person*> persons;
    for (const StudyGroup::Person& person : group.persons)
      persons.push_back(&person);
    if (persons.size() > most)
    {
      std::stable_sort(persons.begin(), persons.end(),
                       [](const auto* one, const auto* other) { return one->value < other->value; });
      std::vector<const StudyGroup::Person*> some;
      for (std::size_t i = 0; i < most; ++i)
        some.push_back(persons[i * (persons.size() - 1) / (most - 1)]);
      persons = std::move(some);
    }
    Json dots = Json::array();
    for (const StudyGroup::Person* person : persons)
      dots.push_back({_numberOf(person->participant), rounded(person->value), person->rows});
    return {
        {"value", group.value},
        {"role", group.role},
        {"count", group.persons.size()},
        {"mean", rounded(group.mean)},
        {"interval", group.interval ? Json({rounded(group.interval->first), rounded(group.interval->second)}) : Json()},
        {"persons", std::move(dots)}};
  }

  std::size_t _numberOf(const std::string& participant)
  {
    const auto [found, isNew] = _numbers.emplace(participant, _participants.size());
    if (isNew)
      _participants.push_back(participant);
    return found->second;
  }

  std::vector<StudyComparison> _all;
  Json _participants = Json::array();
  std::map<std::string, std::size_t> _numbers;
};

/// Rows of texts, up to a limit, and the number of all rows. `source` is the table, and which of its rows.
Json rowsOf(Database& database, const std::string& columns, const std::string& source, const std::string& order)
{
  Json rows = Json::array();
  Statement row(database, "SELECT " + columns + " FROM " + source + " ORDER BY " + order + " LIMIT ?");
  row.bind(StudyReport::mostTroubles);
  while (row.step())
  {
    Json texts = Json::array();
    for (int i = 0; i < row.columns(); ++i)
      texts.push_back(row.text(i));
    rows.push_back(std::move(texts));
  }
  return {{"all", database.whole("SELECT count(*) FROM " + source)}, {"rows", std::move(rows)}};
}

Json troublesOf(Database& database)
{
  const std::string ofComplete =
      "SELECT count(*) FROM main.summaries JOIN main.sessions USING (session) WHERE status = 'complete' AND scope = '" +
      std::string(wholeRecordingScope) + "' AND ";
  return {
      {"sessions", rowsOf(database, "session, status, error", "main.sessions WHERE status <> 'complete'", "session")},
      {"warnings", rowsOf(database, "session, kind, text", "main.warnings", "session, number")},
      {"nobody", database.whole("SELECT count(*) FROM main.sessions WHERE status = 'complete' AND persons = 0")},
      {"valenceUnknown", database.whole(ofComplete + "valence IS NULL")},
      {"attentionUnknown", database.whole(ofComplete + "attention IS NULL")}};
}

/// A person without a participant counts once in each session, as in the groups.
std::int64_t personsIn(Database& database)
{
  return database.whole("SELECT count(DISTINCT participant) FROM main.persons WHERE participant <> ''") +
         database.whole("SELECT count(*) FROM main.persons WHERE ifnull(participant, '') = ''");
}

Json countsOf(Database& database)
{
  const auto with = [&database](const std::string& status) {
    return database.whole("SELECT count(*) FROM main.sessions WHERE status = '" + status + "'");
  };
  Statement length(database,
                   "SELECT coalesce(sum(length), 0.0) AS length FROM main.sessions WHERE status = 'complete'");
  length.step();
  return {{"sessions", database.whole("SELECT count(*) FROM main.sessions")},
          {"complete", with("complete")},
          {"cutShort", with("cut short")},
          {"failed", with("failed")},
          {"leftOut", with("left out")},
          {"persons", personsIn(database)},
          {"conditions", database.whole("SELECT count(DISTINCT condition) FROM main.sessions WHERE condition <> ''")},
          {"scopes", database.whole("SELECT count(DISTINCT scope) FROM main.summaries")},
          {"length", length.number(0)}};
}

std::string dataOf(Database& database, const std::vector<std::string>& files)
{
  const std::vector<std::string> scopes = scopesOf(database);
  std::vector<std::string> factors = factorsOf(database);
  const std::size_t factorCount = factors.size();
  factors.resize(std::min(factors.size(), StudyReport::mostFactors));
  Json data = {{"study", listOf(pairsOf(database, "study"))},
               {"options", listOf(pairsOf(database, "options"))},
               {"files", files},
               {"counts", countsOf(database)},
               {"scopes", scopes},
               {"factors", factors},
               {"factorCount", factorCount},
               {"limits",
                {{"pictures", StudyReport::mostPictures},
                 {"personsOfSession", StudyReport::mostPersonsOfSession},
                 {"scopesOfPicture", StudyReport::mostPoints}}}};
  Comparisons comparisons;
  comparisons.add(compareAll(database, shownQuantities(), scopes, "condition"));
  comparisons.add(compareAll(database, quantitiesOfScopes(), scopes, "scope"));
  for (const std::string& factor : factors)
    comparisons.add(compareAll(database, shownQuantities(), scopes, factor));
  comparisons.addTo(data);
  data["labels"] = studyLabels(database, scopes);
  data["troubles"] = troublesOf(database);
  data["pictures"] = studyPictures(database);
  return textForScript(data);
}

}  // namespace

bool StudyReport::isAvailable()
{
  return !studyTemplate().empty();
}

StudyReport::StudyReport(const StudyResults& results, const std::vector<std::string>& files)
{
  Database& database = ResultsReader::database(results);
  if (database.whole("SELECT count(*) FROM main.sessions") == 0)
    throw recordings::Error({files.empty() ? std::string("the results") : files.front(), 0, {}},
                            "has no session: run the study first");
  _data = dataOf(database, files);
}

void StudyReport::write(std::ostream& stream) const
{
  writeReport(stream, studyTemplate(), _data);
}

}  // namespace KV::session
