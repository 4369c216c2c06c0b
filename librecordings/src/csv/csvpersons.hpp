#pragma once

#include "csv/csvheader.hpp"
#include "csv/csvnumbers.hpp"
#include "csv/personnames.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace KV::recordings
{

/// Finds the person of each row: in the column that the user chose, else in the format's own; without either, all rows
/// are of person 0.
class CsvPersons
{
public:
  /// `chosenColumn` is empty if the user chose no column, `ownColumn` if the format has no column; the format's own
  /// holds whole numbers only.
  ///
  /// \throws Error if the chosen column is not there.
  CsvPersons(const CsvHeader& header, const std::string& chosenColumn, const std::string& ownColumn);

  /// Returns the person of the row.
  ///
  /// \throws BadLine if the field names no person.
  std::int32_t personOf(const CsvNumbers& numbers, const Error::Place& row);

  bool haveColumn() const { return _column.has_value(); }

  /// Returns the name of the column; empty without a column.
  std::string column() const { return _column ? _name : std::string(); }

  /// Describes how persons are distinguished.
  std::string description() const;

  /// Returns the name of the person with this number, in UTF-8; empty if there are no names.
  std::string nameOf(std::int32_t person) const { return _names.nameOf(person); }

private:
  bool _isChosen;
  std::string _name;
  std::optional<std::size_t> _column;
  PersonNames _names;
};

}  // namespace KV::recordings
