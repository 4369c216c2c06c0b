#include "face/frametimes.hpp"
#include "librecordings/support.hpp"

namespace
{
using KV::recordings::Frame;
using KV::recordings::FrameTimes;

constexpr std::int64_t second = 1000000000;  // [ns]

// Numbers from `first` on, `step` apart, with timestamps of this rate.
std::vector<Frame> framesAt(double rate, std::int64_t first = 1, std::int64_t step = 1)
{
  std::vector<Frame> frames(50);
  for (std::size_t i = 0; i < frames.size(); ++i)
    frames[i] = {first + static_cast<std::int64_t>(i) * step, static_cast<double>(i) / rate};
  return frames;
}

std::int64_t nanosecondsOf(const FrameTimes& times, const Frame& frame)
{
  return support::nanosecondsOf(times.timeOf(frame).value());
}

TEST(FrameTimes, TakeTheTimeStamps)
{
  const FrameTimes times({}, framesAt(25.0));
  EXPECT_EQ(support::recordingEpoch, nanosecondsOf(times, {1, 0.0}));
  EXPECT_EQ(support::recordingEpoch + 40000000, nanosecondsOf(times, {2, 0.04}));
  EXPECT_EQ(support::recordingEpoch + 319 * second + 960000000, nanosecondsOf(times, {8000, 319.96}));
  EXPECT_EQ("25 frames/s by the time stamps", times.description());
  EXPECT_FALSE(times.areDated());
  EXPECT_EQ("", times.warning());
}

TEST(FrameTimes, CountFromTheFirstFrameAtAGivenRate)
{
  const FrameTimes times(10.0, framesAt(1000.0, 25));
  EXPECT_EQ(support::recordingEpoch, nanosecondsOf(times, {25, 0.0}));
  EXPECT_EQ(support::recordingEpoch + 3 * second / 10, nanosecondsOf(times, {28, 0.003}));
  EXPECT_EQ("10 frames/s as given, instead of time stamps", times.description());
  EXPECT_FALSE(times.areDated());
  EXPECT_EQ("", times.warning());
}

TEST(FrameTimes, AreRoundedToWholeNanoseconds)
{
  const FrameTimes times(30.0, {Frame{0, {}}});
  EXPECT_EQ(support::recordingEpoch + 33333333, nanosecondsOf(times, {1, {}}));
  EXPECT_EQ(support::recordingEpoch + 66666667, nanosecondsOf(times, {2, {}}));
}

TEST(FrameTimes, AssumeARateWithoutTimeStamps)
{
  for (const auto& frames : {std::vector<Frame>{{25, {}}, {26, {}}}, std::vector<Frame>{{25, 0.0}, {26, 0.0}}})
  {
    const FrameTimes times({}, frames);
    EXPECT_EQ(support::recordingEpoch + second, nanosecondsOf(times, {55, {}}));
    EXPECT_EQ("30 frames/s assumed, since there are no time stamps", times.description());
    EXPECT_EQ("there are no time stamps: 30 frames/s are assumed; give the rate of the video if it was another",
              times.warning());
  }
}

TEST(FrameTimes, KeepTimeStampsThatCountSince1970)
{
  const FrameTimes times({}, {Frame{1, 1600000000.5}, Frame{2, 1600000000.75}});
  EXPECT_EQ(1600000000 * second + second / 4 * 3, nanosecondsOf(times, {2, 1600000000.75}));
  EXPECT_TRUE(times.areDated());
}

TEST(FrameTimes, DoubtARateThatNoCameraHas)
{
  EXPECT_EQ("", FrameTimes({}, framesAt(119.0)).warning());
  EXPECT_EQ(
      "the rate by the time stamps is 1000 frames/s, and is used as it is; give the rate of the video if it was "
      "another",
      FrameTimes({}, framesAt(1000.0)).warning());
}

TEST(FrameTimes, SayHowUsersGiveTheRate)
{
  EXPECT_EQ(
      "the rate by the time stamps is 1000 frames/s, and is used as it is; give the rate of the video (fps=) if it was "
      "another",
      FrameTimes({}, framesAt(1000.0), {}, "fps=").warning());
  EXPECT_EQ("there are no time stamps: 30 frames/s are assumed; give the rate of the video (fps=) if it was another",
            FrameTimes({}, {Frame{25, {}}}, {}, "fps=").warning());
}

TEST(FrameTimes, DoNotKnowTheRateOfOneFrame)
{
  EXPECT_EQ("unknown frames/s by the time stamps", FrameTimes({}, {Frame{1, 2.5}}).description());
}

TEST(FrameTimes, AreUnknownWithoutTheTimeStamp)
{
  EXPECT_FALSE(FrameTimes({}, framesAt(30.0)).timeOf({3, {}}));
  EXPECT_TRUE(FrameTimes(30.0, framesAt(30.0)).timeOf({3, {}}));
}

TEST(FrameTimes, AreUnknownBeyondTheClock)
{
  EXPECT_FALSE(FrameTimes({}, framesAt(30.0)).timeOf({3, 9e9}));
  EXPECT_FALSE(FrameTimes(30.0, framesAt(30.0)).timeOf({std::int64_t{1} << 49, {}}));
  EXPECT_FALSE(FrameTimes(30.0, framesAt(30.0)).timeOf({-(std::int64_t{1} << 49), {}}));
}

TEST(FrameTimes, CountMissingFrames)
{
  const FrameTimes times({}, framesAt(30.0));
  EXPECT_EQ(0, times.missingBetween({1, 0.0}, {2, 1.0 / 30.0}));
  EXPECT_EQ(9, times.missingBetween({1, 0.0}, {11, 10.0 / 30.0}));
}

TEST(FrameTimes, MissNoFramesWhereTheTimesDoNotJump)
{
  EXPECT_EQ(0, FrameTimes({}, framesAt(30.0)).missingBetween({1, 0.0}, {11, 1.0 / 30.0}));
}

TEST(FrameTimes, MissNoFramesWhereTheNumbersDoNotJump)
{
  const FrameTimes times({}, framesAt(30.0));
  EXPECT_EQ(0, times.missingBetween({1, 0.0}, {2, 10.0}));
  EXPECT_EQ(0, times.missingBetween({11, 0.0}, {1, 10.0}));
}

TEST(FrameTimes, MissNoFramesThatWereLeftOutThroughout)
{
  const FrameTimes times({}, framesAt(15.0, 1, 2));
  EXPECT_EQ(0, times.missingBetween({1, 0.0}, {3, 1.0 / 15.0}));
  EXPECT_EQ(4, times.missingBetween({1, 0.0}, {11, 5.0 / 15.0}));
  EXPECT_EQ("15 frames/s by the time stamps", times.description());
}

}  // namespace
