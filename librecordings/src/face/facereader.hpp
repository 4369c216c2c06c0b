#pragma once

#include "face/facerows.hpp"
#include "face/facescorecheck.hpp"
#include "face/frametimes.hpp"
#include "face/personsinview.hpp"
#include "face/restingfaces.hpp"
#include "recording/lookahead.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Reads the file of a face analyser.
///
/// The rows of one frame are one cycle. A person who was seen before, and is not tracked in a cycle, gets an entry that
/// says so, after the entries of tracked persons. Frames that are missing in the file are cycles in which nobody was
/// seen. Both kinds of entries end after PersonsInView::longestAbsence cycles.
class FaceReader : public Reader
{
public:
  /// Looks at the first rows of the file.
  ///
  /// \throws Error if there is no row.
  FaceReader(std::unique_ptr<FaceRows> rows, const ReadingOptions& options);

  boost::optional<Step> next() override;
  std::vector<std::string> describe() const override;
  std::vector<std::string> describeLearned() const override { return _resting.describe(); }
  std::vector<std::string> takeWarnings() override;
  bool isDated() const override { return _times.areDated(); }
  Columns columns() const override { return _rows->columns(); }
  double progress() const override { return _rows->progress(); }

private:
  std::vector<Frame> _lookAhead();
  bool _fetchRow();
  ko::SystemClock::time_point _timeOf(const FaceRow& row) const;
  void _warnOfLateTimestamps(const FaceRow& row);
  bool _opensCycle(const FaceRow& row) const;
  void _endCycle();
  void _beginMissingFrame();
  Step _stepOfMissingPerson();
  boost::optional<Step> _stepOfRow();
  void _finish();

  [[noreturn]] void _refuse(const FaceRow& row, const std::string& column, const std::string& message) const;

  std::unique_ptr<FaceRows> _rows;
  LookAhead<FaceRow> _ahead;
  FrameTimes _times;
  std::string _rateName;  // for warnings
  FaceScoreCheck _scores;
  PersonsInView _persons;
  RestingFaces _resting;
  std::vector<std::string> _warnings;
  bool _warnedOfTimestamps = false;
  bool _anyTracked = false;
  bool _finished = false;

  std::optional<FaceRow> _row;  // the next one, and its time
  ko::SystemClock::time_point _rowTime;

  std::optional<Frame> _frame;  // of the last cycle
  ko::SystemClock::time_point _frameTime;
  bool _cycleIsOpen = false;

  std::deque<std::int32_t> _missingPersons;  // not reported yet, at _missingTime
  ko::SystemClock::time_point _missingTime;
  std::int64_t _missingFrames = 0;  // before the next row
  std::int64_t _missingFramesReported = 0;
};

}  // namespace KV::recordings
