#pragma once

#include <cstdint>

namespace ko::human
{

/// The attention zones of the human-perception vocabulary: where a person looks, relative to the robot.
///
/// "Left" and "right" are the person's own.
enum class AttentionState : std::int32_t
{
  Unknown = 0,  ///< no zone is known
  LookingAtRobot = 1,
  LookingUp = 2,
  LookingDown = 3,
  LookingLeft = 4,
  LookingRight = 5,
  LookingUpLeft = 6,
  LookingUpRight = 7,
  LookingDownLeft = 8,
  LookingDownRight = 9
};

}  // namespace ko::human
