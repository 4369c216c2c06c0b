#include "shapes.hpp"
#include "stranger.hpp"
#include "support/thrown.hpp"

#include <ko/json.hpp>
#include <ko/typeerror.hpp>
#include <ko/value.hpp>

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using ko::Value;
using shapes::Canvas;
using shapes::Outline;
using shapes::Point;
using support::textThrownBy;

struct Unregistered
{};

struct Holder
{
  Unregistered member;
};

Outline triangle()
{
  return {"triangle", {{0, 0.f}, {1, 0.f}, {0, 1.f}}, {{"area", 0.5}}, Point{1, 1.f}};
}

TEST(Values, AreEmptyAtFirst)
{
  const Value value;
  EXPECT_TRUE(value.isEmpty());
  EXPECT_EQ(nullptr, value.type());
  EXPECT_EQ(nullptr, value.storage());
  EXPECT_EQ(0U, value.size());
  EXPECT_TRUE(value.names().empty());
}

TEST(Values, HoldACopyOfWhatTheyAreMadeFrom)
{
  Point point{1, 2.f};
  const Value value = Value::from(point);
  point.x = 5;
  EXPECT_EQ(1, value.to<Point>().x);
  EXPECT_EQ(ko::typeOf<Point>(), value.type());
}

TEST(Values, AreMadeFromTextInPlainQuotes)
{
  EXPECT_EQ("text", Value::from("text").to<std::string>());
}

TEST(Values, AreNotMadeFromClassesThatNobodyRegistered)
{
  EXPECT_EQ("no type is registered for (anonymous namespace)::Unregistered",
            textThrownBy<ko::TypeError>([] { Value::from(Unregistered()); }));
}

TEST(Values, AreMadeByTypeWithADefaultObject)
{
  const Value value = Value::ofType(ko::findStruct("shapes::Point"));
  EXPECT_EQ(0, value.to<Point>().x);
  EXPECT_EQ("A value needs a type.", textThrownBy<std::invalid_argument>([] { Value::ofType(nullptr); }));
}

TEST(Values, CopyAndMoveAndSwap)
{
  Value one = Value::from(1);
  Value copy = one;
  EXPECT_NE(one.storage(), copy.storage());
  EXPECT_EQ(one, copy);

  const Value moved = std::move(copy);
  EXPECT_EQ(one, moved);

  Value two = Value::from(2);
  swap(one, two);
  EXPECT_EQ(2, one.to<int>());
  const Value& itself = one;
  one = itself;
  EXPECT_EQ(2, one.to<int>());
  one = Value();
  EXPECT_TRUE(one.isEmpty());
  EXPECT_TRUE(one.clone().isEmpty());
}

TEST(Values, AreWalkedByMemberName)
{
  const Value value = Value::from(triangle());
  EXPECT_EQ((std::vector<std::string>{"label", "points", "measures", "centre"}), value.names());
  EXPECT_EQ(1, value.at("points").at(1).at("x").to<int>());
  EXPECT_EQ(0.5, value.at("measures").at("area").to<double>());
  EXPECT_EQ(1.f, value.at("centre").to<Point>().y);
}

TEST(Values, AreWalkedByIndex)
{
  const Value value = Value::from(triangle());
  EXPECT_EQ(4U, value.size());
  EXPECT_EQ("triangle", value.at(0).to<std::string>());
  EXPECT_EQ(3U, value.at(1).size());
  EXPECT_EQ(0.5, value.at(2).at(0).to<double>());
  EXPECT_EQ(2, Value::from(std::make_pair(1, 2)).at(1).to<int>());
}

TEST(Values, ShowWhatADynamicValueHolds)
{
  const Value list = Value::from(std::vector<Value>{Value::from(1), Value::from(Point{2, 0.f})});
  EXPECT_EQ(ko::typeOf<Point>(), list.at(1).type());
  EXPECT_EQ(2, list.at(1).at("x").to<int>());

  const Value wrapped = Value::from(Value::from(Point{3, 0.f}));
  EXPECT_EQ(2U, wrapped.size());
  EXPECT_EQ(3, wrapped.at("x").to<int>());
}

TEST(Values, SayWhichMemberTheyDoNotHave)
{
  const Value value = Value::from(Point());
  EXPECT_EQ("The value has no member \"z\".", textThrownBy<std::out_of_range>([&] { value.at("z"); }));
  EXPECT_EQ("The value has no member 2.", textThrownBy<std::out_of_range>([&] { value.at(2); }));
  EXPECT_EQ("The value has no member 0.", textThrownBy<std::out_of_range>([] { Value::from(1).at(0); }));
  EXPECT_EQ("The value has no member \"x\".", textThrownBy<std::out_of_range>([] { Value().at("x"); }));
}

TEST(Values, SetAMemberByNameOrIndex)
{
  Value value = Value::from(Point());
  value.set("x", Value::from(7));
  value.set(1, Value::from(0.25f));
  EXPECT_EQ(7, value.to<Point>().x);
  EXPECT_EQ(0.25f, value.to<Point>().y);
}

TEST(Values, ConvertWhatAMemberIsSetTo)
{
  Value value = Value::from(Point());
  value.set("y", Value::from(1));
  EXPECT_EQ(1.f, value.to<Point>().y);
  EXPECT_EQ("expected int32, got string", textThrownBy<ko::TypeError>([&] { value.set("x", Value::from("7")); }));
}

TEST(Values, SetOnlyMembersThatThereAre)
{
  Value point = Value::from(Point());
  Value list = Value::from(std::vector<int>{1});
  EXPECT_EQ("The value has no member \"z\".", textThrownBy<std::out_of_range>([&] { point.set("z", Value::from(1)); }));
  EXPECT_EQ("The value has no member 2.", textThrownBy<std::out_of_range>([&] { point.set(2, Value::from(1)); }));
  EXPECT_EQ("The value has no member 0.", textThrownBy<std::out_of_range>([&] { list.set(0, Value::from(1)); }));
  EXPECT_EQ("The value has no member 0.", textThrownBy<std::out_of_range>([] { Value().set(0, Value::from(1)); }));
}

TEST(Values, SetAMemberOfATupleByItsIndex)
{
  Value pair = Value::from(std::make_pair(1, std::string("one")));
  pair.set(1, Value::from("two"));
  EXPECT_EQ(std::make_pair(1, std::string("two")), (pair.to<std::pair<int, std::string>>()));
  EXPECT_EQ("The value has no member 2.", textThrownBy<std::out_of_range>([&] { pair.set(2, Value::from(1)); }));
}

TEST(Values, HaveNoPartsThatCanBeReachedIfTheirKindIsNotKnown)
{
  const Value value = Value::ofType(&strangers::strangerType);
  EXPECT_EQ(0U, value.size());
  EXPECT_TRUE(value.names().empty());
  EXPECT_EQ("The value has no member 0.", textThrownBy<std::out_of_range>([&] { value.at(0); }));
}

TEST(Values, OfAMapWhoseKeysAreNotRegisteredHaveNoNames)
{
  struct Key
  {
    bool operator<(const Key&) const { return false; }
  };
  const Value map = Value::from(std::map<Key, int>{{Key(), 1}});
  EXPECT_TRUE(map.names().empty());
  EXPECT_EQ("The value has no member \"key\".", textThrownBy<std::out_of_range>([&] { map.at("key"); }));
}

TEST(Values, ShareTheRecordOfAHandle)
{
  Canvas canvas;
  Value value = Value::from(canvas);
  value.set("origin", Value::from(Point{9, 0.f}));
  EXPECT_EQ(9, canvas.record->origin.x);
  EXPECT_EQ(canvas.record, value.to<Canvas>().record);
}

TEST(Values, ShareNothingOnceDetached)
{
  Canvas canvas;
  canvas.record->origin.x = 1;
  canvas.record->outline = triangle();
  canvas.notRegistered = 5;

  const Value value = Value::from(canvas);
  const Value detached = value.detached();
  EXPECT_EQ(value, detached);
  EXPECT_NE(canvas.record, detached.to<Canvas>().record);
  EXPECT_EQ(0, detached.to<Canvas>().notRegistered);

  canvas.record->origin.x = 2;
  EXPECT_EQ(1, detached.at("origin").at("x").to<int>());
}

TEST(Values, KeepTheirContentsWhenDetached)
{
  using Plain = std::tuple<bool, bool, int, float, std::string, std::map<int, std::optional<double>>>;
  const Plain plain(true, false, -7, 0.1f, "text", {{1, 0.5}, {2, std::nullopt}});
  EXPECT_EQ(plain, Value::from(plain).detached().to<Plain>());
}

TEST(Values, ShareNothingOnceDetachedEvenInListsOfAnything)
{
  Canvas canvas;
  const Value list = Value::from(std::vector<Value>{Value::from(canvas), Value()});
  const Value detached = list.detached();
  EXPECT_EQ(list, detached);
  EXPECT_NE(canvas.record, detached.at(0).to<Canvas>().record);
  EXPECT_TRUE(Value().detached().isEmpty());
}

TEST(Values, OfAHandleWithoutARecordHaveNoMembersToReach)
{
  Canvas canvas;
  canvas.record.reset();
  Value value = Value::from(canvas);
  EXPECT_EQ("the handle has no record", textThrownBy<ko::TypeError>([&] { value.at("origin"); }));
  EXPECT_EQ("the handle has no record",
            textThrownBy<ko::TypeError>([&] { value.set("origin", Value::from(Point())); }));
  EXPECT_EQ("[1]: the handle has no record", textThrownBy<ko::TypeError>([&] {
              Value::from(std::vector<Canvas>{Canvas(), canvas}).detached();
            }));
}

TEST(Values, NameTheMemberWhoseTypeIsNotRegistered)
{
  ko::registerRecord<Holder>("HolderOfValues", {{"member", &Holder::member}});
  EXPECT_EQ("[0].member: the type is not registered",
            textThrownBy<ko::TypeError>([] { Value::from(std::vector<Holder>(1)).detached(); }));
}

TEST(Values, NameTheMapWhoseKeysOrElementsAreOfATypeThatIsNotRegistered)
{
  using UnknownElements = std::map<int, Unregistered>;
  using NamedElements = std::map<std::string, Unregistered>;
  using UnknownKeys = std::map<Unregistered*, int>;
  const std::string error = "[0]: the type is not registered";
  EXPECT_EQ(error,
            textThrownBy<ko::TypeError>([] { (void)ko::json::encode(Value::from(std::vector<UnknownElements>(1))); }));
  EXPECT_EQ(error,
            textThrownBy<ko::TypeError>([] { (void)ko::json::encode(Value::from(std::vector<NamedElements>(1))); }));
  EXPECT_EQ(error, textThrownBy<ko::TypeError>([] {
              (void)Value::from(std::vector<NamedElements>(1)).to<std::vector<std::map<std::string, int>>>();
            }));
  EXPECT_EQ(error,
            textThrownBy<ko::TypeError>([] { (void)ko::json::encode(Value::from(std::vector<UnknownKeys>(1))); }));
}

TEST(Values, PrintAsJson)
{
  std::ostringstream text;
  text << Value::from(Point{1, 0.1f}) << ' ' << Value();
  EXPECT_EQ("{\"x\":1,\"y\":0.1} null", text.str());
}

}  // namespace
