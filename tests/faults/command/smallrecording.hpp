#pragma once

#include <cstdint>
#include <string>

namespace faults
{

/// Returns a recording of our own format with so many steps about one person, a tenth of a second apart.
inline std::string recordingOf(int steps)
{
  constexpr std::int64_t begin = 1577836800000000000;
  std::string text;
  for (int i = 0; i < steps; ++i)
    text += R"({"time":)" + std::to_string(begin + i * std::int64_t{100000000}) +
            R"(,"person":3,"observation":{"distance":{"value":1.)" + std::to_string(i % 10) +
            R"(},"headPosture":{"yaw":-4.5,"pitch":)" + std::to_string(i % 7) + R"(,"roll":0},)" +
            R"("gaze":{"yaw":2,"pitch":1},"smile":{"value":0.)" + std::to_string(i % 9) + R"(,"confidence":0.9}}})" +
            "\n";
  return text;
}

}  // namespace faults
