#include "cli/sessionoptions.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/standardinput.hpp"

#include <skeigiot/session/boundary.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>

namespace KV::tools
{

namespace
{

/// Adds the option that the message is about, or that helps.
std::string withOptions(const session::PlanError& error)
{
  std::string message = error.what();
  switch (error.fault())
  {
    case session::PlanFault::FilesBesideFolders:
      return message + ": give --separately to replay each as a session of its own";
    case session::PlanFault::NothingToMove:
    case session::PlanFault::NoSuchInput:
      return "--offset: " + message;
    case session::PlanFault::NamedTwice:
      return message + ": give --separately to replay it twice";
    case session::PlanFault::TooManyInputs:
      return message + ": name their folder instead, or give --separately, to replay each as a session of its own";
  }
  return message;
}

/// \throws CLI::ValidationError if the text is no number.
float numberOf(const std::string& option, const std::string& text)
{
  try
  {
    return parseNumber<float>(option, text);
  }
  catch (const std::invalid_argument& error)
  {
    throw CLI::ValidationError(error.what());
  }
}

}  // namespace

CLI::Option* addOffsetOption(CLI::App& command, std::map<std::string, session::Duration>& offsets)
{
  return addTexts(command, "--offset", "Seconds to add to all times of an input. May be given several times",
                  "FILE=SECONDS", [&offsets](const std::string& text) { session::parseOffset(text, offsets); });
}

CLI::Option* addScopeOption(CLI::App& command, std::vector<session::ScopeSpan>& scopes)
{
  return addTexts(command, "--scope",
                  "Give a verdict on this span, too, in seconds since the start, both\n"
                  "ends included; either end may be left out. May be given several times",
                  "NAME=FROM..TO",
                  [&scopes](const std::string& text) { scopes.push_back(session::parseScopeSpan(text)); });
}

CLI::Option* addCycleOption(CLI::App& command, session::Cycle& cycle)
{
  const std::string name = "--cycle";
  const auto take = [name, &cycle](const std::string& text) {
    try
    {
      cycle = session::parseCycle(text);
    }
    catch (const std::invalid_argument& error)
    {
      throw CLI::ValidationError(name, error.what());
    }
  };
  return command
      .add_option_function<std::string>(name, take,
                                        "Updates of a person per second (10); each update uses all\n"
                                        "observations since the last one. recorded: update with each\n"
                                        "observation")
      ->type_name("HZ|recorded");
}

CLI::Option* addForceOption(CLI::App& command, bool& force)
{
  return command.add_flag("--force", force,
                          "Replace any existing file. Without it, only files that look like an\n"
                          "export of skeigiot are replaced. An input is never replaced");
}

std::string messageOf(const session::OutputRefused& refused)
{
  const bool canBeForced = refused.fault() == session::OutputFault::NotOurs;
  return refused.what() + std::string(canBeForced ? ", or give --force to replace it" : "");
}

void checkStandardOutput(const session::SessionInputs& inputs)
{
  session::OutputCheck check;
  check.protect(inputs);
  check.admit("-");
}

session::SessionPlan planNamedSessions(const session::SessionArguments& arguments)
{
  if (std::count_if(arguments.paths.begin(), arguments.paths.end(), isStandardInput) > 1)
    throw CLI::ValidationError("'-' is named twice, but standard input can be read only once");
  try
  {
    return session::planSessions(arguments);
  }
  catch (const session::PlanError& error)
  {
    throw CLI::ValidationError(withOptions(error));
  }
}

std::string messageOf(const recordings::Error& error)
{
  std::string message = error.what();
  const auto& remedy = error.remedy();
  if (remedy && remedy->input.empty())
    return message + "; --separately, or naming their folder, replays each as a session of its own";
  if (remedy)
  {
    std::array<char, 64> seconds{};
    std::snprintf(seconds.data(), seconds.size(), "%.3f", static_cast<double>(remedy->offset.count()) * 1e-9);
    message += "; --offset " + remedy->input + "=" + seconds.data() +
               " would let them begin together, --separately replays each as a session of its own";
  }
  return message;
}

void addBoundaryOptions(CLI::App& command)
{
  for (const session::Boundary& boundary : session::boundaries())
  {
    const std::string option = "--" + boundary.option;
    const auto set = [&boundary, option](const std::string& text) {
      const float value = numberOf(option, text);
      if (!session::setBoundary(boundary, value))
        throw CLI::ValidationError(option + ": " + session::boundaryRefusal(boundary, value));
    };
    std::string now = std::to_string(boundary.get());
    now.erase(now.find_last_not_of('0') + 1);
    command
        .add_option_function<std::string>(option, set,
                                          boundary.description + ",\n" + boundary.interval + " (" + now + ")")
        ->type_name("VALUE")
        ->group("Boundaries");
  }
}

}  // namespace KV::tools
