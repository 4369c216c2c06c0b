#include "commands/commandline.hpp"

#include "commands/agree.hpp"
#include "commands/help.hpp"
#include "commands/inspect.hpp"
#include "commands/mapping.hpp"
#include "commands/replay.hpp"
#include "commands/report.hpp"
#include "commands/ros.hpp"
#include "commands/serve.hpp"
#include "commands/stream.hpp"
#include "commands/study.hpp"
#include "commands/types.hpp"
#include "commands/watch.hpp"
#include "commands/why.hpp"

namespace KV::tools
{

std::unique_ptr<CLI::App> commandLine(ExitStatus& status)
{
  constexpr std::size_t optionColumnWidth = 46;

  auto app = std::make_unique<CLI::App>("Estimates how the persons in front of a robot feel and attend", "skeigiot");
  app->set_version_flag("--version", "skeigiot " SKEIGIOT_VERSION, "Print the version and exit");
  app->get_formatter()->column_width(optionColumnWidth);
  app->require_subcommand(1);
  addAgreeCommand(*app, status);
  addReplayCommand(*app, status);
  addInspectCommand(*app, status);
  addMappingCommand(*app, status);
  addReportCommand(*app, status);
  addRosCommand(*app, status);
  addServeCommand(*app, status);
  addStreamCommand(*app, status);
  addStudyCommand(*app, status);
  addTypesCommand(*app, status);
  addWatchCommand(*app, status);
  addWhyCommand(*app, status);
  addHelpCommand(*app, status);
  app->footer("Without a command, a recording is replayed: \"skeigiot face.csv\" is \"skeigiot replay face.csv\".");
  return app;
}

}  // namespace KV::tools
