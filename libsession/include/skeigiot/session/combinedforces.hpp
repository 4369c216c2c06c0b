#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/explanation.hpp>

#include <cstddef>
#include <vector>

namespace KV::session
{

/// Forces that acted on a quantity one right after the other, as one that does the same.
struct SKEIGIOT_API CombinedForce
{
  ActedForce force;       ///< from before the first force to after the last
  std::size_t count = 1;  ///< of how many forces it is made; at least 1
};

/// Combines forces of one source that no other source interrupts at their quantity, such as those of all touches that
/// are remembered.
///
/// Two pulls of weights v and w are one of weight 1 - (1 - v) (1 - w), at a target between theirs.
SKEIGIOT_API std::vector<CombinedForce> combined(const std::vector<ActedForce>& forces);

}  // namespace KV::session
