#pragma once

#include <skeigiot/recordings/recording.hpp>
#include "tidy/tidytable.hpp"

#include <ko/systemclock.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The definition of a reading.
struct TidyReading
{
  std::vector<TidyColumn> needed;
  std::vector<TidyColumn> optional;  ///< besides the confidence, which every reading may have
  bool ofPerson = true;              ///< false: about the room or a scope
};

/// Returns the reading with this name, if there is one.
std::optional<TidyReading> tidyReadingNamed(const std::string& name);

/// Returns the names of all readings.
std::vector<std::string> tidyReadingNames();

/// The place to which the row of a table belongs.
struct TidyRow
{
  double seconds = 0.;                                ///< from the start or since 1970, as the table counts
  std::optional<ko::SystemClock::time_point> moment;  ///< the time, if the table has it; then the seconds are not set
  std::string reading;                                ///< its name
  std::optional<std::string> person;  ///< number or name of the person; empty for readings of the room or a scope
};

/// Reads the place of the table's present row.
///
/// \throws BadLine if there is no time, no person or no such reading.
TidyRow readTidyRow(const TidyTable& table);

/// Adds the fields of the reading `name` to its step; returns false if the fields that the reading needs are all empty:
/// then it is unknown.
///
/// \throws BadLine if one of these fields is missing, holds a wrong value, or a field is filled that the reading does
/// not have. The step is then unchanged.
bool addTidyReading(const TidyTable& table, const std::string& name, Step& step);

}  // namespace KV::recordings
