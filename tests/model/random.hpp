#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>

namespace model
{

/// Random numbers that are the same with every standard library.
class Random
{
public:
  explicit Random(std::uint64_t seed) : _engine(seed) {}

  bool chance(double probability) { return _fraction() < probability; }

  /// Both ends included.
  std::int64_t between(std::int64_t lowest, std::int64_t highest)
  {
    const auto count = static_cast<std::uint64_t>(highest - lowest) + 1;
    return lowest + static_cast<std::int64_t>(_engine() % count);
  }

  float uniform(float lowest, float highest) { return lowest + static_cast<float>(_fraction()) * (highest - lowest); }

  template <typename T>
  T oneOf(std::initializer_list<T> choices)
  {
    return *(choices.begin() + between(0, static_cast<std::int64_t>(choices.size()) - 1));
  }

private:
  double _fraction() { return static_cast<double>(_engine() >> 11) * 0x1p-53; }  // in [0, 1)

  std::mt19937_64 _engine;
};

}  // namespace model
