#include "bodylanguagestateprivate.hpp"
#include "personstateprivate.hpp"
#include "records.hpp"

#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/contextemotion.hpp>
#include <skeigiot/facialpoints.hpp>
#include <skeigiot/person.hpp>
#include <skeigiot/personmemory.hpp>
#include <skeigiot/robotheadposture.hpp>
#include <skeigiot/timestamped.hpp>
#include <skeigiot/voiceemotion.hpp>

#include <ko/proxy.hpp>
#include <ko/typeerror.hpp>

#include <gtest/gtest.h>

#include <functional>

namespace
{

using ko::Value;
using support::textThrownBy;

using Names = std::vector<std::string>;

struct Row
{
  const char* name;
  ko::TypeInterface* (*type)();
  const char* className;
  Names members;
  Names memberTypes;
};

const Names valueAndConfidence = {"value", "confidence"};
const Names twoFloats = {"float", "float"};
const Names stateMembers = {"valence", "attention", "bodyLanguageState", "smile", "expressions"};
const Names stateTypes = {"::KV::ValueConfidence<float>", "::KV::ValueConfidence<float>", "::KV::BodyLanguageState",
                          "::KV::Smile", "::KV::Expressions"};

void PrintTo(const Row& row, std::ostream* stream)
{
  *stream << row.className;
}

class RegisteredRecord : public ::testing::TestWithParam<Row>
{
protected:
  const ko::StructTypeInterface& type() const
  {
    return *static_cast<const ko::StructTypeInterface*>(GetParam().type());
  }
  std::size_t size() const { return GetParam().members.size(); }
};

TEST_P(RegisteredRecord, HasItsClassName)
{
  ASSERT_EQ(ko::TypeKind::Struct, GetParam().type()->kind());
  EXPECT_EQ(GetParam().className, type().className());
  EXPECT_EQ(GetParam().className, ko::detail::normalizeClassName(type().className()));
}

TEST_P(RegisteredRecord, IsFoundByClassNameAndByCppType)
{
  EXPECT_EQ(&type(), ko::findStruct(GetParam().className));
  EXPECT_EQ(&type(), ko::getType(type().info()));
}

TEST_P(RegisteredRecord, NamesItsMembersInOrder)
{
  EXPECT_EQ(GetParam().members, type().elementsName());
}

TEST_P(RegisteredRecord, ReportsTheTypesOfItsMembersInOrder)
{
  Names names;
  for (const ko::TypeInterface* memberType : type().memberTypes())
    names.push_back(ko::typeName(memberType));
  EXPECT_EQ(GetParam().memberTypes, names);
}

TEST_P(RegisteredRecord, GetsWhatWasSet)
{
  const Value target = Value::ofType(GetParam().type());
  const Value source = Value::ofType(GetParam().type());
  std::mt19937 random(1);
  records::fillAtRandom(source, random);

  for (std::size_t i = 0; i < size(); ++i)
    EXPECT_TRUE(type().set(target.storage(), i, type().get(source.storage(), i)));

  for (std::size_t i = 0; i < size(); ++i)
  {
    ko::TypeInterface* memberType = type().memberTypes()[i];
    EXPECT_EQ(records::bitsOf(Value::copyOf(memberType, type().get(source.storage(), i))),
              records::bitsOf(Value::copyOf(memberType, type().get(target.storage(), i))));
  }
}

TEST_P(RegisteredRecord, YieldsNothingBeyondTheLastMember)
{
  const Value value = Value::ofType(GetParam().type());
  const Value before = value.detached();
  void* member = type().get(value.storage(), 0);

  EXPECT_EQ(nullptr, type().get(value.storage(), size()));
  EXPECT_EQ(nullptr, type().get(value.storage(), static_cast<std::size_t>(-1)));
  EXPECT_FALSE(type().set(value.storage(), size(), member));
  EXPECT_EQ(before, value);
}

TEST_P(RegisteredRecord, MakesDefaultObjectsWithAllMembersZero)
{
  const Value value = Value::ofType(GetParam().type());
  for (const std::uint64_t bits : records::bitsOf(value))
    EXPECT_EQ(0U, bits);
}

TEST_P(RegisteredRecord, ClonesToAnEqualObjectElsewhere)
{
  const Value value = Value::ofType(GetParam().type());
  std::mt19937 random(2);
  records::fillAtRandom(value, random);

  void* clone = type().clone(value.storage());
  EXPECT_NE(value.storage(), clone);
  EXPECT_EQ(records::bitsOf(value), records::bitsOf(Value::copyOf(GetParam().type(), clone)));
  type().destroy(clone);
}

TEST_P(RegisteredRecord, OrdersByAddressAndNotByContents)
{
  const Value one = Value::ofType(GetParam().type());
  const Value other = Value::ofType(GetParam().type());
  ASSERT_EQ(one, other);
  EXPECT_EQ(std::less<void*>()(one.storage(), other.storage()), type().less(one.storage(), other.storage()));
  EXPECT_EQ(std::less<void*>()(other.storage(), one.storage()), type().less(other.storage(), one.storage()));
  EXPECT_FALSE(type().less(one.storage(), one.storage()));
}

TEST_P(RegisteredRecord, GivesBackTheObjectOfItsStorage)
{
  const Value value = Value::ofType(GetParam().type());
  void* object = type().ptrFromStorage(value.storage());
  EXPECT_EQ(object, type().ptrFromStorage(type().initializeStorage(object)));
}

TEST_P(RegisteredRecord, AcceptsNeitherDroppedNorMissingMembers)
{
  EXPECT_TRUE(type().convertFrom({}));
  EXPECT_TRUE(type().convertTo({}));
  EXPECT_FALSE(type().convertFrom({{"other"}, {}}));
  EXPECT_FALSE(type().convertFrom({{}, {"value"}}));
  EXPECT_FALSE(type().convertTo({{"other"}, {}}));
  EXPECT_FALSE(type().convertTo({{}, {"value"}}));
}

TEST_P(RegisteredRecord, ConvertsToAMapByNameAndBack)
{
  using Map = std::map<std::string, Value>;
  const Value value = Value::ofType(GetParam().type());
  std::mt19937 random(3);
  records::fillAtRandom(value, random);

  const Map map = value.to<Map>();
  EXPECT_EQ(size(), map.size());
  EXPECT_EQ(value, Value::from(map).convertedTo(GetParam().type()));
}

TEST_P(RegisteredRecord, RefusesAMemberTooManyOrTooFew)
{
  using Map = std::map<std::string, Value>;
  const Map map = Value::ofType(GetParam().type()).to<Map>();

  Map more = map;
  more["zzz"] = Value::from(1);
  Map fewer = map;
  fewer.erase(GetParam().members.back());

  const std::string begin = std::string(GetParam().className) + " has the members (" + GetParam().members.front();
  for (const Map& other : {more, fewer})
  {
    const std::string text =
        textThrownBy<ko::TypeError>([&] { (void)Value::from(other).convertedTo(GetParam().type()); });
    EXPECT_EQ(begin, text.substr(0, begin.size()));
    EXPECT_NE(std::string::npos, text.find("), the other side has ("));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Each, RegisteredRecord,
    ::testing::Values(Row{"AmbianceState",
                          &ko::typeOf<KV::AmbianceState>,
                          "::KV::AmbianceState",
                          {"agitationLevel", "calmLevel"},
                          twoFloats},
                      Row{"BodyLanguageEase",
                          &ko::typeOf<KV::BodyLanguageEase>,
                          "KV::BodyLanguageEase",
                          {"level", "confidence"},
                          twoFloats},
                      Row{"BodyLanguageStatePrivate",
                          &ko::typeOf<KV::BodyLanguageStatePrivate>,
                          "::KV::BodyLanguageStatePrivate",
                          {"ease"},
                          {"KV::BodyLanguageEase"}},
                      Row{"BodyLanguageState",
                          &ko::typeOf<KV::BodyLanguageState>,
                          "::KV::BodyLanguageState",
                          {"ease"},
                          {"KV::BodyLanguageEase"}},
                      Row{"ValueConfidenceOfBool",
                          &ko::typeOf<KV::ValueConfidence<bool>>,
                          "::KV::ValueConfidence<bool>",
                          valueAndConfidence,
                          {"bool", "float"}},
                      Row{"ValueConfidenceOfFloat", &ko::typeOf<KV::ValueConfidence<float>>,
                          "::KV::ValueConfidence<float>", valueAndConfidence, twoFloats},
                      Row{"ValueConfidenceOfUnsigned",
                          &ko::typeOf<KV::ValueConfidence<unsigned int>>,
                          "::KV::ValueConfidence<unsigned int>",
                          valueAndConfidence,
                          {"uint32", "float"}},
                      Row{"Expressions",
                          &ko::typeOf<KV::Expressions>,
                          "::KV::Expressions",
                          {"calm", "anger", "joy", "sorrow", "laughter", "excitement", "surprise"},
                          Names(7, "::KV::ValueConfidence<float>")},
                      Row{"Gaze", &ko::typeOf<KV::Gaze>, "::KV::Gaze", {"yaw", "pitch"}, twoFloats},
                      Row{"Smile", &ko::typeOf<KV::Smile>, "::KV::Smile", valueAndConfidence, twoFloats},
                      Row{"PersonStatePrivate", &ko::typeOf<KV::PersonStatePrivate>, "::KV::PersonStatePrivate",
                          stateMembers, stateTypes},
                      Row{"PersonState", &ko::typeOf<KV::PersonState>, "::KV::PersonState", stateMembers, stateTypes},
                      Row{"Person",
                          &ko::typeOf<KV::Person>,
                          "::KV::Person",
                          {"personID", "personState"},
                          {"int32", "::KV::PersonState"}}),
    support::RowName());

TEST(Registration, ListsTheRecordsInOrder)
{
  Names names;
  for (const ko::StructTypeInterface* type : ko::registeredStructs())
    names.push_back(type->className());
  EXPECT_EQ(records::classNames(), names);
}

TEST(Registration, IncludesTheProxiesOfTheServices)
{
  using ko::proxy::Family;
  EXPECT_EQ((std::vector<Family>{Family::FrameTypes, Family::HumanService, Family::EmotionService}),
            ko::proxy::included());
}

TEST(Registration, LeavesTheOtherRecordsOut)
{
  EXPECT_EQ(nullptr, ko::typeOf<KV::HeadPosture>());
  EXPECT_EQ(nullptr, ko::typeOf<KV::FacialPoints>());
  EXPECT_EQ(nullptr, ko::typeOf<KV::VoiceEmotion>());
  EXPECT_EQ(nullptr, ko::typeOf<KV::ContextEmotion>());
  EXPECT_EQ(nullptr, ko::typeOf<KV::RobotHeadPosture>());
  EXPECT_EQ(nullptr, ko::typeOf<KV::PersonMemory>());
  EXPECT_EQ(nullptr, ko::typeOf<KV::Timestamped<KV::Gaze>>());
  EXPECT_EQ(nullptr, ko::typeOf<KV::ShortTermMemory<KV::HeadPosture>>());
}

}  // namespace
