#include "labels/borislabels.hpp"

#include "labels/labelrows.hpp"
#include "labels/labeltext.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <array>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

namespace KV::recordings
{
namespace
{
constexpr std::array<char, 3> delimiters = {'\t', ',', ';'};
constexpr std::size_t longestPreamble = 200;  // [rows]

/// The columns: events with start and stop in a row, or each with a row of its own.
struct BorisColumns
{
  explicit BorisColumns(const LabelColumns& columns)
    : observation(columns.find("observation id")),
      subject(columns.find("subject")),
      behavior(columns.find("behavior")),
      modifiers(columns.find("modifiers")),
      kind(columns.has("status") ? columns.find("status") : columns.find("behavior type")),
      start(columns.find("start (s)")),
      stop(columns.find("stop (s)")),
      time(columns.find("time"))
  {
    if (!modifiers)
      modifiers = columns.find("modifier #1");
  }

  bool areAggregated() const { return behavior && start && stop; }
  bool areTabular() const { return behavior && kind && time && !areAggregated(); }

  std::optional<std::size_t> observation;
  std::optional<std::size_t> subject;
  std::optional<std::size_t> behavior;
  std::optional<std::size_t> modifiers;
  std::optional<std::size_t> kind;
  std::optional<std::size_t> start;
  std::optional<std::size_t> stop;
  std::optional<std::size_t> time;
};

struct BorisLayout
{
  char delimiter = '\t';
  std::size_t header = 0;  // number of the row
};

std::optional<BorisLayout> layoutOf(std::string_view text)
{
  if (text.find("Behavior") == std::string_view::npos)
    return {};
  for (const char delimiter : delimiters)
  {
    std::vector<LabelRow> rows;
    try
    {
      rows = labelRows(text, {}, delimiter, longestPreamble);
    }
    catch (const Error&)
    {
      continue;
    }
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
      const BorisColumns columns{LabelColumns(rows[i].fields)};
      if (columns.areAggregated() || columns.areTabular())
        return BorisLayout{delimiter, i};
    }
  }
  return {};
}

class BorisReader
{
public:
  BorisReader(const std::string& path, const std::string& text, const BorisLayout& layout)
    : _path(path),
      _rows(labelRows(text, path, layout.delimiter)),
      _header(_rows.at(layout.header)),
      _columns(LabelColumns(_header.fields)),
      _first(layout.header + 1)
  {
    for (std::size_t i = 0; i < layout.header; ++i)
      if (_rows[i].fields.size() > 1 && smallLetters(_rows[i].fields[0]) == "observation id")
        _observation = _rows[i].fields[1];
  }

  Labels read()
  {
    for (std::size_t i = _first; i < _rows.size(); ++i)
    {
      if (_columns.areAggregated())
        _addEvent(_rows[i]);
      else
        _addBoundary(_rows[i]);
    }
    for (const auto& [key, begun] : _open)
      _labels.warnings.push_back(_line(begun.second) + ": " + quote(begun.first.label) +
                                 " starts and does not stop, and is left out");
    _warnOfObservations();
    return std::move(_labels);
  }

private:
  using Key = std::tuple<std::string, std::string, std::string, std::string>;

  Error::Place _place(const LabelRow& row, const std::optional<std::size_t>& column) const
  {
    return {_path, row.line, _header.fields[*column]};
  }

  std::string _line(std::size_t line) const { return "line " + std::to_string(line); }

  LabelSpan _spanOf(const LabelRow& row) const
  {
    LabelSpan span;
    span.label = row.field(_columns.behavior);
    span.person = row.field(_columns.subject);
    if (smallLetters(span.person) == "no focal subject")
      span.person.clear();
    span.tier = _columns.observation ? std::string(row.field(_columns.observation)) : _observation;
    return span;
  }

  bool _isKnown(const LabelRow& row, const std::optional<std::size_t>& column)
  {
    const std::string small = smallLetters(row.field(column));
    if (!small.empty() && small != "na" && small != "nan")
      return true;
    _labels.warnings.push_back(_line(row.line) + ": has no time, and is left out");
    return false;
  }

  void _addEvent(const LabelRow& row)
  {
    if (!_isKnown(row, _columns.start))
      return;
    LabelSpan span = _spanOf(row);
    span.from = labelTime(row.field(_columns.start), _place(row, _columns.start));
    const bool isPoint = smallLetters(row.field(_columns.kind)) == "point";
    if (!isPoint && !_isKnown(row, _columns.stop))
      return;
    span.to = isPoint ? span.from : labelTime(row.field(_columns.stop), _place(row, _columns.stop));
    if (span.to < span.from)
      throw Error(_place(row, _columns.stop), "the event stops before it starts");
    _labels.spans.push_back(std::move(span));
  }

  void _addBoundary(const LabelRow& row)
  {
    if (!_isKnown(row, _columns.time))
      return;
    LabelSpan span = _spanOf(row);
    const double time = labelTime(row.field(_columns.time), _place(row, _columns.time));
    const std::string kind = smallLetters(row.field(_columns.kind));
    const Key key(span.tier, span.person, span.label, std::string(row.field(_columns.modifiers)));
    if (kind == "point")
    {
      span.from = span.to = time;
      _labels.spans.push_back(std::move(span));
    }
    else if (kind == "start")
    {
      span.from = time;
      if (!_open.emplace(key, std::make_pair(span, row.line)).second)
        throw Error(_place(row, _columns.kind), quote(span.label) + " starts twice without a stop");
    }
    else if (kind == "stop")
      _stop(key, time, row);
    else
      throw Error(_place(row, _columns.kind),
                  "expected START, STOP or POINT, found " + quote(row.field(_columns.kind)));
  }

  void _stop(const Key& key, double time, const LabelRow& row)
  {
    const auto found = _open.find(key);
    if (found == _open.end())
      throw Error(_place(row, _columns.kind), quote(row.field(_columns.behavior)) + " stops, but did not start");
    LabelSpan& span = found->second.first;
    span.to = time;
    if (span.to < span.from)
      throw Error(_place(row, _columns.time), "the event stops before it starts");
    _labels.spans.push_back(std::move(span));
    _open.erase(found);
  }

  void _warnOfObservations()
  {
    std::set<std::string> observations;
    for (const LabelSpan& span : _labels.spans)
      observations.insert(span.tier);
    if (observations.size() > 1)
      _labels.warnings.push_back("holds " + std::to_string(observations.size()) +
                                 " observations: name the one of this recording as tier");
  }

  const std::string& _path;
  std::vector<LabelRow> _rows;
  const LabelRow& _header;
  BorisColumns _columns;
  std::size_t _first;
  std::string _observation;                                // of the preamble
  std::map<Key, std::pair<LabelSpan, std::size_t>> _open;  // that started and did not stop yet, with their lines
  Labels _labels;
};

}  // namespace

bool isBorisLabels(std::string_view text)
{
  return layoutOf(text).has_value();
}

Labels readBorisLabels(const std::string& path, const std::string& text)
{
  return BorisReader(path, text, *layoutOf(text)).read();
}

}  // namespace KV::recordings
