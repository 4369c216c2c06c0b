#include "terminal/inspectiontext.hpp"

#include "terminal/columnfamilies.hpp"
#include "terminal/shown.hpp"
#include "terminal/text.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/session/wording.hpp>

#include <array>
#include <cstddef>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace KV::tools
{

namespace
{

constexpr std::size_t labelWidth = 12;

double inSeconds(ko::SystemClock::duration duration)
{
  return static_cast<double>(duration.count()) * 1e-9;
}

std::string rounded(double value)
{
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.4g", value);
  return text.data();
}

/// Writes labelled lines of a certain width.
class Lines
{
public:
  Lines(std::ostream& stream, int width) : _stream(stream), _width(static_cast<std::size_t>(width)) {}

  void add(const std::string& label, const std::string& text)
  {
    _stream << "  " << padRight(shown(label), labelWidth - 2);
    for (const char character : wrapped(text, _width - labelWidth, 0))
    {
      _stream << character;
      if (character == '\n')
        _stream << std::string(labelWidth, ' ');
    }
    _stream << '\n';
  }

private:
  std::ostream& _stream;
  std::size_t _width;
};

std::string describeSpan(const session::Inspection& contents)
{
  const double rate = contents.timesPerSecond();
  return session::clockText(contents.length()) + ", " + session::counted(contents.steps(), "step") +
         (rate > 0. ? ", " + rounded(rate) + " times a second" : "");
}

std::string describeGaps(const session::Inspection::Gaps& gaps)
{
  if (gaps.count == 0)
    return "no gap of a second or more";
  return session::counted(gaps.count, "gap") + " of a second or more, the longest of " +
         rounded(inSeconds(gaps.longest)) + " s at " + session::clockText(gaps.at);
}

std::string describePerson(const session::PersonSpan& span, session::Inspection::TimePoint first)
{
  return (span.name.empty() ? "" : span.name + ": ") + "seen in " + session::counted(span.seen, "step") +
         ", not seen in " + std::to_string(span.notSeen) + ", from " + session::clockText(span.first - first) + " to " +
         session::clockText(span.last - first);
}

void writeNumbers(std::ostream& stream, const std::map<std::string, session::NumberRange>& numbers)
{
  constexpr std::size_t nameWidth = 34;
  constexpr std::size_t width = 11;
  if (numbers.empty())
    return;
  stream << padRight("  readings", nameWidth);
  for (const char* const column : {"count", "least", "mean", "greatest"})
    stream << padLeft(column, width);
  stream << '\n';
  for (const auto& [name, range] : numbers)
  {
    stream << padRight("    " + name, nameWidth) << padLeft(std::to_string(range.count), width);
    if (range.count > 0)
      for (const double value : {range.least, range.mean(), range.greatest})
        stream << padLeft(rounded(value), width);
    stream << '\n';
  }
}

void addColumns(Lines& lines, const recordings::Columns& columns, ShownColumns which)
{
  const char* label = "columns";
  const auto add = [&](const std::vector<std::string>& names, const char* what) {
    if (names.empty())
      return;
    const std::vector<std::string> texts = which == ShownColumns::All ? names : columnFamilies(names);
    lines.add(label, session::counted(names.size(), "column") + what + recordings::listed(texts));
    label = "";
  };
  add(columns.used, " used: ");
  add(columns.ignored, " not read: ");
}

/// The content of the recording, which most readers look for first.
void writeContents(std::ostream& stream, Lines& lines, const session::Inspection& contents)
{
  for (const auto& [person, span] : contents.persons())
    lines.add("person " + std::to_string(person), describePerson(span, contents.first()));
  writeNumbers(stream, contents.numbers());
  for (const auto& [scope, count] : contents.scopes())
    lines.add("scope", "'" + scope + "', started " + session::counted(count, "time"));
  if (contents.steps() > 0)
  {
    lines.add("span", describeSpan(contents));
    lines.add("gaps", describeGaps(contents.gaps()));
    lines.add("trust", session::trustIn(contents));
  }
}

}  // namespace

void writeAsText(std::ostream& stream, const session::InspectionReport& report, int width, ShownColumns which)
{
  Lines lines(stream, width);
  stream << shown(report.path) << '\n';
  writeContents(stream, lines, report.contents);
  lines.add("format", report.format);
  for (const std::string& line : report.description)
    lines.add(&line == &report.description.front() ? "read as" : "", line);
  for (const std::string& line : report.learned)
    lines.add(&line == &report.learned.front() ? "learned" : "", line);
  addColumns(lines, report.columns, which);
  for (const std::string& warning : report.warnings)
    lines.add("warning", warning);
  if (report.moreWarnings > 0)
    lines.add("warning", session::counted(report.moreWarnings, "more warning"));
  if (report.badLines > 0)
    lines.add("bad",
              session::counted(report.badLines, "line") + " that cannot be used, the first: " + report.firstBadLine);
  if (!report.error.empty())
    lines.add("error", report.error);
}

}  // namespace KV::tools
