#include <skeigiot/isfinite.hpp>
#include <skeigiot/readings.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

/// Calls `visit(name, scale, number)` for each number of the value, parts of parts included; it may change the number.
template <typename Value, typename Visit>
void forEachNumber(const std::string& name, const KV::Scale& scale, Value& value, Visit visit)
{
  KV::forEachPart<Value>([&](const auto& known) {
    const std::string nameOfPart = name + "." + known.name;
    const KV::Scale scaleOfPart = known.scale.value_or(scale);
    auto part = known.in(value);
    if constexpr (std::is_arithmetic_v<decltype(part)>)
      visit(nameOfPart, scaleOfPart, part);
    else if constexpr (std::is_same_v<decltype(part), std::pair<float, float>>)
    {
      visit(nameOfPart + ".x", scaleOfPart, part.first);
      visit(nameOfPart + ".y", scaleOfPart, part.second);
    }
    else
      forEachNumber(nameOfPart, scaleOfPart, part, visit);
    known.put(part, value);
  });
}

TEST(Readings, CoverAllBytesOfAnObservation)
{
  const KV::PersonObservation observation;
  const auto begin = reinterpret_cast<std::uintptr_t>(&observation);
  std::vector<std::pair<std::size_t, std::size_t>> fields;  // from, and after
  KV::forEachReading([&](const auto& known) {
    const auto& reading = known.in(observation);
    const std::size_t from = reinterpret_cast<std::uintptr_t>(&reading) - begin;
    fields.emplace_back(from, from + sizeof reading);
  });

  EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end())) << "the list has the order of the fields";
  std::size_t reached = 0;
  for (const auto& [from, behind] : fields)
  {
    EXPECT_GE(from, reached) << "a field is listed twice";
    EXPECT_LT(from - reached, alignof(KV::PersonObservation)) << "a field before this one is not listed";
    reached = behind;
  }
  EXPECT_LT(sizeof observation - reached, alignof(KV::PersonObservation)) << "the last field is not listed";
}

TEST(Readings, HaveNamesOfTheirOwn)
{
  std::set<std::string> names;
  KV::forEachReading([&names](const auto& known) {
    EXPECT_TRUE(names.insert(known.name).second) << known.name;
    EXPECT_STRNE("", known.about) << known.name;
  });
  EXPECT_EQ(KV::readingCount, names.size());
}

TEST(Readings, HavePartsWithNamesOfTheirOwn)
{
  KV::forEachReading([](const auto& known) {
    using Value = typename std::decay_t<decltype(known)>::Value;
    std::set<std::string> names;
    KV::forEachPart<Value>(
        [&](const auto& part) { EXPECT_TRUE(names.insert(part.name).second) << known.name << "." << part.name; });
  });
}

TEST(Readings, HavePartsThatAreReadAsTheyWerePut)
{
  KV::forEachReading([](const auto& known) {
    auto value = KV::blankReading<typename std::decay_t<decltype(known)>::Value>();
    int count = 0;
    const auto next = [&count](auto& number) {
      using Number = std::decay_t<decltype(number)>;
      number = std::is_same_v<Number, bool> ? static_cast<Number>(true) : static_cast<Number>(++count);
    };
    forEachNumber(known.name, known.scale, value, [&](const auto&, const auto&, auto& number) { next(number); });

    count = 0;
    forEachNumber(known.name, known.scale, value, [&](const std::string& name, const auto&, auto& number) {
      auto expected = number;
      next(expected);
      EXPECT_EQ(expected, number) << name;
    });
  });
}

TEST(Readings, HaveScalesWithTheirEndsInOrder)
{
  KV::forEachReading([](const auto& known) {
    auto value = KV::blankReading<typename std::decay_t<decltype(known)>::Value>();
    forEachNumber(known.name, known.scale, value, [](const std::string& name, const KV::Scale& scale, const auto&) {
      EXPECT_LT(scale.least, scale.greatest) << name;
    });
  });
}

TEST(Readings, AreFiniteAtBothEndsOfTheirScales)
{
  for (const bool isGreatest : {false, true})
    KV::forEachReading([isGreatest](const auto& known) {
      auto value = KV::blankReading<typename std::decay_t<decltype(known)>::Value>();
      forEachNumber(known.name, known.scale, value, [&](const auto&, const KV::Scale& scale, auto& number) {
        number = static_cast<std::decay_t<decltype(number)>>(isGreatest ? scale.greatest : scale.least);
      });
      KV::PersonObservation observation;
      known.in(observation).emplace(ko::SystemClock::time_point(), value);
      EXPECT_TRUE(KV::isFinite(observation)) << known.name;
    });
}

TEST(Readings, HaveNoNumberThatIsFiniteWhenItIsInfinite)
{
  KV::forEachReading([](const auto& known) {
    using Value = typename std::decay_t<decltype(known)>::Value;
    const auto blank = KV::blankReading<Value>();
    int numbers = 0;
    auto counted = blank;
    forEachNumber(known.name, known.scale, counted, [&](const auto&, const auto&, const auto&) { ++numbers; });
    for (int bad = 0; bad < numbers; ++bad)
    {
      auto value = blank;
      bool isFloat = false;
      int at = 0;
      forEachNumber(known.name, known.scale, value, [&](const auto&, const auto&, auto& number) {
        using Number = std::decay_t<decltype(number)>;
        if (at++ != bad)
          return;
        isFloat = std::is_floating_point_v<Number>;
        if constexpr (std::is_floating_point_v<Number>)
          number = std::numeric_limits<Number>::infinity();
      });
      KV::PersonObservation observation;
      known.in(observation).emplace(ko::SystemClock::time_point(), value);
      EXPECT_EQ(!isFloat, KV::isFinite(observation)) << known.name << ", number " << bad;
    }
  });
}

}  // namespace
