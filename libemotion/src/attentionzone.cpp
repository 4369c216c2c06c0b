#include "personstateprivate.hpp"

#include "forcewatch.hpp"

#include <boost/thread/lock_guard.hpp>

#include <algorithm>
#include <array>
#include <cstddef>

namespace KV
{

using ko::human::AttentionState;

// clang-format off
const std::array<AttentionState, 9> attentionZones = {
    AttentionState::LookingUpLeft,   AttentionState::LookingUp,      AttentionState::LookingUpRight,
    AttentionState::LookingLeft,     AttentionState::LookingAtRobot, AttentionState::LookingRight,
    AttentionState::LookingDownLeft, AttentionState::LookingDown,    AttentionState::LookingDownRight};
// clang-format on

namespace
{

constexpr std::size_t zonesPerSide = 3;
constexpr std::size_t centreColumn = 1;
constexpr float beyondAnyAngle = 1000.f;  // times a threshold
constexpr float centreUpFactor = 0.6f;

using Thresholds = std::array<float, zonesPerSide>;

/// Counts the ascending thresholds up to the first that is strictly greater than the angle; a NaN passes them all.
std::size_t countReached(const Thresholds& thresholds, float angle)
{
  std::size_t count = 0;
  while (count < thresholds.size() && !(thresholds[count] > angle))
    ++count;
  return count;
}

/// As above, held inside the table for angles past the last threshold.
std::size_t zoneIndex(const Thresholds& thresholds, float angle)
{
  return std::min(countReached(thresholds, angle), zonesPerSide - 1);
}

}  // namespace

AttentionState PersonStatePrivate::_computeAttentionZone(float yaw, float pitch, float yawThreshold,
                                                         float pitchThreshold, std::string_view method)
{
  const float ownYaw = method == "gaze" ? -yaw : yaw;
  const std::size_t column = zoneIndex({-yawThreshold, yawThreshold, yawThreshold * beyondAnyAngle}, ownYaw);

  // Deliberate: a person who faces the robot counts as looking up earlier than one who looks aside.
  const float upThreshold = column == centreColumn ? centreUpFactor * pitchThreshold : pitchThreshold;
  const std::size_t height = zoneIndex({-pitchThreshold, upThreshold, pitchThreshold * beyondAnyAngle}, pitch);
  const std::size_t row = zonesPerSide - 1 - height;
  return attentionZones[row * zonesPerSide + column];
}

void PersonStatePrivate::_setAttentionZone(AttentionState zone, ZoneEvidence evidence)
{
  AttentionState before{};
  {
    const boost::lock_guard<boost::mutex> lock(attentionMutex);
    before = attentionZone;
    attentionZone = zone;
  }
  if (before != zone && ForceWatch::isOn())
    ForceWatch::show(before, zone, evidence);
}

}  // namespace KV
