#include "labels/bidslabels.hpp"

#include "labels/labelrows.hpp"
#include "labels/labeltext.hpp"

#include <skeigiot/recordings/error.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace KV::recordings
{
namespace
{
constexpr char delimiter = '\t';
constexpr const char* withoutType = "event";

struct BidsColumns
{
  explicit BidsColumns(const LabelColumns& columns)
    : onset(columns.find("onset")),
      duration(columns.find("duration")),
      type(columns.has("trial_type") ? columns.find("trial_type") : columns.find("value"))
  {}

  std::optional<std::size_t> onset;
  std::optional<std::size_t> duration;
  std::optional<std::size_t> type;
};

/// BIDS writes n/a for a value that is missing.
bool isMissing(std::string_view field)
{
  const std::string small = smallLetters(field);
  return small.empty() || small == "n/a";
}

}  // namespace

bool isBidsLabels(std::string_view text)
{
  const std::string_view line = text.substr(0, text.find('\n'));
  if (std::count(line.begin(), line.end(), '"') % 2 != 0)
    return false;
  const std::vector<LabelRow> rows = labelRows(line, {}, delimiter, 1);
  if (rows.empty())
    return false;
  const BidsColumns columns{LabelColumns(rows.front().fields)};
  return columns.onset && columns.duration;
}

Labels readBidsLabels(const std::string& path, const std::string& text)
{
  const std::vector<LabelRow> rows = labelRows(text, path, delimiter);
  const std::vector<std::string>& names = rows.front().fields;
  const BidsColumns columns{LabelColumns(names)};
  Labels labels;
  for (auto row = rows.begin() + 1; row != rows.end(); ++row)
  {
    if (row->fields.size() != names.size())
      throw Error({path, row->line, {}}, std::to_string(row->fields.size()) + " fields, expected " +
                                             std::to_string(names.size()) + " as in the header");
    LabelSpan span;
    span.from = span.to = labelTime(row->field(columns.onset), {path, row->line, "onset"});
    if (!isMissing(row->field(columns.duration)))
    {
      const Error::Place place{path, row->line, "duration"};
      const double duration = labelTime(row->field(columns.duration), place);
      if (duration < 0.)
        throw Error(place, "expected seconds from 0 on, or n/a");
      span.to += duration;
    }
    const std::string_view type = row->field(columns.type);
    span.label = isMissing(type) ? withoutType : type;
    labels.spans.push_back(std::move(span));
  }
  return labels;
}

}  // namespace KV::recordings
