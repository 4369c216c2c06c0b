#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// A plain second implementation of one person's estimate, with which the library is compared.
///
/// It shares no code with the library: no handle, lock or log, only values and the rules, written with standard streams
/// and vectors. The library is made for use, this model is made to be read: if the two ever differ in a single bit, the
/// shorter text here is easier to check by hand. The library's speed is compared with it, too.
namespace model
{

using Nanoseconds = std::int64_t;

/// Returns the time, read again at each call: the rules say how often it is read.
using Clock = std::function<Nanoseconds()>;

// Observations of a person. Angles are in degrees.

struct Scored  // a value, and how much it can be trusted
{
  float value = 0.f;
  float confidence = 0.f;
};

struct Gaze
{
  float yaw = 0.f;
  float pitch = 0.f;
};

struct HeadPosture
{
  float yaw = 0.f;
  float pitch = 0.f;
  float roll = 0.f;
};

struct RobotHeadPosture
{
  float yaw = 0.f;
  float pitch = 0.f;
};

struct Expressions
{
  Scored calm, anger, joy, sorrow, laughter, excitement, surprise;
};

struct FacialPoints
{
  std::array<float, 12> confidences{};  // by the number of the point
};

struct ContextEmotion
{
  int valence = 0;
  float lifetime = 0.f;  // in seconds
};

template <typename T>
struct Reading
{
  Nanoseconds time = 0;
  T value{};
};

struct Observation
{
  std::optional<Reading<bool>> lookingAtRobot;
  std::optional<Reading<float>> headHeight;
  std::optional<Reading<float>> distance;
  std::optional<Reading<Gaze>> gaze;
  std::optional<Reading<Scored>> smile;
  std::optional<Reading<Expressions>> expressions;
  std::optional<Reading<HeadPosture>> headPosture;
  std::optional<Reading<bool>> gender;
  std::optional<Reading<unsigned int>> age;
  std::optional<Reading<bool>> faceDetected;
  std::optional<Reading<FacialPoints>> facialPoints;
  std::optional<Reading<Expressions>> voiceEmotion;
  std::optional<Reading<float>> asrEmotion;
  std::optional<Reading<int>> touchEmotion;
  std::optional<Reading<ContextEmotion>> contextEmotion;
  std::optional<Reading<bool>> speaking;
  std::optional<Reading<RobotHeadPosture>> robotHeadPosture;
};

// The memory of a person.

/// The age in whole milliseconds, cut off towards zero; negative for a future time.
inline std::int64_t ageInMs(Nanoseconds time, const Clock& clock)
{
  return (clock() - time) / 1000000;
}

/// The readings of one kind, the newest first and no two of the same time.
template <typename T>
struct Memory
{
  std::int64_t horizonInMs = 7000;
  std::vector<Reading<T>> readings;

  /// Keeps the reading unless one of its time is there already, then forgets what is too old.
  void record(const Reading<T>& reading, const Clock& clock)
  {
    const auto place = std::find_if(readings.begin(), readings.end(),
                                    [&](const Reading<T>& present) { return present.time <= reading.time; });
    if (place == readings.end() || place->time != reading.time)
      readings.insert(place, reading);
    forgetOld(clock);
  }

  void forgetOld(const Clock& clock)
  {
    const auto isTooOld = [&](const Reading<T>& reading) { return ageInMs(reading.time, clock) > horizonInMs; };
    readings.erase(std::remove_if(readings.begin(), readings.end(), isTooOld), readings.end());
  }

  /// The newest reading, after those that are too old are removed.
  const Reading<T>& youngest(const Clock& clock)
  {
    forgetOld(clock);
    return readings.front();
  }
};

struct Memories
{
  Memory<HeadPosture> headPosture;
  Memory<float> distance;
  Memory<bool> lookingAtRobot;
  Memory<Scored> smile;
  Memory<Gaze> gaze;
  Memory<Expressions> expressions;
  Memory<bool> gender;
  Memory<unsigned int> age;
  Memory<bool> faceDetected;
  Memory<FacialPoints> facialPoints;
  Memory<int> touchEmotion;
  Memory<float> asrEmotion;
  Memory<ContextEmotion> contextEmotion{20000, {}};
  Memory<bool> speaking;
  Memory<RobotHeadPosture> robotHeadPosture;

  /// Records every reading that is there, and reports the youngest; the memories of the others are not touched. The
  /// report is written and dropped.
  void record(const Observation& observation, const Clock& clock);
};

/// Counts of operations since they were last set to zero, on this thread; for benchmarks of the cost.
struct Work
{
  long errorFunctions = 0;
  long forces = 0;  // each composes a text with two numbers
};
Work& work();

// The estimate of a person.

/// The time of a source without any reading.
constexpr Nanoseconds never = -1000000;

struct State
{
  Scored valence;
  Scored unsmoothedValence;
  Scored attention;
  int attentionZone = 0;

  Scored smile;
  Gaze gaze;
  Expressions expressions;
  float headHeight = 0.f;
  HeadPosture headAngles;
  Scored ease;  // of the body language

  float headMagnitude = -10.f;  // how far the head was turned away in the cycle before
  float gazeMagnitude = -10.f;
  float headAttention = 0.f;
  float gazeAttention = 0.f;

  Nanoseconds lastHeadPosture = never;
  Nanoseconds lastSmile = never;
  Nanoseconds lastExpressions = never;
  Nanoseconds lastVoiceEmotion = never;
  Nanoseconds lastAsrEmotion = never;
  Nanoseconds lastGaze = never;
  Nanoseconds lastTouchEmotion = never;
  Nanoseconds lastContextEmotion = never;
};

enum class Pleasure
{
  Unknown,
  Negative,
  Neutral,
  Positive
};

/// 1, 0 or -1, by the fixed bounds of 0.2 and -0.2.
int ternary(float valence);
/// By the default boundaries.
Pleasure pleasure(const Scored& valence);
std::string zoneName(int zone);

struct Person
{
  State state;
  Memories memories;

  /// One cycle in which the person was observed.
  void update(const Observation& observation, const Clock& clock);
  /// One cycle in which the person was not.
  void decreaseSinceNotSeen();
};

// The arithmetic of the estimate, for tests of its own.

/// Moves `value` by the share `weight` of its way to `target`.
float moved(float value, float target, float weight);
float clampedValence(float value);
float clampedAttention(float value);
float clampedConfidence(float value);

/// W: a soft step from 1 through 0.5 at the reference down to 0.01.
float weight(float x, float reference);
/// S: the same step on a falling slope; it goes below 0.
float smoothedWeight(float x, float reference);
/// A soft step from 1 through 0.5 at the centre down to 0.
float rampDown(float x, float center, float width);
/// The greatest attention that the face analysis can support at this distance and height.
float attentionCeiling(float distance, float height);
/// The share of the head in the attention; the gaze has the rest.
float headFactor(float meanYaw);
int attentionZone(float yaw, float pitch, float yawThreshold, float pitchThreshold);

/// The mean of the twelve confidences.
float globalConfidence(const FacialPoints& points);
float logisticScore(const std::array<double, 5>& weights, float intercept, const std::array<float, 5>& features);

struct MoodClass
{
  int value = 0;
  float score = 0.f;
};

/// The value of the class with the highest score, or nothing without a single highest one.
std::optional<int> winner(std::vector<MoodClass> classes);

}  // namespace model
