// Opens a recording, and counts its steps and the persons who are seen in them.

#include <skeigiot/recordings/recording.hpp>

#include <iostream>

int main(int argc, char** argv)
{
  if (argc != 2)
    return 2;

  try
  {
    const auto reader = KV::recordings::openRecording(argv[1], "", {});
    int steps = 0;
    int seen = 0;
    while (const auto step = reader->next())
    {
      ++steps;
      if (step->person && step->seen)
        ++seen;
    }
    std::cout << steps << " steps, a person seen in " << seen << '\n';
  }
  catch (const KV::recordings::Error& error)
  {
    std::cout << "cannot be read: " << error.place().file << '\n';
    return 1;
  }
}
