#include "fullobservation.hpp"

#include <skeigiot/socialgraph.hpp>

#include <benchmark/benchmark.h>

namespace
{

/// A graph of persons 0 to `count` - 1.
void fill(KV::SocialGraph& graph, std::int64_t count)
{
  for (int id = 0; id < count; ++id)
    graph.add(id);
}

constexpr std::int64_t fewest = 1;
constexpr std::int64_t most = 100000;

void BM_SocialGraphRead(benchmark::State& state)
{
  KV::SocialGraph graph;
  fill(graph, state.range(0));
  const int id = static_cast<int>(state.range(0) / 2);
  float valence = 0.f;
  for (auto _ : state)
    graph.read(id, [&valence](const KV::Person& person) { valence += person.personState.personValence().value; });
  benchmark::DoNotOptimize(valence);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_SocialGraphRead)->RangeMultiplier(10)->Range(fewest, most)->Complexity(benchmark::oLogN);

void BM_SocialGraphFind(benchmark::State& state)
{
  KV::SocialGraph graph;
  fill(graph, state.range(0));
  const int id = static_cast<int>(state.range(0) / 2);
  for (auto _ : state)
    benchmark::DoNotOptimize(graph.find(id));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_SocialGraphFind)->RangeMultiplier(10)->Range(fewest, most)->Complexity(benchmark::oLogN);

/// Persons come in at the end of the order and go again.
void BM_SocialGraphAddAndRemove(benchmark::State& state)
{
  KV::SocialGraph graph;
  fill(graph, state.range(0));
  const int id = static_cast<int>(state.range(0));
  for (auto _ : state)
  {
    graph.add(id);
    graph.remove(id);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_SocialGraphAddAndRemove)->RangeMultiplier(10)->Range(fewest, most)->Complexity(benchmark::oAuto);

void BM_SocialGraphPersons(benchmark::State& state)
{
  KV::SocialGraph graph;
  fill(graph, state.range(0));
  for (auto _ : state)
    benchmark::DoNotOptimize(graph.persons());
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_SocialGraphPersons)->RangeMultiplier(10)->Range(fewest, most)->Complexity(benchmark::oN);

}  // namespace
