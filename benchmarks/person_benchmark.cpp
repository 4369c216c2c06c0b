#include "fullobservation.hpp"

#include <skeigiot/person.hpp>

#include <benchmark/benchmark.h>

namespace
{

using boost::chrono::nanoseconds;
using MakeObservation = KV::PersonObservation (*)(ko::SystemClock::time_point);

/// Longer than any horizon, so that the memories neither grow nor shrink afterwards.
constexpr int secondsToSteadyState = 21;

/// One update of a person whose sensors all report `state.range(0)` times a second, on a clock as in a replay.
void updateInSteadyState(benchmark::State& state, MakeObservation makeObservation)
{
  const std::int64_t rate = state.range(0);
  const nanoseconds period(1000000000 / rate);
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);
  KV::Person person(1);

  const auto cycle = [&] {
    clock.advance(period);
    person.update(makeObservation(clock.now()));
  };
  for (std::int64_t i = 0; i < secondsToSteadyState * rate; ++i)
    cycle();

  for (auto _ : state)
    cycle();
  state.SetItemsProcessed(state.iterations());
}

void BM_PersonUpdateWithAllSensors(benchmark::State& state)
{
  updateInSteadyState(state, benchmarks::fullObservation);
}
BENCHMARK(BM_PersonUpdateWithAllSensors)->Arg(1)->Arg(10)->Arg(30)->Arg(60)->Unit(benchmark::kMicrosecond);

void BM_PersonUpdateWithAFace(benchmark::State& state)
{
  updateInSteadyState(state, benchmarks::faceObservation);
}
BENCHMARK(BM_PersonUpdateWithAFace)->Arg(1)->Arg(10)->Arg(30)->Arg(60)->Unit(benchmark::kMicrosecond);

void BM_PersonDecreaseSinceNotSeen(benchmark::State& state)
{
  KV::Person person(1);
  for (auto _ : state)
    person.decreaseSinceNotSeen();
}
BENCHMARK(BM_PersonDecreaseSinceNotSeen);

}  // namespace
