#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// A group of columns, which is used only if all of them are there.
template <std::size_t Count>
using ColumnGroup = std::optional<std::array<std::size_t, Count>>;

/// The names of the columns of a file of comma-separated values.
class CsvHeader
{
public:
  /// Takes the first row of the file.
  ///
  /// \throws Error if a column for which `isRead` returns true is there twice.
  CsvHeader(const std::vector<std::string_view>& fields, const Error::Place& place,
            bool (*isRead)(const std::string& name));

  const std::vector<std::string>& names() const { return _names; }
  const Error::Place& place() const { return _place; }

  bool has(const std::string& name) const { return _indices.count(name) > 0; }
  std::optional<std::size_t> find(const std::string& name) const;

  /// Returns which columns were found so far; these are read.
  Columns columns() const;

  /// Returns the columns with these names.
  std::vector<std::optional<std::size_t>> find(const std::vector<std::string>& names) const;

  /// Returns the columns with these names, `Count` of them, if all are there.
  template <std::size_t Count>
  ColumnGroup<Count> findAll(const std::vector<std::string>& names) const
  {
    std::array<std::size_t, Count> indices{};
    for (std::size_t i = 0; i < Count; ++i)
    {
      const auto index = find(names.at(i));
      if (!index)
        return {};
      indices.at(i) = *index;
    }
    return indices;
  }

private:
  Error::Place _place;
  std::vector<std::string> _names;
  std::map<std::string, std::size_t> _indices;
  mutable std::set<std::size_t> _found;
};

/// Returns the first line of a file that is not empty, from its first bytes.
std::string_view headerLineOf(const std::string& head);

/// Returns the names in a line between any of these delimiters, without quotes and spaces around them; at most as many
/// as a row may have.
std::vector<std::string> namesIn(std::string_view line, std::string_view delimiters);

/// Refuses a header of one column if another delimiter than a comma splits it into several columns that `isRead` knows.
///
/// \throws Error that names the delimiter.
void refuseOtherDelimiters(const std::vector<std::string_view>& header, const Error::Place& place,
                           bool (*isRead)(const std::string& name));

}  // namespace KV::recordings
