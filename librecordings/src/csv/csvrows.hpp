#pragma once

#include <skeigiot/recordings/inputfile.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// Reads a file of comma-separated values row by row; every line is one row.
class CsvRows
{
public:
  /// Takes an opened file.
  ///
  /// \throws Error if it cannot be read.
  explicit CsvRows(InputFile input);
  CsvRows(const CsvRows&) = delete;  // the fields refer to it
  CsvRows& operator=(const CsvRows&) = delete;

  /// Reads the next line that is not empty; returns false at the end of the file.
  ///
  /// \throws BadLine if a quote is out of place or not closed, or the line is too long or has too many fields; the next
  /// call goes on after that line.
  /// \throws Error if the file cannot be read.
  bool next();

  /// Returns the fields of the row without the spaces around them; valid until the next call of next().
  const std::vector<std::string_view>& fields() const { return _fields; }

  const InputFile& file() const { return _file; }

private:
  // Split the line into _fields; false if a quote is out of place or not closed.
  bool _split(std::string_view line);
  void _add(std::string_view field);
  [[noreturn]] void _refuseSoManyFields() const;
  bool _splitQuoted(std::string_view line);

  // Adds the field that begins with a quote, and removes it and the blanks after it from `rest`; false as above.
  bool _addQuoted(std::string_view& rest);

  InputFile _file;
  std::string _unquoted;  // the fields of the row that had quotes, one after the other
  std::vector<std::string_view> _fields;
};

}  // namespace KV::recordings
