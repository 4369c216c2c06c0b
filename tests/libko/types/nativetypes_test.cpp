#include <ko/type.hpp>
#include <ko/value.hpp>

#include <boost/optional/optional.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{

enum class Zone : std::uint16_t
{
  Nowhere = 0,
  Far = 65535
};

enum OldZone : int
{
  Near = -1
};

template <typename Interface>
const Interface& as(const ko::TypeInterface* type)
{
  return static_cast<const Interface&>(*type);
}

template <typename T>
class EveryNativeType : public ::testing::Test
{};

using NativeTypes =
    ::testing::Types<bool, char, std::int8_t, std::uint64_t, Zone, OldZone, float, double, std::string,
                     std::vector<int>, std::map<int, std::string>, std::optional<float>, boost::optional<float>,
                     std::pair<int, float>, std::tuple<>, std::tuple<int, std::string, bool>, ko::Value>;
TYPED_TEST_SUITE(EveryNativeType, NativeTypes, );

TYPED_TEST(EveryNativeType, MakesAndDestroysObjects)
{
  const ko::TypeInterface* type = ko::typeOf<TypeParam>();
  ASSERT_NE(nullptr, type);

  void* made = type->initializeStorage();
  void* clone = type->clone(made);

  EXPECT_NE(type->ptrFromStorage(made), type->ptrFromStorage(clone));
  EXPECT_TRUE(*static_cast<TypeParam*>(type->ptrFromStorage(clone)) == TypeParam());
  type->destroy(clone);
  type->destroy(made);
}

TYPED_TEST(EveryNativeType, GivesBackTheObjectOfItsStorage)
{
  const ko::TypeInterface* type = ko::typeOf<TypeParam>();
  TypeParam object = TypeParam();
  EXPECT_EQ(&object, type->ptrFromStorage(type->initializeStorage(&object)));
}

TYPED_TEST(EveryNativeType, OrdersByAddress)
{
  const ko::TypeInterface* type = ko::typeOf<TypeParam>();
  TypeParam objects[2] = {TypeParam(), TypeParam()};
  EXPECT_TRUE(type->less(&objects[0], &objects[1]));
  EXPECT_FALSE(type->less(&objects[1], &objects[0]));
  EXPECT_FALSE(type->less(&objects[0], &objects[0]));
}

/// Counts its living objects.
class Counted
{
public:
  Counted() { ++there; }
  Counted(const Counted&) { ++there; }
  Counted& operator=(const Counted&) = delete;
  ~Counted() { --there; }

  static int there;
};

int Counted::there = 0;

class CountedType : public ko::detail::TypeBase<Counted, ko::TypeInterface>
{
public:
  ko::TypeKind kind() const override { return ko::TypeKind::Struct; }
};

TEST(NativeTypes, DestroyWhatTheyMadeAndNothingElse)
{
  const CountedType countedType;
  const ko::TypeInterface& type = countedType;
  void* const made = type.initializeStorage();
  void* const clone = type.clone(made);
  EXPECT_EQ(2, Counted::there);

  type.destroy(nullptr);
  EXPECT_EQ(2, Counted::there);
  type.destroy(made);
  EXPECT_EQ(1, Counted::there);
  type.destroy(clone);
  EXPECT_EQ(0, Counted::there);
}

TEST(NativeTypes, ReportTheirKind)
{
  using ko::TypeKind;
  EXPECT_EQ(TypeKind::Bool, ko::typeOf<bool>()->kind());
  EXPECT_EQ(TypeKind::Int, ko::typeOf<unsigned int>()->kind());
  EXPECT_EQ(TypeKind::Int, ko::typeOf<Zone>()->kind());
  EXPECT_EQ(TypeKind::Float, ko::typeOf<float>()->kind());
  EXPECT_EQ(TypeKind::String, ko::typeOf<std::string>()->kind());
  EXPECT_EQ(TypeKind::List, ko::typeOf<std::vector<int>>()->kind());
  EXPECT_EQ(TypeKind::Map, (ko::typeOf<std::map<int, int>>()->kind()));
  EXPECT_EQ(TypeKind::Optional, ko::typeOf<boost::optional<int>>()->kind());
  EXPECT_EQ(TypeKind::Tuple, (ko::typeOf<std::pair<int, int>>()->kind()));
  EXPECT_EQ(TypeKind::Dynamic, ko::typeOf<ko::Value>()->kind());
}

TEST(NativeTypes, DoNotCoverListsWithoutAddressableElements)
{
  EXPECT_EQ(nullptr, ko::typeOf<std::vector<bool>>());
  EXPECT_EQ(nullptr, ko::typeOf<long double>());
}

TEST(BoolTypes, StoreWhatTheyAreGiven)
{
  bool flag = false;
  const auto& type = as<ko::BoolTypeInterface>(ko::typeOf<bool>());
  EXPECT_FALSE(type.value(&flag));
  type.assign(&flag, true);
  EXPECT_TRUE(flag);
  EXPECT_TRUE(type.value(&flag));
}

TEST(IntTypes, ReportWidthAndSign)
{
  EXPECT_EQ(1U, as<ko::IntTypeInterface>(ko::typeOf<std::int8_t>()).size());
  EXPECT_TRUE(as<ko::IntTypeInterface>(ko::typeOf<std::int8_t>()).isSigned());
  EXPECT_EQ(8U, as<ko::IntTypeInterface>(ko::typeOf<std::uint64_t>()).size());
  EXPECT_FALSE(as<ko::IntTypeInterface>(ko::typeOf<std::uint64_t>()).isSigned());
  EXPECT_EQ(2U, as<ko::IntTypeInterface>(ko::typeOf<Zone>()).size());
  EXPECT_FALSE(as<ko::IntTypeInterface>(ko::typeOf<Zone>()).isSigned());
  EXPECT_TRUE(as<ko::IntTypeInterface>(ko::typeOf<OldZone>()).isSigned());
}

TEST(IntTypes, KeepTheGreatestUnsignedValueInItsBits)
{
  std::uint64_t number = std::numeric_limits<std::uint64_t>::max();
  const auto& type = as<ko::IntTypeInterface>(ko::typeOf<std::uint64_t>());
  EXPECT_EQ(-1, type.value(&number));
  type.assign(&number, -2);
  EXPECT_EQ(std::numeric_limits<std::uint64_t>::max() - 1, number);
}

TEST(IntTypes, ReachEnumerations)
{
  Zone zone = Zone::Far;
  const auto& type = as<ko::IntTypeInterface>(ko::typeOf<Zone>());
  EXPECT_EQ(65535, type.value(&zone));
  type.assign(&zone, 0);
  EXPECT_EQ(Zone::Nowhere, zone);
}

TEST(FloatTypes, ReportWidthAndRound)
{
  EXPECT_EQ(8U, as<ko::FloatTypeInterface>(ko::typeOf<double>()).size());
  const auto& type = as<ko::FloatTypeInterface>(ko::typeOf<float>());
  EXPECT_EQ(4U, type.size());

  float number = 0.f;
  type.assign(&number, 0.1);
  EXPECT_EQ(0.1f, number);
  EXPECT_EQ(static_cast<double>(0.1f), type.value(&number));
}

TEST(ListTypes, AppendAndReachElements)
{
  std::vector<int> list = {1, 2};
  const auto& type = as<ko::ListTypeInterface>(ko::typeOf<std::vector<int>>());
  int three = 3;
  type.append(&list, &three);
  *static_cast<int*>(type.element(&list, 0)) = 10;

  EXPECT_EQ((std::vector<int>{10, 2, 3}), list);
  EXPECT_EQ(3U, type.size(&list));
  EXPECT_EQ(ko::typeOf<int>(), type.elementType());
}

TEST(MapTypes, InsertReplaceAndVisitInOrder)
{
  std::map<std::string, int> map = {{"b", 2}};
  const auto& type = as<ko::MapTypeInterface>(ko::typeOf<std::map<std::string, int>>());
  std::string key = "a";
  int element = 1;
  type.insert(&map, &key, &element);
  key = "b";
  element = 20;
  type.insert(&map, &key, &element);

  std::string seen;
  type.forEach(&map, [&](void* visitedKey, void* visitedElement) {
    seen += *static_cast<std::string*>(visitedKey) + std::to_string(*static_cast<int*>(visitedElement));
  });
  EXPECT_EQ("a1b20", seen);
  EXPECT_EQ(2U, type.size(&map));
  EXPECT_EQ(ko::typeOf<std::string>(), type.keyType());
  EXPECT_EQ(ko::typeOf<int>(), type.elementType());
}

template <typename Optional>
void assignAndEmpty()
{
  Optional optional;
  const auto& type = as<ko::OptionalTypeInterface>(ko::typeOf<Optional>());
  EXPECT_EQ(ko::typeOf<int>(), type.valueType());
  EXPECT_EQ(nullptr, type.value(&optional));

  int seven = 7;
  type.assign(&optional, &seven);
  EXPECT_EQ(7, *optional);
  EXPECT_EQ(&*optional, type.value(&optional));

  type.assign(&optional, nullptr);
  EXPECT_FALSE(optional);
}

TEST(OptionalTypes, HoldAValueOrNothing)
{
  assignAndEmpty<std::optional<int>>();
  assignAndEmpty<boost::optional<int>>();
}

TEST(TupleTypes, ReachMembersByIndexOnly)
{
  std::tuple<int, std::string> tuple(1, "one");
  const auto& type = as<ko::StructTypeInterface>(ko::typeOf<std::tuple<int, std::string>>());
  EXPECT_EQ((std::vector<ko::TypeInterface*>{ko::typeOf<int>(), ko::typeOf<std::string>()}), type.memberTypes());
  EXPECT_TRUE(type.elementsName().empty());
  EXPECT_EQ("", type.className());

  std::string two = "two";
  EXPECT_TRUE(type.set(&tuple, 1, &two));
  EXPECT_EQ("two", std::get<1>(tuple));
  EXPECT_EQ(1, std::get<0>(tuple));
  int three = 3;
  EXPECT_TRUE(type.set(&tuple, 0, &three));
  EXPECT_EQ(3, std::get<0>(tuple));
  EXPECT_EQ(&std::get<0>(tuple), type.get(&tuple, 0));
}

TEST(TupleTypes, YieldNothingBeyondTheLastMember)
{
  std::pair<int, int> pair(1, 2);
  const auto& type = as<ko::StructTypeInterface>(ko::typeOf<std::pair<int, int>>());
  int three = 3;
  EXPECT_EQ(nullptr, type.get(&pair, 2));
  EXPECT_FALSE(type.set(&pair, 2, &three));
  EXPECT_EQ(std::make_pair(1, 2), pair);
}

}  // namespace
