#include "cli/exitstatus.hpp"
#include "cli/interruption.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/words.hpp"
#include "commands/commandline.hpp"
#include "terminal/terminalstream.hpp"

#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/session/outputstream.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr const char* outOfMemory = "skeigiot: there is not enough memory\n";

KV::tools::ExitStatus refuse(const std::string& message)
{
  std::cerr << "skeigiot: " << message << "\nTry 'skeigiot --help' or 'skeigiot COMMAND --help'." << std::endl;
  return KV::tools::BadInput;
}

KV::tools::ExitStatus run(int argc, char** argv)
{
  KV::tools::ExitStatus status = KV::tools::Success;
  const std::unique_ptr<CLI::App> app = KV::tools::commandLine(status);
  try
  {
    std::vector<std::string> words = KV::tools::withCommand({argv + 1, argv + argc}, *app);
    std::reverse(words.begin(), words.end());  // as CLI11 takes them
    app->parse(std::move(words));
  }
  catch (const CLI::Success& wish)  // help or version
  {
    KV::tools::StandardOutput output;
    app->exit(wish, output);
    output.flush();
  }
  catch (const CLI::ExtrasError&)
  {
    return refuse(KV::tools::describeUnexpected(*app));
  }
  catch (const CLI::ParseError& error)
  {
    return refuse(error.what());
  }
  catch (const KV::session::OutputRefused& refused)
  {
    std::cerr << "skeigiot: " << KV::tools::messageOf(refused) << std::endl;
    return KV::tools::BadInput;
  }
  return status;
}

int runAndReport(int argc, char** argv)
{
  try
  {
    const KV::tools::Interruption interruption;
    const KV::recordings::InterruptionCheck whileReading(KV::tools::Interruption::check);
    return run(argc, argv);
  }
  catch (const KV::session::WriteError& error)
  {
    if (!error.pipeClosed())
      std::cerr << "skeigiot: " << error.what() << std::endl;
  }
  catch (const KV::tools::Interrupted& interrupted)
  {
    std::raise(interrupted.signal);  // shows the parent process the cause of the program's end
  }
  catch (const std::bad_alloc&)
  {
    std::cerr << outOfMemory << std::flush;
  }
  catch (const std::exception& error)
  {
    std::cerr << "skeigiot: " << error.what() << std::endl;
  }
  return KV::tools::Failure;
}

/// For errors that end a program at once, such as an exception of a destructor: some libraries' destructors allocate.
[[noreturn]] void endWithoutMemory()
{
  try
  {
    std::rethrow_exception(std::current_exception());
  }
  catch (const std::bad_alloc&)
  {
    std::cerr << outOfMemory << std::flush;
    std::_Exit(KV::tools::Failure);
  }
  catch (...)
  {}
  std::abort();
}

}  // namespace

int main(int argc, char** argv)
{
  // A closed pipe, and a file of the greatest allowed size, are noticed when they are written to.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  std::set_terminate(endWithoutMemory);
  const KV::tools::ShownErrors shownErrors;
  return runAndReport(argc, argv);
}
