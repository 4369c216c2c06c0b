#include "commands/report.hpp"

#include "cli/interruption.hpp"
#include "commands/sessionreplay.hpp"

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/session/replacedfile.hpp>
#include <skeigiot/session/reportdata.hpp>
#include <skeigiot/session/reportpage.hpp>
#include <skeigiot/session/reportrecorder.hpp>

#include <sstream>
#include <vector>

namespace KV::tools
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

std::vector<std::string> pathsOf(const session::SessionInputs& session)
{
  std::vector<std::string> paths;
  for (const session::SessionInputs::Input& input : session.inputs)
    paths.push_back(input.path);
  return paths;
}

}  // namespace

ExitStatus writeReport(const ReplayOptions& options, const ReplaySurroundings& surroundings, std::string_view page,
                       const std::string& target)
{
  session::ReplacedFile file(target);
  std::ostringstream said;
  Display display(surroundings.output, false);
  Messages messages(said, false);
  session::ExportWriters observers;
  ProgressLine progress(surroundings.errors, surroundings.showProgress && !options.quiet);
  session::ReportRecorder recorder{session::ReportRecorder::Limits()};
  observers.add(recorder);

  const session::SessionInputs& session = options.sessions.front();
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
  session::writeReport(file.stream(), page,
                       session::textForScript(session::reportData(recorder, pathsOf(session), linesOf(said.str()))));
  file.commit();
  return outcome.status;
}

}  // namespace KV::tools
