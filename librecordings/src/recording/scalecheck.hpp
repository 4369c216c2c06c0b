#pragma once

#include <skeigiot/readings.hpp>

#include <string>

/// \file
/// Numbers of a table that are not what their column takes them for: percent where shares are expected, millimetres
/// where metres are. implausible.hpp is for steps of programs, which may hold any number that the library takes.

namespace KV::recordings
{

/// Tells whether a number lies further outside of its scale than the scale is wide. Scores a little beyond 1 are usual.
bool isFarFrom(double value, const KV::Scale& scale);

/// Says how far the number is from its range, and what it looks like.
std::string farFromText(double value, const KV::Scale& scale);

}  // namespace KV::recordings
