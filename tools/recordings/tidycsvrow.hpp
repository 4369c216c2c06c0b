#pragma once

#include "csvrows.hpp"
#include "recording.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tools
{

/// The columns that a tidy CSV file may have.
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

/// Where a tidy CSV file has its columns.
struct TidyColumns
{
  std::vector<std::string> names;  ///< of all columns of the file
  RecordingColumns all;
  std::array<std::optional<std::size_t>, tidyColumnCount> indices;

  const std::optional<std::size_t>& operator[](TidyColumn column) const
  {
    return indices.at(static_cast<std::size_t>(column));
  }
};

/// Tells from the first bytes of a file whether it is a table with the columns time and reading.
bool looksLikeTidyCsv(const std::string& head);

const char* nameOf(TidyColumn column);

/// Finds the columns in the header of a file.
///
/// \throws RecordingError if there is no time or no reading, a column is there twice, or no commas separate them.
TidyColumns findTidyColumns(const std::vector<std::string_view>& header, const std::string& file, std::size_t line);

/// Where the row that `rows` stands on belongs.
struct TidyRow
{
  double seconds = 0.;                 ///< from the start or since 1970, as the file counts
  std::string reading;                 ///< its name
  std::optional<std::int32_t> person;  ///< whose reading it is; nobody's if it is about the room or a scope
};

/// Reads where the row belongs.
///
/// \throws BadLine if the number of fields is not that of the header, time or person is none, or there is no such
///   reading.
TidyRow readTidyRow(const CsvRows& rows, const TidyColumns& columns);

/// Adds what the row says of the reading `name` to its step; returns false if the fields that the reading needs are all
/// empty: it is unknown.
///
/// \throws BadLine if one of these fields is missing, holds something else than wanted, or a field is filled that the
///   reading does not have. The step is as it was then.
bool addTidyReading(const CsvRows& rows, const TidyColumns& columns, const std::string& name, RecordingEntry& step);

}  // namespace tools
