// A front end of your own: action units and head poses, frame by frame, become an estimate, and a log that replays to
// the same estimate, bit for bit.
//
// usage: livefaces LOG
// Writes the log as JSON Lines, and prints after each update, which is 10 times a second: time [ns], person, valence
// and attention with their confidences (exact, in hexadecimal), and the pleasure state.

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/session/pacer.hpp>
#include <skeigiot/socialgraph.hpp>

#include <boost/chrono/duration.hpp>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>

namespace
{
constexpr int person = 7;
constexpr int frames = 180;

// The readings of a camera and a face analyser in one frame: a person turns to the camera and smiles. The face is lost
// for some frames.
KV::recordings::Face faceIn(int frame)
{
  const auto phase = static_cast<float>(frame) * 0.07f;
  KV::recordings::Face face;
  face.confidence = frame >= 50 && frame < 60 ? 0.2f : 0.95f;
  face.pose.position = {0.31, 0.12, 1.1};                                     // [m] right, down, forward of the camera
  face.pose.headPosture = KV::HeadPosture(25.f * std::cos(phase), 4.f, 1.f);  // [deg] right, up, right shoulder
  face.pose.gaze = KV::Gaze(-20.f * std::cos(phase), 3.f);                    // [deg] left, up
  face.actionUnits.emplace();
  face.actionUnits->fullScale = 1.f;  // this analyser gives shares
  face.actionUnits->intensity[6] = 0.5f + 0.4f * std::sin(phase);
  face.actionUnits->intensity[12] = 0.6f + 0.3f * std::sin(phase);
  return face;
}

void show(ko::SystemClock::time_point time, const KV::PersonState& state)
{
  const auto valence = state.personValence();
  const auto attention = state.personAttention();
  std::printf("%lld %d %a %a %a %a %d\n", static_cast<long long>(time.time_since_epoch().count()), person,
              static_cast<double>(valence.value), static_cast<double>(valence.confidence),
              static_cast<double>(attention.value), static_cast<double>(attention.confidence),
              static_cast<int>(state.personPleasureState()));
}

}  // namespace

int main(int argc, char** argv)
{
  if (argc != 2)
  {
    std::cerr << "usage: livefaces LOG\n";
    return 2;
  }
  std::ofstream log(argv[1]);
  KV::recordings::JsonLinesWriter writer(log);

  KV::recordings::ReadingOptions options;
  options.cameraHeight = 1.3f;  // [m]
  const KV::recordings::FaceAdapter adapter(options);
  KV::recordings::RestingFace rest;  // of this person, learned as faces come

  // In each cycle the clock of this thread shows the time of the frame, as in a replay. Otherwise time would pass
  // during an update, so the estimate, and with it the replay, would differ by some bits.
  ko::SystemClock::time_point time = ko::SystemClock::now();
  ko::ManualClock clock(time);
  const ko::ScopedClockSource scope(clock);

  KV::SocialGraph graph;
  KV::session::Pacer pacer;  // the camera is too fast for the estimate: updates 10 times a second
  for (int frame = 0; frame < frames; ++frame)
  {
    time += boost::chrono::milliseconds(33);
    clock.set(time);

    const auto observation = adapter.observe(faceIn(frame), time, rest);  // nothing: the face is not tracked
    KV::recordings::Step step;
    step.time = time;
    step.person = person;
    step.seen = observation.has_value();
    step.observation = observation.value_or(KV::PersonObservation());
    writer.write(step);

    graph.updateOrCreate(person, [&](KV::Person& somebody) {
      const bool updated = step.seen ? pacer.take(somebody, step.observation) : pacer.takeNotSeen(somebody);
      if (updated)
        show(time, somebody.personState);
    });
  }
  graph.update(person, [&](KV::Person& somebody) {
    if (pacer.finish(somebody))
      show(time, somebody.personState);
  });
  log.flush();
  return log ? 0 : 1;
}
