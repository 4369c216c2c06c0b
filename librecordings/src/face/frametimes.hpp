#pragma once

#include <ko/systemclock.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// One frame of a video with its number in the file.
struct Frame
{
  std::int64_t number = 0;
  std::optional<double> timestamp;  ///< [s]

  bool operator==(const Frame& other) const { return number == other.number && timestamp == other.timestamp; }
  bool operator!=(const Frame& other) const { return !(*this == other); }
};

/// The frame rate of a video that has no time stamps and whose rate the user did not give.
struct AssumedRate
{
  double framesPerSecond = 30.0;
  std::string reason = "since there are no time stamps";
  std::string warning = "there are no time stamps: 30 frames/s are assumed";  ///< empty if the rate is not doubtful
  std::string advice = "give the rate of the video";                          ///< continues "if it was another"
};

/// Computes when the frames of a video were taken: by the rate that the user gives, else by the file's timestamps, else
/// by an assumed rate.
///
/// Timestamps that count from the start of the video count from 2020-01-01T00:00:00Z on instead: on a clock that shows
/// 1970, sources that were never seen would look young.
class FrameTimes
{
public:
  /// Decides by the first frames of the file, at least one. A warning advises to give the rate; users give it by
  /// `rateName`.
  FrameTimes(std::optional<double> givenRate, const std::vector<Frame>& firstFrames,
             const AssumedRate& assumedRate = {}, const std::string& rateName = {});

  /// Returns the time of the frame; nothing if it counts by timestamps and the frame has none, or if it lies beyond the
  /// times that the clock can show.
  std::optional<ko::SystemClock::time_point> timeOf(const Frame& frame) const;

  /// Returns how many frames there would usually be between these two frames.
  ///
  /// That is 0 where the numbers jump and the times do not.
  std::int64_t missingBetween(const Frame& earlier, const Frame& later) const;

  /// Returns whether the times in the file count since 1970.
  bool areDated() const { return _timestampOrigin == 0.0; }

  /// Returns whether the frames have timestamps, which count from the start of the recording.
  bool countFromStart() const;

  /// Returns whether a rate is assumed, since the first frames have no timestamps.
  bool areAssumed() const { return _source == Source::AssumedRate; }

  /// Describes the rate and the source of the times.
  const std::string& description() const { return _description; }

  /// Returns a warning if the times are doubtful, else an empty text.
  const std::string& warning() const { return _warning; }

private:
  enum class Source
  {
    GivenRate,
    Timestamps,
    AssumedRate
  };

  std::optional<double> _secondsOf(const Frame& frame) const;
  void _describe(const AssumedRate& assumedRate, const std::string& rateName);

  Source _source;
  double _framesPerSecond = 0.0;  // of frame numbers; 0 if unknown
  std::int64_t _usualStep = 1;    // between the numbers of consecutive frames
  std::int64_t _firstNumber = 0;  // for the rates
  double _timestampOrigin = 0.0;  // [s] since 1970
  std::string _description;
  std::string _warning;
};

}  // namespace KV::recordings
