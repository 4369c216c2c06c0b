#pragma once

#include <skeigiot/readings.hpp>

#include <string>

/// \file
/// Numbers that are not what their reader takes them for: percent where shares are expected, millimetres where metres
/// are. They would be read without a word, and spoil the estimate.

namespace KV::recordings
{

/// Tells whether a number lies further outside of its scale than the scale is wide. Scores a little beyond 1 are usual.
bool isImplausible(double value, const KV::Scale& scale);

/// Says how far the number is from its range, and what it looks like.
std::string implausibleText(double value, const KV::Scale& scale);

}  // namespace KV::recordings
