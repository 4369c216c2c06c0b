#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/reader.hpp>
#include <skeigiot/recordings/readingoptions.hpp>
#include <skeigiot/recordings/tablecolumn.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KV::recordings
{

/// A recording as a table in memory, such as a data frame: columns of one length.
///
/// With a column "reading" it has one reading in each row, as tidy CSV has. Otherwise it has a column for each value:
/// "gaze.yaw" is the field yaw of the reading gaze, and "smile" the value of the reading smile. Then all readings of a
/// row become rows; a row about a person without a reading says that the person was seen.
struct SKEIGIOT_API Table
{
  std::string name;                       ///< for messages
  std::size_t rows = 0;                   ///< how many rows each column has
  std::vector<TableColumn> columns;       ///< in any order
  const std::int64_t* moments = nullptr;  ///< [ns] since 1970; the caller keeps them alive; instead of a column
                                          ///< "time" in seconds
};

/// Opens a table; the numbers that it points to must stay as they are for as long as it is read.
///
/// \throws Error if there is no row, no time or no reading.
SKEIGIOT_API std::unique_ptr<Reader> openTable(const Table& table);

/// Opens a table of readings, or one with the columns of a front end's CSV file: what a program got that has read one.
///
/// A table with times and at least one reading is a table of readings, whatever the format.
///
/// \param format  name of the format; empty to detect it by the names of the columns.
/// \throws Error if there is no row, no time or no reading, or the format is not one of tables. Errors name rows,
/// counted
///   from 0.
SKEIGIOT_API std::unique_ptr<Reader> openTable(const Table& table, const std::string& format,
                                               const ReadingOptions& options);

/// Returns the names of all columns that a table of readings may have, besides "time" and "person".
SKEIGIOT_API std::vector<std::string> tableColumns();

}  // namespace KV::recordings
