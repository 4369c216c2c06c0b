#include "commandline.hpp"
#include "exitstatus.hpp"
#include "interruption.hpp"
#include "outputstream.hpp"

#include <CLI/CLI.hpp>

#include <csignal>
#include <exception>
#include <iostream>
#include <memory>

namespace
{

tools::ExitStatus run(int argc, char** argv)
{
  tools::ExitStatus status = tools::Success;
  const std::unique_ptr<CLI::App> app = tools::commandLine(status);
  try
  {
    app->parse(argc, argv);
  }
  catch (const CLI::Success& wish)  // help or version
  {
    app->exit(wish);
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
