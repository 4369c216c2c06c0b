#include "labels/csvlabels.hpp"

#include "labels/labelrows.hpp"
#include "labels/labeltext.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <tuple>
#include <vector>

namespace KV::recordings
{
namespace
{
constexpr std::array<char, 3> delimiters = {',', ';', '\t'};
constexpr std::array<const char*, 3> quantities = {"value", "valence", "attention"};

/// The columns of a table of spans or of tracks.
struct CsvColumns
{
  explicit CsvColumns(const LabelColumns& columns)
    : start(columns.find("start")),
      end(columns.find("end")),
      time(columns.find("time")),
      label(columns.has("label") ? columns.find("label") : columns.find("value")),
      person(columns.find("person")),
      coder(columns.find("coder")),
      tier(columns.find("tier"))
  {
    for (const char* quantity : quantities)
      if (const auto column = columns.find(quantity))
        values.emplace_back(quantity, *column);
  }

  bool areSpans() const { return start && end && label; }
  bool areTracks() const { return time && !values.empty(); }

  std::optional<std::size_t> start;
  std::optional<std::size_t> end;
  std::optional<std::size_t> time;
  std::optional<std::size_t> label;
  std::optional<std::size_t> person;
  std::optional<std::size_t> coder;
  std::optional<std::size_t> tier;
  std::vector<std::pair<std::string, std::size_t>> values;  // of tracks, with the names of their columns
};

/// Returns the delimiter with which the first row names the columns, if there is one.
std::optional<char> delimiterOf(std::string_view text)
{
  const std::string_view begin = text.substr(std::min(text.find_first_not_of("\r\n"), text.size()));
  const std::string_view line = begin.substr(0, begin.find('\n'));
  if (std::count(line.begin(), line.end(), '"') % 2 != 0)
    return {};
  for (const char delimiter : delimiters)
  {
    const std::vector<LabelRow> rows = labelRows(line, {}, delimiter, 1);
    if (rows.empty())
      return {};
    const CsvColumns columns{LabelColumns(rows.front().fields)};
    if (columns.areSpans() || columns.areTracks())
      return delimiter;
  }
  return {};
}

bool isMissing(std::string_view field)
{
  const std::string small = smallLetters(field);
  return small.empty() || small == "na" || small == "nan" || small == "none" || small == "null";
}

class CsvLabelsReader
{
public:
  CsvLabelsReader(const std::string& path, const std::string& text)
    : _path(path),
      _rows(labelRows(text, path, delimiterOf(text).value_or(','))),
      _columns(LabelColumns(_rows.front().fields))
  {}

  Labels read()
  {
    for (auto row = _rows.begin() + 1; row != _rows.end(); ++row)
    {
      if (row->fields.size() != _rows.front().fields.size())
        throw Error({_path, row->line, {}}, std::to_string(row->fields.size()) + " fields, expected " +
                                                std::to_string(_rows.front().fields.size()) + " as in the header");
      if (_columns.areSpans())
        _addSpan(*row);
      else
        _addSamples(*row);
    }
    for (LabelTrack& track : _labels.tracks)
      _sort(track);
    return std::move(_labels);
  }

private:
  Error::Place _place(const LabelRow& row, std::size_t column) const
  {
    return {_path, row.line, _rows.front().fields[column]};
  }

  void _addSpan(const LabelRow& row)
  {
    LabelSpan span;
    span.from = labelTime(row.field(_columns.start), _place(row, *_columns.start));
    span.to = labelTime(row.field(_columns.end), _place(row, *_columns.end));
    if (span.to < span.from)
      throw Error(_place(row, *_columns.end), "the label ends before it begins");
    span.label = row.field(_columns.label);
    span.person = row.field(_columns.person);
    span.coder = row.field(_columns.coder);
    span.tier = row.field(_columns.tier);
    _labels.spans.push_back(std::move(span));
  }

  void _addSamples(const LabelRow& row)
  {
    const double time = labelTime(row.field(_columns.time), _place(row, *_columns.time));
    for (const auto& [quantity, column] : _columns.values)
      if (!isMissing(row.fields[column]))
        _track(row, quantity).samples.push_back({time, labelNumber(row.fields[column], _place(row, column))});
  }

  LabelTrack& _track(const LabelRow& row, const std::string& quantity)
  {
    const auto key = std::make_tuple(quantity, std::string(row.field(_columns.person)),
                                     std::string(row.field(_columns.coder)), std::string(row.field(_columns.tier)));
    const auto [found, isNew] = _indices.emplace(key, _labels.tracks.size());
    if (isNew)
    {
      LabelTrack& track = _labels.tracks.emplace_back();
      std::tie(track.quantity, track.person, track.coder, track.tier) = key;
    }
    return _labels.tracks[found->second];
  }

  void _sort(LabelTrack& track) const
  {
    std::stable_sort(track.samples.begin(), track.samples.end(),
                     [](const auto& left, const auto& right) { return left.time < right.time; });
    const auto twice = std::adjacent_find(track.samples.begin(), track.samples.end(),
                                          [](const auto& left, const auto& right) { return left.time == right.time; });
    if (twice == track.samples.end())
      return;
    const std::string seconds = std::to_string(twice->time);
    throw Error({_path, 0, track.quantity}, "has two values at " + seconds +
                                                " s: where there are several persons or coders, columns named person "
                                                "and coder tell them apart");
  }

  const std::string& _path;
  std::vector<LabelRow> _rows;
  CsvColumns _columns;
  std::map<std::tuple<std::string, std::string, std::string, std::string>, std::size_t> _indices;  // of the tracks
  Labels _labels;
};

}  // namespace

bool isCsvLabels(std::string_view text)
{
  return delimiterOf(text).has_value();
}

Labels readCsvLabels(const std::string& path, const std::string& text)
{
  return CsvLabelsReader(path, text).read();
}

}  // namespace KV::recordings
