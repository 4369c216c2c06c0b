#pragma once

#include "frame.hpp"
#include "tidytable.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace binding
{

/// What both forms of frames have in common: where the fields of a row are is for them to say.
class FrameTable : public tools::TidyTable
{
public:
  bool has(tools::TidyColumn column) const override;
  std::string text(tools::TidyColumn column) const override;
  double number(tools::TidyColumn column) const override;
  std::int64_t wholeNumber(tools::TidyColumn column, double least, double greatest) const override;
  double seconds(tools::TidyColumn column) const override;
  std::optional<ko::SystemClock::time_point> moment() const override;
  tools::RecordingError::Place placeOf(tools::TidyColumn column) const override;
  tools::RecordingError::Place place() const override;
  const tools::RecordingColumns& columns() const override { return _columns; }
  const char* kind() const override { return "Frame"; }
  double progress() const override;

protected:
  /// \throws RecordingError if the frame has no times.
  explicit FrameTable(const Frame& frame);

  /// Returns the column that holds the field; null if there is none.
  virtual const FrameColumn* field(tools::TidyColumn column) const = 0;

  /// Returns what the frame calls the field, there or not.
  virtual std::string nameOfField(tools::TidyColumn column) const = 0;

  const std::vector<FrameColumn>& frameColumns() const { return _frame.columns; }

  /// Notes whether the column is read.
  void note(const FrameColumn& column, bool isRead);

  bool isFilled(const FrameColumn& column) const;
  bool isAtEnd() const { return _row == _frame.rows; }
  void nextRow() { ++_row; }

private:
  const Frame _frame;
  tools::RecordingColumns _columns;
  std::size_t _row = 0;
};

}  // namespace binding
