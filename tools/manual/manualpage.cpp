#include "manual/manualpage.hpp"

#include "cli/argumentparsing.hpp"
#include "manual/roff.hpp"

#include <algorithm>
#include <cctype>

namespace KV::tools
{

namespace
{

const char* const date = "2026-11-21";  // of the last change to the generator of the pages

using Options = std::vector<CLI::Option*>;

const std::string exitStatusMark = "Exit status: ";

Options positionals(CLI::App& command)
{
  return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

Options optionsOf(CLI::App& command, const std::string& group)
{
  return command.get_options(
      [&group](const CLI::Option* option) { return option->nonpositional() && option->get_group() == group; });
}

std::string upperCase(std::string text)
{
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

std::string heading(const std::string& page)
{
  return ".\\\" Made by script/build-manual from what the command says of itself.\n.TH " + upperCase(page) + " 1 " +
         date + " skeigiot \"User commands\"\n.nh\n.ad l\n";
}

std::string section(const std::string& title, const std::string& contents)
{
  return contents.empty() ? "" : ".SH " + title + "\n" + contents;
}

std::string names(const CLI::Option& option)
{
  std::string all;
  const auto add = [&all](const std::string& name) { all += (all.empty() ? "" : ", ") + roffBold(name); };
  for (const std::string& name : option.get_snames())
    add("-" + name);
  for (const std::string& name : option.get_lnames())
    add("--" + name);
  const std::string type = option.get_type_name();
  return type.empty() ? all : all + " " + roffItalic(type);
}

std::string shortName(const CLI::Option& option)
{
  return roffBold(option.get_snames().empty() ? "--" + option.get_lnames().front() : "-" + option.get_snames().front());
}

/// The help breaks lines for its own width; a line that begins with one of the words to choose from stays a line.
std::string description(CLI::Option& option)
{
  const std::vector<std::string> words = choicesOf(option);
  std::string roff;
  for (const std::string& line : CLI::detail::split(option.get_description(), '\n'))
  {
    const bool explainsWord = std::any_of(words.begin(), words.end(),
                                          [&line](const std::string& word) { return line.rfind(word + ": ", 0) == 0; });
    roff += (explainsWord ? ".br\n" : "") + roffFilled(line);
  }
  return roff;
}

std::string entry(const std::string& tag, const std::string& text)
{
  return ".TP\n" + tag + "\n" + text;
}

std::string optionEntries(CLI::App& command)
{
  std::string roff;
  for (const std::string& group : command.get_groups())
  {
    const Options options = optionsOf(command, group);
    if (options.empty() || group.empty())
      continue;
    if (group != "Options")
      roff += ".SS " + roffText(group) + "\n";
    for (CLI::Option* option : options)
      roff += entry(names(*option), description(*option));
  }
  return roff;
}

std::string positionalEntries(CLI::App& command)
{
  std::string roff;
  for (CLI::Option* option : positionals(command))
    roff += entry(roffItalic(option->get_name(true)), description(*option));
  return roff;
}

std::string synopsis(CLI::App& command, const std::string& name)
{
  std::string roff = roffBold(name) + " [" + roffItalic("OPTIONS") + "]";
  for (const CLI::Option* option : command.get_options())
  {
    if (option->nonpositional() && option->get_required())
      roff += " " + shortName(*option) + " " + roffItalic(option->get_type_name());
  }
  for (const CLI::Option* option : positionals(command))
  {
    const std::string argument =
        roffItalic(option->get_name(true)) + (option->get_items_expected_max() > 1 ? "..." : "");
    roff += " " + (option->get_required() ? argument : "[" + argument + "]");
  }
  return roff + "\n";
}

/// The parts of the text below the options in the help.
struct Footer
{
  std::string description;
  std::string exitStatus;
  std::string examples;
};

Footer divided(const std::string& footer)
{
  Footer parts;
  std::size_t begin = 0;
  while (begin < footer.size())
  {
    const std::size_t end = std::min(footer.find("\n\n", begin), footer.size());
    const std::string paragraph = footer.substr(begin, end - begin);
    begin = end + 2;
    if (paragraph.rfind(exitStatusMark, 0) == 0)
      parts.exitStatus = paragraph.substr(exitStatusMark.size());
    else if (paragraph.rfind("Example", 0) == 0)
      parts.examples = paragraph.substr(paragraph.find('\n') + 1);
    else
      parts.description += (parts.description.empty() ? "" : "\n\n") + paragraph;
  }
  return parts;
}

ManualPage subcommandPage(CLI::App& command)
{
  const std::string page = "skeigiot-" + command.get_name();
  const Footer footer = divided(command.get_footer());
  std::string about = roffFilled(command.get_description() + ".");
  if (!footer.description.empty())
    about += ".PP\n" + roffParagraphs(footer.description);
  return {page + ".1", heading(page) + section("NAME", roffFilled(page + " - " + command.get_description())) +
                           section("SYNOPSIS", synopsis(command, "skeigiot " + command.get_name())) +
                           section("DESCRIPTION", about) + section("ARGUMENTS", positionalEntries(command)) +
                           section("OPTIONS", optionEntries(command)) +
                           section("EXIT STATUS", footer.exitStatus.empty() ? "" : roffParagraphs(footer.exitStatus)) +
                           section("EXAMPLES", footer.examples.empty() ? "" : roffVerbatim(footer.examples + "\n")) +
                           section("SEE ALSO", roffBold("skeigiot") + "(1)\n")};
}

const char* const aboutTheCommand =
    R"(Estimates how each person feels and attends, from the readings of a robot or of a program that analyses faces. The
estimate has a valence from -1 (negative) to 1 (positive) and an attention from 0 to 1, each with a confidence. It also
has the zone that the person looks at, and the pleasure state.

Recordings are files of OpenFace, py-feat, MediaPipe FaceLandmarker and Live Link Face, bags of ROS 2, tables of single
readings, and JSON Lines. The format is detected from the contents. Files may be compressed by gzip or zstd.)";

const char* const exitStatus =
    R"(0 for success, 2 if a recording or the command line cannot be used, 1 for any other error, such as a
file that cannot be written. The pages of the subcommands have the details.)";

const char* const environment = R"(NO_COLOR: if it is set and not empty, nothing is written in colours.)";

ManualPage commandPage(CLI::App& app)
{
  std::string commands;
  std::string others;
  for (const CLI::App* command : app.get_subcommands(nullptr))
  {
    const std::string page = "skeigiot-" + command->get_name();
    commands += entry(roffBold(command->get_name()),
                      roffFilled(command->get_description() + "; see") + roffBold(page) + "(1)\n");
    others += roffBold(page) + "(1)" + (command == app.get_subcommands(nullptr).back() ? "\n" : ",\n");
  }
  return {"skeigiot.1", heading("skeigiot") + section("NAME", roffFilled("skeigiot - " + app.get_description())) +
                            section("SYNOPSIS", roffBold("skeigiot") + " [" + roffItalic("OPTIONS") + "] " +
                                                    roffItalic("SUBCOMMAND") + "\n") +
                            section("DESCRIPTION", roffParagraphs(aboutTheCommand)) + section("SUBCOMMANDS", commands) +
                            section("OPTIONS", optionEntries(app)) + section("EXIT STATUS", roffFilled(exitStatus)) +
                            section("ENVIRONMENT", roffFilled(environment)) + section("SEE ALSO", others)};
}

}  // namespace

std::vector<ManualPage> manualPages(CLI::App& app)
{
  std::vector<ManualPage> pages{commandPage(app)};
  for (CLI::App* command : app.get_subcommands(nullptr))
    pages.push_back(subcommandPage(*command));
  return pages;
}

}  // namespace KV::tools
