#pragma once

#include "recording.hpp"
#include "snapshot.hpp"

#include <cstddef>
#include <string>

namespace tools
{

/// Keeps readings that are not finite (see skeigiot/isfinite.hpp) away from the estimator, in which a NaN would stay
/// for good, and counts them.
class NonFiniteReadings
{
public:
  /// Returns the observation of the entry without them; valid until the next call, and as long as the entry.
  const KV::PersonObservation& withoutThem(const RecordingEntry& entry, Duration sinceStart);

  /// Returns a line that says how many were left out since the last call, and where the first was; empty if there were
  /// none.
  std::string take();

private:
  std::size_t _count = 0;
  std::string _firstPlace;
  KV::PersonObservation _rest;
};

}  // namespace tools
