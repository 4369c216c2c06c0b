#pragma once

#include <boost/optional/optional.hpp>

#include <cstdint>

namespace KV::tools
{

/// The time of a simulation, as the topic /clock has it, made a time that never goes back: sessions and recordings
/// need one.
///
/// A simulation that begins anew sets its clock back. The time goes on from the last one then. A clock that counts from
/// 0 counts from 2020-01-01, as in bags. stampOf() leads back to the time of the simulation.
///
/// Not synchronised.
class SimulatedTime
{
public:
  /// [ns] A smaller step back is no new beginning: messages of several clocks may overtake each other.
  static constexpr std::int64_t shortestJump = 1'000'000'000;

  /// Takes a time of the simulation [ns].
  ///
  /// \return by how much the clock was set back [ns]; 0 if it was not
  std::int64_t take(std::int64_t clock);

  /// Returns whether a time came in.
  bool isKnown() const { return _clock.has_value(); }

  /// Returns the time [ns] since 1970; 0 before the first one.
  std::int64_t now() const { return _clock ? *_clock + _offset : 0; }

  /// Returns the time of the simulation [ns] at such a time.
  std::int64_t stampOf(std::int64_t time) const { return time - _offset; }

private:
  boost::optional<std::int64_t> _clock;  // the greatest since the beginning of the simulation
  std::int64_t _offset = 0;
};

}  // namespace KV::tools
