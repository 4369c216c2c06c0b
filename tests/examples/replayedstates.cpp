// Replays a recording, and prints its states as examples/livefaces.cpp prints them.
//
// usage: replayedstates RECORDING

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/player.hpp>

#include <cstdio>
#include <iostream>
#include <string>

namespace
{

class Printer : public KV::session::SessionObserver
{
public:
  void personUpdated(const KV::session::Snapshot& state) override
  {
    std::printf("%lld %d %a %a %a %a %d\n", static_cast<long long>(state.time.time_since_epoch().count()), state.person,
                static_cast<double>(state.valence.value), static_cast<double>(state.valence.confidence),
                static_cast<double>(state.attention.value), static_cast<double>(state.attention.confidence),
                static_cast<int>(state.pleasure));
  }
};

}  // namespace

int main(int argc, char** argv)
{
  if (argc != 2)
    return 2;
  const std::string path = argv[1];
  Printer printer;
  const auto outcome =
      KV::session::Player({}).play([&path] { return KV::recordings::openRecording(path, "", {}); }, {&printer});
  if (outcome.error)
    std::cerr << outcome.error->what() << '\n';
  return outcome.error ? 1 : 0;
}
