#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <ko/systemclock.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace KV::recordings
{

/// The columns that a table of single readings may have.
enum class TidyColumn : std::size_t
{
  Time,
  Person,
  Reading,
  Value,
  Confidence,
  Yaw,
  Pitch,
  Roll,
  Valence,
  Lifetime,
  X,
  Y,
  Samples
};

constexpr std::size_t tidyColumnCount = 13;

const char* nameOf(TidyColumn column);

/// Returns the column with this name, if there is one.
std::optional<TidyColumn> tidyColumnNamed(std::string_view name);

/// Returns whether a text means a missing value.
bool isEmptyField(std::string_view field);

/// A table with one reading in each row, from any source. Its columns have the fields of its present
/// row.
class TidyTable
{
public:
  TidyTable() = default;
  TidyTable(const TidyTable&) = delete;
  TidyTable& operator=(const TidyTable&) = delete;
  virtual ~TidyTable() = default;

  /// Advances to the next row; returns false after the last one.
  ///
  /// \throws BadLine for a row that cannot be used; the next call goes on after it.
  /// \throws Error if the rest cannot be read.
  virtual bool next() = 0;

  virtual bool hasColumn(TidyColumn column) const = 0;

  /// Returns whether the field is there, and filled.
  virtual bool has(TidyColumn column) const = 0;

  /// These return the content of a field for which has() is true.
  ///
  /// \throws BadLine if the content is of another kind.
  /// @{
  virtual std::string text(TidyColumn column) const = 0;
  virtual double number(TidyColumn column) const = 0;
  virtual std::int64_t wholeNumber(TidyColumn column, double least, double greatest) const = 0;
  /// [s] since the start or since 1970
  virtual double seconds(TidyColumn column) const = 0;
  /// @}

  /// Returns the time of the row, if the table knows it more exactly than by seconds.
  virtual std::optional<ko::SystemClock::time_point> moment() const { return {}; }

  /// Returns the row and the table's name for the field, for messages.
  virtual Error::Place placeOf(TidyColumn column) const = 0;

  /// Returns the row for messages.
  virtual Error::Place place() const = 0;

  /// \throws BadLine always: the message is about this field.
  [[noreturn]] void refuse(TidyColumn column, const std::string& message) const;

  /// \throws BadLine always: names the value that was expected in this field, and the one that is there.
  [[noreturn]] void refuseValue(TidyColumn column, const std::string& expected) const;

  /// Returns which columns are read.
  virtual const Columns& columns() const = 0;

  /// Describes the kind of table, for descriptions.
  virtual const char* kind() const = 0;

  /// Returns how much of the table was read, in [0, 1].
  virtual double progress() const = 0;
};

}  // namespace KV::recordings
