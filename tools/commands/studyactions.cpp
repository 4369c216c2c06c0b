#include "commands/studyactions.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/interruption.hpp"
#include "terminal/progressline.hpp"
#include "terminal/terminal.hpp"
#include "terminal/terminalstream.hpp"
#include "terminal/texttable.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/session/outputcheck.hpp>
#include <skeigiot/session/outputstream.hpp>
#include <skeigiot/session/replacedfile.hpp>
#include <skeigiot/session/studycheck.hpp>
#include <skeigiot/session/studyreport.hpp>
#include <skeigiot/session/studyresults.hpp>
#include <skeigiot/session/studyrun.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace KV::tools
{

namespace
{

namespace fs = std::filesystem;

const char* const studyFileName = "study.toml";

/// Returns the path, or the current folder if no path is given.
///
/// \throws CLI::ValidationError for several.
std::string onlyPath(const StudyArguments& arguments)
{
  if (arguments.paths.size() > 1)
    throw CLI::ValidationError("PATH", "expected one path, found " + std::to_string(arguments.paths.size()));
  return arguments.paths.empty() ? "." : arguments.paths.front();
}

std::string studyFileOf(const StudyArguments& arguments)
{
  std::string path = onlyPath(arguments);
  std::error_code error;
  if (!fs::is_directory(path, error))
    return path;
  std::string file = path == "." ? studyFileName : (fs::path(path) / studyFileName).string();
  if (!fs::exists(file, error))
    throw recordings::Error({file, 0, {}}, "there is no such file; \"skeigiot study init\" writes one");
  return file;
}

std::string resultsOf(const StudyArguments& arguments, const session::Study& study)
{
  if (!arguments.output.empty())
    return arguments.output;
  std::string name = "results";
  if (arguments.shard.count > 1)
    name += "-" + std::to_string(arguments.shard.number) + "-of-" + std::to_string(arguments.shard.count);
  return study.folder == "." ? name + ".sqlite" : (fs::path(study.folder) / (name + ".sqlite")).string();
}

session::StudyWork workOf(const StudyArguments& arguments, ProgressLine& progress)
{
  session::StudyWork work;
  work.jobs = arguments.jobs;
  work.check = Interruption::check;
  work.progress = [&progress](std::size_t done, std::size_t all, double share) {
    if (progress.isDue())
      progress.showSessions(done, all, share);
  };
  return work;
}

bool showsProgress(const StudyArguments& arguments)
{
  return !arguments.quiet && isTerminal(STDERR_FILENO);
}

void say(const StudyArguments& arguments, const std::string& text)
{
  if (arguments.quiet)
    return;
  StandardOutput output;
  output << text << '\n';
  output.flush();
}

/// Notes the first errors, a line each: the results have all.
void noteErrors(const session::StudyOutcome& outcome, Messages& messages)
{
  constexpr std::size_t mostNoted = 10;
  for (std::size_t i = 0; i < std::min(mostNoted, outcome.failed.size()); ++i)
  {
    const auto& [session, error] = outcome.failed[i];
    messages.note(session + ": " + error.substr(0, error.find('\n')));
  }
  if (outcome.failed.size() > mostNoted)
    messages.note("and " + session::counted(outcome.failed.size() - mostNoted, "more session") +
                  " with an error: see the table sessions");
}

void writeTable(const session::StudyResults& results, const std::string& table, const std::string& target,
                session::OutputCheck& check)
{
  session::ReplacedFile file(target, check);
  results.writeCsv(table, file.stream());
  file.commit();
}

}  // namespace

ExitStatus initStudy(const StudyArguments& arguments, Messages& /*messages*/)
{
  const std::string folder = onlyPath(arguments);
  const std::string target =
      arguments.output.empty() ? (fs::path(folder) / studyFileName).lexically_normal().string() : arguments.output;
  session::OutputCheck check(arguments.force);
  session::ReplacedFile file(target, check);
  file.stream() << session::draftStudy(folder);
  file.commit();
  if (target != "-")
    say(arguments, "wrote " + target + ": read it, then run \"skeigiot study check\"");
  return Success;
}

ExitStatus checkStudyFiles(const StudyArguments& arguments, Messages& /*messages*/)
{
  const session::Study study = session::readStudy(studyFileOf(arguments));
  const session::StudyPlan plan = session::planStudy(study);
  ProgressLine progress(std::cerr, showsProgress(arguments));
  const std::vector<session::StudyProblem> problems = session::checkStudy(study, plan, workOf(arguments, progress));
  progress.erase();

  TextTable table({{"problem"}, {"session"}, {"", false, true}});
  for (const session::StudyProblem& problem : problems)
    table.add({session::problemName(problem.kind), problem.session, problem.text});
  StandardOutput output;
  if (!problems.empty())
    output << table.text(Style(false), static_cast<std::size_t>(terminalWidth(STDOUT_FILENO, 10000))) << '\n';
  output << session::counted(plan.sessions.size(), "session") << ", " << session::counted(problems.size(), "problem")
         << '\n';
  output.flush();
  const bool isGood = std::all_of(problems.begin(), problems.end(), [](const session::StudyProblem& problem) {
    return problem.kind == session::StudyProblem::Kind::Unused;
  });
  return isGood ? Success : BadInput;
}

ExitStatus runStudyFile(const StudyArguments& arguments, Messages& messages)
{
  const session::Study study = session::readStudy(studyFileOf(arguments));
  const session::StudyPlan plan = session::planStudy(study);
  session::StudyTarget target;
  target.results = resultsOf(arguments, study);
  target.version = SKEIGIOT_VERSION;
  target.shard = arguments.shard;
  target.anew = arguments.anew;
  ProgressLine progress(std::cerr, showsProgress(arguments));
  const session::StudyOutcome outcome = session::runStudy(study, plan, target, workOf(arguments, progress));
  progress.erase();

  noteErrors(outcome, messages);
  std::string text = target.results + ": " + session::counted(outcome.played, "session") + " played";
  const auto add = [&text](std::size_t count, const char* what) {
    if (count > 0)
      text += ", " + std::to_string(count) + " " + what;
  };
  add(outcome.unchanged, "unchanged");
  add(outcome.failed.size(), "with an error");
  add(outcome.leftOut, "left out");
  add(outcome.removed, "removed, since the study no longer has them");
  say(arguments, text);
  return Success;
}

ExitStatus exportResults(const StudyArguments& arguments, Messages& /*messages*/)
{
  if (arguments.paths.empty())
    throw CLI::ValidationError("PATH", "expected the result files to export");
  const session::StudyResults results(arguments.paths);
  session::OutputCheck check(arguments.force);
  for (const std::string& path : arguments.paths)
    check.protect(path);
  if (!arguments.table.empty())
  {
    writeTable(results, arguments.table, arguments.output.empty() ? "-" : arguments.output, check);
    return Success;
  }
  const std::string folder = arguments.output.empty() ? "tables" : arguments.output;
  std::error_code error;
  fs::create_directories(folder, error);
  if (!fs::is_directory(folder))
    throw session::WriteError(folder, error ? error.value() : ENOTDIR);
  for (const std::string& table : session::StudyResults::tables())
    writeTable(results, table, (fs::path(folder) / (table + ".csv")).string(), check);
  say(arguments, "wrote " + session::counted(session::StudyResults::tables().size(), "table") + " to " + folder);
  return Success;
}

ExitStatus reportResults(const StudyArguments& arguments, Messages& messages)
{
  if (arguments.paths.empty())
    throw CLI::ValidationError("PATH", "expected the result files to report on");
  if (!session::StudyReport::isAvailable())
  {
    messages.error(
        "this command was built without the page of a study: install npm (on Debian: nodejs and npm), and build again");
    return Failure;
  }
  const session::StudyResults results(arguments.paths);
  session::OutputCheck check(arguments.force);
  std::vector<std::string> names;
  for (const std::string& path : arguments.paths)
  {
    check.protect(path);
    names.push_back(fs::path(path).filename().string());
  }
  const std::string target = arguments.output.empty() ? "report.html" : arguments.output;
  session::ReplacedFile file(target, check);
  session::StudyReport(results, names).write(file.stream());
  file.commit();
  if (target != "-")
    say(arguments, "wrote " + target);
  return Success;
}

}  // namespace KV::tools
