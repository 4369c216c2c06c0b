#include <skeigiot/session/studycomparison.hpp>

#include "agreement/bootstrap.hpp"
#include "study/groupedmeans.hpp"
#include "study/resultschema.hpp"
#include "study/resultsreader.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <cstdint>
#include <map>
#include <stdexcept>

namespace KV::session
{

namespace
{

const char* const byScope = "scope";
const char* const byCondition = "condition";

/// A value, or a sum of them.
struct Sum
{
  double value = 0.;
  std::size_t count = 0;

  void add(const Sum& other)
  {
    value += other.value;
    count += other.count;
  }
  double mean() const { return value / static_cast<double>(count); }
};

using Persons = std::map<std::string, Sum>;                             // by participant
using Groups = std::map<std::pair<std::string, std::string>, Persons>;  // by value and role

StudyGroup groupOf(const std::string& value, const std::string& role, const Persons& persons)
{
  StudyGroup group;
  group.value = value;
  group.role = role;
  std::vector<Sum> units;
  Sum all;
  for (const auto& [participant, sum] : persons)
  {
    group.persons.push_back({participant, sum.mean(), sum.count});
    units.push_back({sum.mean(), 1});
    all.add(units.back());
  }
  group.mean = all.mean();
  if (units.size() < 2)
    return group;
  std::vector<double> means;
  personBootstrap().resample(units, Sum(), [&means](const Sum& sum) { means.push_back(sum.mean()); });
  group.interval = Bootstrap::interval(std::move(means));
  return group;
}

StudyComparison comparisonOf(StudyQuestion question, const Groups& groups)
{
  StudyComparison comparison{std::move(question), {}};
  for (const auto& [key, persons] : groups)
    comparison.groups.push_back(groupOf(key.first, key.second, persons));
  return comparison;
}

/// Returns whether it is a placeholder without a column of its own.
bool isFactor(const std::string& by)
{
  return by != byScope && by != byCondition;
}

std::string columnOf(const std::string& by)
{
  if (by == byScope)
    return "summaries.scope";
  return by == byCondition ? "sessions.condition" : "factors.value";
}

std::string queryOf(const std::vector<std::string>& quantities, const std::string& by)
{
  std::string columns;
  for (const std::string& quantity : quantities)
    columns += ", summaries.\"" + quantity + "\"";
  return "SELECT summaries.scope, " + columnOf(by) +
         ", persons.role, persons.participant, summaries.session, summaries.person" + columns +
         " FROM main.summaries JOIN main.persons USING (session, person) JOIN main.sessions USING (session)" +
         (isFactor(by) ? " LEFT JOIN main.factors ON factors.session = summaries.session AND factors.name = ?" : "") +
         " WHERE sessions.status = 'complete' ORDER BY summaries.session, summaries.person, summaries.number";
}

/// Returns whether the sessions have this placeholder, or it is the condition or the scope.
bool canCompareBy(Database& database, const std::string& by)
{
  if (!isFactor(by))
    return true;
  Statement found(database, "SELECT count(*) FROM main.factors WHERE name = ?");
  found.bind(by);
  return found.step() && found.whole(0) > 0;
}

/// Returns the names of the columns of the summaries that have numbers.
std::vector<std::string> comparableQuantities()
{
  std::vector<std::string> names;
  for (const ResultColumn& column : resultTable("summaries").columns)
    if (column.type == "REAL")
      names.push_back(column.name);
  return names;
}

std::string joined(const std::vector<std::string>& names)
{
  std::string text;
  for (const std::string& name : names)
    text += (text.empty() ? "" : ", ") + name;
  return text;
}

}  // namespace

Bootstrap personBootstrap()
{
  constexpr std::uint64_t seed = 1;
  constexpr std::size_t resamples = 1000;
  return {seed, resamples};
}

std::string participantOf(const std::string& participant, const std::string& session, std::int64_t person)
{
  return participant.empty() ? session + ", person " + std::to_string(person) : participant;
}

std::vector<StudyComparison> compareAll(Database& database, const std::vector<std::string>& quantities,
                                        const std::vector<std::string>& scopes, const std::string& by)
{
  constexpr int firstQuantity = 6;
  const bool scopesAreGroups = by == byScope;
  const std::size_t parts = scopesAreGroups ? 1 : scopes.size();
  std::map<std::string, std::size_t> partOf;
  for (std::size_t i = 0; i < scopes.size(); ++i)
    partOf.emplace(scopes[i], scopesAreGroups ? 0 : i);

  std::vector<Groups> all(parts * quantities.size());
  const bool takesAnyScope = scopesAreGroups && scopes.empty();
  Statement row(database, queryOf(quantities, by));
  if (isFactor(by))
    row.bind(by);
  while (row.step())
  {
    const std::string scope = row.text(0);
    const auto part = partOf.find(scope);
    const bool isOther = part == partOf.end() && !takesAnyScope;
    if (isOther || (scopesAreGroups && scope == wholeRecordingScope))
      continue;
    const std::size_t first = (part == partOf.end() ? 0 : part->second) * quantities.size();
    const std::pair<std::string, std::string> group(row.text(1), row.text(2));
    const std::string participant = participantOf(row.text(3), row.text(4), row.whole(5));
    for (std::size_t i = 0; i < quantities.size(); ++i)
    {
      const int column = firstQuantity + static_cast<int>(i);
      if (!row.isNull(column))
        all[first + i][group][participant].add({row.number(column), 1});
    }
  }

  std::vector<StudyComparison> comparisons;
  for (std::size_t part = 0; part < parts; ++part)
    for (std::size_t i = 0; i < quantities.size(); ++i)
      if (const Groups& groups = all[part * quantities.size() + i]; !groups.empty())
        comparisons.push_back(
            comparisonOf({quantities[i], scopesAreGroups ? std::string() : scopes[part], by}, groups));
  return comparisons;
}

StudyComparison compareGroups(const StudyResults& results, const StudyQuestion& question)
{
  Database& database = ResultsReader::database(results);
  const std::vector<std::string> quantities = comparableQuantities();
  if (std::find(quantities.begin(), quantities.end(), question.quantity) == quantities.end())
    throw std::invalid_argument("there is no quantity " + recordings::quote(question.quantity) +
                                " in the summaries; expected one of " + joined(quantities));
  if (!canCompareBy(database, question.by))
    throw std::invalid_argument("there is no placeholder " + recordings::quote(question.by) +
                                " in the names of the sessions; expected condition, scope or another placeholder");
  const bool scopesAreGroups = question.by == byScope;
  std::vector<std::string> scopes;
  if (!scopesAreGroups)
    scopes.push_back(question.scope);
  std::vector<StudyComparison> found = compareAll(database, {question.quantity}, scopes, question.by);
  if (found.empty())
    throw std::invalid_argument("no complete session has " + recordings::quote(question.quantity) +
                                (scopesAreGroups ? std::string(" in a scope besides the whole recording")
                                                 : " in the scope " + recordings::quote(question.scope)));
  found.front().question = question;
  return std::move(found.front());
}

}  // namespace KV::session
