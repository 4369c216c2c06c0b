#include "exitstatus.hpp"
#include "inspectcommand.hpp"
#include "interruption.hpp"
#include "outputstream.hpp"
#include "replaycommand.hpp"
#include "reportcommand.hpp"
#include "streamcommand.hpp"
#include "typescommand.hpp"
#include "watchcommand.hpp"
#include "whycommand.hpp"

#include <CLI/CLI.hpp>

#include <csignal>
#include <exception>
#include <iostream>

namespace
{

constexpr std::size_t optionColumnWidth = 46;

tools::ExitStatus run(int argc, char** argv)
{
  tools::ExitStatus status = tools::Success;
  CLI::App app("Estimates how the persons in front of a robot feel and attend", "skeigiot");
  app.set_version_flag("--version", "skeigiot " SKEIGIOT_VERSION, "Print the version and exit");
  app.get_formatter()->column_width(optionColumnWidth);
  app.require_subcommand(1);
  tools::addReplayCommand(app, status, tools::reportWriter());
  tools::addInspectCommand(app, status);
  tools::addReportCommand(app, status);
  tools::addStreamCommand(app, status);
  tools::addTypesCommand(app, status);
  tools::addWatchCommand(app, status);
  tools::addWhyCommand(app, status);
  try
  {
    app.parse(argc, argv);
  }
  catch (const CLI::Success& wish)  // help or version
  {
    app.exit(wish);
  }
  catch (const CLI::ParseError& error)
  {
    std::cerr << "skeigiot: " << error.what() << "\nTry 'skeigiot --help' or 'skeigiot COMMAND --help'." << std::endl;
    return tools::BadInput;
  }
  return status;
}

int runAndReport(int argc, char** argv)
{
  try
  {
    const tools::Interruption interruption;
    return run(argc, argv);
  }
  catch (const tools::WriteError& error)
  {
    if (!error.pipeClosed())
      std::cerr << "skeigiot: " << error.what() << std::endl;
  }
  catch (const tools::Interrupted& interrupted)
  {
    std::raise(interrupted.signal);  // whoever started the program learns how it ended
  }
  catch (const std::exception& error)
  {
    std::cerr << "skeigiot: " << error.what() << std::endl;
  }
  return tools::Failure;
}

}  // namespace

int main(int argc, char** argv)
{
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is noticed when it is written to
  return runAndReport(argc, argv);
}
