// The graph of persons; its one mutex guards all callbacks.

#include "threads/together.hpp"

#include "support/clocktest.hpp"
#include "support/randomobservations.hpp"

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/socialgraph.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace
{

using support::milliseconds;

constexpr int count = 4;
constexpr int rounds = 50;
constexpr int persons = 5;

class GraphOfThreads : public support::ClockTest
{};

TEST_F(GraphOfThreads, RunsOneCallbackAtATime)
{
  KV::SocialGraph graph;
  std::array<int, persons> calls{};  // deliberately without a lock of their own
  int inside = 0;
  int most = 0;
  threads::runOnThreads(count, rounds, [&](int thread, int round) {
    const int id = (thread + round) % persons;
    graph.updateOrCreate(id, [&](KV::Person& person) {
      most = std::max(most, ++inside);
      ++calls.at(static_cast<std::size_t>(person.personID));
      --inside;
    });
    graph.update(id, [&](KV::Person& person) { ++calls.at(static_cast<std::size_t>(person.personID)); });
    graph.read(id, [&](const KV::Person& person) { ++calls.at(static_cast<std::size_t>(person.personID)); });
  });

  int sum = 0;
  for (const int ofPerson : calls)
    sum += ofPerson;
  EXPECT_EQ(3 * count * rounds, sum);
  EXPECT_EQ(1, most);
  EXPECT_EQ(static_cast<std::size_t>(persons), graph.persons().size());
}

TEST_F(GraphOfThreads, StaysSortedWhilePersonsComeAndGo)
{
  KV::SocialGraph graph;
  std::atomic<int> unsorted{0};
  const auto isSorted = [](const std::vector<KV::Person>& list) {
    return std::is_sorted(list.begin(), list.end(),
                          [](const KV::Person& a, const KV::Person& b) { return a.personID < b.personID; });
  };
  threads::runTogether(
      rounds, [&](int round) { graph.add(round % 17); }, [&](int round) { graph.remove(round % 17); },
      [&](int round) { graph.updateOrCreate(100 - round, {}); },
      [&](int round) {
        unsorted += static_cast<int>(!isSorted(graph.persons()));
        if (const auto found = graph.find(round % 17))
          unsorted += static_cast<int>(found->personID != round % 17);
      });

  EXPECT_EQ(0, unsorted);
  EXPECT_TRUE(isSorted(graph.persons()));
  EXPECT_LE(static_cast<std::size_t>(rounds), graph.persons().size()) << "nobody removed the last";
}

TEST_F(GraphOfThreads, UpdatesPersonsInRangeFromAllThreads)
{
  KV::SocialGraph graph;
  std::atomic<int> outside{0};
  std::array<int, persons> updates{};
  threads::runOnThreads(count, rounds, [&](int thread, int round) {
    const ko::ScopedClockSource ofThisThread(clock);
    support::RandomObservations observations(static_cast<unsigned int>(thread * rounds + round));
    KV::PersonObservation observation = observations.next();
    observation.voiceEmotion.reset();  // may be too old, which is logged
    const int id = round % persons;
    graph.updateOrCreate(id, [&](KV::Person& person) {
      person.update(observation);
      ++updates.at(static_cast<std::size_t>(id));
    });
    graph.update(id, [](KV::Person& person) { person.decreaseSinceNotSeen(); });
    graph.read(id, [&](const KV::Person& person) {
      const float valence = person.personState.personValence().value;
      const float attention = person.personState.personAttention().value;
      outside += static_cast<int>(!(valence >= -1.f && valence <= 1.f && attention >= 0.f && attention <= 1.f));
    });
    clock.advance(milliseconds(10));
  });

  EXPECT_EQ(0, outside);
  for (const int ofPerson : updates)
    EXPECT_EQ(count * rounds / persons, ofPerson);
}

TEST_F(GraphOfThreads, IsNotLockedByACallbackThatThrows)
{
  KV::SocialGraph graph;
  std::atomic<int> caught{0};
  threads::runOnThreads(count, rounds, [&](int, int) {
    try
    {
      graph.updateOrCreate(1, [](KV::Person&) { throw std::runtime_error("test"); });
    }
    catch (const std::runtime_error&)
    {
      ++caught;
    }
  });
  EXPECT_EQ(count * rounds, caught);
  EXPECT_EQ(1U, graph.persons().size());
}

// Different persons need no lock between them.
TEST_F(GraphOfThreads, LeavesPersonsOfDifferentThreadsAlone)
{
  const auto valenceAfterLife = [](int seed) {
    support::TestClock time;
    support::RandomObservations observations(static_cast<unsigned int>(seed));
    KV::Person person;
    for (int cycle = 0; cycle < rounds; ++cycle)
    {
      KV::PersonObservation observation = observations.next();
      observation.voiceEmotion.reset();
      person.update(observation);
      time.clock.advance(milliseconds(100));
    }
    return person.personState.personValence().value;
  };
  std::array<float, count> together{};
  threads::runOnThreads(
      count, 1, [&](int thread, int) { together.at(static_cast<std::size_t>(thread)) = valenceAfterLife(thread); });
  for (int thread = 0; thread < count; ++thread)
    EXPECT_EQ(valenceAfterLife(thread), together.at(static_cast<std::size_t>(thread)));
}

TEST_F(GraphOfThreads, ShowsForcesToTheThreadThatWatches)
{
  std::array<int, count> seen{};
  threads::runOnThreads(count, rounds, [&](int thread, int) {
    int& own = seen.at(static_cast<std::size_t>(thread));
    const KV::ScopedForceObserver watch([&own](const KV::Force&) { ++own; });
    KV::PersonState state;
    for (int i = 0; i <= thread; ++i)
      state.decreaseSinceNotSeen();
  });
  constexpr int forcesOfADecrease = 6;  // of six quantities
  for (int thread = 0; thread < count; ++thread)
    EXPECT_EQ(forcesOfADecrease * rounds * (thread + 1), seen.at(static_cast<std::size_t>(thread)));
}

}  // namespace
