#include <skeigiot/session/report.hpp>

#include "report/reportdata.hpp"
#include "report/reportoverview.hpp"
#include "report/reportpage.hpp"
#include "report/reportrecorder.hpp"

namespace KV::session
{

bool Report::isAvailable()
{
  return !reportTemplate().empty();
}

Report::Report() : _recorder(std::make_unique<ReportRecorder>(ReportRecorder::Limits())) {}

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

void Report::write(std::ostream& stream, const ReportOrigin& origin)
{
  _recorder->finish();
  writeReport(stream, reportTemplate(), textForScript(reportData(*_recorder, origin)));
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
