#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// A row of delimited text.
struct LabelRow
{
  std::size_t line = 0;  ///< where it begins, from 1
  std::vector<std::string> fields;

  /// Returns the field; nothing if the row has fewer fields, or the column does not exist.
  std::string_view field(const std::optional<std::size_t>& column) const
  {
    return column && *column < fields.size() ? std::string_view(fields[*column]) : std::string_view();
  }
};

/// Splits the text into rows, at most so many; lines without text are no rows. Unlike CsvRows, it knows any delimiter,
/// and line breaks in quotes, for tables that people make by hand. Fields have no blanks around them. A field in quotes
/// may hold delimiters and line breaks, and two quotes in a row mean one quote.
///
/// \throws Error if a quote is not closed, or there are too many fields.
std::vector<LabelRow> labelRows(std::string_view text, const std::string& path, char delimiter,
                                std::size_t most = static_cast<std::size_t>(-1));

/// The columns of a table by their names, in any case.
class LabelColumns
{
public:
  explicit LabelColumns(const std::vector<std::string>& names);

  std::optional<std::size_t> find(const std::string& name) const;
  bool has(const std::string& name) const { return find(name).has_value(); }

private:
  std::map<std::string, std::size_t> _indices;
};

/// Returns the text with ASCII letters in lower case.
std::string smallLetters(std::string_view text);

}  // namespace KV::recordings
