#pragma once

#include <cmath>
#include <cstdint>

namespace ko
{

/// A clock that follows a slow one with the help of a fast counter of constant but unknown rate.
///
/// An anchor is a pair of readings, one of each clock, taken together now and then. From an anchor the time is counted
/// on, for a millisecond at most, at the rate that the counter had between the two anchors before; so a step or a slew
/// of the slow clock shows with the next anchor. As long as the rate is not known, or has just changed by more than a
/// thousandth (the slow clock was stepped, or the machine slept or moved), the slow clock itself is read.
///
/// `Hardware` has the functions `std::uint64_t counter()` and `std::int64_t systemTime()` [ns].
///
/// \par Thread safety
///   None: one clock for each thread.
template <typename Hardware>
class ExtrapolatedClock
{
public:
  constexpr ExtrapolatedClock() = default;
  explicit constexpr ExtrapolatedClock(const Hardware& hardware) : _hardware(hardware) {}

  /// Returns the time in nanoseconds: within 1000 of the slow clock, unless the slow clock was stepped during the last
  /// millisecond. The time never goes back unless the slow clock does.
  std::int64_t now()
  {
    const std::uint64_t ticks = _hardware.counter() - _anchor.counter;
    if (ticks < _validTicks)
      return _anchorTime + _nanoseconds(ticks);
    return _anchorAnew();
  }

private:
  static constexpr std::int64_t validity = 1000000;  // [ns] how long an anchor is counted on from
  static constexpr std::int64_t looseBracket = 400;  // [ns] a pair of readings further apart is no anchor
  static constexpr std::int64_t longestHold = 500;   // [ns] to go back by up to this much, the clock waits instead
  static constexpr double steadiness = 1e-3;         // two rates agree if they differ by no more than this share
  static constexpr double caution = 3e-5;            // runs slower by this share, so that it does not overtake
  static constexpr double shortestTick = 1e-3;       // [ns] a counter that went back seems to have run for centuries
  static constexpr double longestTick = 1e5;         // [ns] an anchor needs at least so long a distance
  static constexpr int attempts = 3;

  struct Anchor
  {
    std::uint64_t counter = 0;
    std::int64_t systemTime = 0;
    std::uint64_t bracket = 0;  // [ticks] between a reading of the counter just before and one just after
  };

  std::int64_t _nanoseconds(std::uint64_t ticks) const { return static_cast<std::int64_t>((ticks * _rate) >> 32U); }

  /// Reads both clocks at nearly one moment.
  Anchor _readBoth()
  {
    Anchor best;
    for (int i = 0; i < attempts; ++i)
    {
      const std::uint64_t before = _hardware.counter();
      const std::int64_t time = _hardware.systemTime();
      const std::uint64_t bracket = _hardware.counter() - before;
      if (i == 0 || bracket < best.bracket)
        best = {before, time, bracket};  // the system reads the counter first, and computes the time from it then
    }
    return best;
  }

  std::int64_t _anchorAnew()
  {
    const Anchor fresh = _readBoth();
    const std::int64_t elapsed = fresh.systemTime - _anchor.systemTime;
    const bool rateIsSought = _validTicks == 0;
    if (rateIsSought && elapsed >= 0 && elapsed < validity)
      return fresh.systemTime;  // too near to the last anchor to compute the rate

    const double nanosecondsPerTick =
        static_cast<double>(elapsed) / static_cast<double>(fresh.counter - _anchor.counter);
    const bool isSteady = std::fabs(nanosecondsPerTick - _nanosecondsPerTick) <= steadiness * _nanosecondsPerTick;
    const bool isUsable = nanosecondsPerTick > shortestTick && nanosecondsPerTick < longestTick;
    const bool isTight = static_cast<double>(fresh.bracket) * nanosecondsPerTick < static_cast<double>(looseBracket);

    const std::int64_t latestShown = _anchorTime + (rateIsSought ? 0 : _nanoseconds(_validTicks));
    const std::int64_t wait = latestShown - fresh.systemTime;
    _anchor = fresh;
    _anchorTime = wait > 0 && wait < longestHold ? latestShown : fresh.systemTime;
    _nanosecondsPerTick = nanosecondsPerTick;
    if (isSteady && isUsable && isTight)
      _run(nanosecondsPerTick);
    else
      _validTicks = 0;
    return _anchorTime;
  }

  void _run(double nanosecondsPerTick)
  {
    constexpr double one = 4294967296.;  // of _rate
    _rate = static_cast<std::uint64_t>(nanosecondsPerTick * (1. - caution) * one);
    _validTicks = static_cast<std::uint64_t>(static_cast<double>(validity) / nanosecondsPerTick);
  }

  Hardware _hardware{};
  Anchor _anchor{};
  std::int64_t _anchorTime = 0;     // [ns] what this clock showed at the anchor
  std::uint64_t _rate = 0;          // [ns / 2^32 ticks]
  std::uint64_t _validTicks = 0;    // 0 while the rate is not known
  double _nanosecondsPerTick = 0.;  // between the last two anchors
};

}  // namespace ko
