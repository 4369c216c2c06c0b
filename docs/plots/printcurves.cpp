// Prints the curves that docs/how-it-works.md shows, as lines of "curve,x,y". All of them are read from the library:
// from forces that acted on persons, from states, and from scores.

#include <skeigiot/classification/logregmoodscore.hpp>
#include <skeigiot/classification/moodclass.hpp>
#include <skeigiot/forceobserver.hpp>
#include <skeigiot/person.hpp>

#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using boost::chrono::milliseconds;

const ko::SystemClock::time_point start(boost::chrono::hours(24 * 365 * 50));

void print(const std::string& curve, float x, float y)
{
  std::cout << curve << ',' << x << ',' << y << '\n';
}

/// A person with given observations, and the forces of one source on them in the last update.
class Trial
{
public:
  Trial(std::string_view source, KV::Quantity quantity) : _source(source), _quantity(quantity) {}

  void update(const KV::PersonObservation& observation)
  {
    _force = {};
    const KV::ScopedForceObserver observer([this](const KV::Force& force) {
      if (force.source == _source && force.quantity == _quantity)
        _force = force;
    });
    person.update(observation);
  }

  float weight() const { return _force.weight; }
  float target() const { return _force.target; }

  KV::Person person{1};
  ko::ManualClock clock{start};

private:
  const std::string _source;
  const KV::Quantity _quantity;
  KV::Force _force;
  ko::ScopedClockSource _scope{clock};
};

/// The weight, or the target, of the force of a reading with the given `age`.
float afterwards(Trial& trial, const KV::PersonObservation& observation, milliseconds age, bool isTarget)
{
  trial.update(observation);
  trial.clock.advance(age);
  trial.update({});
  return isTarget ? trial.target() : trial.weight();
}

void printAges(const std::string& curve, std::string_view source, KV::Quantity quantity,
               const KV::PersonObservation& observation, int longestMs, bool isTarget = false)
{
  constexpr int step = 50;
  for (int age = step; age <= longestMs; age += step)
  {
    Trial trial(source, quantity);
    print(curve, static_cast<float>(age) / 1000.f, afterwards(trial, observation, milliseconds(age), isTarget));
  }
}

KV::FacialPoints clearPoints()
{
  KV::FacialPoints points;
  for (int i = 0; i < 12; ++i)
    points.setFacialPoint(static_cast<KV::PointDescription>(i), {{0.f, 0.f}, 1.f});
  return points;
}

void printAges()
{
  KV::PersonObservation touch;
  touch.touchEmotion = KV::Timestamped(start, std::int32_t{1});
  printAges("age of a touch or of words", "Touch emotion", KV::ValenceQuantity, touch, 7000);

  KV::PersonObservation context;
  context.contextEmotion = KV::Timestamped(start, KV::ContextEmotion(1, 2.f));
  printAges("age of a context emotion of 2 s", "Context emotion", KV::ValenceQuantity, context, 10000);
  context.contextEmotion = KV::Timestamped(start, KV::ContextEmotion(1, 6.f));
  printAges("age of a context emotion of 6 s", "Context emotion", KV::ValenceQuantity, context, 10000);

  KV::PersonObservation speaking;
  speaking.speaking = KV::Timestamped(start, true);
  printAges("age of speaking", "User is speaking", KV::ValenceConfidenceQuantity, speaking, 5000);

  KV::PersonObservation smile;
  smile.smile = KV::Timestamped(start, KV::Smile(0.f, 0.f));
  printAges("silence of all sources", "No observation", KV::ValenceQuantity, smile, 7000);

  KV::PersonObservation points;
  points.facialPoints = KV::Timestamped(start, clearPoints());
  printAges("age of the facial points", "Points confidence", KV::ValenceConfidenceQuantity, points, 7000, true);
}

/// The target of the attention of a person who has looked in this direction from the start.
float attentionTarget(const KV::HeadPosture& head, const KV::Gaze& gaze)
{
  Trial trial("Gaze and head based attention", KV::AttentionQuantity);
  KV::PersonObservation observation;
  observation.headPosture = KV::Timestamped(start, head);
  observation.gaze = KV::Timestamped(start, gaze);
  trial.update(observation);
  return trial.target();
}

void printAttention()
{
  constexpr int finest = 4;  // steps in a degree
  for (int i = 0; i <= 50 * finest; ++i)
  {
    const float angle = static_cast<float>(i) / finest;
    print("head and eyes turn", angle, attentionTarget({angle, 0.f, 0.f}, {-angle, 0.f}));
    print("head turns and eyes stay", angle, attentionTarget({angle, 0.f, 0.f}, {0.f, 0.f}));
    print("eyes turn and head stays", angle, attentionTarget({0.f, 0.f, 0.f}, {angle, 0.f}));
  }
}

void printSensorLimits()
{
  for (int centimetres = 100; centimetres <= 280; ++centimetres)
  {
    const float metres = static_cast<float>(centimetres) / 100.f;
    KV::PersonObservation observation;
    observation.smile = KV::Timestamped(start, KV::Smile(0.f, 0.f));
    observation.touchEmotion = KV::Timestamped(start, std::int32_t{1});

    observation.distance = KV::Timestamped(start, metres);
    Trial far("Distance limitation", KV::ValenceConfidenceQuantity);
    far.update(observation);
    print("distance", metres, far.target());

    observation.headHeight = KV::Timestamped(start, metres);
    Trial high("Height limitation", KV::ValenceConfidenceQuantity);
    high.update(observation);
    print("height of the head", metres, high.target());
  }
}

void printMoods(const std::string& face, const std::function<std::vector<float>(float)>& features)
{
  using KV::classification::LogregMoodScore;
  using KV::classification::MoodClass;
  const LogregMoodScore positive(LogregMoodScore::COEFFICIENT_POS());
  const LogregMoodScore neutral(LogregMoodScore::COEFFICIENT_NEU());
  const LogregMoodScore negative(LogregMoodScore::COEFFICIENT_NEG());
  for (MoodClass mood :
       {MoodClass("positive", 1, positive), MoodClass("neutral", 0, neutral), MoodClass("negative", -1, negative)})
  {
    for (int percent = 0; percent <= 100; ++percent)
    {
      const float x = static_cast<float>(percent) / 100.f;
      mood.calculateScore(features(x));
      print(face + ": " + mood.name, x, mood.score);
    }
  }
}

void printNotSeen()
{
  KV::PersonState state(1.f, 1.f, 1.f, 1.f);
  for (int cycle = 0; cycle <= 20; ++cycle)
  {
    const auto x = static_cast<float>(cycle);
    print("not seen: valence or attention", x, state.personValence().value);
    print("not seen: confidence", x, state.personValence().confidence);
    state.decreaseSinceNotSeen();
  }
}

}  // namespace

int main()
{
  std::cout << "curve,x,y\n";
  printAges();
  printAttention();
  printSensorLimits();
  printMoods("joy grows as calm fades", [](float x) { return std::vector<float>{0.f, 1.f - x, x, 0.f, 0.f}; });
  printMoods("anger grows as calm fades", [](float x) { return std::vector<float>{0.f, 1.f - x, 0.f, x, 0.f}; });
  printNotSeen();
}
