#pragma once

#include <skeigiot/api.hpp>

#include <boost/optional/optional.hpp>

#include <string>

namespace KV::session
{

/// How often a person is updated.
///
/// The estimate is made for 5 to 15 updates a second, see Person::update(). 10 is the highest rate at which it follows
/// a head that turns at 5 degrees a second, see docs/tuning.md.
struct SKEIGIOT_API Cycle
{
  static constexpr double highest = 1000.;  ///< [Hz]

  /// [Hz], in (0, highest]; empty: with each observation, which is called "recorded"
  boost::optional<double> hertz = 10.;

  /// Returns the cycle in which each observation updates.
  static Cycle recorded() { return Cycle{boost::none}; }
};

/// Reads "recorded" or a rate [Hz], as users write it.
///
/// \throws std::invalid_argument "expected recorded or a number of updates a second above 0, up to 1000, found '...'"
SKEIGIOT_API Cycle parseCycle(const std::string& text);

}  // namespace KV::session
