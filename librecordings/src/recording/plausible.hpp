#pragma once

#include <skeigiot/readings.hpp>

#include <string>

/// \file
/// Numbers that are not what their reader takes them for: percent where shares are expected, milliseconds where seconds
/// are. They would be read without a word, and spoil the estimate.

namespace KV::recordings
{

/// Tells whether a number lies further outside of its scale than the scale is wide. Scores a little beyond 1 are usual.
bool isImplausible(double value, const KV::Scale& scale);

/// Says how far the number is from its range, and what it looks like.
std::string implausibleText(double value, const KV::Scale& scale);

/// Says what a number looks like that cannot be seconds; empty if nothing is likely.
std::string likelyUnitOfTime(double value);

/// [s] Rows of a recording whose times count from its start are not further apart.
constexpr double longestPause = 1e6;

}  // namespace KV::recordings
