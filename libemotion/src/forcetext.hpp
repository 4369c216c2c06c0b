#pragma once

#include "diagnostictext.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace KV
{

/// The weight that a thread wrote last, and its text once it was written twice.
struct WrittenWeight
{
  std::uint32_t bits = 0;  // of the weight: -0 is written otherwise than 0, and a NaN is found
  std::uint32_t size = 0;  // of the text, which is not empty
  std::array<char, sixDigitsSize> text{};
};

/// Writes the weight in percent. Forces of old readings have the same weight one after the other: it is copied then.
///
/// The text is kept only where a weight repeats, since a copy of what was just written has to wait for the writing.
inline char* writeWeight(char* end, float weight, WrittenWeight& last)
{
  std::uint32_t bits = 0;
  static_assert(sizeof bits == sizeof weight);
  std::memcpy(&bits, &weight, sizeof bits);
  if (bits != last.bits)
  {
    last.bits = bits;
    last.size = 0;
    return writeSixDigits(end, 100.f * weight);
  }
  if (last.size == 0)
    last.size = static_cast<std::uint32_t>(writeSixDigits(last.text.data(), 100.f * weight) - last.text.data());
  std::memcpy(end, last.text.data(), sixDigitsSize);
  return end + last.size;
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

/// Appends what a force says of itself, with the weight in percent; an empty source is left out.
///
/// `last` is what the thread keeps for its next force. Inlined always: where it is called, the name of the quantity is
/// a constant.
__attribute__((always_inline)) inline void describeForce(DiagnosticText& text, std::string_view quantity, float target,
                                                         float weight, std::string_view source, WrittenWeight& last)
{
  constexpr std::size_t roomForTheRest = 70;  // "Applying  force  towards  ()" and two numbers
  text.append(quantity.size() + source.size() + roomForTheRest, [=, &last](char* end) {
    end = put(put(put(end, "Applying "), quantity), " force ");
    end = put(writeWeight(end, weight, last), " towards ");
    end = writeTarget(end, target);
    return source.empty() ? end : put(put(put(end, " ("), source), ")");
  });
}

}  // namespace KV
