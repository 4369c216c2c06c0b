#pragma once

#include <skeigiot/readings.hpp>

#include <boost/none.hpp>

#include <cstddef>

namespace KV
{

/// Removes the readings for which `isUnwanted` is true from the observation, and returns their number.
template <typename Predicate>
std::size_t leaveOut(PersonObservation& observation, Predicate isUnwanted)
{
  std::size_t count = 0;
  forEachReading([&](const auto& known) {
    auto& reading = known.in(observation);
    if (!reading || !isUnwanted(*reading))  // GCOV_EXCL_BR_LINE
      return;
    reading = boost::none;
    ++count;
  });
  return count;
}

}  // namespace KV
