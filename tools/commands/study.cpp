#include "commands/study.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/messages.hpp"
#include "cli/sessionoptions.hpp"
#include "commands/studyactions.hpp"

#include <skeigiot/session/studyresults.hpp>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace KV::tools
{

namespace
{

const char* const description = "Plays the sessions of a study, and keeps their results in one database";

const char* const footer =
    R"(Actions:
  init [FOLDER]           Write FOLDER/study.toml from the names of the files in the folder
  check [STUDY]           Read all files, and list the problems, such as missing, doubled or unreadable files
  run [STUDY]             Play the sessions whose results are missing, and write results.sqlite
  export RESULTS...       Write each table of the results as CSV to a folder, or one table to standard output
  report RESULTS...       Write an HTML page with figures: all sessions, conditions side by side, scopes and verdicts

STUDY is a study file or its folder. FOLDER and STUDY are the current folder if you leave them out. RESULTS are result
files; those of several shards are read as one.

A study file lists patterns of file names such as {participant}/{condition}/face.csv. Files whose placeholders have the
same values are one session. The file also has offsets, persons and roles, scopes, and the options of "skeigiot replay".

A run can be interrupted or killed at any time. Started again, it plays only the sessions that are missing or whose files
or plan changed, and the results are the same as without the interruption. A session that cannot be read is a row with its
error. Several machines can each play a part: give each machine the same study and another shard.

The results have the tables sessions, recordings, persons, summaries, updates, forces, warnings, notes, factors,
options and study. Python reads them with skeigiot.open_results().

The page of a report opens in any browser, without a network. Each session is a small picture of valence and attention.
Of each condition, role and scope, each person is a dot, beside the mean of the persons and its 95 % interval (1000
bootstrap resamples of persons, percentiles: Efron and Tibshirani, An Introduction to the Bootstrap, 1993). The page also
lists the sessions that are left out, and the reasons. Each figure can be saved as SVG or PNG, and its numbers as CSV. The
same results give the same page. There is no test of significance: docs/study.md has examples with statsmodels and R.

Exit status: 0 for success, also if sessions have errors, which are in the results. The status is 2 if a check lists a
problem, or if the study file, the results or the command line cannot be used. It is 1 for any other error.

Examples:
  skeigiot study init recordings/
  skeigiot study check recordings/
  skeigiot study run recordings/
  skeigiot study run recordings/study.toml --shard 3/16 -o part3.sqlite
  skeigiot study export part*.sqlite -o tables/
  skeigiot study export results.sqlite --table summaries > summaries.csv
  skeigiot study report results.sqlite -o report.html)";

/// Everything that the command line can say.
struct Arguments
{
  std::string action;
  StudyArguments study;
};

using Action = ExitStatus (*)(const StudyArguments& arguments, Messages& messages);

/// An action, with the options that it takes besides --quiet.
struct KnownAction
{
  const char* name;
  Action run;
  std::vector<std::string> options;
};

const std::vector<KnownAction>& knownActions()
{
  static const std::vector<KnownAction> actions = {
      {"init", initStudy, {"--output", "--force"}},
      {"check", checkStudyFiles, {"--jobs"}},
      {"run", runStudyFile, {"--output", "--shard", "--jobs", "--anew"}},
      {"export", exportResults, {"--output", "--table", "--force"}},
      {"report", reportResults, {"--output", "--force"}},
  };
  return actions;
}

const KnownAction& actionNamed(const std::string& name)
{
  const auto& actions = knownActions();
  return *std::find_if(actions.begin(), actions.end(), [&name](const KnownAction& one) { return one.name == name; });
}

/// \throws CLI::ValidationError for an option that does nothing with this action.
void refuseOtherOptions(const CLI::App& command, const KnownAction& action)
{
  for (const CLI::Option* const option : command.get_options())
  {
    const std::string name = "--" + (option->get_lnames().empty() ? std::string() : option->get_lnames().front());
    const bool isOfAction = std::find(action.options.begin(), action.options.end(), name) != action.options.end();
    if (option->count() > 0 && option->nonpositional() && name != "--quiet" && !isOfAction)
      throw CLI::ValidationError(name, std::string("does nothing with \"study ") + action.name + "\"");
  }
}

ExitStatus run(const CLI::App& command, const Arguments& arguments)
{
  const KnownAction& action = actionNamed(arguments.action);
  refuseOtherOptions(command, action);
  Messages messages(std::cerr, arguments.study.quiet);
  try
  {
    return action.run(arguments.study, messages);
  }
  catch (const recordings::Error& error)
  {
    messages.error(error.what());
  }
  catch (const session::OutputRefused& refused)
  {
    messages.error(messageOf(refused));
  }
  return BadInput;
}

void addOptions(CLI::App& command, StudyArguments& study)
{
  command
      .add_option(
          "-o,--output", study.output,
          "File to write: of init, the study file; of run, the results\n(default: results.sqlite beside the study "
          "file). Of export, the folder\nfor the tables (default: tables). Of report, the page (default: report.html)")
      ->type_name("FILE");
  addParsed<session::StudyShard>(command, "--shard",
                                 "Run only part I of N of the sessions, to another file for each I\n(default: "
                                 "results-I-of-N.sqlite)",
                                 "I/N", session::parseShard, study.shard);
  addNumber(
      command, "--jobs",
      "Number of sessions to work on at the same time; the results do not\nchange (default: one for each core)",
      "NUMBER", "a whole number from 1 to 1024",
      [](double number) { return number >= 1. && number <= 1024. && number == std::floor(number); },
      [&study](double number) { study.jobs = static_cast<std::size_t>(number); });
  command.add_flag("--anew", study.anew, "Forget the results that the file has, and run all sessions");
  std::vector<std::pair<std::string, std::string>> tables;
  for (const std::string& table : session::StudyResults::tables())
    tables.emplace_back(table, table);
  addChoice(command, "--table", "Export only this table, to standard output or to --output", "NAME", tables,
            study.table);
  addForceOption(command, study.force);
  command.add_flag("-q,--quiet", study.quiet, "Write only errors");
}

}  // namespace

void addStudyCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  arguments->study.jobs = std::max(1U, std::thread::hardware_concurrency());
  CLI::App& command = *app.add_subcommand("study", description);
  std::vector<std::pair<std::string, std::string>> actions;
  for (const KnownAction& action : knownActions())
    actions.emplace_back(action.name, action.name);
  addChoice(command, "ACTION", "What to do, see below", "", actions, arguments->action)->required();
  command.add_option("PATH", arguments->study.paths, "Folder, study file or result files")->type_name("");
  addOptions(command, arguments->study);
  command.footer(footer);
  command.callback([arguments, &command, &status] { status = run(command, *arguments); });
}

}  // namespace KV::tools
