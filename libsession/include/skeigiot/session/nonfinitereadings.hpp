#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <cstddef>
#include <string>

namespace KV::session
{

/// Keeps readings that are not finite (see skeigiot/isfinite.hpp) away from the estimator, in which a NaN would stay
/// for good, and counts them.
class SKEIGIOT_API NonFiniteReadings
{
public:
  /// Returns the observation of the step without them; valid until the next call, and as long as the step.
  const KV::PersonObservation& withoutThem(const recordings::Step& step, Duration sinceStart);

  /// Returns a line that says how many were left out since the last call, and where the first was; or an empty
  /// text.
  std::string take();

private:
  std::size_t _count = 0;
  std::string _firstPlace;
  KV::PersonObservation _rest;
};

}  // namespace KV::session
