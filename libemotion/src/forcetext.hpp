#pragma once

#include "diagnostictext.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace KV
{

/// A weight, and its text in percent.
struct WrittenWeight
{
  std::uint32_t bits = 0;  // of the weight: -0 is written differently from 0, and a NaN is found
  std::uint32_t size = 0;  // of the text, which is not empty; 0 if it was not kept
  std::array<char, sixDigitsSize> text{};

  bool isOf(float weight) const { return bits == bitsOf(weight); }

  void write(float weight)
  {
    bits = bitsOf(weight);
    size = static_cast<std::uint32_t>(writeSixDigits(text.data(), 100.f * weight) - text.data());
  }

  void takeWithoutText(float weight)
  {
    bits = bitsOf(weight);
    size = 0;
  }

  /// Copies the text, and returns the end of the copy.
  char* copyTo(char* place) const
  {
    std::memcpy(place, text.data(), sixDigitsSize);
    return place + size;
  }

private:
  static std::uint32_t bitsOf(float weight)
  {
    std::uint32_t result = 0;
    static_assert(sizeof result == sizeof weight);
    std::memcpy(&result, &weight, sizeof result);
    return result;
  }
};

/// Writes the weight in percent, after a force with the weight `last`. Consecutive forces of old readings have equal
/// weights: then the text is copied.
///
/// The text is kept only where a weight repeats, since a copy of a text just written has to wait for the writing.
inline char* writeWeight(char* end, float weight, WrittenWeight& last)
{
  if (!last.isOf(weight))
  {
    last.takeWithoutText(weight);
    return writeSixDigits(end, 100.f * weight);
  }
  if (last.size == 0)
    last.write(weight);
  return last.copyTo(end);
}

/// Writes the target of a force. Most are 1 or -1, which need no formatting.
inline char* writeTarget(char* end, float target)
{
  if (target == 1.f)
    return put(end, "1");
  if (target == -1.f)
    return put(end, "-1");
  return writeSixDigits(end, target);
}

/// Appends the description of a force; `writeWeight` writes the weight in percent, and an empty source is left out.
///
/// Inlined always: the name of the quantity, and the source of many forces, are constants at each call.
template <typename WriteWeight>
__attribute__((always_inline)) inline void describeForce(DiagnosticText& text, std::string_view quantity, float target,
                                                         std::string_view source, WriteWeight writeWeight)
{
  constexpr std::size_t roomForTheRest = 70;  // "Applying  force  towards  ()" and two numbers
  text.append(quantity.size() + source.size() + roomForTheRest, [=](char* end) {
    end = put(put(put(end, "Applying "), quantity), " force ");
    end = put(writeWeight(end), " towards ");
    end = writeTarget(end, target);
    return source.empty() ? end : put(put(put(end, " ("), source), ")");
  });
}

/// As above; `last` is kept by the thread for its next force.
__attribute__((always_inline)) inline void describeForce(DiagnosticText& text, std::string_view quantity, float target,
                                                         float weight, std::string_view source, WrittenWeight& last)
{
  describeForce(text, quantity, target, source, [=, &last](char* end) { return writeWeight(end, weight, last); });
}

}  // namespace KV
