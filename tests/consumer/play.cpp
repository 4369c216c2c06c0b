// Plays a recording, and prints each update of a person.

#include <skeigiot/session/player.hpp>

#include <iostream>

namespace
{

class UpdateLines final : public KV::session::SessionObserver
{
public:
  void personUpdated(const KV::session::Snapshot& person) override
  {
    std::cout << person.person << (person.seen ? " seen" : " not seen") << ", attention " << person.attention.value
              << '\n';
  }
};

}  // namespace

int main(int argc, char** argv)
{
  if (argc != 2)
    return 2;

  UpdateLines lines;
  const KV::session::Player player{KV::session::PlayerOptions()};
  const auto outcome = player.play([path = argv[1]] { return KV::recordings::openRecording(path, "", {}); }, {&lines});

  if (outcome.error)
    std::cout << "cannot be read: " << outcome.error->place().file << '\n';
  return outcome.error ? 1 : 0;
}
