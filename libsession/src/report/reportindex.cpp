#include <skeigiot/session/reportindex.hpp>

#include "report/reportdata.hpp"
#include "report/reportpage.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace KV::session
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr std::size_t mostPictures = 4;  // of one recording

double secondsOf(Duration duration)
{
  return static_cast<double>(duration.count()) / 1e9;
}

/// An unknown value is null.
Json numberOrNull(bool isKnown, double number)
{
  return isKnown ? Json(std::round(number * 1000.) / 1000.) : Json();
}

Json curve(const std::vector<float>& means)
{
  Json json = Json::array();
  for (const float mean : means)
    json.push_back(numberOrNull(!std::isnan(mean), static_cast<double>(mean)));
  return json;
}

Json asJson(const ReportOverview::Person& person)
{
  const PersonSummary& summary = person.summary;
  return {{"id", person.number},
          {"name", summary.name()},
          {"verdict", person.verdict},
          {"seen", numberOrNull(true, summary.seenShare())},
          {"valence", numberOrNull(summary.isValenceKnown(), summary.valence())},
          {"attention", numberOrNull(summary.isAttentionKnown(), summary.attention())},
          {"valenceCurve", curve(person.valence)},
          {"attentionCurve", curve(person.attention)}};
}

Json asJson(const IndexedRecording& recording)
{
  Json persons = Json::array();
  for (const ReportOverview::Person& person : recording.overview.persons)
  {
    if (persons.size() == mostPictures)
      break;
    persons.push_back(asJson(person));
  }
  return {{"file", recording.file},
          {"page", recording.page},
          {"length", secondsOf(recording.overview.length)},
          {"personCount", recording.overview.persons.size()},
          {"persons", std::move(persons)},
          {"warnings", recording.warnings},
          {"error", recording.error}};
}

}  // namespace

void writeReportIndex(std::ostream& stream, const std::vector<IndexedRecording>& recordings)
{
  Json all = Json::array();
  for (const IndexedRecording& recording : recordings)
    all.push_back(asJson(recording));
  writeReport(stream, reportTemplate(), textForScript({{"recordings", std::move(all)}}));
}

}  // namespace KV::session
