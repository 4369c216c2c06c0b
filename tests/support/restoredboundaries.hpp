#pragma once

#include <skeigiot/personstate.hpp>

namespace support
{

/// Restores the process-wide boundaries of the person state when a test is over.
class RestoredBoundaries
{
public:
  RestoredBoundaries() = default;
  RestoredBoundaries(const RestoredBoundaries&) = delete;
  RestoredBoundaries& operator=(const RestoredBoundaries&) = delete;
  ~RestoredBoundaries()
  {
    KV::PersonState::setBinaryBoundaryPositive(_positive);
    KV::PersonState::setBinaryBoundaryNegative(_negative);
    KV::PersonState::setBinaryBoundaryLookingAtRobot(_lookingAtRobot);
    KV::PersonState::setBinaryBoundaryStrictlyLookingAtRobot(_strictlyLookingAtRobot);
    KV::PersonState::setBinaryBoundaryConfidence(_confidence);
  }

private:
  const float _positive = KV::PersonState::getBinaryBoundaryPositive();
  const float _negative = KV::PersonState::getBinaryBoundaryNegative();
  const float _lookingAtRobot = KV::PersonState::getBinaryBoundaryLookingAtRobot();
  const float _strictlyLookingAtRobot = KV::PersonState::getBinaryBoundaryStrictlyLookingAtRobot();
  const float _confidence = KV::PersonState::getBinaryBoundaryConfidence();
};

}  // namespace support
