#include <skeigiot/ambiancestate.hpp>

#include "clamp.hpp"
#include "initialisedearly.hpp"
#include "tunable.hpp"

#include <ko/log.hpp>

#include <boost/thread/lock_guard.hpp>

#include <ostream>
#include <stdexcept>
#include <string>

namespace KV
{

SKEIGIOT_INITIALISED_EARLY Tunable binaryBoundaryExcited(0.4f);

namespace
{

constexpr const char* category = "kvmood.ambiance";
[[maybe_unused]] const ko::log::Category registeredCategory = ko::log::addCategory(category);
constexpr const char* sourceFile = "libemotion/src/ambiancestate";

constexpr float smoothing = 0.2f;
constexpr float activityGain = 10.f;
constexpr float movementsForFullActivity = 5.f;

}  // namespace

AmbianceState::AmbianceState(const AmbianceState& other)
  : agitationLevel(other.agitationLevel), calmLevel(other.calmLevel), movementCount(other.movementCount)
{}

AmbianceState& AmbianceState::operator=(const AmbianceState& other)
{
  if (this == &other)
    return *this;
  const boost::lock_guard<boost::mutex> lock(_mutex);
  agitationLevel = other.agitationLevel;
  calmLevel = other.calmLevel;
  movementCount = other.movementCount;
  return *this;
}

void AmbianceState::updateAmbiance(float activity)
{
  const float target = activity * activityGain;
  const boost::lock_guard<boost::mutex> lock(_mutex);
  const float smoothed =
      ((target - agitationLevel) * smoothing + agitationLevel) + (movementCount / movementsForFullActivity) * smoothing;
  agitationLevel = clampConfidence(smoothed);
  calmLevel = 1.f - agitationLevel;
  movementCount = 0.f;
}

void AmbianceState::_setAmbientActivityLevel(float level)
{
  agitationLevel = clampConfidence(level);
  calmLevel = 1.f - agitationLevel;
}

float AmbianceState::ambientActivityLevel(AmbianceDescription description) const
{
  switch (description)
  {
    case AmbianceActivity:
      return agitationLevel;
    case AmbianceCalm:
      return calmLevel;
  }
  throw std::invalid_argument("Unknown emotional expression descriptor " + std::to_string(description));
}

ExcitationState AmbianceState::excitationState()
{
  const boost::lock_guard<boost::mutex> lock(_mutex);
  return binaryBoundaryExcited.get() > agitationLevel ? AmbianceNotExcited : AmbianceExcited;
}

void AmbianceState::incrementMovementDetected()
{
  const boost::lock_guard<boost::mutex> lock(_mutex);
  movementCount += 1.f;
}

void AmbianceState::setBinaryBoundaryExcited(float boundary)
{
  setTunable(binaryBoundaryExcited, boundary, unitInterval, {category, sourceFile, __func__, __LINE__});
}

float AmbianceState::getBinaryBoundaryExcited()
{
  return binaryBoundaryExcited.get();
}

std::ostream& operator<<(std::ostream& stream, const AmbianceState& state)
{
  stream << "Ambiance:" << std::endl;
  stream << "\t - Activity : \t" << state.agitationLevel << std::endl;
  return stream << "\t - Calm : \t" << state.calmLevel;
}

}  // namespace KV
