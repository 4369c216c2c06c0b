#include <skeigiot/socialgraph.hpp>

#include <iostream>

int main()
{
  const auto now = ko::SystemClock::now();
  KV::Expressions expressions;
  expressions.joy = {0.7f, 0.9f};  // a value, and the confidence in it
  KV::PersonObservation seen;      // one perception cycle: every reading is optional, and has its own time
  seen.expressions = KV::Timestamped(now, expressions);
  seen.headPosture = KV::Timestamped(now, KV::HeadPosture(4.f, -2.f, 0.f));  // yaw, pitch, roll [deg]
  seen.gaze = KV::Timestamped(now, KV::Gaze(1.f, 2.f));                      // yaw, pitch [deg]

  KV::SocialGraph graph;  // the persons whom the robot knows; safe to use from several threads
  graph.updateOrCreate(7, [&seen](KV::Person& person) { person.update(seen); });
  const KV::PersonState state = graph.find(7)->personState;
  std::cout << "valence " << state.personValence().value << ", attention " << state.personAttention().value << ", "
            << state.personAttentionZone() << '\n';
}
