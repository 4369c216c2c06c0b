#pragma once

#include "age.hpp"
#include "personmemoryprivate.hpp"
#include "softstep.hpp"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace KV
{

/// \file
/// The weights of remembered readings. An age is a whole number of milliseconds, so a weight is a function of an
/// integer and of a half-life: each is computed once by softStep(), and then read from a table.
///
/// Weights at the floor need no error function, and are not in the tables.
///
/// The tables belong to the process. They are filled as weights are needed, and their unused pages take no memory.
/// Threads share them without a lock: each entry is one atomic number, and all threads write the same number. Entries
/// are computed in the rounding mode of the thread that needs them first.

/// Returns softStep() of the age in seconds, without a table.
inline float weightOfAge(std::int64_t ageInMs, float halfLife)
{
  return softStep(secondsOf(ageInMs), halfLife);
}

/// Returns the half-life [s], which has no fraction of a millisecond, in milliseconds.
constexpr int inMilliseconds(float halfLife)
{
  return static_cast<int>(halfLife * 1000.f);
}

/// Returns the first age [ms] whose weight is at the floor, or at which readings are forgotten.
constexpr std::size_t endOfAgeWeights(float halfLife)
{
  std::int64_t age = 0;
  while (age <= readingHorizon.count() && !isAtSoftStepFloor(softStepArgument(secondsOf(age), halfLife)))
    ++age;
  return static_cast<std::size_t>(age);
}

/// The weights for one half-life, which is known when the library is compiled.
template <int halfLifeInMs>
class AgeWeights
{
public:
  static constexpr float halfLife = halfLifeInMs / 1000.f;  ///< [s]
  static constexpr std::size_t size = endOfAgeWeights(halfLife);

  /// Returns weightOfAge(); an age outside of the table is computed each time.
  static float at(std::int64_t ageInMs)
  {
    if (static_cast<std::uint64_t>(ageInMs) >= size)
      return weightOfAge(ageInMs, halfLife);
    std::atomic<float>& entry = _weights[static_cast<std::size_t>(ageInMs)];
    const float known = entry.load(std::memory_order_relaxed);
    if (known != 0.f)  // never a weight
      return known;
    const float weight = weightOfAge(ageInMs, halfLife);
    entry.store(weight, std::memory_order_relaxed);
    return weight;
  }

private:
  static std::array<std::atomic<float>, size> _weights;  // all 0 at first
};

template <int halfLifeInMs>
std::array<std::atomic<float>, AgeWeights<halfLifeInMs>::size> AgeWeights<halfLifeInMs>::_weights;

/// The weights for half-lives that readings bring along, as context emotions do.
///
/// An entry holds a weight together with the bits of its half-life, so that -0 and 0 differ, and a NaN is found. Ages
/// of one half-life never share an entry. Ages of two half-lives may share one; the later then replaces the earlier.
class LifetimeWeights
{
public:
  static constexpr std::size_t size = 32768;  ///< entries: the next power of two above contextHorizon

  /// Returns weightOfAge(); an age beyond the table is computed each time.
  static float at(std::int64_t ageInMs, float halfLife)
  {
    if (isAtSoftStepFloor(softStepArgument(secondsOf(ageInMs), halfLife)))
      return softStepFloor;
    if (static_cast<std::uint64_t>(ageInMs) >= size)
      return weightOfAge(ageInMs, halfLife);
    const std::uint64_t key = _bitsOf(halfLife);
    std::atomic<std::uint64_t>& entry = _entries[_indexOf(static_cast<std::uint64_t>(ageInMs), key)];
    const std::uint64_t known = entry.load(std::memory_order_relaxed);
    const auto knownWeight = static_cast<std::uint32_t>(known);
    if (known >> 32U == key && knownWeight != 0)  // an entry that was never written is 0, which is never a weight
      return _floatOf(knownWeight);
    const float weight = weightOfAge(ageInMs, halfLife);
    entry.store(key << 32U | _bitsOf(weight), std::memory_order_relaxed);
    return weight;
  }

private:
  /// Each half-life begins at another place of the table, so two of them seldom meet.
  static std::size_t _indexOf(std::uint64_t ageInMs, std::uint64_t key)
  {
    constexpr std::uint64_t multiplier = 0x9e3779b97f4a7c15;  // 2^64 / golden ratio: spreads the bits of the key
    return (ageInMs + (key * multiplier >> 40U)) % size;
  }

  static std::uint32_t _bitsOf(float number)
  {
    std::uint32_t bits = 0;
    static_assert(sizeof bits == sizeof number);
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
  }

  static float _floatOf(std::uint32_t bits)
  {
    float number = 0.f;
    std::memcpy(&number, &bits, sizeof number);
    return number;
  }

  static std::array<std::atomic<std::uint64_t>, size> _entries;  // all 0 at first
  static_assert(size > static_cast<std::size_t>(contextHorizon.count()));
};

inline std::array<std::atomic<std::uint64_t>, LifetimeWeights::size> LifetimeWeights::_entries;

}  // namespace KV
