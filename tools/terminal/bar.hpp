#pragma once

#include <string>

namespace KV::tools
{

/// Returns a bar of `width` cells that is filled from the left in proportion to a value in [0, 1], to half a cell.
///
/// A value outside is clamped; NaN is an empty bar.
std::string bar(double value, int width);

/// Returns a bar of 2 * `halfWidth` + 1 cells that grows from its centre line, to the left for a negative value, in
/// proportion to a value in [-1, 1], to half a cell.
std::string centredBar(double value, int halfWidth);

}  // namespace KV::tools
