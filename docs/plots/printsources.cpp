// Prints the sources whose forces act in one update, in their order: a line for each update, names with "|" between
// them.

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/person.hpp>

#include <iostream>
#include <limits>
#include <string>

namespace
{

const ko::SystemClock::time_point start(boost::chrono::hours(24 * 365 * 50));

KV::FacialPoints points()
{
  KV::FacialPoints seen;
  seen.setFacialPoint(KV::FacialPoint0, {{0.f, 0.f}, 1.f});
  return seen;
}

KV::PersonObservation everything()
{
  KV::PersonObservation seen;
  seen.headHeight = KV::Timestamped(start, 1.6f);
  seen.distance = KV::Timestamped(start, 1.f);
  seen.gaze = KV::Timestamped(start, KV::Gaze(0.f, 0.f));
  seen.smile = KV::Timestamped(start, KV::Smile(1.f, 1.f));
  seen.expressions = KV::Timestamped(start, KV::Expressions());
  seen.headPosture = KV::Timestamped(start, KV::HeadPosture(0.f, 0.f, 0.f));
  seen.facialPoints = KV::Timestamped(start, points());
  seen.voiceEmotion = KV::Timestamped(start, KV::VoiceEmotion());
  seen.asrEmotion = KV::Timestamped(start, 1.f);
  seen.touchEmotion = KV::Timestamped(start, std::int32_t{1});
  seen.contextEmotion = KV::Timestamped(start, KV::ContextEmotion(1, 2.f));
  seen.robotHeadPosture = KV::Timestamped(start, KV::RobotHeadPosture(0.f, 0.f));
  return seen;
}

const char* name(KV::Quantity quantity)
{
  switch (quantity)
  {
    case KV::ValenceQuantity:
      return "valence";
    case KV::ValenceConfidenceQuantity:
      return "valence confidence";
    case KV::AttentionQuantity:
      return "attention";
    case KV::AttentionConfidenceQuantity:
      return "attention confidence";
    default:
      return "unsmoothed";
  }
}

void printQuantities(const KV::PersonObservation& observation)
{
  KV::Person person(1);
  const KV::ScopedForceObserver observer(
      [](const KV::Force& force) { std::cout << force.source << '|' << name(force.quantity) << '\n'; });
  person.update(observation);
}

void printUpdate(const KV::PersonObservation& observation)
{
  KV::Person person(1);
  std::string last;
  std::string line;
  {
    const KV::ScopedForceObserver observer([&](const KV::Force& force) {
      if (force.source == last)
        return;
      last = std::string(force.source);
      line += (line.empty() ? "" : "|") + last;
    });
    person.update(observation);
  }
  std::cout << line << '\n';
}

}  // namespace

int main(int argc, char** argv)
{
  ko::ManualClock clock(start);
  const ko::ScopedClockSource scope(clock);
  const bool wantsQuantities = argc > 1 && std::string(argv[1]) == "--quantities";
  const auto print = wantsQuantities ? printQuantities : printUpdate;

  KV::PersonObservation seen = everything();
  print(seen);
  seen.expressions->value.joy.value = std::numeric_limits<float>::quiet_NaN();  // no class wins
  print(seen);
  seen.speaking = KV::Timestamped(start, true);
  print(seen);
  print({});
}
