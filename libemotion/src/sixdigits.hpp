#pragma once

#include <cstddef>

namespace KV
{

/// How much room writeSixDigits() needs; the longest text, "-1.23457e+38", is shorter.
constexpr std::size_t sixDigitsSize = 16;

/// Writes `number` as std::to_chars does in general notation with a precision of six, and returns the end of the text.
///
/// What an estimate consists of lies in [0.0001, 999999.5), where double precision has room for exact arithmetic on six
/// digits of a float; there it takes about a sixth of the time, which every force pays twice. benchmarks/everyfloat.cpp
/// compares the two for every float there is.
///
/// \pre There is room for sixDigitsSize characters; those behind the returned end may be written to.
char* writeSixDigits(char* first, float number);

}  // namespace KV
