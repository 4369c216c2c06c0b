#include "model/model.hpp"

#include <boost/math/special_functions/erf.hpp>

#include <algorithm>
#include <cmath>
#include <ostream>
#include <sstream>

namespace model
{

namespace
{

// The rules define the result if one operand is NaN, so these are not std::max and std::min.
float greaterOf(float a, float b)
{
  return a > b ? a : b;
}

float lesserOf(float a, float b)
{
  return a < b ? a : b;
}

float inSeconds(std::int64_t milliseconds)
{
  return static_cast<float>(milliseconds) * 0.001f;
}

float ageInSeconds(Nanoseconds time, const Clock& clock)
{
  return inSeconds(ageInMs(time, clock));
}

template <typename T>
void recordIfPresent(Memory<T>& memory, const std::optional<Reading<T>>& reading, const Clock& clock)
{
  if (reading)
    memory.record(*reading, clock);
}

/// Records the reading, and unless the memory is empty then, writes a line about its youngest. `write` gets the
/// youngest again for each part that it writes.
template <typename T, typename Write>
void recordAndReport(std::ostream& report, const char* label, Memory<T>& memory,
                     const std::optional<Reading<T>>& reading, const Clock& clock, const Write& write)
{
  if (!reading)
    return;
  memory.record(*reading, clock);
  memory.forgetOld(clock);
  if (memory.readings.empty())
    return;
  report << label;
  write([&]() -> const T& { return memory.youngest(clock).value; });
  report << std::endl;
}

}  // namespace

Work& work()
{
  static thread_local Work work;
  return work;
}

void Memories::record(const Observation& seen, const Clock& clock)
{
  std::ostringstream report;
  const auto plain = [&](const auto& youngest) { report << youngest(); };
  const auto angles = [&](const auto& youngest) {
    const auto& is = youngest();
    report << is.yaw << " | " << is.pitch;
  };

  report << "Person updated with observations :\n";
  recordAndReport(report, "\t Age : ", age, seen.age, clock, plain);
  recordAndReport(report, "\t Face detected : ", faceDetected, seen.faceDetected, clock, plain);
  recordAndReport(report, "\t Distance : ", distance, seen.distance, clock, plain);
  recordAndReport(report, "\t Expressions : ", expressions, seen.expressions, clock, [&](const auto& youngest) {
    report << youngest().calm.value << " | ";
    report << youngest().joy.value << " | ";
    report << youngest().surprise.value << " | ";
    report << youngest().anger.value << " | ";
    report << youngest().sorrow.value;
  });
  recordAndReport(report, "\t Gaze Direction : ", gaze, seen.gaze, clock, angles);
  recordAndReport(report, "\t Gender : ", gender, seen.gender, clock, plain);
  recordAndReport(report, "\t Head Posture : ", headPosture, seen.headPosture, clock, [&](const auto& youngest) {
    const auto& is = youngest();
    report << is.yaw << " | " << is.pitch << " | " << is.roll;
  });
  recordAndReport(report, "\t Smile from youngest: ", smile, seen.smile, clock, [&](const auto& youngest) {
    const auto& is = youngest();
    report << is.value << " | " << is.confidence;
  });
  recordAndReport(report, "\t Looking At Robot : ", lookingAtRobot, seen.lookingAtRobot, clock, plain);
  recordAndReport(report, "\t Facial Points : ", facialPoints, seen.facialPoints, clock,
                  [&](const auto& youngest) { report << globalConfidence(youngest()); });
  recordAndReport(report, "\t Touch Emotion : ", touchEmotion, seen.touchEmotion, clock, plain);
  recordIfPresent(asrEmotion, seen.asrEmotion, clock);
  recordIfPresent(contextEmotion, seen.contextEmotion, clock);
  recordAndReport(report, "\t Speaking Memory : ", speaking, seen.speaking, clock, plain);
  recordAndReport(report, "\t Robot Head Posture : ", robotHeadPosture, seen.robotHeadPosture, clock, angles);
}

// Arithmetic.

float moved(float value, float target, float weight)
{
  return value + weight * (target - value);
}

float clampedValence(float value)
{
  return lesserOf(1.f, greaterOf(-1.f, value));
}

float clampedAttention(float value)
{
  return lesserOf(1.f, greaterOf(0.f, value));
}

float clampedConfidence(float value)
{
  return lesserOf(1.f, greaterOf(value, 0.f));
}

float weight(float x, float reference)
{
  const float floor = 0.01f;
  const float steepness = lesserOf(2.f, greaterOf(0.001f, 2.f / reference));
  const float argument = steepness * (reference - x);
  if (std::isnan(argument))
    return floor;
  ++work().errorFunctions;
  const auto step = static_cast<float>(boost::math::erf(static_cast<double>(argument)));
  return greaterOf((step + 1.f) * 0.5f, floor);
}

float smoothedWeight(float x, float reference)
{
  return 0.5f * ((weight(x, reference) - (x - reference) / (2.f * reference)) + 0.5f);
}

float rampDown(float x, float center, float width)
{
  const float amplitude = 1.f;
  const float steepness = 4.f / width;
  return ((1.f - std::tanh((x - center) * steepness)) * amplitude) * 0.5f;
}

namespace
{

float distanceRamp(float distance)
{
  return rampDown(distance, 1.4f, 0.2f);
}

float heightRamp(float height)
{
  return rampDown(height, 1.9f, 0.2f);
}

}  // namespace

float attentionCeiling(float distance, float height)
{
  return lesserOf(heightRamp(height), distanceRamp(distance));
}

float headFactor(float meanYaw)
{
  const float yaw = std::fabs(meanYaw);
  if (yaw >= 10.f && yaw <= 35.f)
    return 1.f - smoothedWeight(yaw, 30.f);
  return yaw > 35.f ? 1.f : 0.f;
}

int attentionZone(float yaw, float pitch, float yawThreshold, float pitchThreshold)
{
  // After the last threshold, where NaN ends as well, the outermost column and row are used.
  const auto count = [](float angle, const std::array<float, 3>& thresholds) {
    int passed = 0;
    while (passed < 3 && !(angle < thresholds[static_cast<std::size_t>(passed)]))
      ++passed;
    return std::min(passed, 2);
  };
  const int centre = 1;
  const int column = count(yaw, {-yawThreshold, yawThreshold, yawThreshold * 1000.f});
  const float up = column == centre ? 0.6f * pitchThreshold : pitchThreshold;
  const int pitchesPassed = count(pitch, {-pitchThreshold, up, pitchThreshold * 1000.f});

  const std::array<int, 3> upZones{6, 2, 7}, levelZones{4, 1, 5}, downZones{8, 3, 9};
  const auto& row = pitchesPassed == 2 ? upZones : pitchesPassed == 1 ? levelZones : downZones;
  return row[static_cast<std::size_t>(column)];
}

float globalConfidence(const FacialPoints& points)
{
  const std::array<std::size_t, 12> orderOfAddition{0, 3, 4, 1, 5, 6, 2, 7, 8, 11, 9, 10};
  float sum = 0.f;
  for (const std::size_t point : orderOfAddition)
    sum += points.confidences[point];
  return sum / 12.f;
}

float logisticScore(const std::array<double, 5>& weights, float intercept, const std::array<float, 5>& features)
{
  float sum = 0.f;
  for (std::size_t i = 0; i < features.size(); ++i)
    sum += static_cast<float>(weights[i]) * features[i];
  return 1.f / (std::exp(-(sum + intercept)) + 1.f);
}

std::optional<int> winner(std::vector<MoodClass> classes)
{
  std::sort(classes.begin(), classes.end(), [](const MoodClass& a, const MoodClass& b) { return a.score > b.score; });
  if (classes[0].score - classes[1].score > 0.f)
    return classes[0].value;
  return std::nullopt;
}

// Discrete states.

int ternary(float valence)
{
  const auto value = static_cast<double>(valence);
  if (value > 0.2)
    return 1;
  return value > -0.2 ? 0 : -1;
}

Pleasure pleasure(const Scored& valence)
{
  if (0.4f > valence.confidence)
    return Pleasure::Unknown;
  if (-0.2f > valence.value)
    return Pleasure::Negative;
  return 0.2f > valence.value ? Pleasure::Neutral : Pleasure::Positive;
}

std::string zoneName(int zone)
{
  const std::array<const char*, 10> names{"Unknown",         "LookingAtRobot",  "LookingUp",     "LookingDown",
                                          "LookingLeft",     "LookingRight",    "LookingUpLeft", "LookingUpRight",
                                          "LookingDownLeft", "LookingDownRight"};
  return names.at(static_cast<std::size_t>(zone));
}

namespace
{

// Forces: every estimate moves by a share of its way to a target, without an observer.

void traceForce(const char* quantity, float target, float weight, const std::string& source)
{
  ++work().forces;
  std::ostringstream text;
  text << "Applying " << quantity << " force " << 100.f * weight << " towards " << target;
  if (!source.empty())
    text << " (" << source << ")";
}

void pullValence(State& state, float target, float weight, const std::string& source)
{
  traceForce("valence", target, weight, source);
  state.valence.value = clampedValence(moved(state.valence.value, target, weight));
  state.unsmoothedValence.value = clampedValence(moved(state.unsmoothedValence.value, target, weight));
}

void pullValenceConfidence(State& state, float target, float weight, const std::string& source)
{
  traceForce("valence confidence", target, weight, source);
  state.valence.confidence = clampedConfidence(moved(state.valence.confidence, target, weight));
  state.unsmoothedValence.confidence = clampedConfidence(moved(state.unsmoothedValence.confidence, target, weight));
}

void pullAttention(State& state, float target, float weight, const std::string& source)
{
  traceForce("attention", target, weight, source);
  state.attention.value = clampedAttention(moved(state.attention.value, target, weight));
}

void pullAttentionConfidence(State& state, float target, float weight, const std::string& source)
{
  traceForce("attention confidence", target, weight, source);
  state.attention.confidence = clampedConfidence(moved(state.attention.confidence, target, weight));
}

// Body language.

float easeOf(const HeadPosture& posture)
{
  if (posture.pitch >= 6.f)
    return -0.5f;
  if (posture.pitch <= -6.f)
    return 0.5f;
  if (posture.yaw <= -6.f)
    return -0.5f;
  return posture.yaw >= 6.f ? 0.5f : 0.f;
}

void updateEase(State& state, Memory<HeadPosture>& postures, const Clock& clock)
{
  postures.forgetOld(clock);
  if (postures.readings.empty())
    return;
  float sum = 0.f;
  for (const auto& posture : postures.readings)
    sum += easeOf(posture.value);

  postures.forgetOld(clock);
  const std::size_t count = postures.readings.size();
  if (count > 0)
    state.ease = {sum / static_cast<float>(count), 0.5f};
}

// One cycle: every source of force is a function, and update() calls them in the order in which they act.

struct Cycle
{
  const Observation& observation;
  Memories& memories;
  const Clock& clock;
  State& state;
  std::ostringstream trace;  // written and dropped

  bool speaking = false;
  bool newSmile = false;
  bool newExpressions = false;
  bool valenceObserved = false;
  bool attentionObserved = false;
  Gaze meanHead{};  // its yaw and its pitch
  Gaze meanGaze{};
  float headShare = 0.f;

  void update();

  void trustFacialPoints();
  void distrustWhileSpeaking();
  void takeOverReadings();
  void distrustTurnedFace();
  void followFaceCharacteristics();
  void followSmile();
  void followHeadPosture();
  void followGaze();
  void followVoiceEmotion();
  void followAsrEmotion();
  void followTouchEmotion();
  void followContextEmotion();
  void forgetValence();
  void limitValenceConfidence();
  void forgetAttention();
  void limitAttentionConfidence();
  void followAttention();

  float ageOf(Nanoseconds time) const { return ageInSeconds(time, clock); }
  float distance() const { return observation.distance ? observation.distance->value : 0.f; }
  float robotStillness();
  void keepHeadHeight();
  int zoneFor(float attentionTarget) const;
  void traceQuantity(const char* title, const Scored& quantity);
};

void Cycle::update()
{
  trace << "State updated with:" << std::endl;
  trustFacialPoints();
  distrustWhileSpeaking();
  takeOverReadings();
  distrustTurnedFace();
  followFaceCharacteristics();
  followSmile();
  followHeadPosture();
  followGaze();
  followVoiceEmotion();
  followAsrEmotion();
  followTouchEmotion();
  followContextEmotion();

  if (valenceObserved)
    limitValenceConfidence();
  else
    forgetValence();

  if (attentionObserved)
  {
    limitAttentionConfidence();
    followAttention();
  }
  else
    forgetAttention();

  trace << "Computed states:" << std::endl;
  traceQuantity("Valence: ", state.valence);
  traceQuantity("Attention: ", state.attention);
}

void Cycle::traceQuantity(const char* title, const Scored& quantity)
{
  trace << title << std::endl << "\t - Value: \t" << quantity.value << std::endl;
  trace << "\t - Confidence: \t" << quantity.confidence << std::endl;
}

void Cycle::trustFacialPoints()
{
  auto& memory = memories.facialPoints;
  memory.forgetOld(clock);
  if (memory.readings.empty())
  {
    trace << "\t - NO FACIAL POINTS IN MEMORY" << std::endl;
    return;
  }
  float sum = 0.f, weights = 0.f;
  for (const auto& points : memory.readings)
  {
    const float w = weight(ageOf(points.time), 3.f);
    sum += w * globalConfidence(points.value);
    weights += w;
  }
  const float confidence = greaterOf(0.f, sum / weights);
  const float weightOfYoungest = weight(ageOf(memory.readings.front().time), 3.f);
  trace << "\t - Confidence: " << confidence << " with weight " << weightOfYoungest << std::endl;
  pullValenceConfidence(state, confidence * weightOfYoungest, 0.7f, "Points confidence");
}

void Cycle::distrustWhileSpeaking()
{
  memories.speaking.forgetOld(clock);
  for (const auto& flag : memories.speaking.readings)
  {
    if (!flag.value)
      continue;
    const float age = ageOf(flag.time);
    if (age < 4.f)
    {
      pullValenceConfidence(state, 0.f, 0.5f * weight(age, 2.f), "User is speaking");
      speaking = true;
      return;
    }
  }
}

void Cycle::takeOverReadings()
{
  if (observation.smile && observation.smile->time != state.lastSmile)
  {
    state.smile = observation.smile->value;
    state.lastSmile = observation.smile->time;
    newSmile = true;
  }
  if (observation.expressions && observation.expressions->time != state.lastExpressions)
  {
    state.expressions = observation.expressions->value;
    state.lastExpressions = observation.expressions->time;
    newExpressions = true;
  }
  if (observation.gaze)
    state.gaze = observation.gaze->value;
  if (observation.headPosture)
    state.headAngles = observation.headPosture->value;
}

/// How far the head is turned away; sideways counts twice.
float headMagnitudeOf(float yaw, float pitch)
{
  const double sideways = 2.0 * static_cast<double>(yaw) / 3.0;
  const double upwards = static_cast<double>(pitch) / 3.0;
  return static_cast<float>(std::sqrt(sideways * sideways + upwards * upwards));
}

float gazeMagnitudeOf(float yaw, float pitch)
{
  const auto x = static_cast<double>(yaw);
  const auto y = static_cast<double>(pitch);
  return static_cast<float>(std::sqrt(x * x + y * y));
}

void Cycle::distrustTurnedFace()
{
  memories.headPosture.forgetOld(clock);
  if (memories.headPosture.readings.empty())
    return;
  const HeadPosture& head = memories.headPosture.readings.front().value;
  const float trust = weight(headMagnitudeOf(head.yaw, head.pitch), 20.f);
  state.expressions.calm.confidence = trust;
  state.expressions.anger.confidence = trust;
  state.expressions.joy.confidence = trust;
  state.expressions.sorrow.confidence = trust;
  state.expressions.surprise.confidence = trust;
}

void Cycle::followFaceCharacteristics()
{
  if (speaking || !newExpressions)
    return;
  const std::array<float, 5> features{state.smile.value * state.smile.confidence, state.expressions.calm.value,
                                      state.expressions.joy.value, state.expressions.anger.value,
                                      state.expressions.sorrow.value};
  const std::array<double, 5> positive{2.38828954219, -3.15291359475, 6.85025791269, -1.41616331546, -0.395405045619};
  const std::array<double, 5> neutral{2.939970882, 5.47256141157, -6.78930233561, -1.49980029085, -1.0211854597};
  const std::array<double, 5> negative{-5.80814485571, -4.06000541074, -3.21490518458, 2.53144329703, 1.6637735194};

  const auto mood = winner({{1, logisticScore(positive, -0.9510546f, features)},
                            {0, logisticScore(neutral, -0.86178476f, features)},
                            {-1, logisticScore(negative, -0.50614434f, features)}});
  if (mood)
  {
    pullValence(state, static_cast<float>(*mood), 0.65f, "Face characteristics");
    valenceObserved = true;
  }
  else
    pullValenceConfidence(state, 0.f, 0.5f, "Winner unknown");
}

void Cycle::followSmile()
{
  if (!speaking || !newSmile)
    return;
  pullValence(state, state.smile.value, state.smile.confidence * 0.65f, "Smile");
  valenceObserved = true;
}

/// The mean of yaw and pitch; younger readings count more.
template <typename T>
Gaze weightedMean(const std::vector<Reading<T>>& readings, const Clock& clock)
{
  float yaw = 0.f, pitch = 0.f, weights = 0.f;
  for (const auto& reading : readings)
  {
    const float w = weight(ageInSeconds(reading.time, clock), 1.f);
    yaw += w * reading.value.yaw;
    pitch += w * reading.value.pitch;
    weights += w;
  }
  return {yaw / weights, pitch / weights};
}

/// A magnitude that moved by less than 0.3 since the last cycle does not change its attention.
void followMagnitude(float magnitude, float reference, float& lastMagnitude, float& attention)
{
  if (std::fabs(magnitude - lastMagnitude) >= 0.3f)
    attention = smoothedWeight(magnitude, reference);
  lastMagnitude = magnitude;
}

void Cycle::followHeadPosture()
{
  memories.headPosture.forgetOld(clock);
  const auto& postures = memories.headPosture.readings;
  if (postures.empty())
    return;
  state.lastHeadPosture = postures.front().time;
  if (ageOf(postures.front().time) >= 1.f)
    return;
  pullValence(state, state.ease.value, 0.065f, "Body Language");

  meanHead = weightedMean(postures, clock);
  headShare = headFactor(meanHead.yaw);
  followMagnitude(headMagnitudeOf(meanHead.yaw, meanHead.pitch), 15.f, state.headMagnitude, state.headAttention);
  trace << "Final value of head: " << meanHead.yaw << " | " << meanHead.pitch << " | " << state.headAttention
        << std::endl;
  attentionObserved = true;
}

void Cycle::followGaze()
{
  memories.gaze.forgetOld(clock);
  const auto& gazes = memories.gaze.readings;
  if (gazes.empty() || ageOf(gazes.front().time) >= 1.f)
    return;
  state.lastGaze = gazes.front().time;

  meanGaze = weightedMean(gazes, clock);
  followMagnitude(gazeMagnitudeOf(meanGaze.yaw, meanGaze.pitch), 20.f, state.gazeMagnitude, state.gazeAttention);
  trace << "Final value of gaze: " << meanGaze.yaw << " | " << meanGaze.pitch << " | " << state.gazeAttention
        << std::endl;
  attentionObserved = true;
}

void Cycle::followVoiceEmotion()
{
  if (!observation.voiceEmotion || observation.voiceEmotion->time == state.lastVoiceEmotion)
    return;
  state.lastVoiceEmotion = observation.voiceEmotion->time;

  const float age = static_cast<float>(static_cast<double>(ageInMs(observation.voiceEmotion->time, clock)) * 0.001);
  if (age > 3.f)
    clock();  // a warning is logged, with the time

  const Expressions& voice = observation.voiceEmotion->value;
  pullValence(state, 0.f, voice.calm.value * 0.7f * 0.65f, "Voice emotion");
  pullValence(state, -1.f, voice.anger.value * 0.7f * 0.65f, "Voice emotion");
  pullValence(state, 1.f, voice.joy.value * 0.7f * 0.65f, "Voice emotion");
  pullValence(state, -0.5f, voice.sorrow.value * 0.7f * 0.65f, "Voice emotion");
  valenceObserved = true;
}

void Cycle::followAsrEmotion()
{
  memories.asrEmotion.forgetOld(clock);
  for (const auto& emotion : memories.asrEmotion.readings)
  {
    const float target = emotion.value < 0.f ? -1.f : 1.f;
    pullValence(state, target, weight(ageOf(emotion.time), 4.f) * 0.65f, "Asr emotion");
    valenceObserved = true;
  }
  if (!memories.asrEmotion.readings.empty())
    state.lastAsrEmotion = memories.asrEmotion.readings.front().time;
}

void Cycle::followTouchEmotion()
{
  memories.touchEmotion.forgetOld(clock);
  for (const auto& emotion : memories.touchEmotion.readings)
  {
    const float target = emotion.value > 0 ? 1.f : -1.f;
    pullValence(state, target, weight(ageOf(emotion.time), 4.f) * 0.65f, "Touch emotion");
    valenceObserved = true;
  }
  if (!memories.touchEmotion.readings.empty())
    state.lastTouchEmotion = memories.touchEmotion.readings.front().time;
}

void Cycle::followContextEmotion()
{
  memories.contextEmotion.forgetOld(clock);
  for (const auto& emotion : memories.contextEmotion.readings)
  {
    const auto target = static_cast<float>(emotion.value.valence);
    pullValence(state, target, weight(ageOf(emotion.time), emotion.value.lifetime) * 0.65f, "Context emotion");
    valenceObserved = true;
  }
  if (!memories.contextEmotion.readings.empty())
    state.lastContextEmotion = memories.contextEmotion.readings.front().time;
}

/// How much the last observation still counts, by the age of the youngest source.
float hold(std::initializer_list<Nanoseconds> sources, const Clock& clock)
{
  std::vector<std::int64_t> ages;
  for (const Nanoseconds source : sources)
    ages.push_back(ageInMs(source, clock));
  const std::int64_t youngest = *std::min_element(ages.begin(), ages.end());
  return youngest < 1 ? 0.f : weight(inSeconds(youngest), 2.5f);
}

void Cycle::forgetValence()
{
  const float s = hold(
      {state.lastSmile, state.lastExpressions, state.lastVoiceEmotion, state.lastAsrEmotion, state.lastTouchEmotion},
      clock);
  trace << "No valence observations" << std::endl << "force: " << s << std::endl;
  pullValence(state, 0.f, (1.f - s) * 0.65f, "No observation");
  pullValenceConfidence(state, 0.f, 0.7f, "No observation");
}

void Cycle::keepHeadHeight()
{
  if (observation.headHeight)
    state.headHeight = observation.headHeight->value;
}

void Cycle::limitValenceConfidence()
{
  keepHeadHeight();
  pullValenceConfidence(state, distanceRamp(distance()), 0.175f, "Distance limitation");
  pullValenceConfidence(state, heightRamp(state.headHeight), 0.175f, "Height limitation");
}

void Cycle::forgetAttention()
{
  const float s = hold({state.lastHeadPosture, state.lastGaze}, clock);
  trace << "No attention observations" << std::endl;
  pullAttention(state, 0.f, (1.f - s) * 0.65f, "No observation");
  pullAttentionConfidence(state, 0.f, 0.7f, "No observation");
  state.attentionZone = 0;
}

/// 1 for a robot that kept its head still during the last second; the more it moved, the less.
float Cycle::robotStillness()
{
  auto& memory = memories.robotHeadPosture;
  memory.forgetOld(clock);
  float sum = 0.f, counted = 0.f;
  const auto count = [&](float change, float reference) {
    const float w = weight(change, reference);
    if (w < 0.95f)
    {
      sum += w;
      counted += 1.f;
    }
  };
  const RobotHeadPosture* before = nullptr;
  for (const auto& posture : memory.readings)
  {
    if (ageOf(posture.time) < 1.f)
    {
      const RobotHeadPosture& reference = before != nullptr ? *before : posture.value;
      count(std::fabs(posture.value.yaw - reference.yaw), 7.f);
      count(std::fabs(posture.value.pitch - reference.pitch), 3.5f);
      before = &posture.value;
    }
  }
  return counted > 0.f ? sum / counted : 1.f;
}

void Cycle::limitAttentionConfidence()
{
  keepHeadHeight();
  const float target = 0.8f * attentionCeiling(distance(), state.headHeight) + 0.2f * robotStillness();
  pullAttentionConfidence(state, target, 0.7f, "Okao and robot movement limits");
}

void Cycle::followAttention()
{
  const float target = headShare * state.headAttention + (1.f - headShare) * state.gazeAttention;
  pullAttention(state, target, 0.65f, "Gaze and head based attention");
  state.attentionZone = zoneFor(target);
}

int Cycle::zoneFor(float attentionTarget) const
{
  const int none = 0, atRobot = 1;
  if (std::fabs(meanHead.pitch) > 30.f || std::fabs(meanHead.yaw) > 40.f)
    return none;
  if (attentionTarget >= 0.9f)
    return atRobot;
  if (headShare >= 0.35f)
    return model::attentionZone(meanHead.yaw, meanGaze.pitch, 15.f, 10.f);
  return model::attentionZone(-meanGaze.yaw, meanGaze.pitch, 12.f, 10.f);  // the yaw of the gaze is mirrored
}

}  // namespace

void Person::update(const Observation& observation, const Clock& clock)
{
  memories.record(observation, clock);
  updateEase(state, memories.headPosture, clock);
  Cycle{observation, memories, clock, state, {}}.update();
}

void Person::decreaseSinceNotSeen()
{
  pullValence(state, 0.f, 0.26f, "Not visible");
  pullValenceConfidence(state, 0.f, 0.7f, "Not visible");
  pullAttention(state, 0.f, 0.26f, "Not visible");
  pullAttentionConfidence(state, 0.f, 0.7f, "Not visible");
}

}  // namespace model
