#include "study/studylabels.hpp"

#include "agreement/confusiontable.hpp"
#include "study/groupedmeans.hpp"

#include <boost/optional/optional.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <map>
#include <utility>

namespace KV::session
{

namespace
{

using Json = nlohmann::ordered_json;

const std::array<std::string, 3>& words()
{
  static const std::array<std::string, 3> all = {"negative", "neutral", "positive"};
  return all;
}

boost::optional<std::size_t> wordOf(const std::string& text)
{
  const auto* const found = std::find(words().begin(), words().end(), text);
  return boost::make_optional(found != words().end(), static_cast<std::size_t>(found - words().begin()));
}

/// Returns the word after which the scope is named, if it is.
boost::optional<std::size_t> labelOf(const std::string& scope)
{
  const std::size_t tier = scope.rfind(": ");
  std::string name = tier == std::string::npos ? scope : scope.substr(tier + 2);
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return wordOf(name);
}

Json asJson(const boost::optional<double>& number)
{
  return number ? Json(*number) : Json();
}

Json agreementOf(const std::map<std::string, ConfusionTable>& persons, std::size_t unknown)
{
  ConfusionTable all(words().size());
  std::vector<ConfusionTable> units;
  for (const auto& [participant, table] : persons)
  {
    all.add(table);
    units.push_back(table);
  }
  Json interval;
  if (units.size() > 1)
  {
    std::vector<double> kappas;
    personBootstrap().resample(units, ConfusionTable(words().size()), [&kappas](const ConfusionTable& table) {
      if (const auto kappa = table.kappa())
        kappas.push_back(*kappa);
    });
    if (const auto ends = Bootstrap::interval(std::move(kappas)))
      interval = {ends->first, ends->second};
  }
  Json counts = Json::array();
  for (std::size_t label = 0; label < words().size(); ++label)
  {
    Json row = Json::array();
    for (std::size_t verdict = 0; verdict < words().size(); ++verdict)
      row.push_back(static_cast<std::int64_t>(all.time(label, verdict)));
    counts.push_back(std::move(row));
  }
  return {{"words", words()},
          {"counts", std::move(counts)},
          {"persons", units.size()},
          {"unknown", unknown},
          {"accuracy", asJson(all.accuracy())},
          {"kappa", asJson(all.kappa())},
          {"interval", std::move(interval)}};
}

Json verdictsOf(Database& database, const std::vector<std::string>& scopes)
{
  Json rows = Json::array();
  Statement row(database,
                "SELECT verdict, count(*) FROM main.summaries JOIN main.sessions USING (session)"
                " WHERE status = 'complete' AND scope = ? GROUP BY verdict ORDER BY verdict");
  for (const std::string& scope : scopes)
  {
    Json counts = Json::object();
    row.bind(scope);
    while (row.step())
      counts[row.text(0)] = row.whole(1);
    rows.push_back({{"scope", scope}, {"counts", std::move(counts)}});
  }
  return rows;
}

}  // namespace

Json studyLabels(Database& database, const std::vector<std::string>& scopes)
{
  std::map<std::string, ConfusionTable> persons;
  std::size_t unknown = 0;
  Statement row(database,
                "SELECT scope, verdict, persons.participant, summaries.session, summaries.person FROM main.summaries"
                " JOIN main.persons USING (session, person) JOIN main.sessions USING (session)"
                " WHERE sessions.status = 'complete'");
  while (row.step())
  {
    const boost::optional<std::size_t> label = labelOf(row.text(0));
    if (!label)
      continue;
    const boost::optional<std::size_t> verdict = wordOf(row.text(1));
    const std::string participant = participantOf(row.text(2), row.text(3), row.whole(4));
    if (verdict)
      persons.emplace(participant, ConfusionTable(words().size())).first->second.add(*label, *verdict, 1.);
    else
      ++unknown;
  }
  const bool isNamed = !persons.empty() || unknown > 0;
  return {{"verdicts", verdictsOf(database, scopes)}, {"agreement", isNamed ? agreementOf(persons, unknown) : Json()}};
}

}  // namespace KV::session
