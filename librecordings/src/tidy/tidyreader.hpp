#pragma once

#include "csv/personnames.hpp"
#include "tidy/tidyreadings.hpp"
#include "tidy/tidytable.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <ko/systemclock.hpp>

#include <cstdint>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Reads a table with one reading in each row, see docs/recording-format.md.
///
/// The rows of one time and person are one step; scopes start before the first step of a time and stop after the last.
class TidyReader : public Reader
{
public:
  /// Reads the first row.
  ///
  /// \throws Error if it cannot be read, or has no row.
  explicit TidyReader(std::unique_ptr<TidyTable> table);

  boost::optional<Step> next() override;
  std::vector<std::string> describe() const override;
  std::vector<std::string> takeWarnings() override;
  bool isDated() const override { return _hasMoments || _origin == 0.; }
  Columns columns() const override { return _table->columns(); }
  double progress() const override { return _table->progress(); }

private:
  /// The readings in the rows of one time and person.
  struct StepInMaking
  {
    Step entry;
    std::set<std::string> readings;
  };

  std::string _describeTimes() const;
  void _fetchRow();
  ko::SystemClock::time_point _timeOf(const TidyRow& row);
  void _takeRow();
  std::optional<std::int32_t> _personOf(const TidyRow& row);
  StepInMaking _stepOf(const std::optional<std::int32_t>& person) const;
  void _endTime();

  std::unique_ptr<TidyTable> _table;
  PersonNames _persons;
  std::optional<double> _origin;  // [s] since 1970, to which the times are added; decided by the first row
  bool _hasMoments = false;       // instead of seconds
  std::optional<TidyRow> _row;    // read, and not used yet
  ko::SystemClock::time_point _rowTime;
  ko::SystemClock::time_point _time;            // of the steps below, and the latest so far
  bool _anyRow = false;                         // whose time is known
  bool _anyTime = false;                        // there are rows of that time
  StepInMaking _room;                           // readings about no person
  std::map<std::int32_t, StepInMaking> _steps;  // by person
  std::deque<Step> _ready;
  std::exception_ptr _firstError;  // of the first row
  bool _ended = false;
  std::vector<std::string> _warnings;
};

}  // namespace KV::recordings
