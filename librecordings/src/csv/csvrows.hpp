#pragma once

#include <skeigiot/recordings/inputfile.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// Reads a file of comma-separated values row by row; every line is one row.
class CsvRows
{
public:
  /// Opens the file.
  ///
  /// \throws Error if it cannot be opened.
  explicit CsvRows(const std::string& path);
  ~CsvRows();
  CsvRows(const CsvRows&) = delete;
  CsvRows& operator=(const CsvRows&) = delete;

  /// Reads the next line that is not empty; returns false at the end of the file.
  ///
  /// \throws BadLine if a quote is out of place or not closed, or the line is too long; the next call goes on behind
  /// it. \throws Error if the file cannot be read.
  bool next();

  /// Returns the fields of the row without the spaces around them; valid until the next call of next().
  const std::vector<std::string_view>& fields() const { return _fields; }

  const InputFile& file() const { return _file; }

private:
  class Parser;

  InputFile _file;
  std::unique_ptr<Parser> _parser;
  std::vector<std::string_view> _fields;
};

}  // namespace KV::recordings
