#include <skeigiot/session/report.hpp>

#include "report/reportdata.hpp"
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

void Report::write(std::ostream& stream, const std::vector<std::string>& inputs, const std::vector<std::string>& notes)
{
  _recorder->finish();
  writeReport(stream, reportTemplate(), textForScript(reportData(*_recorder, inputs, notes)));
}

}  // namespace KV::session
