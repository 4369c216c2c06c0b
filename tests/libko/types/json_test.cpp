#include "shapes.hpp"
#include "stranger.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <ko/json.hpp>
#include <ko/typeerror.hpp>
#include <ko/wirelimits.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

namespace
{

using ko::Value;
using shapes::Outline;
using shapes::Point;
using support::textThrownBy;

std::string refusal(const std::string& text)
{
  return textThrownBy<ko::TypeError>([&] { ko::json::decode(text); });
}

template <typename T>
std::string refusalAs(const std::string& text)
{
  return textThrownBy<ko::TypeError>([&] { ko::json::decode<T>(text); });
}

std::string nested(std::size_t depth)
{
  return std::string(depth, '[') + std::string(depth, ']');
}

struct TextCase
{
  const char* name;
  Value value;
  const char* text;
};

class Json : public ::testing::TestWithParam<TextCase>
{};

TEST_P(Json, IsWrittenAndReadBack)
{
  EXPECT_EQ(GetParam().text, ko::json::encode(GetParam().value));
  EXPECT_EQ(GetParam().value, ko::json::decode(GetParam().text, GetParam().value.type()));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, Json,
    ::testing::Values(
        TextCase{"True", Value::from(true), "true"}, TextCase{"Int", Value::from(-7), "-7"},
        TextCase{"GreatestUnsigned", Value::from(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615"},
        TextCase{"LeastSigned", Value::from(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808"},
        TextCase{"FloatInItsOwnDigits", Value::from(0.1f), "0.1"},
        TextCase{"FloatThatIsWhole", Value::from(1.f), "1.0"}, TextCase{"Double", Value::from(0.1), "0.1"},
        TextCase{"FloatAsDouble", Value::from(static_cast<double>(0.1f)), "0.10000000149011612"},
        TextCase{"MinusZero", Value::from(-0.0), "-0.0"},
        TextCase{"LeastFloat", Value::from(std::numeric_limits<float>::denorm_min()), "1e-45"},
        TextCase{"GreatestFloat", Value::from(std::numeric_limits<float>::max()), "3.4028235e+38"},
        TextCase{"Nan", Value::from(std::nanf("")), "\"NaN\""},
        TextCase{"Infinity", Value::from(HUGE_VAL), "\"Infinity\""},
        TextCase{"MinusInfinity", Value::from(-HUGE_VALF), "\"-Infinity\""},
        TextCase{"Text", Value::from("\"\xC3\xA4\n"), "\"\\\"\xC3\xA4\\n\""},
        TextCase{"List", Value::from(std::vector<int>{1, 2}), "[1,2]"},
        TextCase{"EmptyList", Value::from(std::vector<int>()), "[]"},
        TextCase{"Tuple", Value::from(std::make_tuple(1, std::string("a"))), "[1,\"a\"]"},
        TextCase{"MapWithTextKeys", Value::from(std::map<std::string, int>{{"a", 1}}), "{\"a\":1}"},
        TextCase{"MapWithOtherKeys", Value::from(std::map<int, bool>{{1, true}, {2, false}}), "[[1,true],[2,false]]"},
        TextCase{"EmptyMap", Value::from(std::map<int, bool>()), "[]"},
        TextCase{"Optional", Value::from(std::optional<int>(1)), "1"},
        TextCase{"EmptyOptional", Value::from(std::optional<int>()), "null"},
        TextCase{"Struct", Value::from(Point{1, 2.5f}), "{\"x\":1,\"y\":2.5}"},
        TextCase{"StructInItsOwnOrder", Value::from(Outline{"o", {Point{1, 0.f}}, {{"area", 0.5}}, std::nullopt}),
                 "{\"label\":\"o\",\"points\":[{\"x\":1,\"y\":0.0}],\"measures\":{\"area\":0.5},\"centre\":null}"},
        TextCase{"Handle", Value::from(shapes::Canvas()),
                 "{\"origin\":{\"x\":0,\"y\":0.0},\"outline\":{\"label\":\"\",\"points\":[],\"measures\":{},"
                 "\"centre\":null}}"},
        TextCase{"Dynamic", Value::from(std::vector<Value>{Value(), Value::from(true), Value::from("x")}),
                 "[null,true,\"x\"]"}),
    support::RowName());

TEST(Json, KeepsTheFloatWhoseOwnDigitsAreANeighboursInDouble)
{
  constexpr float number = 7.038531e-26f;
  ASSERT_NE(number, static_cast<float>(7.038531e-26));
  EXPECT_EQ("7.038530691851209e-26", ko::json::encode(Value::from(number)));
  EXPECT_EQ(number, ko::json::decode<float>(ko::json::encode(Value::from(number))));
}

TEST(Json, KeepsTheSignOfZero)
{
  EXPECT_TRUE(std::signbit(ko::json::decode<double>(ko::json::encode(Value::from(-0.0)))));
  EXPECT_TRUE(std::signbit(ko::json::decode<float>(ko::json::encode(Value::from(-0.f)))));
  EXPECT_FALSE(std::signbit(ko::json::decode<double>(ko::json::encode(Value::from(0.0)))));
}

TEST(Json, IsIndentedOnDemand)
{
  EXPECT_EQ("{\n  \"x\": 1,\n  \"y\": 0.0\n}", ko::json::encode(Value::from(Point{1, 0.f}), 2));
}

TEST(Json, IsReadIntoPlainTypesWithoutAType)
{
  const Value value =
      ko::json::decode(R"({"i": -1, "u": 18446744073709551615, "d": 0.5, "s": "x", "b": true, "n": null, "l": [1]})");
  EXPECT_EQ(ko::typeOf<std::int64_t>(), value.at("i").type());
  EXPECT_EQ(ko::typeOf<std::uint64_t>(), value.at("u").type());
  EXPECT_EQ(ko::typeOf<double>(), value.at("d").type());
  EXPECT_EQ(ko::typeOf<std::string>(), value.at("s").type());
  EXPECT_EQ(ko::typeOf<bool>(), value.at("b").type());
  EXPECT_TRUE(value.at("n").isEmpty());
  EXPECT_EQ(ko::typeOf<std::vector<Value>>(), value.at("l").type());
  EXPECT_EQ((ko::typeOf<std::map<std::string, Value>>()), value.type());
}

TEST(Json, IsReadWithMembersInAnyOrderAndBlanksAnywhere)
{
  EXPECT_EQ(3, ko::json::decode<Point>(" { \"y\" : 1 ,\n \"x\" : 3.0 } ").x);
}

TEST(Json, TakesTextForNumbersOnlyWhereAFloatIsExpected)
{
  EXPECT_TRUE(std::isnan(ko::json::decode<Point>(R"({"x": 1, "y": "NaN"})").y));
  EXPECT_EQ("y: expected float, got string", refusalAs<Point>(R"({"x": 1, "y": "nan"})"));
  EXPECT_EQ("x: expected int32, got string", refusalAs<Point>(R"({"x": "NaN", "y": 1})"));
  EXPECT_EQ(ko::typeOf<std::string>(), ko::json::decode("\"NaN\"").type());
}

TEST(Json, RefusesOtherMembersWithBothLists)
{
  EXPECT_EQ("::shapes::Point has the members (x, y), the other side has (x, z)",
            refusalAs<Point>(R"({"x": 1, "z": 2})"));
  EXPECT_EQ("[1]: ::shapes::Point has the members (x, y), the other side has (x)",
            refusalAs<std::vector<Point>>(R"([{"x": 1, "y": 2}, {"x": 1}])"));
}

TEST(Json, RefusesAKeyThatIsThereTwice)
{
  EXPECT_EQ("a: the key \"x\" is there twice", refusal(R"({"a": {"x": 1, "x": 2}})"));
}

TEST(Json, NamesThePathWhereTheTextIsCutOff)
{
  EXPECT_THAT(refusal(R"({"a": [1, {"b": )"), ::testing::StartsWith("a[1].b: parse error at line 1, column 17"));
}

TEST(Json, RefusesWhatIsNoJson)
{
  for (const char* text : {"", " ", "{", "}", "[1,]", "{\"a\"}", "nul", "NaN", "1 2", "'a'", "\"\\x\"", "\"\xFF\"",
                           "\"\xC3\"", "\"\\ud800\"", "01", "-", "[1}", "/**/1", "\"a\nb\""})
    EXPECT_THAT(refusal(text), ::testing::HasSubstr("parse error"));
}

TEST(Json, RefusesNumbersBeyondDouble)
{
  EXPECT_EQ("[1]: number overflow parsing '1e400'", refusal("[1, 1e400]"));
}

TEST(Json, RefusesWhatIsNestedTooDeeply)
{
  const std::size_t depth = ko::wirelimits::depth;
  EXPECT_EQ(1U, ko::json::decode(nested(depth)).size());
  EXPECT_THAT(refusal(nested(depth + 1)), ::testing::EndsWith("[0]: nested deeper than 64 levels"));
  EXPECT_THAT(refusal(std::string(1U << 20U, '[')), ::testing::EndsWith("nested deeper than 64 levels"));
}

TEST(Json, RefusesTooManyValues)
{
  std::string text = "[";
  for (std::size_t i = 0; i < ko::wirelimits::values; ++i)
    text += "1,";
  EXPECT_EQ("[1048575]: more than 1048576 values in a document", refusal(text + "1]"));
}

TEST(Json, RefusesWhatIsTooLong)
{
  const std::string blanks(ko::wirelimits::bytes - 1, ' ');
  EXPECT_EQ(Value::from(1), ko::json::decode(blanks + "1"));
  EXPECT_EQ("longer than 16777216 bytes", refusal(blanks + " 1"));
}

TEST(Json, RefusesANulBehindWhichNothingWouldBeRead)
{
  EXPECT_EQ("a NUL at byte 2, which no JSON has", refusal(std::string("1\0 2", 4)));
}

TEST(Json, IsNotWrittenDeeperThanItIsRead)
{
  Value value = ko::json::decode(nested(ko::wirelimits::depth));
  EXPECT_EQ(nested(ko::wirelimits::depth), ko::json::encode(value));
  value = Value::from(std::vector<Value>{value});
  EXPECT_THAT(textThrownBy<ko::TypeError>([&] { ko::json::encode(value); }),
              ::testing::EndsWith("[0]: nested deeper than 64 levels"));
}

TEST(Json, CountsTheDepthOfStructsAndMapsWhenWritten)
{
  std::vector<shapes::Point> points(1);
  Value value = Value::from(points);
  for (std::size_t depth = 2; depth < ko::wirelimits::depth; ++depth)
    value = Value::from(std::vector<Value>{value});
  EXPECT_NO_THROW(ko::json::encode(value));
  EXPECT_THAT(textThrownBy<ko::TypeError>([&] { ko::json::encode(Value::from(std::vector<Value>{value})); }),
              ::testing::EndsWith("[0]: nested deeper than 64 levels"));
  EXPECT_THAT(textThrownBy<ko::TypeError>([&] {
                ko::json::encode(Value::from(std::map<int, Value>{{1, value}}));
              }),
              ::testing::EndsWith("nested deeper than 64 levels"));
}

TEST(Json, IsNotWrittenFromTextThatIsNotUtf8)
{
  EXPECT_EQ("[0]: the text is not UTF-8",
            textThrownBy<ko::TypeError>([] { ko::json::encode(Value::from(std::vector<std::string>{"\xFF"})); }));
  EXPECT_THAT(textThrownBy<ko::TypeError>([] {
                ko::json::encode(Value::from(std::map<std::string, int>{{"\xC3", 1}}));
              }),
              ::testing::EndsWith("the text is not UTF-8"));
}

TEST(Json, IsNotWrittenFromAHandleWithoutARecord)
{
  shapes::Canvas canvas;
  canvas.record.reset();
  EXPECT_EQ("[0]: the handle has no record",
            textThrownBy<ko::TypeError>([&] { ko::json::encode(Value::from(std::vector<shapes::Canvas>{canvas})); }));
}

TEST(Json, HasNullForWhatIsOfAKindThatIsNotKnown)
{
  EXPECT_EQ("[1,null]",
            ko::json::encode(Value::from(std::vector<Value>{Value::from(1), Value::ofType(&strangers::strangerType)})));
}

TEST(Json, NeedsATypeToReadInto)
{
  EXPECT_EQ("A value needs a type.", textThrownBy<std::invalid_argument>([] { ko::json::decode("1", nullptr); }));
}

}  // namespace
