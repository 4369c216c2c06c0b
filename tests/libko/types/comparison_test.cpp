#include "shapes.hpp"
#include "stranger.hpp"

#include <ko/value.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{

using ko::Value;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// Every value is equal to itself and less than all that follow it.
void expectAscending(const std::vector<Value>& values)
{
  for (std::size_t i = 0; i < values.size(); ++i)
  {
    for (std::size_t j = 0; j < values.size(); ++j)
    {
      EXPECT_EQ(i < j, values[i] < values[j]) << values[i] << " and " << values[j];
      EXPECT_EQ(i == j, values[i] == values[j]) << values[i] << " and " << values[j];
      EXPECT_EQ(i != j, values[i] != values[j]) << values[i] << " and " << values[j];
    }
  }
}

TEST(Comparison, OrdersByKindFirst)
{
  expectAscending({Value(), Value::from(true), Value::from(1), Value::from(0.5), Value::from("a"),
                   Value::from(std::vector<int>{1}), Value::from(std::map<int, int>{{1, 1}}),
                   Value::from(std::optional<int>(1)), Value::from(std::make_pair(1, 2)), Value::from(shapes::Point()),
                   Value::ofType(&strangers::strangerType)});
}

TEST(Comparison, OrdersIntegersByValueWhateverTheirWidthAndSign)
{
  expectAscending({Value::from(std::numeric_limits<std::int64_t>::min()), Value::from(std::int8_t(-1)), Value::from(0U),
                   Value::from(1), Value::from(std::numeric_limits<std::int64_t>::max()),
                   Value::from(std::numeric_limits<std::uint64_t>::max())});
  EXPECT_EQ(Value::from(std::uint8_t(7)), Value::from(std::int64_t(7)));
}

TEST(Comparison, OrdersFloatingPointNumbersWithNanLast)
{
  expectAscending({Value::from(-infinity), Value::from(-1.0), Value::from(0.0), Value::from(0.5f),
                   Value::from(infinity), Value::from(nan)});
}

TEST(Comparison, TakesOneNanForAnotherAndMinusZeroForZero)
{
  EXPECT_EQ(Value::from(nan), Value::from(-std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ(Value::from(0.0), Value::from(-0.0));
}

TEST(Comparison, OrdersTextsByTheirBytes)
{
  expectAscending({Value::from(""), Value::from("B"), Value::from("a"), Value::from("aa"), Value::from("\xC3\xA4")});
}

TEST(Comparison, OrdersListsByTheirFirstDifference)
{
  using List = std::vector<int>;
  expectAscending({Value::from(List{}), Value::from(List{1}), Value::from(List{1, 2}), Value::from(List{2})});
}

TEST(Comparison, OrdersMapsByKeyThenElement)
{
  using Map = std::map<std::string, int>;
  expectAscending({Value::from(Map{}), Value::from(Map{{"a", 1}}), Value::from(Map{{"a", 1}, {"b", 0}}),
                   Value::from(Map{{"a", 1}, {"b", 2}}), Value::from(Map{{"a", 1}, {"c", 1}}),
                   Value::from(Map{{"a", 2}}), Value::from(Map{{"b", 0}})});
}

TEST(Comparison, OrdersOptionalsWithNothingFirst)
{
  using Optional = std::optional<int>;
  expectAscending({Value::from(Optional()), Value::from(Optional(-1)), Value::from(Optional(0))});
}

TEST(Comparison, OrdersStructsByNameThenMembers)
{
  expectAscending({Value::from(shapes::Outline{}), Value::from(shapes::Point{0, 5.f}),
                   Value::from(shapes::Point{1, 0.f}), Value::from(shapes::Point{1, 1.f})});
}

TEST(Comparison, LooksInsideDynamicValues)
{
  EXPECT_EQ(Value::from(1), Value::from(Value::from(1)));
  EXPECT_EQ(Value(), Value::from(Value()));
  EXPECT_EQ(Value::from(std::vector<int>{1, 2}),
            Value::from(std::vector<Value>{Value::from(1), Value::from(std::int64_t(2))}));
}

TEST(Comparison, ComparesHandlesByWhatTheyShow)
{
  const shapes::Canvas one;
  shapes::Canvas other;
  EXPECT_EQ(Value::from(one), Value::from(other));
  other.record->origin.x = 1;
  EXPECT_LT(Value::from(one), Value::from(other));
}

}  // namespace
