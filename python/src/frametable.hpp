#pragma once

#include "frame.hpp"

#include <skeigiot/recordings/tidytable.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace binding
{

/// What both forms of frames have in common: where the fields of a row are is for them to say.
class FrameTable : public KV::recordings::TidyTable
{
public:
  bool has(KV::recordings::TidyColumn column) const override;
  std::string text(KV::recordings::TidyColumn column) const override;
  double number(KV::recordings::TidyColumn column) const override;
  std::int64_t wholeNumber(KV::recordings::TidyColumn column, double least, double greatest) const override;
  double seconds(KV::recordings::TidyColumn column) const override;
  std::optional<ko::SystemClock::time_point> moment() const override;
  KV::recordings::Error::Place placeOf(KV::recordings::TidyColumn column) const override;
  KV::recordings::Error::Place place() const override;
  const KV::recordings::Columns& columns() const override { return _columns; }
  const char* kind() const override { return "Frame"; }
  double progress() const override;

protected:
  /// \throws Error if the frame has no times.
  explicit FrameTable(const Frame& frame);

  /// Returns the column that holds the field; null if there is none.
  virtual const FrameColumn* field(KV::recordings::TidyColumn column) const = 0;

  /// Returns what the frame calls the field, there or not.
  virtual std::string nameOfField(KV::recordings::TidyColumn column) const = 0;

  const std::vector<FrameColumn>& frameColumns() const { return _frame.columns; }

  /// Notes whether the column is read.
  void note(const FrameColumn& column, bool isRead);

  bool isFilled(const FrameColumn& column) const;
  bool isAtEnd() const { return _row == _frame.rows; }
  void nextRow() { ++_row; }

private:
  const Frame _frame;
  KV::recordings::Columns _columns;
  std::size_t _row = 0;
};

}  // namespace binding
