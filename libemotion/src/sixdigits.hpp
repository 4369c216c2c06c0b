#pragma once

#include <cstddef>

namespace KV
{

/// How much room writeSixDigits() needs; the longest text, "-1.23457e+38", is shorter.
constexpr std::size_t sixDigitsSize = 16;

/// Writes `number` as std::to_chars does in general notation with a precision of six, and returns the end of the text.
///
/// Parts of an estimate lie in [0.0001, 999999.5), where whole numbers of 64 bits have room for exact arithmetic on six
/// digits of a float; there it takes about a sixth of the time. benchmarks/everyfloat.cpp compares the two for every
/// float.
///
/// \pre There is room for sixDigitsSize characters; those after the returned end may be overwritten.
char* writeSixDigits(char* first, float number);

}  // namespace KV
