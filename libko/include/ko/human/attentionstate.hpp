#pragma once

#include <cstdint>

namespace ko::human
{

/// The attention zones of the human-perception vocabulary: where a person looks, relative to the robot.
///
/// "Left" and "right" are the person's own.
enum class AttentionState : std::int32_t
{
  Unknown = 0,          ///< no zone is known
  LookingAtRobot = 1,   ///< at the robot
  LookingUp = 2,        ///< up
  LookingDown = 3,      ///< down
  LookingLeft = 4,      ///< to the own left
  LookingRight = 5,     ///< to the own right
  LookingUpLeft = 6,    ///< up and to the own left
  LookingUpRight = 7,   ///< up and to the own right
  LookingDownLeft = 8,  ///< down and to the own left
  LookingDownRight = 9  ///< down and to the own right
};

}  // namespace ko::human
