// An update may be made in two halves, and through any copy.

#include "fingerprint.hpp"
#include "randomlife.hpp"

#include <skeigiot/person.hpp>
#include <skeigiot/socialgraph.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace properties;

TEST(UpdateProperties, AreTheSameInTwoHalves)
{
  for (const unsigned int seed : seeds)
  {
    RandomLife life(seed);
    KV::Person whole;
    KV::Person halves;
    while (life.next())
    {
      life.letLive(whole);
      if (life.isSeen())
      {
        halves.updateMemory(life.observation());
        halves._updateOnlineModels(life.observation());
      }
      else
        halves.decreaseSinceNotSeen();
      ASSERT_EQ(Fingerprint::of(whole), Fingerprint::of(halves)) << life.place();
    }
  }
}

TEST(UpdateProperties, AreTheSameThroughEveryCopy)
{
  for (const unsigned int seed : seeds)
  {
    RandomLife life(seed);
    std::mt19937 choosing(seed);
    KV::Person alone(3);
    KV::SocialGraph graph;
    graph.add(3);
    std::vector<KV::Person> copies{*graph.find(3)};
    while (life.next())
    {
      life.letLive(alone);
      life.letLive(copies[std::uniform_int_distribution<std::size_t>(0, copies.size() - 1)(choosing)]);
      if (copies.size() < 20)
        copies.push_back(copies.back());
      const std::string expected = Fingerprint::of(alone);
      ASSERT_EQ(expected, Fingerprint::of(copies.front())) << life.place();
      ASSERT_EQ(expected, Fingerprint::of(copies.back())) << life.place();
      graph.read(3, [&](const KV::Person& person) { ASSERT_EQ(expected, Fingerprint::of(person)) << life.place(); });
    }
  }
}

TEST(UpdateProperties, OfOnePersonDoNotTouchAnother)
{
  for (const unsigned int seed : seeds)
  {
    RandomLife life(seed);
    KV::Person updated;
    const KV::Person other(5);
    const std::string before = Fingerprint::of(other);
    while (life.next())
    {
      life.letLive(updated);
      ASSERT_EQ(before, Fingerprint::of(other)) << life.place();
    }
  }
}

// Persons at addresses of every alignment that objects may have, some with other persons' records between them.
TEST(UpdateProperties, AreTheSameAtEveryAddress)
{
  for (const unsigned int seed : seeds)
  {
    RandomLife life(seed);
    std::mt19937 random(seed);
    std::vector<std::unique_ptr<char[]>> gaps;  // NOLINT(modernize-avoid-c-arrays): of random sizes
    std::vector<std::unique_ptr<KV::Person>> persons;
    for (int i = 0; i < 5; ++i)
    {
      gaps.emplace_back(new char[std::uniform_int_distribution<std::size_t>(1, 5000)(random)]);
      persons.push_back(std::make_unique<KV::Person>());
    }
    while (life.next())
    {
      for (const auto& person : persons)
      {
        life.letLive(*person);
        gaps.emplace_back(new char[std::uniform_int_distribution<std::size_t>(1, 500)(random)]);
      }
      if (gaps.size() > 1000)
        gaps.erase(gaps.begin(), gaps.begin() + 700);
      const std::string expected = Fingerprint::of(*persons.front());
      for (const auto& person : persons)
        ASSERT_EQ(expected, Fingerprint::of(*person)) << life.place();
    }
  }
}

}  // namespace
