#include <skeigiot/session/inspectionreport.hpp>

#include <skeigiot/recordings/openedrecording.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <nlohmann/json.hpp>

#include <map>
#include <utility>

namespace KV::session
{

namespace
{

using Json = nlohmann::ordered_json;

double inSeconds(ko::SystemClock::duration duration)
{
  return static_cast<double>(duration.count()) * 1e-9;
}

/// Examines each step that a player reads.
class Inspector : public SessionObserver
{
public:
  explicit Inspector(Inspection& contents) : _contents(contents) {}

  void stepBegins(const recordings::Step& step) override { _contents.add(step); }

private:
  Inspection& _contents;
};

Json asJson(const PersonSpan& span, Inspection::TimePoint first)
{
  Json json = {{"seen", span.seen},
               {"notSeen", span.notSeen},
               {"from", inSeconds(span.first - first)},
               {"to", inSeconds(span.last - first)}};
  if (!span.name.empty())
    json["name"] = span.name;
  return json;
}

Json asJson(const NumberRange& range)
{
  Json json = {{"count", range.count}};
  if (range.count > 0)
  {
    json["least"] = range.least;
    json["mean"] = range.mean();
    json["greatest"] = range.greatest;
  }
  return json;
}

void read(InspectionReport& report, const Player::Open& open, const Player::GoOn& goOn)
{
  Inspector inspector(report.contents);
  PlayerOptions playing;
  playing.skipBad = true;
  playing.estimates = false;
  const Outcome outcome = Player(playing, goOn).play(open, {&inspector});
  if (!outcome.opened)
    throw recordings::Error(*outcome.error);
  report.description = outcome.description;
  report.learned = outcome.learned;
  report.columns = outcome.columns;
  report.isDated = outcome.isDated;
  report.warnings = outcome.warnings;
  report.moreWarnings = outcome.moreWarnings;
  report.badLines = outcome.badLines;
  report.firstBadLine = outcome.firstBadLine;
  if (outcome.error)
    report.error = outcome.error->what();
}

}  // namespace

InspectionReport inspect(const std::string& path, const std::string& format, const recordings::ReadingOptions& options,
                         const Player::GoOn& goOn)
{
  InspectionReport report;
  report.path = path;
  report.format = format.empty() ? recordings::formatNameOf(path) : format;
  read(
      report, [&] { return recordings::openRecording(path, report.format, options); }, goOn);
  return report;
}

InspectionReport inspect(std::istream& stream, const std::string& name, const std::string& format,
                         const recordings::ReadingOptions& options, const Player::GoOn& goOn)
{
  InspectionReport report;
  report.path = name;
  const auto open = [&] {
    recordings::OpenedRecording opened = recordings::openDetected(stream, name, format, options);
    report.format = opened.format;
    return std::move(opened.reader);
  };
  read(report, open, goOn);
  return report;
}

void writeAsJson(std::ostream& stream, const InspectionReport& report)
{
  const Inspection& contents = report.contents;
  Json json = {{"path", report.path}, {"format", report.format}, {"readAs", report.description}};
  json["learned"] = report.learned;
  json["trust"] = trustIn(report.contents);
  json["begins"] = report.isDated ? Json(inSeconds(contents.first().time_since_epoch())) : Json();
  json["length"] = inSeconds(contents.length());
  json["steps"] = contents.steps();
  json["timesPerSecond"] = contents.timesPerSecond();
  json["gaps"] = {{"count", contents.gaps().count},
                  {"longest", inSeconds(contents.gaps().longest)},
                  {"at", inSeconds(contents.gaps().at)}};
  json["persons"] = Json::object();
  for (const auto& [person, span] : contents.persons())
    json["persons"][std::to_string(person)] = asJson(span, contents.first());
  json["scopes"] = contents.scopes();
  json["columns"] = {{"used", report.columns.used}, {"ignored", report.columns.ignored}};
  json["readings"] = Json::object();
  for (const auto& [name, range] : contents.numbers())
    json["readings"][name] = asJson(range);
  json["warnings"] = report.warnings;
  json["moreWarnings"] = report.moreWarnings;
  json["badLines"] = {{"count", report.badLines}, {"first", report.firstBadLine}};
  json["error"] = report.error;
  stream << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace KV::session
