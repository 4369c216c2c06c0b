#include "shapes.hpp"

#include <gtest/gtest.h>

namespace
{

using shapes::Canvas;
using shapes::CanvasRecord;
using shapes::Point;

struct Unregistered
{};

struct Holder
{
  Unregistered member;
  int number = 0;
};

const ko::StructTypeInterface& pointType()
{
  return *ko::findStruct("shapes::Point");
}

const ko::StructTypeInterface& canvasType()
{
  return *ko::findStruct("shapes::Canvas");
}

TEST(Records, DescribeTheirMembersInOrder)
{
  EXPECT_EQ("::shapes::Point", pointType().className());
  EXPECT_EQ((std::vector<std::string>{"x", "y"}), pointType().elementsName());
  EXPECT_EQ((std::vector<ko::TypeInterface*>{ko::typeOf<int>(), ko::typeOf<float>()}), pointType().memberTypes());
}

TEST(Records, GiveTheMemberInsideTheObject)
{
  Point point;
  EXPECT_EQ(&point.x, pointType().get(&point, 0));
  EXPECT_EQ(&point.y, pointType().get(&point, 1));
}

TEST(Records, SetAMember)
{
  Point point;
  float half = 0.5f;
  EXPECT_TRUE(pointType().set(&point, 1, &half));
  EXPECT_EQ(0.5f, point.y);
}

TEST(Records, YieldNothingBeyondTheLastMember)
{
  Point point{1, 2.f};
  float half = 0.5f;
  EXPECT_EQ(nullptr, pointType().get(&point, 2));
  EXPECT_FALSE(pointType().set(&point, 2, &half));
  EXPECT_EQ(1, point.x);
  EXPECT_EQ(2.f, point.y);
}

TEST(Records, YieldNothingForAMemberWhoseTypeIsNotRegistered)
{
  ko::registerRecord<Holder>("Holder", {{"member", &Holder::member}, {"number", &Holder::number}});
  const ko::StructTypeInterface& type = *ko::findStruct("Holder");
  Holder holder;
  Unregistered value;

  EXPECT_EQ(nullptr, type.memberTypes()[0]);
  EXPECT_EQ(nullptr, type.get(&holder, 0));
  EXPECT_FALSE(type.set(&holder, 0, &value));
  EXPECT_EQ(&holder.number, type.get(&holder, 1));
}

TEST(Records, AcceptNoDifferenceOfMembers)
{
  EXPECT_TRUE(pointType().convertFrom({{}, {}}));
  EXPECT_TRUE(pointType().convertTo({{}, {}}));
  EXPECT_FALSE(pointType().convertFrom({{"z"}, {}}));
  EXPECT_FALSE(pointType().convertFrom({{}, {"y"}}));
  EXPECT_FALSE(pointType().convertTo({{"z"}, {}}));
  EXPECT_FALSE(pointType().convertTo({{}, {"y"}}));
}

TEST(Handles, ShowTheMembersOfTheRecordUnderTheirOwnName)
{
  EXPECT_EQ("::shapes::Canvas", canvasType().className());
  EXPECT_EQ(typeid(Canvas), canvasType().info());
  EXPECT_EQ(ko::findStruct("shapes::CanvasRecord")->elementsName(), canvasType().elementsName());
  EXPECT_EQ(ko::findStruct("shapes::CanvasRecord")->memberTypes(), canvasType().memberTypes());
}

TEST(Handles, AcceptTheDifferencesOfMembersThatTheirRecordDoes)
{
  EXPECT_TRUE(canvasType().convertFrom({{}, {}}));
  EXPECT_TRUE(canvasType().convertTo({{}, {}}));
  EXPECT_FALSE(canvasType().convertFrom({{"frame"}, {}}));
  EXPECT_FALSE(canvasType().convertTo({{}, {"origin"}}));
}

TEST(Handles, WriteThroughToTheSharedRecord)
{
  Canvas canvas;
  Canvas copy = canvas;
  Point point{3, 4.f};

  EXPECT_EQ(&canvas.record->origin, canvasType().get(&copy, 0));
  EXPECT_TRUE(canvasType().set(&copy, 0, &point));
  EXPECT_EQ(3, canvas.record->origin.x);
}

TEST(Handles, ShareTheRecordWithTheirClones)
{
  Canvas canvas;
  canvas.notRegistered = 5;
  void* clone = canvasType().clone(&canvas);

  EXPECT_EQ(canvas.record, static_cast<Canvas*>(clone)->record);
  EXPECT_EQ(5, static_cast<Canvas*>(clone)->notRegistered);
  canvasType().destroy(clone);
  EXPECT_EQ(1, canvas.record.use_count());
}

TEST(Handles, WithoutARecordYieldNothing)
{
  Canvas canvas;
  canvas.record.reset();
  Point point;
  EXPECT_EQ(nullptr, canvasType().get(&canvas, 0));
  EXPECT_FALSE(canvasType().set(&canvas, 0, &point));
}

TEST(Handles, YieldNothingBeyondTheLastMember)
{
  Canvas canvas;
  Point point;
  EXPECT_EQ(nullptr, canvasType().get(&canvas, 2));
  EXPECT_FALSE(canvasType().set(&canvas, 2, &point));
}

}  // namespace
