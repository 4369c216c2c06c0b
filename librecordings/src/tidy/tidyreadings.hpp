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

/// What a reading consists of.
struct TidyReading
{
  std::vector<TidyColumn> needed;
  std::vector<TidyColumn> optional;  ///< besides the confidence, which any may have
  bool ofPerson = true;              ///< false: about the room or a scope
};

/// Returns the reading with this name, if there is one.
std::optional<TidyReading> tidyReadingNamed(const std::string& name);

/// Returns the names of all readings.
std::vector<std::string> tidyReadingNames();

/// Where the row of a table belongs.
struct TidyRow
{
  double seconds = 0.;                                ///< from the start or since 1970, as the table counts
  std::optional<ko::SystemClock::time_point> moment;  ///< the time, if the table has it; then the seconds are none
  std::string reading;                                ///< its name
  std::optional<std::string> person;  ///< number or name of whose it is; nobody's if it is about the room or a scope
};

/// Reads where the row belongs that the table stands on.
///
/// \throws BadLine if there is no time, no person or no such reading.
TidyRow readTidyRow(const TidyTable& table);

/// Adds what the row says of the reading `name` to its step; returns false if the fields that the reading needs are all
/// empty: it is unknown.
///
/// \throws BadLine if one of these fields is missing, holds something else than wanted, or a field is filled that the
///   reading does not have. The step is as it was then.
bool addTidyReading(const TidyTable& table, const std::string& name, Step& step);

}  // namespace KV::recordings
