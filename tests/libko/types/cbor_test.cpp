#include "shapes.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <ko/cbor.hpp>
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
using shapes::Point;
using support::textThrownBy;
using Bytes = std::vector<std::uint8_t>;

unsigned digit(char c)
{
  return static_cast<unsigned>(c >= 'a' ? c - 'a' + 10 : c - '0');
}

/// Reads bytes written as pairs of hexadecimal digits, with blanks between.
Bytes bytesOf(const std::string& hex)
{
  Bytes bytes;
  for (std::size_t i = 0; i < hex.size(); ++i)
  {
    if (hex[i] == ' ')
      continue;
    bytes.push_back(static_cast<std::uint8_t>(digit(hex[i]) << 4U | digit(hex[i + 1])));
    ++i;
  }
  return bytes;
}

std::string refusal(const Bytes& bytes)
{
  return textThrownBy<ko::TypeError>([&] { ko::cbor::decode(bytes); });
}

struct ByteCase
{
  const char* name;
  Value value;
  const char* bytes;
};

class Cbor : public ::testing::TestWithParam<ByteCase>
{};

TEST_P(Cbor, IsWrittenAndReadBack)
{
  EXPECT_EQ(bytesOf(GetParam().bytes), ko::cbor::encode(GetParam().value));
  EXPECT_EQ(GetParam().value, ko::cbor::decode(bytesOf(GetParam().bytes), GetParam().value.type()));
}

// The bytes are those of RFC 8949, appendix A, if the value occurs there.
INSTANTIATE_TEST_SUITE_P(
    Forms, Cbor,
    ::testing::Values(
        ByteCase{"Zero", Value::from(0), "00"}, ByteCase{"InOneByte", Value::from(23), "17"},
        ByteCase{"InTwoBytes", Value::from(24), "1818"}, ByteCase{"InThreeBytes", Value::from(1000), "1903e8"},
        ByteCase{"InFiveBytes", Value::from(1000000), "1a000f4240"},
        ByteCase{"GreatestUnsigned", Value::from(std::numeric_limits<std::uint64_t>::max()), "1bffffffffffffffff"},
        ByteCase{"MinusOne", Value::from(-1), "20"}, ByteCase{"MinusThousand", Value::from(-1000), "3903e7"},
        ByteCase{"LeastSigned", Value::from(std::numeric_limits<std::int64_t>::min()), "3b7fffffffffffffff"},
        ByteCase{"True", Value::from(true), "f5"}, ByteCase{"False", Value::from(false), "f4"},
        ByteCase{"Float", Value::from(100000.f), "fa47c35000"}, ByteCase{"Tenth", Value::from(0.1f), "fa3dcccccd"},
        ByteCase{"MinusZero", Value::from(-0.f), "fa80000000"},
        ByteCase{"Double", Value::from(1.1), "fb3ff199999999999a"},
        ByteCase{"DoubleThatIsAFloat", Value::from(1.5), "fa3fc00000"},
        ByteCase{"Nan", Value::from(std::nanf("")), "f97e00"}, ByteCase{"Infinity", Value::from(HUGE_VALF), "f97c00"},
        ByteCase{"MinusInfinity", Value::from(-HUGE_VAL), "f9fc00"},
        ByteCase{"Text", Value::from("IETF"), "6449455446"},
        ByteCase{"List", Value::from(std::vector<int>{1, 2, 3}), "83010203"},
        ByteCase{"Tuple", Value::from(std::make_tuple(1, std::string("a"))), "82 01 6161"},
        ByteCase{"MapWithTextKeys", Value::from(std::map<std::string, int>{{"a", 1}}), "a1 6161 01"},
        ByteCase{"MapWithOtherKeys", Value::from(std::map<int, int>{{1, 2}}), "81 82 01 02"},
        ByteCase{"EmptyOptional", Value::from(std::optional<int>()), "f6"},
        ByteCase{"Struct", Value::from(Point{1, 0.5f}), "a2 6178 01 6179 fa3f000000"}),
    support::RowName());

struct ReadCase
{
  const char* name;
  const char* bytes;
  Value value;
};

class CborOfOthers : public ::testing::TestWithParam<ReadCase>
{};

TEST_P(CborOfOthers, IsRead)
{
  EXPECT_EQ(GetParam().value, ko::cbor::decode(bytesOf(GetParam().bytes)));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, CborOfOthers,
    ::testing::Values(ReadCase{"HalfPrecision", "f93e00", Value::from(1.5)},
                      ReadCase{"LeastHalfPrecision", "f90001", Value::from(5.960464477539063e-8)},
                      ReadCase{"NegativeNan", "f9fe00", Value::from(std::nan(""))},
                      ReadCase{"FloatNan", "fa7fc00000", Value::from(std::nan(""))},
                      ReadCase{"LongerThanNeeded", "1b0000000000000001", Value::from(1)},
                      ReadCase{"ListOfIndefiniteLength", "9f0102ff", Value::from(std::vector<int>{1, 2})},
                      ReadCase{"MapOfIndefiniteLength", "bf616101ff",
                               Value::from(std::map<std::string, Value>{{"a", Value::from(1)}})},
                      ReadCase{"TextInChunks", "7f61616162ff", Value::from("ab")},
                      ReadCase{"TextInNoChunks", "7fff", Value::from("")},
                      ReadCase{"LargestFloatBytes", "fa7f7fffff", Value::from(3.4028234663852886e38)}),
    support::RowName());

TEST(Cbor, KeepsTheSignOfZero)
{
  EXPECT_TRUE(std::signbit(ko::cbor::decode<float>(bytesOf("fa80000000"))));
  EXPECT_TRUE(std::signbit(ko::cbor::decode<double>(bytesOf("f98000"))));
}

TEST(Cbor, IsReadByClassNameAlone)
{
  const Value value = ko::cbor::decode(bytesOf("a2 6179 02 6178 01"), ko::findStruct("shapes::Point"));
  EXPECT_EQ(1, value.at("x").to<int>());
  EXPECT_EQ(2.f, value.at("y").to<float>());
}

TEST(Cbor, TakesNoTextForNumbers)
{
  EXPECT_EQ("expected float, got string",
            textThrownBy<ko::TypeError>([] { ko::cbor::decode<float>(bytesOf("634e614e")); }));
}

TEST(Cbor, RefusesOtherMembersWithBothLists)
{
  EXPECT_EQ("[0]: ::shapes::Point has the members (x, y), the other side has (x)",
            textThrownBy<ko::TypeError>([] { ko::cbor::decode<std::vector<Point>>(bytesOf("81 a1 6178 01")); }));
}

struct RefusalCase
{
  const char* name;
  const char* bytes;
  const char* error;  ///< the whole text, or its beginning if it ends in "..."
};

class CborRefusal : public ::testing::TestWithParam<RefusalCase>
{};

TEST_P(CborRefusal, NamesThePathAndTheReason)
{
  const std::string expected = GetParam().error;
  const std::string text = refusal(bytesOf(GetParam().bytes));
  if (expected.size() > 3 && expected.substr(expected.size() - 3) == "...")
    EXPECT_THAT(text, ::testing::StartsWith(expected.substr(0, expected.size() - 3)));
  else
    EXPECT_EQ(expected, text);
}

INSTANTIATE_TEST_SUITE_P(
    Of, CborRefusal,
    ::testing::Values(RefusalCase{"NoBytes", "", "parse error at byte 1: ..."},
                      RefusalCase{"CutHead", "82 01 19 03", "[1]: parse error at byte 5: ..."},
                      RefusalCase{"CutFloat", "a1 6161 fa 3f80", "a: parse error at byte 7: ..."},
                      RefusalCase{"CutText", "a1 6161 64 6162", "a: at byte 4: a length of 4, but only 2 bytes follow"},
                      RefusalCase{"CutList", "83 01", "at byte 1: a length of 3, but only 1 bytes follow"},
                      RefusalCase{"OpenList", "9f 01", "[1]: parse error at byte 3: ..."},
                      RefusalCase{"OpenMap", "bf 6161 01", "parse error at byte 5: ..."},
                      RefusalCase{"HugeList", "81 9bffffffffffffffff",
                                  "[0]: at byte 2: a length of 18446744073709551615, but only 0 bytes follow"},
                      RefusalCase{"HugeListThatEndsLikeAnOpenOne", "9bffffffffffffffff 01 ff",
                                  "at byte 1: a length of 18446744073709551615, but only 2 bytes follow"},
                      RefusalCase{"HugeMap", "a1 6161 bb7fffffffffffffff 6162 01",
                                  "a: at byte 4: a length of 9223372036854775807, but only 3 bytes follow"},
                      RefusalCase{"HugeText", "7bffffffffffffffff 61",
                                  "at byte 1: a length of 18446744073709551615, but only 1 bytes follow"},
                      RefusalCase{"HugeByteString", "5b7fffffffffffffff 61",
                                  "at byte 1: a length of 9223372036854775807, but only 1 bytes follow"},
                      RefusalCase{"ByteString", "81 43 010203", "[0]: a byte string is no value of any type"},
                      RefusalCase{"Tag", "c1 1a514b67b0", "parse error at byte 1: ..."},
                      RefusalCase{"Undefined", "81 f7", "[0]: parse error at byte 2: ..."},
                      RefusalCase{"UnknownSimpleValue", "f8ff", "parse error at byte 1: ..."},
                      RefusalCase{"ReservedLength", "1c", "parse error at byte 1: ..."},
                      RefusalCase{"LoneBreak", "ff", "parse error at byte 1: ..."},
                      RefusalCase{"BreakInAList", "82 01 ff", "[1]: parse error at byte 3: ..."},
                      RefusalCase{"BreakAfterAKey", "bf 6161 ff", "a: parse error at byte 4: ..."},
                      RefusalCase{"MoreThanOneItem", "01 02", "parse error at byte 2: ..."},
                      RefusalCase{"MoreThanOneItemWithAFault", "01 3bffffffffffffffff",
                                  "at byte 2: an integer below the range of 64 bits"},
                      RefusalCase{"IntegerBelow64Bits", "81 3bffffffffffffffff",
                                  "[0]: at byte 2: an integer below the range of 64 bits"},
                      RefusalCase{"KeyThatIsNoText", "a1 01 02", "parse error at byte 2: ..."},
                      RefusalCase{"KeyThatIsThereTwice", "a1 6161 a2 6162 01 6162 02",
                                  "a: the key \"b\" is there twice"},
                      RefusalCase{"KeyThatIsNotUtf8", "a1 61ff 01", "a key is not UTF-8"},
                      RefusalCase{"TextThatIsNotUtf8", "82 01 62c328", "[1]: the text is not UTF-8"},
                      RefusalCase{"TextWithASurrogate", "63eda080", "the text is not UTF-8"},
                      RefusalCase{"TextWithALongFormOfASlash", "62c0af", "the text is not UTF-8"},
                      RefusalCase{"TextBeyondUnicode", "64f4908080", "the text is not UTF-8"},
                      RefusalCase{"TextThatEndsInACharacter", "62e282", "the text is not UTF-8"},
                      RefusalCase{"ChunkInAChunk", "81 7f 7f 6161 ff ff",
                                  "[0]: at byte 3: a chunk of a string is not a string of definite length"},
                      RefusalCase{"ChunkOfAnotherType", "7f 4161 ff",
                                  "at byte 2: a chunk of a string is not a string of definite length"},
                      RefusalCase{"ChunkThatIsANumber", "5f 01 ff",
                                  "at byte 2: a chunk of a string is not a string of definite length"},
                      RefusalCase{"OpenText", "7f 6161", "parse error at byte 4: ..."}),
    support::RowName());

Bytes nested(std::size_t depth)
{
  Bytes bytes(depth, 0x81);
  bytes.push_back(0x80);
  return bytes;
}

TEST(Cbor, RefusesWhatIsNestedTooDeeply)
{
  EXPECT_EQ(1U, ko::cbor::decode(nested(ko::wirelimits::depth - 1)).size());
  EXPECT_THAT(refusal(nested(ko::wirelimits::depth)), ::testing::EndsWith("[0]: nested deeper than 64 levels"));
  EXPECT_THAT(refusal(nested(1U << 20U)), ::testing::EndsWith("nested deeper than 64 levels"));
}

TEST(Cbor, RefusesNestingInMapsAndOpenListsAsWell)
{
  Bytes maps;
  for (int i = 0; i < 100000; ++i)
  {
    for (const std::uint8_t byte : bytesOf("a1 6161"))
      maps.push_back(byte);
  }
  EXPECT_THAT(refusal(maps), ::testing::HasSubstr("a.a.a"));
  EXPECT_THAT(refusal(Bytes(100000, 0x9F)), ::testing::EndsWith("nested deeper than 64 levels"));
  EXPECT_THAT(refusal(Bytes(100000, 0x7F)), ::testing::StartsWith("at byte 2: a chunk of a string"));
  EXPECT_THAT(refusal(Bytes(100000, 0x5F)), ::testing::StartsWith("at byte 2: a chunk of a string"));
  EXPECT_THAT(refusal(Bytes(100000, 0xC1)), ::testing::StartsWith("parse error at byte 1"));
}

TEST(Cbor, NamesTheDepthWhereAFaultComesAfterIt)
{
  Bytes bytes = nested(100);
  for (const std::uint8_t byte : bytesOf("7f 7f"))
    bytes.push_back(byte);
  EXPECT_THAT(refusal(bytes), ::testing::EndsWith("nested deeper than 64 levels"));
}

/// A list of as many values of one byte as a document may have, itself not counted.
Bytes listOfTooMany(std::uint8_t value)
{
  Bytes bytes = bytesOf("9a 00100000");
  bytes.insert(bytes.end(), ko::wirelimits::values, value);
  return bytes;
}

TEST(Cbor, RefusesTooManyValues)
{
  constexpr std::uint8_t null = 0xF6;
  EXPECT_EQ("[1048575]: more than 1048576 values in a document", refusal(listOfTooMany(null)));
}

TEST(Cbor, CountsListsAsValues)
{
  constexpr std::uint8_t emptyList = 0x80;
  EXPECT_EQ("[1048575]: more than 1048576 values in a document", refusal(listOfTooMany(emptyList)));
}

TEST(Cbor, RefusesWhatIsTooLong)
{
  EXPECT_EQ("longer than 16777216 bytes", refusal(Bytes(ko::wirelimits::bytes + 1, 0x60)));
}

TEST(Cbor, IsNotWrittenFromTextThatIsNotUtf8)
{
  EXPECT_EQ("the text is not UTF-8", textThrownBy<ko::TypeError>([] { ko::cbor::encode(Value::from("\xFF")); }));
}

TEST(Cbor, NeedsATypeToReadInto)
{
  EXPECT_EQ("A value needs a type.",
            textThrownBy<std::invalid_argument>([] { ko::cbor::decode(bytesOf("01"), nullptr); }));
}

}  // namespace
