#pragma once

#include "diagnostictext.hpp"

#include <cstddef>
#include <string_view>

namespace KV
{

/// Appends what a force says of itself, with the weight in percent; an empty source is left out.
///
/// Inlined always: where it is called, the name of the quantity is a constant.
__attribute__((always_inline)) inline void describeForce(DiagnosticText& text, std::string_view quantity, float target,
                                                         float weight, std::string_view source)
{
  constexpr std::size_t roomForTheRest = 70;  // "Applying  force  towards  ()" and two numbers
  text.append(quantity.size() + source.size() + roomForTheRest, [=](char* end) {
    end = put(put(put(end, "Applying "), quantity), " force ");
    end = put(writeSixDigits(end, 100.f * weight), " towards ");
    end = writeSixDigits(end, target);
    return source.empty() ? end : put(put(put(end, " ("), source), ")");
  });
}

}  // namespace KV
