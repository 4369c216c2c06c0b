#pragma once

#include <skeigiot/personstate.hpp>

namespace support
{

/// Sets the process-wide boundaries of the person state back to what they are at load, when a test is over.
struct RestoredBoundaries
{
  RestoredBoundaries() = default;
  RestoredBoundaries(const RestoredBoundaries&) = delete;
  RestoredBoundaries& operator=(const RestoredBoundaries&) = delete;
  ~RestoredBoundaries()
  {
    KV::PersonState::setBinaryBoundaryPositive(0.2f);
    KV::PersonState::setBinaryBoundaryNegative(-0.2f);
    KV::PersonState::setBinaryBoundaryLookingAtRobot(0.6f);
    KV::PersonState::setBinaryBoundaryStrictlyLookingAtRobot(0.9f);
    KV::PersonState::setBinaryBoundaryConfidence(0.4f);
  }
};

}  // namespace support
