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

/// Tells whether a text stands for no value.
bool isEmptyField(std::string_view field);

/// A table with one reading in each row, wherever it comes from. Columns of it stand for the fields of the row that it
/// stands on.
class TidyTable
{
public:
  TidyTable() = default;
  TidyTable(const TidyTable&) = delete;
  TidyTable& operator=(const TidyTable&) = delete;
  virtual ~TidyTable() = default;

  /// Goes on to the next row; returns false behind the last one.
  ///
  /// \throws BadLine for a row that is none; the next call goes on behind it.
  /// \throws Error if the rest cannot be read.
  virtual bool next() = 0;

  virtual bool hasColumn(TidyColumn column) const = 0;

  /// Tells whether the field is there, and filled.
  virtual bool has(TidyColumn column) const = 0;

  /// These return what is in a field that has() is true of.
  ///
  /// \throws BadLine if it is something else.
  /// @{
  virtual std::string text(TidyColumn column) const = 0;
  virtual double number(TidyColumn column) const = 0;
  virtual std::int64_t wholeNumber(TidyColumn column, double least, double greatest) const = 0;
  /// [s] since the start or since 1970
  virtual double seconds(TidyColumn column) const = 0;
  /// @}

  /// Returns the time of the row, where the table knows it better than by seconds.
  virtual std::optional<ko::SystemClock::time_point> moment() const { return {}; }

  /// Returns the row, and what it calls the field, for messages.
  virtual Error::Place placeOf(TidyColumn column) const = 0;

  /// Returns the row for messages.
  virtual Error::Place place() const = 0;

  /// \throws BadLine always: the message is about this field.
  [[noreturn]] void refuse(TidyColumn column, const std::string& message) const;

  /// \throws BadLine always: says what was expected in this field, and what is there.
  [[noreturn]] void refuseValue(TidyColumn column, const std::string& expected) const;

  /// Returns which columns are read.
  virtual const Columns& columns() const = 0;

  /// Says what it is, for descriptions.
  virtual const char* kind() const = 0;

  /// Returns how far the table was read, in [0, 1].
  virtual double progress() const = 0;
};

}  // namespace KV::recordings
