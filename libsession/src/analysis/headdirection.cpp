#include <skeigiot/session/headdirection.hpp>

namespace KV::session
{

HeadDirection directionOf(const KV::HeadPosture& posture)
{
  if (posture.isUp())
    return HeadDirection::Up;
  if (posture.isDown())
    return HeadDirection::Down;
  if (posture.isLeft())
    return HeadDirection::Left;
  return posture.isRight() ? HeadDirection::Right : HeadDirection::Straight;
}

std::string headDirectionName(HeadDirection direction)
{
  switch (direction)
  {
    case HeadDirection::Up:
      return "head up";
    case HeadDirection::Down:
      return "head down";
    case HeadDirection::Left:
      return "head left";
    case HeadDirection::Right:
      return "head right";
    case HeadDirection::Straight:
      break;
  }
  return "straight";
}

}  // namespace KV::session
