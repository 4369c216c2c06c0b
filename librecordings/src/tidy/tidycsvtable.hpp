#pragma once

#include "csv/csvnumbers.hpp"
#include "csv/csvrows.hpp"

#include "tidy/tidytable.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns whether a file with these first bytes is a table with the columns time and reading.
bool looksLikeTidyCsv(const std::string& head);

/// A table of single readings in a CSV file.
class TidyCsvTable : public TidyTable
{
public:
  /// Takes an opened file and reads its header.
  ///
  /// \throws Error if it cannot be read, there is no time or no reading, a column is there twice, or no commas
  ///   separate them.
  explicit TidyCsvTable(InputFile input);

  bool next() override;
  bool hasColumn(TidyColumn column) const override { return _indexOf(column).has_value(); }
  bool has(TidyColumn column) const override;
  std::string text(TidyColumn column) const override;
  double number(TidyColumn column) const override;
  std::int64_t wholeNumber(TidyColumn column, double least, double greatest) const override;
  double seconds(TidyColumn column) const override;
  Error::Place placeOf(TidyColumn column) const override;
  Error::Place place() const override { return {_rows.file().path(), _rows.file().lineNumber(), {}}; }
  const Columns& columns() const override { return _columns; }
  const char* kind() const override { return "Tidy CSV"; }
  double progress() const override { return _rows.file().progress(); }

private:
  void _findColumns();
  const std::optional<std::size_t>& _indexOf(TidyColumn column) const
  {
    return _indices.at(static_cast<std::size_t>(column));
  }

  CsvRows _rows;
  std::vector<std::string> _names;  // of all columns of the file
  Columns _columns;
  std::array<std::optional<std::size_t>, tidyColumnCount> _indices;
  CsvNumbers _numbers;
};

}  // namespace KV::recordings
