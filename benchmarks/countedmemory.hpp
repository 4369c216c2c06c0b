#pragma once

#include <cstddef>

namespace benchmarks
{

/// Returns how many bytes operator new has given to the process and not got back. Exact, unlike what malloc tells,
/// which counts the blocks that it keeps at hand.
std::size_t bytesInUse();

}  // namespace benchmarks
