#include <skeigiot/session/report.hpp>

#include "report/reportdata.hpp"
#include "report/reportlabels.hpp"
#include "report/reportoverview.hpp"
#include "report/reportpage.hpp"
#include "report/reportrecorder.hpp"

#include <cstdint>
#include <set>

namespace KV::session
{

/// The added parts, in the form that the page reads.
struct Report::Added
{
  nlohmann::ordered_json learned = nlohmann::ordered_json::array();
  nlohmann::ordered_json labels;  // null without labels
  nlohmann::ordered_json video;   // null without a video
};

bool Report::isAvailable()
{
  return !reportTemplate().empty();
}

Report::Report()
  : _recorder(std::make_unique<ReportRecorder>(ReportRecorder::Limits())), _added(std::make_unique<Added>())
{}

Report::~Report() = default;

void Report::recordingDated(bool isDated)
{
  _recorder->recordingDated(isDated);
}

void Report::recordingDescribed(const std::vector<std::string>& description)
{
  _recorder->recordingDescribed(description);
}

void Report::stepBegins(const recordings::Step& step)
{
  _recorder->stepBegins(step);
}

void Report::forceActed(const KV::Force& force)
{
  _recorder->forceActed(force);
}

void Report::personUpdated(const Snapshot& snapshot)
{
  _recorder->personUpdated(snapshot);
}

void Report::ambianceUpdated(float agitation, KV::ExcitationState excitation)
{
  _recorder->ambianceUpdated(agitation, excitation);
}

void Report::scopeJudged(const ScopeVerdict& verdict)
{
  _recorder->scopeJudged(verdict);
}

ReportOverview Report::overview() const
{
  return overviewOf(*_recorder);
}

std::vector<std::string> Report::add(const ReportAdditions& additions)
{
  _added->learned = additions.learned;
  if (!additions.video.empty())
    _added->video = {{"address", additions.video}, {"offset", additions.videoOffset}};
  if (additions.labels.empty())
    return {};
  std::set<std::int32_t> persons;
  for (const auto& [person, moments] : _recorder->moments())
    persons.insert(person);
  _added->labels = reportLabels(additions.labels, persons, additions.labelOptions);
  return _added->labels["warnings"];
}

void Report::write(std::ostream& stream, const ReportOrigin& origin)
{
  _recorder->finish();
  nlohmann::ordered_json data = reportData(*_recorder, origin);
  data["learned"] = _added->learned;
  data["labels"] = _added->labels;
  data["video"] = _added->video;
  writeReport(stream, reportTemplate(), textForScript(data));
}

void Report::write(std::ostream& stream, const std::vector<std::string>& inputs, const std::vector<std::string>& notes)
{
  ReportOrigin origin;
  for (const std::string& input : inputs)
    origin.files.push_back({input, boost::none, ""});
  origin.notes = notes;
  write(stream, origin);
}

}  // namespace KV::session
