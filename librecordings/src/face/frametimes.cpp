#include "face/frametimes.hpp"

#include "face/settingname.hpp"
#include "recording/recordingclock.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <sstream>

namespace KV::recordings
{
namespace
{
constexpr double leastUsualRate = 0.1;       // [frames/s]
constexpr double greatestUsualRate = 120.0;  // [frames/s]

bool haveTimestamps(const std::vector<Frame>& frames)
{
  return std::any_of(frames.begin(), frames.end(),
                     [](const Frame& frame) { return frame.timestamp && *frame.timestamp != 0.0; });
}

// The median of the steps between frame numbers, the lower of two; 1 without a step.
std::int64_t usualStep(const std::vector<Frame>& frames)
{
  std::vector<std::int64_t> steps;
  for (std::size_t i = 1; i < frames.size(); ++i)
    if (frames[i].number > frames[i - 1].number)
      steps.push_back(frames[i].number - frames[i - 1].number);
  if (steps.empty())
    return 1;
  const auto middle = steps.begin() + static_cast<std::ptrdiff_t>((steps.size() - 1) / 2);
  std::nth_element(steps.begin(), middle, steps.end());
  return *middle;
}

// Frame numbers per second by the first and last timestamp; 0 if there are no two.
double rateOf(const std::vector<Frame>& frames)
{
  const auto hasTimestamp = [](const Frame& frame) { return frame.timestamp.has_value(); };
  const auto first = std::find_if(frames.begin(), frames.end(), hasTimestamp);
  const auto last = std::find_if(frames.rbegin(), frames.rend(), hasTimestamp);
  if (first == frames.end() || last->number <= first->number || *last->timestamp <= *first->timestamp)
    return 0.0;
  return static_cast<double>(last->number - first->number) / (*last->timestamp - *first->timestamp);
}

std::string rounded(double rate)
{
  std::ostringstream text;
  text << std::setprecision(4) << rate;
  return text.str();
}

}  // namespace

FrameTimes::FrameTimes(std::optional<double> givenRate, const std::vector<Frame>& firstFrames,
                       const AssumedRate& assumedRate, const std::string& rateName)
  : _source(givenRate                     ? Source::GivenRate
            : haveTimestamps(firstFrames) ? Source::Timestamps
                                          : Source::AssumedRate),
    _usualStep(usualStep(firstFrames)),
    _firstNumber(firstFrames.front().number)
{
  if (_source == Source::Timestamps)
  {
    _framesPerSecond = rateOf(firstFrames);
    const auto first = std::find_if(firstFrames.begin(), firstFrames.end(),
                                    [](const Frame& frame) { return frame.timestamp.has_value(); });
    _timestampOrigin = *first->timestamp > earliestEpochTimestamp ? 0.0 : recordingEpoch;
  }
  else
  {
    _framesPerSecond = givenRate.value_or(assumedRate.framesPerSecond);
    _timestampOrigin = recordingEpoch;
  }
  _describe(assumedRate, rateName);
}

std::optional<ko::SystemClock::time_point> FrameTimes::timeOf(const Frame& frame) const
{
  const auto seconds = _secondsOf(frame);
  if (!seconds || !(std::abs(_timestampOrigin + *seconds) <= greatestSecond))
    return {};
  return timeAfter(_timestampOrigin, *seconds);
}

std::int64_t FrameTimes::missingBetween(const Frame& earlier, const Frame& later) const
{
  const auto begin = _secondsOf(earlier);
  const auto end = _secondsOf(later);
  const std::int64_t missing = (later.number - earlier.number) / _usualStep - 1;
  if (missing <= 0 || !begin || !end)
    return 0;
  const double expectedSeconds = static_cast<double>(later.number - earlier.number) / _framesPerSecond;
  const bool timesJumpToo = *end - *begin > expectedSeconds / 2.0;
  return timesJumpToo ? missing : 0;
}

bool FrameTimes::countFromStart() const
{
  return _source == Source::Timestamps && _timestampOrigin > 0.0;
}

std::optional<double> FrameTimes::_secondsOf(const Frame& frame) const
{
  if (_source == Source::Timestamps)
    return frame.timestamp;
  return static_cast<double>(frame.number - _firstNumber) / _framesPerSecond;
}

void FrameTimes::_describe(const AssumedRate& assumedRate, const std::string& rateName)
{
  const std::string step = _usualStep > 1 ? " (every frame number counts " + std::to_string(_usualStep) + ")" : "";
  const double cyclesPerSecond = _framesPerSecond / static_cast<double>(_usualStep);
  const std::string rate = (_framesPerSecond > 0.0 ? rounded(cyclesPerSecond) : "unknown") + " frames/s";
  switch (_source)
  {
    case Source::GivenRate:
      _description = rounded(_framesPerSecond) + " frames/s as given, instead of time stamps";
      break;
    case Source::Timestamps:
      _description = rate + " by the time stamps";
      if (_framesPerSecond > 0.0 && (cyclesPerSecond > greatestUsualRate || cyclesPerSecond < leastUsualRate))
        _warning = "the rate by the time stamps is " + rate + ", and is used as it is; give the rate of the video" +
                   settingName(rateName) + " if it was another";
      break;
    case Source::AssumedRate:
      _description = rounded(_framesPerSecond) + " frames/s assumed, " + assumedRate.reason;
      if (!assumedRate.warning.empty())
        _warning = assumedRate.warning + "; " + assumedRate.advice + settingName(rateName) + " if it was another";
      break;
  }
}

}  // namespace KV::recordings
