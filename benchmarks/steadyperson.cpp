#include "steadyperson.hpp"

#include "fullobservation.hpp"

#include <model/translation.hpp>

#include <ctime>
#include <stdexcept>

namespace benchmarks
{

namespace
{

constexpr std::int64_t updatesAtATime = 8;
constexpr std::int64_t secondsRemembered = 20;  // the longest horizon

model::Nanoseconds timeNow()
{
  return ko::SystemClock::now().time_since_epoch().count();
}

/// Does not move, and counts how often it is read.
class CountingClock : public ko::ClockSource
{
public:
  explicit CountingClock(ko::SystemClock::time_point time) : _time(time) {}

  ko::SystemClock::time_point now() override
  {
    ++readings;
    return _time;
  }

  std::int64_t readings = 0;

private:
  ko::SystemClock::time_point _time;
};

/// The observation of fullobservation.hpp in the types of the model.
model::Observation fullModelObservation(model::Nanoseconds time)
{
  const auto wobble = static_cast<float>(time / 1000000 % 7);
  const model::Scored quiet{0.1f, 0.8f};

  model::Observation observation;
  observation.lookingAtRobot = {time, true};
  observation.headHeight = {time, 1.6f};
  observation.distance = {time, 1.1f};
  observation.gaze = {time, {wobble, 1.f}};
  observation.smile = {time, {0.7f, 0.9f}};
  observation.expressions.emplace();
  observation.expressions->time = time;
  observation.expressions->value.joy = {0.6f, 0.9f};
  observation.expressions->value.calm = {0.3f, 0.9f};
  observation.headPosture = {time, {wobble * 3.f, 2.f, 0.f}};
  observation.faceDetected = {time, true};
  observation.facialPoints.emplace();
  observation.facialPoints->time = time;
  observation.facialPoints->value.confidences.fill(0.9f);
  observation.voiceEmotion = {time, {quiet, quiet, quiet, quiet, quiet, quiet, {}}};
  observation.asrEmotion = {time, 0.5f};
  observation.touchEmotion = {time, 1};
  observation.contextEmotion = {time, {1, 3.f}};
  observation.speaking = {time, false};
  observation.robotHeadPosture = {time, {wobble, 0.f}};
  return observation;
}

double cpuTime()
{
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/// Returns the bytes of the records that a new one at the front moves, over all memories.
std::size_t bytesMoved(std::int64_t rate)
{
  const std::size_t ofShortHorizon = sizeof(KV::Timestamped<KV::HeadPosture>) + sizeof(KV::Timestamped<float>) +
                                     sizeof(KV::Timestamped<bool>) + sizeof(KV::Timestamped<KV::Smile>) +
                                     sizeof(KV::Timestamped<KV::Gaze>) + sizeof(KV::Timestamped<KV::Expressions>) +
                                     sizeof(KV::Timestamped<bool>) + sizeof(KV::Timestamped<KV::FacialPoints>) +
                                     sizeof(KV::Timestamped<std::int32_t>) + sizeof(KV::Timestamped<float>) +
                                     sizeof(KV::Timestamped<bool>) + sizeof(KV::Timestamped<KV::RobotHeadPosture>);
  return static_cast<std::size_t>(rate) * (7 * ofShortHorizon + 20 * sizeof(KV::Timestamped<KV::ContextEmotion>));
}

}  // namespace

SteadyPerson::SteadyPerson(ClockKind kind, std::int64_t rate)
  : _kind(kind), _rate(rate), _period(1000000000 / rate), _manualClock(epoch)
{
  if (kind == ClockKind::Manual)
    _scope.emplace(_manualClock);
  _remember();
}

Work SteadyPerson::countWork()
{
  const ko::SystemClock::time_point now = ko::SystemClock::now();
  CountingClock ofLibrary(now);
  CountingClock ofModel(now);
  const model::Observation observation = fullModelObservation(timeNow() + 1);

  Work work;
  {
    const ko::ScopedClockSource scope(ofLibrary);
    _library->update(model::toLibrary(observation));
    work.readings = ofLibrary.readings;
  }
  {
    const ko::ScopedClockSource scope(ofModel);
    model::work() = {};
    _model.update(observation, timeNow);
  }
  if (ofModel.readings != work.readings)
    throw std::logic_error("the library and the model do not read the clock equally often");
  work.errorFunctions = model::work().errorFunctions;
  work.forces = model::work().forces;
  work.bytesMoved = bytesMoved(_rate);
  return work;
}

UpdateTimes SteadyPerson::timeUpdates()
{
  if (_kind == ClockKind::Wall)
    _remember();  // too little time passes for a reading to be forgotten
  const std::vector<model::Observation> observations = _nextObservations();
  std::vector<KV::PersonObservation> forLibrary;
  for (const model::Observation& observation : observations)
    forLibrary.push_back(model::toLibrary(observation));

  const ko::SystemClock::time_point start = _manualClock.now();
  const boost::chrono::nanoseconds period(_period);
  UpdateTimes times;

  double before = cpuTime();
  for (const KV::PersonObservation& observation : forLibrary)
  {
    _manualClock.advance(period);
    _library->update(observation);
  }
  times.library = (cpuTime() - before) / static_cast<double>(updatesAtATime);

  _manualClock.set(start);
  const model::Clock clock = timeNow;
  before = cpuTime();
  for (const model::Observation& observation : observations)
  {
    _manualClock.advance(period);
    _model.update(observation, clock);
  }
  times.model = (cpuTime() - before) / static_cast<double>(updatesAtATime);
  return times;
}

/// Starts again, with memories that are filled over the longest horizon.
void SteadyPerson::_remember()
{
  _library.emplace(1);
  _model = {};
  const model::Nanoseconds now = timeNow();
  ko::ManualClock standing{model::toTimePoint(now)};
  const ko::ScopedClockSource scope(standing);
  for (std::int64_t i = secondsRemembered * _rate; i > 0; --i)
  {
    const model::Observation observation = fullModelObservation(now - (i - 1) * _period);
    _library->updateMemory(model::toLibrary(observation));
    _model.memories.record(observation, timeNow);
  }
}

/// On a manual clock readings come at the rate of the sensors, on the wall clock as fast as they are read.
std::vector<model::Observation> SteadyPerson::_nextObservations()
{
  const model::Nanoseconds step = _kind == ClockKind::Manual ? _period : 1;
  const model::Nanoseconds now = timeNow();
  std::vector<model::Observation> observations;
  for (std::int64_t i = 1; i <= updatesAtATime; ++i)
    observations.push_back(fullModelObservation(now + i * step));
  return observations;
}

}  // namespace benchmarks
