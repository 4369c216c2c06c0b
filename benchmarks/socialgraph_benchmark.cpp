#include "fullobservation.hpp"

#include <skeigiot/socialgraph.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <random>
#include <vector>

namespace
{

constexpr std::int64_t fewest = 1;
constexpr std::int64_t most = 100000;

/// A graph of persons 0 to `count` - 1.
void fill(KV::SocialGraph& graph, std::int64_t count)
{
  for (int id = 0; id < count; ++id)
    graph.add(id);
}

/// The id in the middle of a graph of so many.
int middle(std::int64_t count)
{
  return static_cast<int>(count / 2);
}

void overCounts(benchmark::internal::Benchmark* benchmark)
{
  benchmark->RangeMultiplier(10)->Range(fewest, most);
}

/// Calls `use` on a graph of `state.range(0)` persons and the id of one of them.
template <typename Use>
void useGraph(benchmark::State& state, Use use)
{
  KV::SocialGraph graph;
  fill(graph, state.range(0));
  const int id = middle(state.range(0));
  for (auto _ : state)
    use(graph, id);
  state.SetComplexityN(state.range(0));
}

void BM_SocialGraphRead(benchmark::State& state)
{
  float valence = 0.f;
  useGraph(state, [&valence](const KV::SocialGraph& graph, int id) {
    graph.read(id, [&valence](const KV::Person& person) { valence += person.personState.personValence().value; });
  });
  benchmark::DoNotOptimize(valence);
}
BENCHMARK(BM_SocialGraphRead)->Apply(overCounts)->Complexity(benchmark::oLogN);

void BM_SocialGraphFind(benchmark::State& state)
{
  useGraph(state, [](const KV::SocialGraph& graph, int id) { benchmark::DoNotOptimize(graph.find(id)); });
}
BENCHMARK(BM_SocialGraphFind)->Apply(overCounts)->Complexity(benchmark::oLogN);

void BM_SocialGraphUpdate(benchmark::State& state)
{
  useGraph(state, [](KV::SocialGraph& graph, int id) {
    graph.update(id, [](KV::Person& person) { benchmark::DoNotOptimize(person.personID); });
  });
}
BENCHMARK(BM_SocialGraphUpdate)->Apply(overCounts)->Complexity(benchmark::oLogN);

void BM_SocialGraphUpdateOrCreateOfAKnownPerson(benchmark::State& state)
{
  useGraph(state, [](KV::SocialGraph& graph, int id) {
    graph.updateOrCreate(id, [](KV::Person& person) { benchmark::DoNotOptimize(person.personID); });
  });
}
BENCHMARK(BM_SocialGraphUpdateOrCreateOfAKnownPerson)->Apply(overCounts)->Complexity(benchmark::oLogN);

/// Builds the person, and drops them.
void BM_SocialGraphAddAKnownPerson(benchmark::State& state)
{
  useGraph(state, [](KV::SocialGraph& graph, int id) { graph.add(id); });
}
BENCHMARK(BM_SocialGraphAddAKnownPerson)->Apply(overCounts)->Complexity(benchmark::oLogN);

/// Persons come in at the end of the order and leave again.
void BM_SocialGraphAddAndRemoveTheLast(benchmark::State& state)
{
  const int last = static_cast<int>(state.range(0));
  useGraph(state, [last](KV::SocialGraph& graph, int) {
    graph.add(last);
    graph.remove(last);
  });
}
BENCHMARK(BM_SocialGraphAddAndRemoveTheLast)->Apply(overCounts)->Complexity(benchmark::oLogN);

/// Persons come in at the beginning of the order and leave again: all others are moved twice.
void BM_SocialGraphAddAndRemoveTheFirst(benchmark::State& state)
{
  useGraph(state, [](KV::SocialGraph& graph, int) {
    graph.add(-1);
    graph.remove(-1);
  });
}
BENCHMARK(BM_SocialGraphAddAndRemoveTheFirst)->Apply(overCounts)->Complexity(benchmark::oN);

void BM_SocialGraphPersons(benchmark::State& state)
{
  useGraph(state, [](const KV::SocialGraph& graph, int) { benchmark::DoNotOptimize(graph.persons()); });
}
BENCHMARK(BM_SocialGraphPersons)->Apply(overCounts)->Complexity(benchmark::oN);

enum class Order
{
  Ascending,
  Random
};

/// The ids from 0 on.
std::vector<int> ids(std::int64_t count, Order order)
{
  std::vector<int> ids(static_cast<std::size_t>(count));
  std::iota(ids.begin(), ids.end(), 0);
  if (order == Order::Random)
    std::shuffle(ids.begin(), ids.end(), std::mt19937(20200101U));
  return ids;
}

/// The cost of keeping the persons in a sorted array; without the time for destroying the graph.
void BM_SocialGraphAddMany(benchmark::State& state, Order order)
{
  const std::vector<int> arrivals = ids(state.range(0), order);
  std::optional<KV::SocialGraph> graph;
  for (auto _ : state)
  {
    state.PauseTiming();
    graph.emplace();
    state.ResumeTiming();
    for (const int id : arrivals)
      graph->add(id);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(BM_SocialGraphAddMany, ascending, Order::Ascending)
    ->RangeMultiplier(10)
    ->Range(1000, most)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SocialGraphAddMany, random, Order::Random)
    ->RangeMultiplier(10)
    ->Range(1000, most)
    ->Unit(benchmark::kMillisecond);

/// One person whose sensors all report, on a clock as in a replay.
class ObservedPerson
{
public:
  ObservedPerson(KV::SocialGraph& graph, int id, std::int64_t rate)
    : _graph(graph), _id(id), _period(1000000000 / rate), _clock(benchmarks::epoch), _scope(_clock)
  {
    for (std::int64_t i = 0; i < secondsToSteadyState * rate; ++i)
      update();
  }
  ObservedPerson(const ObservedPerson&) = delete;
  ObservedPerson& operator=(const ObservedPerson&) = delete;
  ~ObservedPerson() { _graph.remove(_id); }  // the next person with this id begins at the epoch

  void update()
  {
    _clock.advance(_period);
    const KV::PersonObservation observation = benchmarks::fullObservation(_clock.now());
    _graph.updateOrCreate(_id, [&observation](KV::Person& person) { person.update(observation); });
  }

private:
  /// Longer than any horizon, so that the memories neither grow nor shrink afterwards.
  static constexpr std::int64_t secondsToSteadyState = 21;

  KV::SocialGraph& _graph;
  int _id;
  boost::chrono::nanoseconds _period;
  ko::ManualClock _clock;
  ko::ScopedClockSource _scope;
};

constexpr std::int64_t rate = 30;

/// The other persons are only in the graph.
void BM_SocialGraphObserveOneOfMany(benchmark::State& state)
{
  KV::SocialGraph graph;
  fill(graph, state.range(0));
  ObservedPerson person(graph, middle(state.range(0)), rate);
  for (auto _ : state)
    person.update();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SocialGraphObserveOneOfMany)->Apply(overCounts)->Unit(benchmark::kMicrosecond);

/// Every thread has a person of its own, and all use this graph.
KV::SocialGraph& graphOfAllThreads()
{
  static KV::SocialGraph graph;
  return graph;
}

void BM_SocialGraphObserveInOneGraph(benchmark::State& state)
{
  ObservedPerson person(graphOfAllThreads(), state.thread_index(), rate);
  for (auto _ : state)
    person.update();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SocialGraphObserveInOneGraph)->DenseThreadRange(1, 4)->UseRealTime()->Unit(benchmark::kMicrosecond);

void BM_SocialGraphObserveInAGraphEach(benchmark::State& state)
{
  KV::SocialGraph graph;
  ObservedPerson person(graph, state.thread_index(), rate);
  for (auto _ : state)
    person.update();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SocialGraphObserveInAGraphEach)->DenseThreadRange(1, 4)->UseRealTime()->Unit(benchmark::kMicrosecond);

}  // namespace
