#include "everyallocation.hpp"
#include "everyreading.hpp"
#include "scopedhandler.hpp"
#include "soundness.hpp"

#include "support/clocktest.hpp"

#include <skeigiot/socialgraph.hpp>

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <set>
#include <stdexcept>

namespace
{

using faults::failEveryAllocation;
using faults::Outcome;
using Graph = std::unique_ptr<KV::SocialGraph>;  // a graph itself does not move
using Ids = std::set<int>;

class GraphWithoutMemory : public support::ClockTest
{
protected:
  /// Makes a graph whose room is full at some of these numbers of persons: 10, 20, ...
  static Graph graphOf(int persons)
  {
    auto graph = std::make_unique<KV::SocialGraph>();
    for (int i = 1; i <= persons; ++i)
      graph->add(10 * i);
    return graph;
  }

  /// Returns the persons in the graph, from another thread, which would wait for ever if the graph was still locked.
  static Ids idsIn(const KV::SocialGraph& graph)
  {
    const std::vector<KV::Person> persons = std::async(std::launch::async, [&graph] { return graph.persons(); }).get();
    Ids ids;
    for (const KV::Person& person : persons)
      ids.insert(person.personID);
    EXPECT_EQ(persons.size(), ids.size());
    return ids;
  }

  static constexpr int mostPersons = 6;
};

TEST_F(GraphWithoutMemory, AddsAPersonOrNobody)
{
  for (int persons = 0; persons < mostPersons; ++persons)
  {
    const Ids former = idsIn(*graphOf(persons));
    const std::size_t failures =
        failEveryAllocation([&] { return graphOf(persons); }, [](Graph& graph) { graph->add(15); },
                            [&](Graph& graph, Outcome outcome) {
                              EXPECT_EQ(Outcome::Threw, outcome);
                              EXPECT_EQ(former, idsIn(*graph));
                              graph->add(15);
                              EXPECT_EQ(former.size() + 1, idsIn(*graph).size());
                            });
    EXPECT_GE(failures, 4U);
  }
}

TEST_F(GraphWithoutMemory, CreatesAPersonOrNobodyAndCallsNothingThen)
{
  for (int persons = 0; persons < mostPersons; ++persons)
  {
    const Ids former = idsIn(*graphOf(persons));
    int calls = 0;
    const boost::function<void(KV::Person&)> count = [&calls](KV::Person&) { ++calls; };
    const std::size_t failures = failEveryAllocation(
        [&] {
          calls = 0;
          return graphOf(persons);
        },
        [&](Graph& graph) { graph->updateOrCreate(15, count); },
        [&](Graph& graph, Outcome outcome) {
          EXPECT_EQ(Outcome::Threw, outcome);
          EXPECT_EQ(0, calls);
          EXPECT_EQ(former, idsIn(*graph));
        });
    EXPECT_GE(failures, 4U);
    EXPECT_EQ(1, calls);
  }
}

TEST_F(GraphWithoutMemory, KeepsAPersonWhoseUpdateFails)
{
  const KV::PersonObservation observation = faults::observed(faults::observationCases().back(), support::start);
  const faults::ScopedHandler silenced(&faults::ignoreRecord);
  const auto observe = [&](KV::Person& person) {
    const ko::ScopedClockSource scopeOfThread(clock);
    person.update(observation);
  };
  const std::size_t failures =
      failEveryAllocation([] { return graphOf(3); }, [&](Graph& graph) { graph->update(20, observe); },
                          [&](Graph& graph, Outcome) {
                            EXPECT_EQ((Ids{10, 20, 30}), idsIn(*graph));
                            faults::expectSound(*graph->find(20));
                            std::async(std::launch::async, [&] { graph->update(20, observe); }).get();
                            faults::expectSound(*graph->find(20));
                          });
  EXPECT_GE(failures, 15U);  // one for each memory
}

TEST_F(GraphWithoutMemory, RemovesWithoutAny)
{
  const std::size_t failures =
      failEveryAllocation([] { return graphOf(3); }, [](Graph& graph) { graph->remove(20); }, [](Graph&, Outcome) {});
  EXPECT_EQ(0U, failures);
}

TEST_F(GraphWithoutMemory, FindsAndReadsWithoutAny)
{
  std::int32_t found = 0;
  std::int32_t read = 0;
  const boost::function<void(const KV::Person&)> keep = [&read](const KV::Person& person) { read = person.personID; };
  const std::size_t failures = failEveryAllocation([] { return graphOf(3); },
                                                   [&](Graph& graph) {
                                                     found = graph->find(20)->personID;
                                                     graph->read(30, keep);
                                                   },
                                                   [](Graph&, Outcome) {});
  EXPECT_EQ(0U, failures);
  EXPECT_EQ(20, found);
  EXPECT_EQ(30, read);
}

TEST_F(GraphWithoutMemory, ListsEverybodyOrThrows)
{
  const std::size_t failures =
      failEveryAllocation([] { return graphOf(3); }, [](Graph& graph) { EXPECT_EQ(3U, graph->persons().size()); },
                          [](Graph& graph, Outcome outcome) {
                            EXPECT_EQ(Outcome::Threw, outcome);
                            EXPECT_EQ((Ids{10, 20, 30}), idsIn(*graph));
                          });
  EXPECT_EQ(1U, failures);
}

TEST_F(GraphWithoutMemory, IsUnlockedAfterACallbackThatThrows)
{
  const Graph graph = graphOf(1);
  const auto fail = [](const KV::Person&) { throw std::runtime_error("callback"); };
  EXPECT_THROW(graph->updateOrCreate(20, fail), std::runtime_error);
  EXPECT_THROW(graph->update(20, fail), std::runtime_error);
  EXPECT_THROW(graph->read(20, fail), std::runtime_error);
  EXPECT_EQ((Ids{10, 20}), idsIn(*graph));
}

}  // namespace
