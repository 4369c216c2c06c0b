#include <skeigiot/socialgraph.hpp>

#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include "support/clocktest.hpp"
#include "support/thrown.hpp"

#include <ko/log.hpp>

#include <boost/container/flat_map.hpp>
#include <boost/function.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace support
{

using Persons = boost::container::flat_map<int, KV::Person>;

Persons& personsOf(KV::SocialGraph& graph);

template <Persons KV::SocialGraph::*persons>
struct RevealedPersons
{
  friend Persons& personsOf(KV::SocialGraph& graph) { return graph.*persons; }
};

template struct RevealedPersons<&KV::SocialGraph::_persons>;  // may name private members

}  // namespace support

namespace
{

using KV::Person;
using KV::SocialGraph;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StrEq;

const boost::function<void(Person&)> noUpdate;
const boost::function<void(const Person&)> noReader;

std::vector<int> identifiersIn(const SocialGraph& graph)
{
  std::vector<int> identifiers;
  for (const Person& person : graph.persons())
    identifiers.push_back(person.personID);
  return identifiers;
}

/// Marks a person, to recognise them later.
void makeHappy(Person& person)
{
  person.personState._setValence(0.75f);
}

bool isHappy(const Person& person)
{
  return person.personState.personValence().value == 0.75f;
}

// Adding and removing

TEST(SocialGraph, IsEmptyAtFirst)
{
  const SocialGraph graph;
  EXPECT_FALSE(graph.find(5));
  EXPECT_THAT(graph.persons(), IsEmpty());
}

TEST(SocialGraph, IsNeitherCopiedNorMoved)
{
  EXPECT_FALSE(std::is_copy_constructible<SocialGraph>::value);
  EXPECT_FALSE(std::is_move_constructible<SocialGraph>::value);
}

TEST(SocialGraph, KeepsThePersonWhoIsAddedAgain)
{
  SocialGraph graph;
  graph.add(3);
  graph.update(3, makeHappy);
  const Person before = *graph.find(3);

  graph.add(3);

  EXPECT_THAT(identifiersIn(graph), ElementsAre(3));
  EXPECT_TRUE(isHappy(*graph.find(3)));
  EXPECT_EQ(before.personState._p, graph.find(3)->personState._p);
  EXPECT_EQ(before.personMemory._p, graph.find(3)->personMemory._p);
}

TEST(SocialGraph, ListsPersonsInOrderOfTheirIdentifiers)
{
  SocialGraph graph;
  for (const int id : {9, 2, 5, -4, 0})
    graph.add(id);
  EXPECT_THAT(identifiersIn(graph), ElementsAre(-4, 0, 2, 5, 9));
}

TEST(SocialGraph, GivesEachPersonRecordsOfTheirOwn)
{
  SocialGraph graph;
  graph.add(1);
  graph.add(2);
  graph.update(1, makeHappy);
  EXPECT_FALSE(isHappy(*graph.find(2)));
  EXPECT_NE(graph.find(1)->personMemory._p, graph.find(2)->personMemory._p);
}

TEST(SocialGraph, RemovesOnePersonAlone)
{
  SocialGraph graph;
  for (const int id : {1, 2, 3})
    graph.add(id);
  graph.remove(2);
  EXPECT_THAT(identifiersIn(graph), ElementsAre(1, 3));
  EXPECT_FALSE(graph.find(2));
}

TEST(SocialGraph, RemovesNobodyForAnUnknownIdentifier)
{
  SocialGraph graph;
  graph.add(6);
  graph.add(8);
  graph.remove(7);
  EXPECT_THAT(identifiersIn(graph), ElementsAre(6, 8));
}

TEST(SocialGraph, AddsANewPersonAfterOneWasRemoved)
{
  SocialGraph graph;
  graph.add(1);
  graph.update(1, makeHappy);
  graph.remove(1);
  graph.add(1);
  EXPECT_FALSE(isHappy(*graph.find(1)));
}

TEST(SocialGraph, LetsTheRecordsOfARemovedPersonGo)
{
  SocialGraph graph;
  graph.add(1);
  const boost::weak_ptr<KV::PersonStatePrivate> state(graph.find(1)->personState._p);
  const boost::weak_ptr<KV::PersonMemoryPrivate> memory(graph.find(1)->personMemory._p);
  EXPECT_FALSE(state.expired());

  graph.remove(1);

  EXPECT_TRUE(state.expired());
  EXPECT_TRUE(memory.expired());
}

TEST(SocialGraph, LeavesARemovedPersonUsableThroughACopy)
{
  SocialGraph graph;
  graph.add(1);
  Person copy = *graph.find(1);
  graph.remove(1);

  support::TestClock time;
  KV::PersonObservation observation;
  observation.touchEmotion = KV::Timestamped<std::int32_t>(support::start, 1);
  copy.update(observation);

  EXPECT_GT(copy.personState.personValence().value, 0.6f);
}

// Looking up

TEST(SocialGraph, FindsOnlyWhoIsThere)
{
  SocialGraph graph;
  for (const int id : {2, 4, 6})
    graph.add(id);
  for (const int id : {2, 4, 6})
    EXPECT_EQ(id, graph.find(id)->personID);
  for (const int id : {1, 3, 5, 7})
    EXPECT_FALSE(graph.find(id)) << id;
}

TEST(SocialGraph, SharesRecordsWithThePersonsItHandsOut)
{
  SocialGraph graph;
  graph.add(1);
  Person found = *graph.find(1);
  const std::vector<Person> listed = graph.persons();
  makeHappy(found);
  EXPECT_TRUE(isHappy(*graph.find(1)));
  EXPECT_TRUE(isHappy(listed[0]));
}

TEST(SocialGraph, GoesByTheIdentifierThatAPersonWasAddedUnder)
{
  SocialGraph graph;
  graph.add(1);
  graph.add(2);
  graph.update(1, [](Person& person) { person.setUserSessionID(7); });

  EXPECT_EQ(7, graph.find(1)->personID);
  EXPECT_FALSE(graph.find(7));
  EXPECT_THAT(identifiersIn(graph), ElementsAre(7, 2));
  graph.remove(1);
  EXPECT_THAT(identifiersIn(graph), ElementsAre(2));
}

// Callbacks

TEST(SocialGraph, UpdatesThePersonInPlace)
{
  SocialGraph graph;
  graph.add(3);
  graph.add(4);
  int calls = 0;
  graph.update(4, [&](Person& person) {
    ++calls;
    EXPECT_EQ(4, person.personID);
    makeHappy(person);
    person.personID = 40;
  });
  EXPECT_EQ(1, calls);
  EXPECT_TRUE(isHappy(*graph.find(4)));
  EXPECT_EQ(40, graph.find(4)->personID);
}

TEST(SocialGraph, ReadsThePerson)
{
  SocialGraph graph;
  graph.add(3);
  graph.add(4);
  graph.update(4, makeHappy);
  int calls = 0;
  const SocialGraph& readOnly = graph;
  readOnly.read(4, [&](const Person& person) {
    ++calls;
    EXPECT_EQ(4, person.personID);
    EXPECT_TRUE(isHappy(person));
  });
  EXPECT_EQ(1, calls);
}

TEST(SocialGraph, CallsNobodyForAnUnknownIdentifier)
{
  SocialGraph graph;
  graph.add(3);
  graph.add(5);
  graph.update(4, [](Person&) { ADD_FAILURE() << "updated an unknown person"; });
  graph.read(4, [](const Person&) { ADD_FAILURE() << "read an unknown person"; });
  EXPECT_THAT(identifiersIn(graph), ElementsAre(3, 5));
}

TEST(SocialGraph, DoesNotMindAnEmptyCallbackForAnUnknownIdentifier)
{
  SocialGraph graph;
  EXPECT_NO_THROW(graph.update(4, noUpdate));
  EXPECT_NO_THROW(graph.read(4, noReader));
  EXPECT_THAT(graph.persons(), IsEmpty());
}

TEST(SocialGraph, RefusesAnEmptyCallbackForAKnownIdentifierAndStaysUsable)
{
  SocialGraph graph;
  graph.add(4);
  const auto refuses = ::testing::ThrowsMessage<boost::bad_function_call>(StrEq("call to empty boost::function"));
  EXPECT_THAT([&] { graph.update(4, noUpdate); }, refuses);
  EXPECT_THAT([&] { graph.read(4, noReader); }, refuses);

  graph.update(4, makeHappy);
  EXPECT_TRUE(isHappy(*graph.find(4)));
}

TEST(SocialGraph, CreatesWhoIsToBeUpdated)
{
  SocialGraph graph;
  graph.add(2);
  graph.add(9);
  int calls = 0;
  graph.updateOrCreate(5, [&](Person& person) {
    ++calls;
    EXPECT_EQ(5, person.personID);
    makeHappy(person);
    person.personID = 50;
  });
  EXPECT_EQ(1, calls);
  EXPECT_TRUE(isHappy(*graph.find(5)));
  EXPECT_THAT(identifiersIn(graph), ElementsAre(2, 50, 9));
}

TEST(SocialGraph, UpdatesWhoIsThereAlready)
{
  SocialGraph graph;
  graph.add(5);
  graph.update(5, makeHappy);
  int calls = 0;
  graph.updateOrCreate(5, [&](Person& person) {
    ++calls;
    EXPECT_TRUE(isHappy(person));
  });
  EXPECT_EQ(1, calls);
  EXPECT_THAT(identifiersIn(graph), ElementsAre(5));
}

TEST(SocialGraph, CreatesAPersonByAnEmptyCallback)
{
  SocialGraph graph;
  EXPECT_NO_THROW(graph.updateOrCreate(4, noUpdate));
  EXPECT_THAT(identifiersIn(graph), ElementsAre(4));

  graph.update(4, makeHappy);
  EXPECT_NO_THROW(graph.updateOrCreate(4, noUpdate));
  EXPECT_TRUE(isHappy(*graph.find(4)));
}

TEST(SocialGraph, KeepsWhatACallbackDidBeforeItThrew)
{
  SocialGraph graph;
  const auto throwing = [](Person& person) {
    makeHappy(person);
    throw std::domain_error("enough");
  };
  EXPECT_EQ("enough", support::textThrownBy<std::domain_error>([&] { graph.updateOrCreate(4, throwing); }));
  EXPECT_TRUE(isHappy(*graph.find(4)));

  graph.add(5);
  EXPECT_EQ("enough", support::textThrownBy<std::domain_error>([&] { graph.update(5, throwing); }));
  EXPECT_TRUE(isHappy(*graph.find(5)));
  EXPECT_EQ("enough", support::textThrownBy<std::domain_error>(
                          [&] { graph.read(5, [](const Person&) { throw std::domain_error("enough"); }); }));
  EXPECT_THAT(identifiersIn(graph), ElementsAre(4, 5));
}

// Threads

TEST(SocialGraph, MakesEveryOperationWaitForACallback)
{
  SocialGraph graph;
  graph.add(1);
  const std::vector<boost::function<void()>> operations = {[&] { graph.add(2); },
                                                           [&] { graph.remove(3); },
                                                           [&] { graph.persons(); },
                                                           [&] { graph.find(1); },
                                                           [&] { graph.update(1, [](Person&) {}); },
                                                           [&] { graph.read(1, [](const Person&) {}); },
                                                           [&] { graph.updateOrCreate(1, [](Person&) {}); }};
  for (const boost::function<void()>& operation : operations)
  {
    std::future<void> done;
    const auto waits = [&] {
      done = std::async(std::launch::async, operation);
      EXPECT_EQ(std::future_status::timeout, done.wait_for(std::chrono::milliseconds(20)));
    };
    graph.update(1, [&](Person&) { waits(); });
    done.get();
    graph.read(1, [&](const Person&) { waits(); });
    done.get();
    graph.updateOrCreate(1, [&](Person&) { waits(); });
    done.get();
  }
}

TEST(SocialGraph, KeepsAPersonWhoIsBeingReadWhileSomebodyRemovesThem)
{
  SocialGraph graph;
  graph.add(1);
  std::future<void> removed;
  bool isThere = false;
  graph.read(1, [&](const Person& person) {
    const boost::weak_ptr<KV::PersonStatePrivate> record(person.personState._p);
    removed = std::async(std::launch::async, [&graph] { graph.remove(1); });
    EXPECT_EQ(std::future_status::timeout, removed.wait_for(std::chrono::milliseconds(20)));
    isThere = !record.expired();
  });
  removed.get();

  EXPECT_TRUE(isThere);
  EXPECT_THAT(graph.persons(), IsEmpty());
}

TEST(SocialGraph, TakesNobodyInWhileSomebodyIsBeingRead)
{
  SocialGraph graph;
  graph.add(1);
  std::future<void> added;
  std::size_t count = 0;
  graph.read(1, [&](const Person&) {
    added = std::async(std::launch::async, [&graph] { graph.add(2); });
    EXPECT_EQ(std::future_status::timeout, added.wait_for(std::chrono::milliseconds(20)));
    count = support::personsOf(graph).size();
  });
  added.get();

  EXPECT_EQ(1U, count);
  EXPECT_THAT(identifiersIn(graph), ElementsAre(1, 2));
}

TEST(SocialGraph, LosesNoUpdateOfSeveralThreads)
{
  constexpr int threadCount = 4;
  constexpr int personCount = 5;
  constexpr int roundCount = 200;
  SocialGraph graph;
  std::array<int, personCount> calls{};  // guarded by the graph

  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread)
    threads.emplace_back([&] {
      for (int round = 0; round < roundCount; ++round)
        for (int id = 0; id < personCount; ++id)
        {
          graph.updateOrCreate(id, [&](Person& person) {
            ++calls[static_cast<std::size_t>(id)];
            person.personState._setValence(person.personState.personValence().value + 0.0009765625f);
          });
          graph.find(id);
          graph.persons();
        }
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_THAT(identifiersIn(graph), ElementsAre(0, 1, 2, 3, 4));
  for (const int count : calls)
    EXPECT_EQ(threadCount * roundCount, count);
  for (const Person& person : graph.persons())
    EXPECT_EQ(0.78125f, person.personState.personValence().value);  // 800 / 1024, exact in binary
}

TEST(SocialGraph, TakesPersonsInAndOutFromSeveralThreads)
{
  SocialGraph graph;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([&graph, thread] {
      for (int round = 0; round < 100; ++round)
      {
        graph.add(thread * 1000 + round);
        if (round % 2 == 1)
          graph.remove(thread * 1000 + round);
      }
    });
  for (std::thread& thread : threads)
    thread.join();

  std::vector<int> expected;
  for (int thread = 0; thread < 4; ++thread)
    for (int round = 0; round < 100; round += 2)
      expected.push_back(thread * 1000 + round);
  EXPECT_EQ(expected, identifiersIn(graph));
}

TEST(SocialGraph, RegistersItsLogCategory)
{
  EXPECT_THAT(ko::log::categories(), ::testing::Contains("kvmood.socialgraph"));
}

}  // namespace
