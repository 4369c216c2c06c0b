#include "bytereader.hpp"
#include "target.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/emotionrecorder.hpp>
#include <skeigiot/forceobserver.hpp>
#include <skeigiot/session/boundary.hpp>
#include <skeigiot/socialgraph.hpp>

#include <ko/cbor.hpp>
#include <ko/json.hpp>
#include <ko/log.hpp>
#include <ko/systemclock.hpp>
#include <ko/value.hpp>

#include <boost/chrono/duration.hpp>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// Sequences of calls to the library: bytes choose the call, the person and the arguments. Two replicas get the same
/// calls, one of them in halves and observed, and must never differ by a bit.
namespace fuzz
{

namespace
{

constexpr int mostCalls = 200;  // an update reads the whole memory, so long sequences take long

using Time = ko::SystemClock::time_point;
using boost::chrono::nanoseconds;
using boost::chrono::seconds;

/// Keeps the library's warnings away from standard error.
void silenceLog()
{
  [[maybe_unused]] static const ko::log::HandlerId id = ko::log::addHandler([](const ko::log::Record&) {});
}

/// Makes readings and whole observations from bytes.
class ObservationMaker
{
public:
  ObservationMaker(ByteReader& bytes, Time now) : _bytes(bytes), _now(now) {}

  KV::PersonObservation make()
  {
    KV::PersonObservation o;
    const auto present = _bytes.bits<std::uint32_t>();
    unsigned bit = 0;
    const auto fill = [&](auto& reading, auto value) {
      if ((present >> bit++ & 1U) != 0)
        reading.emplace(_time(), value());
    };
    fill(o.lookingAtRobot, [this] { return _bytes.flag(); });
    fill(o.headHeight, [this] { return _bytes.anyFloat(); });
    fill(o.distance, [this] { return _bytes.anyFloat(); });
    fill(o.gaze, [this] { return KV::Gaze(_bytes.angle(), _bytes.angle()); });
    fill(o.smile, [this] { return KV::Smile(_bytes.anyFloat(), _bytes.anyFloat()); });
    fill(o.expressions, [this] { return _expressions(); });
    fill(o.headPosture, [this] { return KV::HeadPosture(_bytes.angle(), _bytes.angle(), _bytes.angle()); });
    fill(o.gender, [this] { return KV::ValueConfidence<bool>(_bytes.flag(), _bytes.anyFloat()); });
    fill(o.age, [this] { return KV::ValueConfidence<unsigned int>(_bytes.bits<unsigned int>(), _bytes.anyFloat()); });
    fill(o.faceDetected, [this] { return _bytes.flag(); });
    fill(o.facialPoints, [this] { return _facialPoints(); });
    fill(o.voiceEmotion,
         [this] { return KV::VoiceEmotion(_scored(), _scored(), _scored(), _scored(), _scored(), _scored()); });
    fill(o.asrEmotion, [this] { return _bytes.anyFloat(); });
    fill(o.touchEmotion, [this] { return _bytes.bits<std::int32_t>(); });
    fill(o.contextEmotion, [this] { return KV::ContextEmotion(_bytes.bits<std::int32_t>(), _bytes.anyFloat()); });
    fill(o.speaking, [this] { return _bytes.flag(); });
    fill(o.robotHeadPosture, [this] { return KV::RobotHeadPosture(_bytes.angle(), _bytes.angle()); });
    return o;
  }

private:
  /// Near the present time, or any time at all.
  Time _time()
  {
    if (_bytes.below(16) == 0)
      return Time(nanoseconds(_bytes.bits<std::int64_t>()));
    const std::int64_t step = std::int64_t{100'000'000} * _bytes.bits<std::int8_t>();
    std::int64_t time = 0;
    return __builtin_add_overflow(_now.time_since_epoch().count(), step, &time) ? _now : Time(nanoseconds(time));
  }

  KV::ValueConfidence<float> _scored() { return {_bytes.anyFloat(), _bytes.anyFloat()}; }

  KV::Expressions _expressions()
  {
    KV::Expressions expressions;
    for (KV::ValueConfidence<float>* score :
         {&expressions.calm, &expressions.anger, &expressions.joy, &expressions.sorrow, &expressions.laughter,
          &expressions.excitement, &expressions.surprise})
      *score = _scored();
    return expressions;
  }

  KV::FacialPoints _facialPoints()
  {
    KV::FacialPoints points;
    const KV::FacialPoints::Point point({_bytes.anyFloat(), _bytes.anyFloat()}, _bytes.anyFloat());
    for (unsigned count = _bytes.below(13); count > 0; --count)
      points.setFacialPoint(static_cast<KV::PointDescription>(count - 1), point);
    return points;
  }

  ByteReader& _bytes;
  Time _now;
};

/// The library's objects for one robot.
struct Replica
{
  KV::SocialGraph graph;
  KV::KVEmotionRecorder recorder;
  KV::AmbianceState ambiance;
};

bool sameBits(float left, float right)
{
  return std::memcmp(&left, &right, sizeof(left)) == 0 || (std::isnan(left) && std::isnan(right));
}

bool sameBits(const KV::ValueConfidence<float>& left, const KV::ValueConfidence<float>& right)
{
  return sameBits(left.value, right.value) && sameBits(left.confidence, right.confidence);
}

bool isWithin(float value, float least)
{
  return std::isnan(value) || (value >= least && value <= 1.f);
}

/// Must hold for all readings; a NaN stays in a value, but never in a confidence.
void expectInRange(const KV::PersonState& state)
{
  expect(isWithin(state.personValence().value, -1.f), "the valence is in its range");
  expect(isWithin(state.personAttention().value, 0.f), "the attention is in its range");
  for (const float confidence : {state.personValence().confidence, state.personAttention().confidence,
                                 state.personUnsmoothedValenceBinary().confidence})
    expect(confidence >= 0.f && confidence <= 1.f, "confidences are in their range");
  const float ease = state.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription).level;
  expect(ease >= -0.5f && ease <= 0.5f, "the ease is in its range");
  const auto zone = static_cast<std::int32_t>(state.personAttentionState());
  expect(zone >= 0 && zone <= 9, "the zone is one of those there are");
  expect(state.personPleasureState() >= KV::PleasureUnknown && state.personPleasureState() <= KV::PleasurePositive,
         "the pleasure is one of those there are");
}

void expectSame(const KV::PersonState& left, const KV::PersonState& right)
{
  expect(sameBits(left.personValence(), right.personValence()), "replicas have one valence");
  expect(sameBits(left.personAttention(), right.personAttention()), "replicas have one attention");
  expect(left.personAttentionState() == right.personAttentionState(), "replicas have one zone");
  expect(left.personUnsmoothedValenceBinary().value == right.personUnsmoothedValenceBinary().value,
         "replicas have one unsmoothed valence");
  expect(sameBits(left.headHeight(), right.headHeight()), "replicas have one head height");
}

void expectTextAndCopies(const KV::Person& person)
{
  std::ostringstream text;
  text << person << person.personState;
  expect(!text.str().empty() && !person.personState.emotionLogMessage().empty(), "a person has a text");

  const ko::Value value = ko::Value::from(person);
  const auto type = ko::typeOf<KV::Person>();
  expect(ko::cbor::decode(ko::cbor::encode(value), type) == value, "a person comes back from CBOR");
  expect(ko::json::decode(ko::json::encode(value), type) == value, "a person comes back from JSON");
}

void expectSame(const Replica& left, const Replica& right)
{
  const std::vector<KV::Person> persons = left.graph.persons();
  const std::vector<KV::Person> others = right.graph.persons();
  expect(persons.size() == others.size(), "replicas know as many persons");
  for (std::size_t i = 0; i < persons.size(); ++i)
  {
    expect(persons[i].personID == others[i].personID, "replicas know the same persons");
    expectInRange(persons[i].personState);
    expectSame(persons[i].personState, others[i].personState);
  }
  expect(sameBits(left.ambiance.agitationLevel, right.ambiance.agitationLevel) && left.ambiance.agitationLevel >= 0.f &&
             left.ambiance.agitationLevel <= 1.f,
         "replicas have one agitation, in its range");
}

/// Reads calls from the bytes and makes them, on both replicas.
class Calls
{
public:
  explicit Calls(std::string_view input) : _bytes(input) {}

  void run()
  {
    for (int i = 0; i < mostCalls && !_bytes.atEnd(); ++i)
    {
      _one();
      expectSame(_plain, _watched);
    }
    for (const KV::Person& person : _plain.graph.persons())
      expectTextAndCopies(person);
  }

private:
  void _one()
  {
    switch (_bytes.below(16))
    {
      case 0:
        return _onBoth([id = _id()](Replica& replica) { replica.graph.add(id); });
      case 1:
        return _onBoth([id = _id()](Replica& replica) { replica.graph.remove(id); });
      case 2:
        return _age();
      case 3:
        return _record();
      case 4:
        return _onBoth([name = _scope(), samples = _bytes.bits<std::int8_t>()](Replica& replica) {
          replica.recorder.startRecording(name, samples);
        });
      case 5:
        return _stop();
      case 6:
        return _onBoth([activity = _bytes.anyFloat(), moves = _bytes.below(4)](Replica& replica) {
          for (unsigned i = 0; i < moves; ++i)
            replica.ambiance.incrementMovementDetected();
          replica.ambiance.updateAmbiance(activity);
        });
      case 7:
        return _setBoundary();
      case 8:
        return _clock.set(Time(nanoseconds(_bytes.bits<std::int64_t>())));
      case 9:
        return _clock.advance(seconds(_bytes.bits<std::int8_t>()));
      default:
        return _update();
    }
  }

  template <typename Call>
  void _onBoth(Call call)
  {
    call(_plain);
    call(_watched);
  }

  int _id() { return _bytes.below(8) == 0 ? _bytes.bits<std::int32_t>() : static_cast<int>(_bytes.below(3)); }

  std::string _scope() { return std::string(1 + 20 * _bytes.below(2), static_cast<char>('a' + _bytes.below(3))); }

  void _update()
  {
    _clock.advance(boost::chrono::milliseconds(_bytes.bits<std::uint8_t>()));
    const int id = _id();
    const KV::PersonObservation observation = ObservationMaker(_bytes, _clock.now()).make();
    _plain.graph.updateOrCreate(id, [&](KV::Person& person) { person.update(observation); });

    const KV::ScopedForceObserver observer(
        [](const KV::Force& force) { expect(!force.source.empty(), "a force has a source"); },
        [](const KV::ZoneChange& change) { expect(change.from != change.to, "a change of the zone is one"); });
    _watched.graph.updateOrCreate(id, [&](KV::Person& person) {
      person.updateMemory(observation);
      person._updateOnlineModels(observation);
    });
  }

  void _age()
  {
    _onBoth([id = _id()](Replica& replica) {
      replica.graph.update(id, [](KV::Person& person) { person.decreaseSinceNotSeen(); });
    });
  }

  void _record()
  {
    _onBoth([id = _id()](Replica& replica) {
      if (const boost::optional<KV::Person> person = replica.graph.find(id))
        replica.recorder.update_notMutexed(person->personState);
    });
  }

  void _stop()
  {
    const std::string scope = _scope();
    const auto plain = _plain.recorder.stopRecording(scope);
    const auto watched = _watched.recorder.stopRecording(scope);
    expect(plain.first == watched.first && plain.second.size() == watched.second.size(), "replicas have one verdict");
  }

  void _setBoundary()
  {
    const float boundary = _bytes.anyFloat();
    switch (_bytes.below(4))
    {
      case 0:
        return KV::PersonState::setBinaryBoundaryPositive(boundary);
      case 1:
        return KV::PersonState::setBinaryBoundaryNegative(boundary);
      case 2:
        return KV::PersonState::setBinaryBoundaryConfidence(boundary);
      default:
        return KV::AmbianceState::setBinaryBoundaryExcited(boundary);
    }
  }

  ByteReader _bytes;
  ko::ManualClock _clock{Time(seconds(1577836800))};
  ko::ScopedClockSource _scopeOfClock{_clock};
  KV::session::SavedBoundaries _boundaries;
  Replica _plain;
  Replica _watched;
};

}  // namespace

void fuzzCalls(std::string_view input)
{
  silenceLog();
  Calls(input).run();
}

}  // namespace fuzz
