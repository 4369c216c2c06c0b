#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/headposture.hpp>

#include <array>
#include <cstddef>
#include <string>

namespace KV::session
{

/// The direction of a head for the body language. Up and left count as uneasy, down and right as at ease.
enum class HeadDirection
{
  Up,       ///< up, whatever the yaw
  Down,     ///< down, whatever the yaw
  Left,     ///< to the person's own left
  Right,    ///< to the person's own right
  Straight  ///< none of them
};

/// How often each direction was seen, in the order of the enumeration.
using HeadDirections = std::array<std::size_t, 5>;

/// Returns what the body language sees in the posture; Straight for angles that are no numbers.
SKEIGIOT_API HeadDirection directionOf(const KV::HeadPosture& posture);

/// Returns "head up", "head down", "head left", "head right" or "straight".
SKEIGIOT_API std::string headDirectionName(HeadDirection direction);

}  // namespace KV::session
