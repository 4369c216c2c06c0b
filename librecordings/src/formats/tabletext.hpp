#pragma once

#include <skeigiot/recordings/table.hpp>

#include <cstddef>
#include <streambuf>
#include <string>

namespace KV::recordings
{

/// The text of a CSV file with these columns and rows, made row by row while it is read.
///
/// Numbers have as many digits as they need; the field of a NaN is empty. The numbers must not move in memory.
class TableText : public std::streambuf
{
public:
  /// Begins with the header.
  explicit TableText(const Table& table);

  /// Returns the header alone.
  static std::string header(const Table& table);

  /// Returns which part of the rows was returned, in [0, 1].
  double progress() const { return static_cast<double>(_row) / static_cast<double>(_table.rows); }

protected:
  int_type underflow() override;

private:
  const Table _table;
  std::size_t _row = 0;
  std::string _line;
};

}  // namespace KV::recordings
