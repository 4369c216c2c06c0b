#pragma once

#include "frametable.hpp"

#include <array>
#include <cstddef>
#include <string>

namespace binding
{

/// A frame with one reading in each row, as tidy CSV has them.
class LongFrame : public FrameTable
{
public:
  /// \throws Error if the frame has no times.
  explicit LongFrame(const Frame& frame) : FrameTable(frame)
  {
    for (const FrameColumn& column : frameColumns())
    {
      const auto known = KV::recordings::tidyColumnNamed(column.name);
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

  bool hasColumn(KV::recordings::TidyColumn column) const override { return field(column) != nullptr; }

protected:
  const FrameColumn* field(KV::recordings::TidyColumn column) const override
  {
    return _fields.at(static_cast<std::size_t>(column));
  }
  std::string nameOfField(KV::recordings::TidyColumn column) const override { return KV::recordings::nameOf(column); }

private:
  std::array<const FrameColumn*, KV::recordings::tidyColumnCount> _fields{};
  bool _begun = false;
};

}  // namespace binding
