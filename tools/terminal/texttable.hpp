#pragma once

#include "terminal/terminal.hpp"

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace KV::tools
{

/// A table of text whose columns are as wide as their content.
class TextTable
{
public:
  struct Column
  {
    std::string header;
    bool isNumber = false;  ///< aligned to the right
    bool wraps = false;     ///< takes several lines if the table would be too wide; at most one column
  };
  using Cells = std::vector<std::string>;

  explicit TextTable(std::vector<Column> columns);

  /// Adds a row, whose cells may hold text from outside.
  ///
  /// \pre there is a cell for each column.
  void add(Cells cells);

  /// Returns the header and the rows, each with a line break, in lines of that width if wrapping the column is
  /// enough.
  std::string text(const Style& style, std::size_t width = std::numeric_limits<std::size_t>::max()) const;

private:
  std::vector<std::size_t> _widths(std::size_t width) const;
  std::string _lines(const Cells& cells, const std::vector<std::size_t>& widths) const;
  std::string _line(const Cells& cells, const std::vector<std::size_t>& widths) const;

  std::vector<Column> _columns;
  std::vector<Cells> _rows;
};

}  // namespace KV::tools
