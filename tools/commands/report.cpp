#include "report.hpp"

#include "interruption.hpp"
#include "replacedfile.hpp"
#include "reportdata.hpp"
#include "reportpage.hpp"
#include "reportrecorder.hpp"
#include "sessionreplay.hpp"

#include <skeigiot/forceobserver.hpp>

#include <sstream>
#include <vector>

namespace tools
{

namespace
{

std::vector<std::string> linesOf(const std::string& text)
{
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

std::vector<std::string> pathsOf(const SessionInputs& session)
{
  std::vector<std::string> paths;
  for (const SessionInputs::Input& input : session.inputs)
    paths.push_back(input.path);
  return paths;
}

}  // namespace

ExitStatus writeReport(const ReplayOptions& options, const ReplaySurroundings& surroundings, std::string_view page,
                       const std::string& target)
{
  ReplacedFile file(target);
  std::ostringstream said;
  Display display(surroundings.output, false);
  Messages messages(said, false);
  ExportWriters observers;
  ProgressLine progress(surroundings.errors, surroundings.showProgress && !options.quiet);
  ReportRecorder recorder{ReportRecorder::Limits()};
  observers.add(recorder);

  const SessionInputs& session = options.sessions.front();
  SessionOutcome outcome;
  {
    const KV::ScopedForceObserver watch([&recorder](const KV::Force& force) { recorder.forceActed(force); });
    outcome =
        replaySession(session, options, surroundings, {display, messages, observers, progress, Interruption::check});
  }
  surroundings.errors << said.str() << std::flush;
  if (!outcome.opened)
    return outcome.status;

  recorder.finish();
  writeReport(file.stream(), page, textForScript(reportData(recorder, pathsOf(session), linesOf(said.str()))));
  file.commit();
  return outcome.status;
}

}  // namespace tools
