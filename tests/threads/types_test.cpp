// The registry of types; types are registered when they are first used.

#include "threads/together.hpp"

#include <skeigiot/person.hpp>

#include <ko/json.hpp>
#include <ko/type.hpp>
#include <ko/value.hpp>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace
{

constexpr int count = 4;

template <int Number>
struct Unregistered
{};

template <typename T>
using Deep = std::map<std::string, std::vector<std::optional<std::tuple<T, T, std::vector<T>>>>>;

/// The interfaces of types that are used nowhere else in this program.
std::array<ko::TypeInterface*, 6> rareTypes()
{
  return {ko::typeOf<Deep<short>>(),          ko::typeOf<Deep<long>>(),        ko::typeOf<Deep<unsigned char>>(),
          ko::typeOf<Deep<unsigned short>>(), ko::typeOf<Deep<signed char>>(), ko::typeOf<Deep<double>>()};
}

TEST(TypesOfThreads, AreRegisteredOnceOnFirstUse)
{
  std::array<std::array<ko::TypeInterface*, 6>, count> found{};
  threads::runOnThreads(count, 1, [&](int thread, int) { found.at(static_cast<std::size_t>(thread)) = rareTypes(); });

  for (const auto& types : found)
  {
    EXPECT_EQ(rareTypes(), types);
    for (ko::TypeInterface* const type : types)
      EXPECT_NE(nullptr, type);
  }
  EXPECT_EQ(nullptr, ko::typeOf<Unregistered<0>>());
}

TEST(TypesOfThreads, AreBoundToTheFirstInterfaceAlone)
{
  std::array<ko::TypeInterface*, count> offered{ko::typeOf<int>(), ko::typeOf<bool>(), ko::typeOf<float>(),
                                                ko::typeOf<double>()};
  std::atomic<int> accepted{0};
  threads::runOnThreads(count, 1, [&](int thread, int) {
    const bool isFirst = ko::registerType(typeid(Unregistered<1>), offered.at(static_cast<std::size_t>(thread)));
    accepted += static_cast<int>(isFirst);
  });
  EXPECT_EQ(1, accepted);
  EXPECT_NE(nullptr, ko::getType(typeid(Unregistered<1>)));
}

TEST(TypesOfThreads, AreFoundByNameAndWrittenMeanwhile)
{
  std::atomic<int> wrong{0};
  const KV::Person person(12);
  const std::string expected = ko::json::encode(ko::Value::from(person));
  threads::runOnThreads(count, 20, [&](int, int) {
    wrong += static_cast<int>(ko::findStruct("::KV::PersonState") == nullptr);
    wrong += static_cast<int>(ko::registeredStructs().empty());
    wrong += static_cast<int>(ko::json::encode(ko::Value::from(KV::Person(12))) != expected);
    wrong += static_cast<int>(ko::json::encode(ko::json::decode(expected)).size() != expected.size());
  });
  EXPECT_EQ(0, wrong);
}

}  // namespace
