#pragma once

#include "tidy/tidytable.hpp"

#include <skeigiot/recordings/table.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace KV::recordings
{

/// The part that both forms of frames share; derived classes know the columns of a row's fields.
class FrameTable : public TidyTable
{
public:
  bool has(TidyColumn column) const override;
  std::string text(TidyColumn column) const override;
  double number(TidyColumn column) const override;
  std::int64_t wholeNumber(TidyColumn column, double least, double greatest) const override;
  double seconds(TidyColumn column) const override;
  std::optional<ko::SystemClock::time_point> moment() const override;
  Error::Place placeOf(TidyColumn column) const override;
  Error::Place place() const override;
  const Columns& columns() const override { return _columns; }
  const char* kind() const override { return "Frame"; }
  double progress() const override;

protected:
  /// \throws Error if the frame has no times.
  explicit FrameTable(const Table& frame);

  /// Returns the column that holds the field; null if the frame has no such column.
  virtual const TableColumn* field(TidyColumn column) const = 0;

  /// Returns the frame's name for the field, there or not.
  virtual std::string nameOfField(TidyColumn column) const = 0;

  const std::vector<TableColumn>& frameColumns() const { return _frame.columns; }

  /// Records whether the column is read.
  void note(const TableColumn& column, bool isRead);

  bool isFilled(const TableColumn& column) const;
  bool isAtEnd() const { return _row == _frame.rows; }
  void nextRow() { ++_row; }

private:
  double _anyNumber(TidyColumn column) const;

  const Table _frame;
  Columns _columns;
  std::size_t _row = 0;
};

}  // namespace KV::recordings
