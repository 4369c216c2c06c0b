#include "fullobservation.hpp"

#include <skeigiot/shorttermmemory.hpp>

#include <benchmark/benchmark.h>

namespace
{

using boost::chrono::milliseconds;
using Memory = KV::ShortTermMemory<KV::HeadPosture>;

constexpr milliseconds horizon(20000);

/// Records one reading for each millisecond before the epoch, all inside the horizon.
void fill(Memory& memory, std::int64_t count)
{
  for (std::int64_t i = count; i > 0; --i)
    memory.record({benchmarks::epoch - milliseconds(i), KV::HeadPosture()});
}

void BM_ShortTermMemoryYoungest(benchmark::State& state)
{
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);
  Memory memory(horizon);
  fill(memory, state.range(0));

  for (auto _ : state)
    benchmark::DoNotOptimize(memory.youngest());
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ShortTermMemoryYoungest)->RangeMultiplier(4)->Range(16, 4096)->Complexity(benchmark::oN);

/// Each new reading pushes the oldest one over the horizon.
void BM_ShortTermMemoryRecordInSteadyState(benchmark::State& state)
{
  const milliseconds period(horizon / state.range(0));
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);
  Memory memory(horizon);
  const auto record = [&] {
    clock.advance(period);
    memory.record({clock.now(), KV::HeadPosture()});
  };
  for (std::int64_t i = 0; i < state.range(0); ++i)
    record();

  for (auto _ : state)
    record();
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ShortTermMemoryRecordInSteadyState)->RangeMultiplier(4)->Range(16, 4096)->Complexity(benchmark::oN);

}  // namespace
