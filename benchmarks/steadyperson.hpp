#pragma once

#include <model/model.hpp>

#include <skeigiot/person.hpp>

#include <ko/systemclock.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace benchmarks
{

enum class ClockKind
{
  Manual,  ///< as in a replay
  Wall     ///< as in a robot
};

/// The counted operations of one update.
struct Work
{
  std::int64_t readings = 0;  ///< of the clock
  std::int64_t errorFunctions = 0;
  std::int64_t forces = 0;  ///< each composes a text
  std::size_t bytesMoved = 0;
};

/// How long one update takes, in nanoseconds of CPU time.
struct UpdateTimes
{
  double library = 0.;
  double model = 0.;
};

/// A person whose thirteen sensors have all reported `rate` times a second for longer than the longest memory: once in
/// the library, and once in the plain model.
class SteadyPerson
{
public:
  SteadyPerson(ClockKind kind, std::int64_t rate);

  /// Counts the work of one update. Both must read the clock equally often; \throws std::logic_error if they do not.
  Work countWork();

  /// Times some updates of both.
  UpdateTimes timeUpdates();

private:
  void _remember();
  std::vector<model::Observation> _nextObservations();

  ClockKind _kind;
  std::int64_t _rate;
  model::Nanoseconds _period;
  ko::ManualClock _manualClock;
  std::optional<ko::ScopedClockSource> _scope;
  std::optional<KV::Person> _library;
  model::Person _model;
};

}  // namespace benchmarks
