#include <skeigiot/emotionrecorder.hpp>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

namespace
{

constexpr std::int32_t withoutLimit = -1;

std::vector<std::string> scopeNames(std::int64_t count)
{
  std::vector<std::string> names;
  for (std::int64_t i = 0; i < count; ++i)
    names.push_back("scope " + std::to_string(i));
  return names;
}

void startAll(KV::KVEmotionRecorder& recorder, const std::vector<std::string>& names)
{
  for (const std::string& name : names)
    recorder.startRecording(name, withoutLimit);
}

void overScopes(benchmark::internal::Benchmark* benchmark)
{
  benchmark->RangeMultiplier(10)->Range(1, 1000);
}

/// One scope restarts among `state.range(0)` open ones.
void BM_EmotionRecorderStartOne(benchmark::State& state)
{
  const std::vector<std::string> names = scopeNames(state.range(0));
  KV::KVEmotionRecorder recorder;
  startAll(recorder, names);
  for (auto _ : state)
    recorder.startRecording(names.back(), withoutLimit);
}
BENCHMARK(BM_EmotionRecorderStartOne)->Apply(overScopes);

/// One update goes into all scopes, which from time to time restart.
void BM_EmotionRecorderUpdate(benchmark::State& state)
{
  constexpr int samplesAtMost = 100;
  const std::vector<std::string> names = scopeNames(state.range(0));
  const KV::PersonState person(0.5f, 0.8f, 0.7f, 0.9f);
  KV::KVEmotionRecorder recorder;
  int samples = samplesAtMost;
  for (auto _ : state)
  {
    if (samples == samplesAtMost)
    {
      state.PauseTiming();
      startAll(recorder, names);
      samples = 0;
      state.ResumeTiming();
    }
    recorder.update_notMutexed(person);
    ++samples;
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_EmotionRecorderUpdate)->Apply(overScopes)->Complexity(benchmark::oN);

/// All scopes start, take one update, and stop, with a verdict each.
void BM_EmotionRecorderStartUpdateStop(benchmark::State& state)
{
  const std::vector<std::string> names = scopeNames(state.range(0));
  const KV::PersonState person(0.5f, 0.8f, 0.7f, 0.9f);
  KV::KVEmotionRecorder recorder;
  for (auto _ : state)
  {
    startAll(recorder, names);
    recorder.update_notMutexed(person);
    for (const std::string& name : names)
      benchmark::DoNotOptimize(recorder.stopRecording(name));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_EmotionRecorderStartUpdateStop)->Apply(overScopes)->Complexity(benchmark::oNLogN);

}  // namespace
