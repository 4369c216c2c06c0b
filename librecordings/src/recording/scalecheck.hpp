#pragma once

#include <skeigiot/readings.hpp>

#include <string>

/// \file
/// Numbers of a table in another scale than that of their column: percent where shares are expected, millimetres where
/// metres are. implausible.hpp is for steps of programs, which may hold any number that the library accepts.

namespace KV::recordings
{

/// Returns whether a number is outside of its scale by more than the scale's width. Scores a little beyond 1 are usual.
bool isFarFrom(double value, const KV::Scale& scale);

/// Describes the range of the number, and its probable unit.
std::string farFromText(double value, const KV::Scale& scale);

}  // namespace KV::recordings
