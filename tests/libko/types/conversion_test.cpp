#include "shapes.hpp"
#include "stranger.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <ko/typeerror.hpp>
#include <ko/value.hpp>

#include <boost/optional/optional.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace
{

using ko::Value;
using shapes::Point;
using support::textThrownBy;
using Dynamic = std::map<std::string, Value>;

struct PointInDouble
{
  double y = 0;
  std::int64_t x = 0;
};

struct PointWithHeight
{
  int x = 0;
  float y = 0.f;
  float z = 0.f;
};

/// A point that is made from other versions of itself, but makes no other version.
struct TakingPoint
{
  int x = 0;
  float w = 1.f;
};

class TakingPointType : public ko::detail::RecordType<TakingPoint>
{
public:
  TakingPointType() : RecordType("TakingPoint", {{"x", &TakingPoint::x}, {"w", &TakingPoint::w}}) {}
  bool convertFrom(const ko::MemberDifference&) const override { return true; }
};

/// A point that makes other versions of itself, but is not made from any.
struct GivingPoint
{
  int x = 0;
  float w = 1.f;
};

class GivingPointType : public ko::detail::RecordType<GivingPoint>
{
public:
  GivingPointType() : RecordType("GivingPoint", {{"x", &GivingPoint::x}, {"w", &GivingPoint::w}}) {}
  bool convertTo(const ko::MemberDifference&) const override { return true; }
};

[[maybe_unused]] const bool registered =
    ko::registerRecord<PointInDouble>("PointInDouble", {{"y", &PointInDouble::y}, {"x", &PointInDouble::x}}) &&
    ko::registerRecord<PointWithHeight>(
        "PointWithHeight", {{"x", &PointWithHeight::x}, {"y", &PointWithHeight::y}, {"z", &PointWithHeight::z}}) &&
    ko::registerType(typeid(TakingPoint), new TakingPointType) &&
    ko::registerType(typeid(GivingPoint), new GivingPointType);

template <typename T>
std::string misfit(const Value& value)
{
  return textThrownBy<ko::TypeError>([&] { (void)value.to<T>(); });
}

struct IntCase
{
  const char* name;
  Value value;
  std::string asInt8;
  std::string asUint32;
  std::string asInt64;
};

template <typename T>
std::string converted(const Value& value)
{
  try
  {
    return std::to_string(value.to<T>());
  }
  catch (const ko::TypeError& error)
  {
    return error.what();
  }
}

class ConversionToInteger : public ::testing::TestWithParam<IntCase>
{};

TEST_P(ConversionToInteger, TakesWholeNumbersInRange)
{
  EXPECT_EQ(GetParam().asInt8, converted<std::int8_t>(GetParam().value));
  EXPECT_EQ(GetParam().asUint32, converted<std::uint32_t>(GetParam().value));
  EXPECT_EQ(GetParam().asInt64, converted<std::int64_t>(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(
    AtTheBoundaries, ConversionToInteger,
    ::testing::Values(
        IntCase{"GreatestOfInt8", Value::from(127), "127", "127", "127"},
        IntCase{"BeyondInt8", Value::from(128), "128 does not fit into int8", "128", "128"},
        IntCase{"LeastOfInt8", Value::from(-128), "-128", "-128 does not fit into uint32", "-128"},
        IntCase{"BelowInt8", Value::from(-129), "-129 does not fit into int8", "-129 does not fit into uint32", "-129"},
        IntCase{"GreatestOfUint32", Value::from(4294967295U), "4294967295 does not fit into int8", "4294967295",
                "4294967295"},
        IntCase{"BeyondUint32", Value::from(4294967296), "4294967296 does not fit into int8",
                "4294967296 does not fit into uint32", "4294967296"},
        IntCase{"BeyondInt64", Value::from(9223372036854775808U), "9223372036854775808 does not fit into int8",
                "9223372036854775808 does not fit into uint32", "9223372036854775808 does not fit into int64"},
        IntCase{"LeastOfInt64", Value::from(std::numeric_limits<std::int64_t>::min()),
                "-9223372036854775808 does not fit into int8", "-9223372036854775808 does not fit into uint32",
                "-9223372036854775808"},
        IntCase{"WholeDouble", Value::from(-3.0), "-3", "-3 does not fit into uint32", "-3"},
        IntCase{"BrokenDouble", Value::from(0.5), "0.5 does not fit into int8", "0.5 does not fit into uint32",
                "0.5 does not fit into int64"},
        IntCase{"DoubleBeyondInt64", Value::from(0x1p63), "9223372036854775808 does not fit into int8",
                "9223372036854775808 does not fit into uint32", "9223372036854775808 does not fit into int64"},
        IntCase{"LeastDoubleOfInt64", Value::from(-0x1p63), "-9223372036854775808 does not fit into int8",
                "-9223372036854775808 does not fit into uint32", "-9223372036854775808"},
        IntCase{"HugeDouble", Value::from(1e300), "1e+300 does not fit into int8", "1e+300 does not fit into uint32",
                "1e+300 does not fit into int64"},
        IntCase{"Nan", Value::from(std::nan("")), "NaN does not fit into int8", "NaN does not fit into uint32",
                "NaN does not fit into int64"},
        IntCase{"Infinity", Value::from(-HUGE_VAL), "-Infinity does not fit into int8",
                "-Infinity does not fit into uint32", "-Infinity does not fit into int64"},
        IntCase{"Truth", Value::from(true), "expected int8, got bool", "expected uint32, got bool",
                "expected int64, got bool"},
        IntCase{"Text", Value::from("1"), "expected int8, got string", "expected uint32, got string",
                "expected int64, got string"},
        IntCase{"Nothing", Value(), "expected int8, got nothing", "expected uint32, got nothing",
                "expected int64, got nothing"}),
    support::RowName());

TEST(ConversionToInteger, ReachesTheEndsOfUint64)
{
  constexpr std::uint64_t greatest = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ("18446744073709551615", converted<std::uint64_t>(Value::from(greatest)));
  EXPECT_EQ("0", converted<std::uint64_t>(Value::from(-0.0)));
  EXPECT_EQ("9223372036854775808", converted<std::uint64_t>(Value::from(0x1p63)));
  EXPECT_EQ("18446744073709549568", converted<std::uint64_t>(Value::from(std::nextafter(0x1p64, 0))));
  EXPECT_EQ("18446744073709551616 does not fit into uint64", converted<std::uint64_t>(Value::from(0x1p64)));
  EXPECT_EQ("-1 does not fit into uint64", converted<std::uint64_t>(Value::from(-1)));
  EXPECT_EQ("-1 does not fit into uint64", converted<std::uint64_t>(Value::from(-1.0)));
  EXPECT_EQ("-9223372036854777856 does not fit into int64",
            converted<std::int64_t>(Value::from(std::nextafter(-0x1p63, -HUGE_VAL))));
}

TEST(ConversionToFloat, RoundsToTheNearest)
{
  EXPECT_EQ(0.1f, Value::from(0.1).to<float>());
  EXPECT_EQ(16777216.f, Value::from(16777217).to<float>());
  EXPECT_EQ(0.1, Value::from(0.1).to<double>());
  EXPECT_EQ(18446744073709551615., Value::from(std::numeric_limits<std::uint64_t>::max()).to<double>());
}

TEST(ConversionToFloat, KeepsNanAndTheInfinities)
{
  EXPECT_TRUE(std::isnan(Value::from(std::nan("")).to<float>()));
  EXPECT_EQ(-HUGE_VALF, Value::from(-HUGE_VAL).to<float>());
}

TEST(ConversionToFloat, RefusesWhatWouldRoundToInfinity)
{
  constexpr double firstBeyond = 0x1.ffffffp+127;
  EXPECT_EQ(std::numeric_limits<float>::max(), Value::from(std::nextafter(firstBeyond, 0)).to<float>());
  EXPECT_EQ("3.4028235677973366e+38 does not fit into float", misfit<float>(Value::from(firstBeyond)));
  EXPECT_EQ(std::numeric_limits<float>::lowest(), Value::from(-std::nextafter(firstBeyond, 0)).to<float>());
  EXPECT_EQ("-3.4028235677973366e+38 does not fit into float", misfit<float>(Value::from(-firstBeyond)));
  EXPECT_EQ(firstBeyond, Value::from(firstBeyond).to<double>());
}

TEST(ConversionToFloat, RefusesEverythingElse)
{
  EXPECT_EQ("expected float, got string", misfit<float>(Value::from("NaN")));
  EXPECT_EQ("expected double, got bool", misfit<double>(Value::from(true)));
  EXPECT_EQ("expected double, got nothing", misfit<double>(Value()));
}

TEST(Conversion, TakesOnlyTruthsForTruths)
{
  EXPECT_TRUE(Value::from(true).to<bool>());
  EXPECT_FALSE(Value::from(false).to<bool>());
  EXPECT_EQ((std::vector<std::optional<bool>>{true, false}),
            Value::from(std::make_pair(true, false)).to<std::vector<std::optional<bool>>>());
  EXPECT_EQ("expected bool, got int32", misfit<bool>(Value::from(1)));
  EXPECT_EQ("expected bool, got nothing", misfit<bool>(Value()));
}

TEST(Conversion, TakesOnlyTextsForTexts)
{
  EXPECT_EQ("expected string, got int32", misfit<std::string>(Value::from(1)));
  EXPECT_EQ("expected string, got nothing", misfit<std::string>(Value()));
}

TEST(Conversion, TakesListsElementByElement)
{
  EXPECT_EQ((std::vector<double>{1, 2}), Value::from(std::vector<int>{1, 2}).to<std::vector<double>>());
  EXPECT_EQ((std::vector<int>{1, 2}), Value::from(std::make_pair(1, 2.0)).to<std::vector<int>>());
  EXPECT_EQ("[1]: 2.5 does not fit into int32", misfit<std::vector<int>>(Value::from(std::vector<double>{1, 2.5})));
  EXPECT_EQ("expected list of int32, got int32", misfit<std::vector<int>>(Value::from(1)));
}

TEST(Conversion, TakesTuplesOfAsManyMembers)
{
  using Pair = std::pair<int, std::string>;
  const Value list = Value::from(std::vector<Value>{Value::from(1), Value::from("one")});
  EXPECT_EQ(Pair(1, "one"), list.to<Pair>());
  EXPECT_EQ("expected 2 members for (int32, string), got 3", misfit<Pair>(Value::from(std::vector<int>{1, 2, 3})));
  EXPECT_EQ("[1]: expected string, got int32", misfit<Pair>(Value::from(std::vector<int>{1, 2})));
  EXPECT_EQ("expected (int32, string), got ::shapes::Point", misfit<Pair>(Value::from(Point())));
}

TEST(Conversion, TakesMapsEntryByEntry)
{
  using IntMap = std::map<int, double>;
  EXPECT_EQ((IntMap{{1, 2.0}}), (Value::from(std::map<std::int64_t, float>{{1, 2.f}}).to<IntMap>()));
  EXPECT_EQ("[0]: 0.5 does not fit into int32", misfit<IntMap>(Value::from(std::map<double, double>{{0.5, 0}})));
  EXPECT_EQ("b: expected double, got string",
            (misfit<std::map<std::string, double>>(
                Value::from(std::map<std::string, Value>{{"a", Value::from(1)}, {"b", Value::from("x")}}))));
  EXPECT_EQ("expected map from int32 to double, got nothing", misfit<IntMap>(Value()));
}

TEST(Conversion, TakesListsOfPairsForMaps)
{
  using IntMap = std::map<int, std::string>;
  const Value pairs = Value::from(std::vector<std::pair<int, std::string>>{{1, "one"}, {2, "two"}});
  EXPECT_EQ((IntMap{{1, "one"}, {2, "two"}}), pairs.to<IntMap>());
  EXPECT_EQ("[0]: expected a key with its element", misfit<IntMap>(Value::from(std::vector<int>{1})));
  EXPECT_EQ("[0]: expected a key with its element",
            misfit<IntMap>(Value::from(std::vector<std::vector<int>>{{1, 2, 3}})));
}

TEST(Conversion, TakesAValueForAnOptionalAndTheReverse)
{
  EXPECT_EQ(std::optional<double>(1), Value::from(1).to<std::optional<double>>());
  EXPECT_EQ(std::optional<double>(), Value().to<std::optional<double>>());
  EXPECT_EQ(std::optional<double>(1), Value::from(boost::optional<int>(1)).to<std::optional<double>>());
  EXPECT_EQ(std::optional<double>(), Value::from(boost::optional<int>()).to<std::optional<double>>());
  EXPECT_EQ(1, Value::from(std::optional<int>(1)).to<int>());
  EXPECT_EQ("expected int32, got nothing", misfit<int>(Value::from(std::optional<int>())));
  EXPECT_EQ("expected double, got string", misfit<std::optional<double>>(Value::from("1")));
}

TEST(Conversion, GoesIntoAndOutOfDynamicValues)
{
  EXPECT_EQ(Value::from(1), Value::from(1).to<Value>());
  EXPECT_EQ(1, Value::from(Value::from(1)).to<int>());
  EXPECT_EQ((std::vector<Value>{Value::from(1), Value::from(2)}),
            Value::from(std::vector<int>{1, 2}).to<std::vector<Value>>());
}

TEST(Conversion, TakesStructsWithTheSameMemberNamesInAnyOrder)
{
  const auto point = Value::from(PointInDouble{0.5, 3}).to<Point>();
  EXPECT_EQ(3, point.x);
  EXPECT_EQ(0.5f, point.y);
}

TEST(Conversion, TakesMapsWithTheNamesOfTheMembersAndTheReverse)
{
  const Value map = Value::from(Dynamic{{"x", Value::from(3)}, {"y", Value::from(0.5)}});
  EXPECT_EQ(3, map.to<Point>().x);
  EXPECT_EQ((std::map<std::string, double>{{"x", 1}, {"y", 2}}),
            (Value::from(Point{1, 2.f}).to<std::map<std::string, double>>()));
}

TEST(Conversion, RefusesOtherMembersWithBothLists)
{
  EXPECT_EQ("::shapes::Point has the members (x, y), the other side has (x, y, z)",
            misfit<Point>(Value::from(PointWithHeight())));
  EXPECT_EQ("PointWithHeight has the members (x, y, z), the other side has (x, y)",
            misfit<PointWithHeight>(Value::from(Point())));
  EXPECT_EQ("::shapes::Point has the members (x, y), the other side has (y)",
            misfit<Point>(Value::from(Dynamic{{"y", Value::from(1)}})));
  EXPECT_EQ("::shapes::Point has the members (x, y), the other side has ()", misfit<Point>(Value::from(Dynamic())));
  EXPECT_EQ("expected ::shapes::Point, got float", misfit<Point>(Value::from(1.f)));
}

TEST(Conversion, AsksTheTargetWhetherItTakesOtherMembers)
{
  const auto point = Value::from(PointWithHeight{3, 1.f, 2.f}).to<TakingPoint>();
  EXPECT_EQ(3, point.x);
  EXPECT_EQ(1.f, point.w);
  EXPECT_EQ("::shapes::Point has the members (x, y), the other side has (x, w)",
            misfit<Point>(Value::from(TakingPoint())));
}

TEST(Conversion, AsksTheSourceWhetherItGivesOtherMembers)
{
  const auto point = Value::from(GivingPoint{3, 5.f}).to<Point>();
  EXPECT_EQ(3, point.x);
  EXPECT_EQ(0.f, point.y);
  EXPECT_EQ("GivingPoint has the members (x, w), the other side has (x, y)", misfit<GivingPoint>(Value::from(Point())));
}

TEST(Conversion, NamesThePathOfTheMemberThatDoesNotFit)
{
  const Value outline = Value::from(Dynamic{
      {"label", Value::from("a")},
      {"points", Value::from(std::vector<Value>{Value::from(Point()),
                                                Value::from(Dynamic{{"x", Value::from(0.5)}, {"y", Value::from(1)}})})},
      {"measures", Value::from(Dynamic())},
      {"centre", Value()}});
  try
  {
    (void)Value::from(std::vector<Value>{outline}).to<std::vector<shapes::Outline>>();
    FAIL() << "no exception";
  }
  catch (const ko::TypeError& error)
  {
    EXPECT_EQ("[0].points[1].x", error.path());
    EXPECT_STREQ("[0].points[1].x: 0.5 does not fit into int32", error.what());
  }
}

TEST(Conversion, ShortensNamesOfMoreThan64Characters)
{
  const std::string name(64, 'n');
  EXPECT_EQ("::shapes::Point has the members (x, y), the other side has (" + name + ", " + name + "...)",
            misfit<Point>(Value::from(std::map<std::string, int>{{name, 1}, {name + "n", 2}})));
  EXPECT_EQ(name + "...: expected int32, got bool",
            (misfit<std::map<std::string, int>>(Value::from(std::map<std::string, bool>{{name + "n", true}}))));
}

/// The error about a point that is made from as many members, "10", "11" and so on.
std::string misfitOfMembers(int count)
{
  std::map<std::string, int> members;
  for (int i = 10; i < 10 + count; ++i)
    members[std::to_string(i)] = i;
  return misfit<Point>(Value::from(members));
}

TEST(Conversion, ListsNoMoreThan32Names)
{
  const std::string names =
      "10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, "
      "26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41";
  const std::string text = "::shapes::Point has the members (x, y), the other side has (" + names;
  EXPECT_EQ(text + ")", misfitOfMembers(32));
  EXPECT_EQ(text + ", ...)", misfitOfMembers(33));
}

TEST(Conversion, CopiesWhatIsOfTheTypeAlready)
{
  shapes::Canvas canvas;
  canvas.notRegistered = 5;
  EXPECT_EQ(5, Value::from(std::vector<shapes::Canvas>{canvas}).to<std::vector<shapes::Canvas>>()[0].notRegistered);
  EXPECT_EQ(canvas.record,
            Value::from(std::vector<Value>{Value::from(canvas)}).to<std::vector<shapes::Canvas>>()[0].record);
}

TEST(Conversion, CopiesWhatIsOfTheTypeInsideAnOptional)
{
  const shapes::Canvas canvas;
  EXPECT_EQ(canvas.record, Value::from(std::optional<shapes::Canvas>(canvas)).to<shapes::Canvas>().record);
}

TEST(Conversion, NamesThePlaceWhoseTypeIsNotRegistered)
{
  struct Unregistered
  {};
  ko::TypeInterface* const list = ko::typeOf<std::vector<Unregistered>>();
  EXPECT_EQ("[0]: the type is not registered",
            textThrownBy<ko::TypeError>([&] { (void)Value::from(std::vector<int>{1}).convertedTo(list); }));
}

TEST(Conversion, RefusesATargetOfAKindThatIsNotKnown)
{
  EXPECT_EQ("expected a type of unknown kind, got int32",
            textThrownBy<ko::TypeError>([] { (void)Value::from(1).convertedTo(&strangers::strangerType); }));
}

TEST(Conversion, NeedsATarget)
{
  EXPECT_EQ("A value needs a type.",
            textThrownBy<std::invalid_argument>([] { (void)Value::from(1).convertedTo(nullptr); }));
}

}  // namespace
