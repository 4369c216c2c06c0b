#pragma once

#include "tidy/frametable.hpp"

#include <array>
#include <cstddef>
#include <string>

namespace KV::recordings
{

/// A frame with one reading in each row, as tidy CSV has them.
class LongFrame : public FrameTable
{
public:
  /// \throws Error if the frame has no times.
  explicit LongFrame(const Table& frame) : FrameTable(frame)
  {
    for (const TableColumn& column : frameColumns())
    {
      const auto known = tidyColumnNamed(column.name);
      if (known)
        _fields.at(static_cast<std::size_t>(*known)) = &column;
      note(column, known.has_value());
    }
  }

  bool next() override
  {
    if (_begun)
      nextRow();
    _begun = true;
    return !isAtEnd();
  }

  bool hasColumn(TidyColumn column) const override { return field(column) != nullptr; }

protected:
  const TableColumn* field(TidyColumn column) const override { return _fields.at(static_cast<std::size_t>(column)); }
  std::string nameOfField(TidyColumn column) const override { return nameOf(column); }

private:
  std::array<const TableColumn*, tidyColumnCount> _fields{};
  bool _begun = false;
};

}  // namespace KV::recordings
