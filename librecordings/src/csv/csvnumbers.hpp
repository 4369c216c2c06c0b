#pragma once

#include "csv/csvheader.hpp"
#include "csv/csvrows.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The fields of the present row of a file, as numbers.
class CsvNumbers
{
public:
  /// `names` are the names of the columns, for messages.
  CsvNumbers(const CsvRows& rows, const std::vector<std::string>& names) : _rows(rows), _names(names) {}

  /// Returns the number in this column; NaN if the field is empty, holds a word for "no number", or a number that no
  /// sensor measures.
  ///
  /// \throws BadLine if the field holds something else.
  double number(std::size_t column) const;

  /// Returns the numbers in these columns, each as above; nothing if the table does not have the columns.
  ///
  /// \throws BadLine if a field holds something else than a number.
  template <std::size_t Count>
  std::optional<std::array<double, Count>> all(const ColumnGroup<Count>& columns) const
  {
    if (!columns)
      return {};
    std::array<double, Count> values{};
    for (std::size_t i = 0; i < Count; ++i)
      values.at(i) = number((*columns)[i]);
    return values;
  }

  /// Returns the whole number in this column, which may be written with a fraction of 0.
  ///
  /// \throws BadLine if the field has no whole number, or one out of the range.
  std::int64_t wholeNumber(std::size_t column, double least, double greatest) const;

  /// Returns the number of a frame.
  ///
  /// \throws BadLine if the field has no such number.
  std::int64_t frameNumber(std::size_t column) const;

  /// Returns the seconds in this column, or nothing if the field is empty or NaN.
  ///
  /// \throws BadLine if they are beyond the times that a clock can show.
  std::optional<double> timestamp(std::size_t column) const;

  /// As above; the column holds milliseconds.
  std::optional<double> timestampInMilliseconds(std::size_t column) const;

  std::string_view text(std::size_t column) const { return _rows.fields()[column]; }

  /// \throws BadLine always, with the value that was expected in this column, and the one that is there.
  [[noreturn]] void refuse(std::size_t column, const std::string& expected) const;

  /// \throws BadLine if the row has another number of fields than the header.
  void refuseOtherFieldCounts() const;

private:
  double _anyNumber(std::size_t column) const;

  const CsvRows& _rows;
  const std::vector<std::string>& _names;
};

}  // namespace KV::recordings
