#pragma once

#include <cstddef>

namespace benchmarks
{

/// Returns how many bytes operator new has given to the process and not got back. Exact, unlike the figures of malloc,
/// which include the blocks that malloc keeps for reuse.
std::size_t bytesInUse();

}  // namespace benchmarks
