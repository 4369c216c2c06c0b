#pragma once

#include <skeigiot/recordings/table.hpp>

#include <cstddef>
#include <streambuf>
#include <string>

namespace KV::recordings
{

/// The text of a CSV file that has these columns and rows, made row by row as it is read.
///
/// Numbers have as many digits as they need, none where there is NaN. The numbers must stay where they are.
class TableText : public std::streambuf
{
public:
  /// Begins with the header.
  explicit TableText(const Table& table);

  /// Returns the header alone.
  static std::string header(const Table& table);

  /// Returns which part of the rows was taken out, in [0, 1].
  double progress() const { return static_cast<double>(_row) / static_cast<double>(_table.rows); }

protected:
  int_type underflow() override;

private:
  const Table _table;
  std::size_t _row = 0;
  std::string _line;
};

}  // namespace KV::recordings
