#include "commands/inspectfolder.hpp"

#include "cli/interruption.hpp"
#include "terminal/texttable.hpp"

#include <skeigiot/session/inspectionreport.hpp>
#include <skeigiot/session/wording.hpp>

#include <array>
#include <cstddef>
#include <cstdio>
#include <set>
#include <string>

namespace KV::tools
{

namespace
{

std::string rounded(double value)
{
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.3g", value);
  return text.data();
}

/// Returns the kinds of readings, the first few by name: "gaze, headPosture, smile and 2 more".
std::string readingsOf(const session::Inspection& contents)
{
  constexpr std::size_t mostNamed = 4;
  std::set<std::string> kinds;
  for (const auto& [name, range] : contents.numbers())
    kinds.insert(name.substr(0, name.find('.')));
  std::string text;
  std::size_t named = 0;
  for (const std::string& kind : kinds)
  {
    if (named == mostNamed)
      return text + " and " + std::to_string(kinds.size() - mostNamed) + " more";
    text += (named++ == 0 ? "" : ", ") + kind;
  }
  return text;
}

std::string problemsOf(const session::InspectionReport& report)
{
  std::string text;
  const auto add = [&text](const std::string& problem) { text += (text.empty() ? "" : ", ") + problem; };
  if (!report.error.empty())
    add("not read to its end");
  if (report.badLines > 0)
    add(session::counted(report.badLines, "bad line"));
  if (const std::size_t warnings = report.warnings.size() + report.moreWarnings; warnings > 0)
    add(session::counted(warnings, "warning"));
  return text;
}

TextTable::Cells rowOf(const std::string& file, const session::InspectionReport& report)
{
  const session::Inspection& contents = report.contents;
  const double rate = contents.timesPerSecond();
  std::size_t seen = 0;
  std::size_t known = 0;
  for (const auto& [person, span] : contents.persons())
  {
    seen += span.seen;
    known += span.seen + span.notSeen;
  }
  return {file,
          report.format,
          session::clockText(contents.length()),
          rate > 0. ? rounded(rate) : "",
          std::to_string(contents.persons().size()),
          known > 0 ? session::percentage(static_cast<double>(seen) / static_cast<double>(known)) : "",
          readingsOf(contents),
          problemsOf(report)};
}

}  // namespace

ExitStatus inspectFolder(const std::vector<session::SessionInputs>& sessions, const ReadingArguments& reading,
                         bool asJson, std::ostream& output, Messages& messages)
{
  TextTable table({{session::counted(sessions.size(), "recording")},
                   {"format"},
                   {"length", true},
                   {"steps/s", true},
                   {"persons", true},
                   {"seen", true},
                   {"readings"},
                   {""}});
  ExitStatus status = Success;
  const char* separator = "[\n";
  for (const session::SessionInputs& session : sessions)
  {
    const std::string file = session.exportedAs(1).file;
    try
    {
      const session::InspectionReport report =
          session::inspect(session.inputs.front().path, reading.format, reading.options, [](const session::Progress&) {
            Interruption::check();
            return true;
          });
      if (asJson)
      {
        output << separator;
        session::writeAsJson(output, report);
        separator = ",\n";
      }
      else
        table.add(rowOf(file, report));
      if (!report.error.empty())
        messages.error(report.error);
      if (report.badLines > 0 || !report.error.empty())
        status = BadInput;
    }
    catch (const recordings::Error& error)
    {
      Interruption::check();
      messages.error(error.what());
      table.add({file, "", "", "", "", "", "", "not read: see the message"});
      status = BadInput;
    }
  }
  if (asJson)
    output << (*separator == '[' ? "[" : "") << "]\n";
  else
    output << table.text(Style(false));
  output.flush();
  return status;
}

}  // namespace KV::tools
