#include "csv/csvnumbers.hpp"

#include <skeigiot/recordings/implausible.hpp>
#include <skeigiot/recordings/limits.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace KV::recordings
{
namespace
{
constexpr double greatestFrame = 1e15;  // up to here a double holds every whole number

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

bool isMissing(std::string_view field)
{
  return field.empty() || field == "NA" || field == "None" || field == "null";
}

}  // namespace

double CsvNumbers::number(std::size_t column) const
{
  const double value = _anyNumber(column);
  return std::abs(value) <= greatestMeasurement ? value : notANumber;
}

// A number that no double holds is infinite.
double CsvNumbers::_anyNumber(std::size_t column) const
{
  std::string_view field = text(column);
  if (isMissing(field))
    return notANumber;
  if (field.front() == '+')
    field.remove_prefix(1);
  double value = notANumber;
  const char* const end = field.data() + field.size();
  const auto result = std::from_chars(field.data(), end, value);
  if (result.ptr != end || result.ec == std::errc::invalid_argument)
    refuse(column, "a number");
  return result.ec == std::errc::result_out_of_range ? std::numeric_limits<double>::infinity() : value;
}

std::int64_t CsvNumbers::wholeNumber(std::size_t column, double least, double greatest) const
{
  const double value = number(column);
  if (!(value >= least && value <= greatest) || value != std::floor(value))
    refuse(column, "a whole number");
  return static_cast<std::int64_t>(value);
}

std::int64_t CsvNumbers::frameNumber(std::size_t column) const
{
  return wholeNumber(column, -greatestFrame, greatestFrame);
}

std::optional<double> CsvNumbers::timestamp(std::size_t column) const
{
  const double timestamp = _anyNumber(column);
  if (std::isnan(timestamp))
    return {};
  if (timestamp < earliestTimestamp || timestamp > latestTimestamp)
    throw BadLine({_rows.file().path(), _rows.file().lineNumber(), _names[column]},
                  "expected seconds, from the start of the recording or since 1970, found " + quote(text(column)) +
                      adviceOnSeconds(timestamp));
  return timestamp;
}

std::optional<double> CsvNumbers::timestampInMilliseconds(std::size_t column) const
{
  constexpr double millisecondsPerSecond = 1000.;
  const double timestamp = _anyNumber(column) / millisecondsPerSecond;
  if (std::isnan(timestamp))
    return {};
  if (timestamp < earliestTimestamp || timestamp > latestTimestamp)
    refuse(column, "milliseconds, from the start of the recording or since 1970");
  return timestamp;
}

void CsvNumbers::refuse(std::size_t column, const std::string& expected) const
{
  throw BadLine({_rows.file().path(), _rows.file().lineNumber(), _names[column]},
                "expected " + expected + ", found " + quote(text(column)));
}

void CsvNumbers::refuseOtherFieldCounts() const
{
  const std::size_t found = _rows.fields().size();
  const std::size_t expected = _names.size();
  if (found == expected)
    return;
  std::string message = std::to_string(found) + " fields, expected " + std::to_string(expected) + " as in the header";
  if (found < expected && !_rows.file().lineEnded())
    message += "; the last line is not complete: the file may be cut";
  throw BadLine({_rows.file().path(), _rows.file().lineNumber(), {}}, message);
}

}  // namespace KV::recordings
