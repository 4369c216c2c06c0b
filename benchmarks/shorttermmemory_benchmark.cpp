#include "fullobservation.hpp"

#include <skeigiot/shorttermmemory.hpp>

#include <boost/thread/lock_guard.hpp>

#include <benchmark/benchmark.h>

namespace
{

using boost::chrono::milliseconds;
using boost::chrono::nanoseconds;
using KV::FacialPoints;
using KV::HeadPosture;

constexpr milliseconds horizon(20000);

template <typename T>
using Memory = KV::ShortTermMemory<T>;

template <typename T>
std::size_t sizeOf(const Memory<T>& memory)
{
  const boost::lock_guard<boost::mutex> lock(memory.mutex());
  return memory.records().size();
}

/// Records one reading for each millisecond before the epoch, all inside the horizon.
template <typename T>
void fill(Memory<T>& memory, std::int64_t count)
{
  for (std::int64_t i = count; i > 0; --i)
    memory.record({benchmarks::epoch - milliseconds(i), T()});
}

template <typename T>
void countRecords(benchmark::State& state, const Memory<T>& memory)
{
  state.SetComplexityN(static_cast<std::int64_t>(sizeOf(memory)));
  state.counters["bytes_per_record"] = sizeof(KV::Timestamped<T>);
}

void overSizes(benchmark::internal::Benchmark* benchmark)
{
  benchmark->RangeMultiplier(4)->Range(16, 4096)->Complexity(benchmark::oN);
}

template <typename T>
void BM_ShortTermMemoryYoungest(benchmark::State& state)
{
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);
  Memory<T> memory(horizon);
  fill(memory, state.range(0));

  for (auto _ : state)
    benchmark::DoNotOptimize(memory.youngest());
  countRecords(state, memory);
}
BENCHMARK_TEMPLATE(BM_ShortTermMemoryYoungest, HeadPosture)->Apply(overSizes);
BENCHMARK_TEMPLATE(BM_ShortTermMemoryYoungest, FacialPoints)->Apply(overSizes);

/// Each new reading pushes the oldest one over the horizon.
template <typename T>
void BM_ShortTermMemoryRecordNewest(benchmark::State& state)
{
  const nanoseconds period(nanoseconds(horizon) / state.range(0));
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);
  Memory<T> memory(horizon);
  const auto record = [&] {
    clock.advance(period);
    memory.record({clock.now(), T()});
  };
  for (std::int64_t i = 0; i < state.range(0); ++i)
    record();

  for (auto _ : state)
    record();
  countRecords(state, memory);
}
BENCHMARK_TEMPLATE(BM_ShortTermMemoryRecordNewest, HeadPosture)->Apply(overSizes);
BENCHMARK_TEMPLATE(BM_ShortTermMemoryRecordNewest, FacialPoints)->Apply(overSizes);

/// Every second reading arrives half a horizon late: the older half of the memory is complete, in the younger half
/// every second place is still free.
template <typename T>
void BM_ShortTermMemoryRecordOutOfOrder(benchmark::State& state)
{
  const std::int64_t readingsInHorizon = state.range(0) / 3 * 4;
  const nanoseconds period(nanoseconds(horizon) / readingsInHorizon);
  const nanoseconds delay(period * (readingsInHorizon / 2));
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);
  Memory<T> memory(horizon);
  const auto recordTwo = [&] {
    clock.advance(2 * period);
    memory.record({clock.now() - period - delay, T()});
    memory.record({clock.now(), T()});
  };
  for (std::int64_t i = 0; i < readingsInHorizon; ++i)
    recordTwo();

  for (auto _ : state)
    recordTwo();
  state.SetItemsProcessed(2 * state.iterations());
  countRecords(state, memory);
}
BENCHMARK_TEMPLATE(BM_ShortTermMemoryRecordOutOfOrder, HeadPosture)->Apply(overSizes);
BENCHMARK_TEMPLATE(BM_ShortTermMemoryRecordOutOfOrder, FacialPoints)->Apply(overSizes);

/// No record is too old, as in most prunings.
template <typename T>
void BM_ShortTermMemoryForgetNothing(benchmark::State& state)
{
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);
  Memory<T> memory(horizon);
  fill(memory, state.range(0));

  const boost::lock_guard<boost::mutex> lock(memory.mutex());
  for (auto _ : state)
    memory._forgetOld();
  state.SetComplexityN(state.range(0));
}
BENCHMARK_TEMPLATE(BM_ShortTermMemoryForgetNothing, HeadPosture)->Apply(overSizes);
BENCHMARK_TEMPLATE(BM_ShortTermMemoryForgetNothing, FacialPoints)->Apply(overSizes);

/// All records are too old, as after a pause.
template <typename T>
void BM_ShortTermMemoryForgetAll(benchmark::State& state)
{
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);
  Memory<T> memory(horizon);

  for (auto _ : state)
  {
    state.PauseTiming();
    clock.set(benchmarks::epoch);
    fill(memory, state.range(0));
    clock.advance(2 * horizon);
    state.ResumeTiming();
    memory._forgetOld();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK_TEMPLATE(BM_ShortTermMemoryForgetAll, HeadPosture)->Apply(overSizes)->Iterations(50);
BENCHMARK_TEMPLATE(BM_ShortTermMemoryForgetAll, FacialPoints)->Apply(overSizes)->Iterations(50);

}  // namespace
