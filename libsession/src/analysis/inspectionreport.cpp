#include "inspectionreport.hpp"

#include "description.hpp"
#include "interruption.hpp"
#include "text.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

namespace tools
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr std::size_t mostWarnings = 10;
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

void takeWarnings(RecordingReader& reader, InspectionReport& report)
{
  for (const std::string& warning : reader.takeWarnings())
  {
    if (report.warnings.size() < mostWarnings)
      report.warnings.push_back(warning);
    else
      ++report.moreWarnings;
  }
}

/// Adds the next step to the report; false at the end.
bool addStep(RecordingReader& reader, InspectionReport& report)
{
  try
  {
    const auto entry = reader.next();
    if (entry)
      report.contents.add(*entry);
    return entry.has_value();
  }
  catch (const BadLine& error)
  {
    if (++report.badLines == 1)
      report.firstBadLine = error.what();
    return true;
  }
  catch (const RecordingError& error)
  {
    report.error = error.what();
    return false;
  }
}

/// Writes labelled lines of a certain width.
class Lines
{
public:
  Lines(std::ostream& stream, int width) : _stream(stream), _width(static_cast<std::size_t>(width)) {}

  void add(const std::string& label, const std::string& text)
  {
    _stream << "  " << padRight(label, labelWidth - 2);
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

std::string describeSpan(const Inspection& contents)
{
  const double rate = contents.timesPerSecond();
  return clockText(contents.length()) + ", " + counted(contents.steps(), "step") +
         (rate > 0. ? ", " + rounded(rate) + " times a second" : "");
}

std::string describeGaps(const Inspection::Gaps& gaps)
{
  if (gaps.count == 0)
    return "none of a second or more";
  return counted(gaps.count, "gap") + " of a second or more, the longest of " + rounded(inSeconds(gaps.longest)) +
         " s at " + clockText(gaps.at);
}

std::string describePerson(const PersonSpan& span, Inspection::TimePoint first)
{
  return "seen in " + counted(span.seen, "step") + ", not seen in " + std::to_string(span.notSeen) + ", from " +
         clockText(span.first - first) + " to " + clockText(span.last - first);
}

void writeNumbers(std::ostream& stream, const std::map<std::string, NumberRange>& numbers)
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

Json asJson(const PersonSpan& span, Inspection::TimePoint first)
{
  return {{"seen", span.seen},
          {"notSeen", span.notSeen},
          {"from", inSeconds(span.first - first)},
          {"to", inSeconds(span.last - first)}};
}

Json asJson(const NumberRange& range)
{
  Json json = {{"count", range.count}};
  if (range.count > 0)
  {
    json["least"] = range.least;
    json["mean"] = range.mean();
    json["greatest"] = range.greatest;
  }
  return json;
}

}  // namespace

InspectionReport inspect(const std::string& path, const std::string& format, const ReadingOptions& options)
{
  InspectionReport report;
  report.path = path;
  report.format = format.empty() ? formatNameOf(path) : format;
  const std::unique_ptr<RecordingReader> reader = openRecording(path, report.format, options);
  bool more = true;
  while (more)
  {
    more = addStep(*reader, report);
    takeWarnings(*reader, report);
    Interruption::check();
  }
  report.description = reader->describe();
  report.columns = reader->columns();
  return report;
}

void writeAsText(std::ostream& stream, const InspectionReport& report, int width)
{
  const Inspection& contents = report.contents;
  Lines lines(stream, width);
  stream << report.path << '\n';
  lines.add("format", report.format);
  for (const std::string& line : report.description)
    lines.add(&line == &report.description.front() ? "read as" : "", line);
  if (contents.steps() > 0)
  {
    lines.add("span", describeSpan(contents));
    lines.add("gaps", describeGaps(contents.gaps()));
  }
  for (const auto& [person, span] : contents.persons())
    lines.add("person " + std::to_string(person), describePerson(span, contents.first()));
  for (const auto& [scope, count] : contents.scopes())
    lines.add("scope", "'" + scope + "', started " + counted(count, "time"));
  if (!report.columns.used.empty())
    lines.add("columns", counted(report.columns.used.size(), "column") + " used: " + listed(report.columns.used));
  if (!report.columns.ignored.empty())
    lines.add("", counted(report.columns.ignored.size(), "column") + " not read: " + listed(report.columns.ignored));
  writeNumbers(stream, contents.numbers());
  for (const std::string& warning : report.warnings)
    lines.add("warning", warning);
  if (report.moreWarnings > 0)
    lines.add("warning", counted(report.moreWarnings, "more warning"));
  if (report.badLines > 0)
    lines.add("bad", counted(report.badLines, "line") + " that cannot be used, the first: " + report.firstBadLine);
  if (!report.error.empty())
    lines.add("error", report.error);
}

void writeAsJson(std::ostream& stream, const InspectionReport& report)
{
  const Inspection& contents = report.contents;
  Json json = {{"path", report.path}, {"format", report.format}, {"readAs", report.description}};
  json["begins"] = inSeconds(contents.first().time_since_epoch());
  json["length"] = inSeconds(contents.length());
  json["steps"] = contents.steps();
  json["timesPerSecond"] = contents.timesPerSecond();
  json["gaps"] = {{"count", contents.gaps().count},
                  {"longest", inSeconds(contents.gaps().longest)},
                  {"at", inSeconds(contents.gaps().at)}};
  json["persons"] = Json::object();
  for (const auto& [person, span] : contents.persons())
    json["persons"][std::to_string(person)] = asJson(span, contents.first());
  json["scopes"] = contents.scopes();
  json["columns"] = {{"used", report.columns.used}, {"ignored", report.columns.ignored}};
  json["readings"] = Json::object();
  for (const auto& [name, range] : contents.numbers())
    json["readings"][name] = asJson(range);
  json["warnings"] = report.warnings;
  json["moreWarnings"] = report.moreWarnings;
  json["badLines"] = {{"count", report.badLines}, {"first", report.firstBadLine}};
  json["error"] = report.error;
  stream << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace tools
