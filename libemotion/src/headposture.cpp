#include <skeigiot/headposture.hpp>

#include <iomanip>
#include <ostream>

namespace KV
{

void HeadPosture::setHeadPosture(float yaw, float pitch, float roll)
{
  setYaw(yaw);
  setPitch(pitch);
  setRoll(roll);
}

namespace
{

const char* pitchWord(const HeadPosture& posture)
{
  return posture.isUp() ? "Up" : posture.isDown() ? "Down" : "Straight pitch";
}

const char* yawWord(const HeadPosture& posture)
{
  return posture.isLeft() ? "Left" : posture.isRight() ? "Right" : "Straight yaw";
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const HeadPosture& posture)
{
  constexpr int angleWidth = 5;
  stream << std::fixed << std::setprecision(1);
  stream << "θ(" << std::setw(angleWidth) << posture.yaw() << "°) ";
  stream << "φ(" << std::setw(angleWidth) << posture.pitch() << "°) ";
  stream << "ψ(" << std::setw(angleWidth) << posture.roll() << "°) ";
  return stream << std::setw(14) << pitchWord(posture) << " " << std::setw(12) << yawWord(posture);
}

}  // namespace KV
