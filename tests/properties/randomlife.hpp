#pragma once

#include "support/capturedlog.hpp"
#include "support/clocktest.hpp"
#include "support/randomobservations.hpp"

#include <skeigiot/person.hpp>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace properties
{

constexpr support::hours hourOfLife(1);

/// The seeds of the lives with which each property is checked.
constexpr unsigned int seeds[] = {1, 20261121, 4294967295U};  // NOLINT(modernize-avoid-c-arrays): a list for a loop

/// One random life of a person in front of a robot, cycle by cycle, on a clock of its own; the same for the same seed.
class RandomLife
{
public:
  explicit RandomLife(unsigned int seed, support::nanoseconds length = hourOfLife)
    : _seed(seed), _end(support::start + length), _observations(seed), _random(seed)
  {}

  /// Advances to the next cycle; false if the life is over.
  bool next()
  {
    _time.clock.advance(_observations.pause());
    _isSeen = std::uniform_int_distribution<int>(0, 9)(_random) != 0;
    _observation = _observations.next();
    ++_cycle;
    const bool goesOn = ko::SystemClock::now() < _end;
    EXPECT_TRUE(goesOn || _cycle > 1000) << "so short a life shows nothing: " << place();
    return goesOn;
  }

  bool isSeen() const { return _isSeen; }
  const KV::PersonObservation& observation() const { return _observation; }

  /// Runs this cycle on the person.
  void letLive(KV::Person& person) const
  {
    if (_isSeen)
      person.update(_observation);
    else
      person.decreaseSinceNotSeen();
  }

  ko::ManualClock& clock() { return _time.clock; }

  /// The life and the cycle in it, for a failed test.
  std::string place() const { return "seed " + std::to_string(_seed) + ", cycle " + std::to_string(_cycle); }

private:
  const unsigned int _seed;
  const ko::SystemClock::time_point _end;
  support::TestClock _time;
  support::CapturedLog _log;  // many voices are old here, so their warnings are expected
  support::RandomObservations _observations;
  std::mt19937 _random;
  KV::PersonObservation _observation;
  bool _isSeen = false;
  int _cycle = 0;
};

/// The result of a life: the fingerprint after each cycle, in one hash.
std::size_t fingerprintOfLife(unsigned int seed, support::nanoseconds length = hourOfLife);

}  // namespace properties
