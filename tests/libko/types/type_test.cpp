#include "shapes.hpp"
#include "stranger.hpp"

#include <ko/type.hpp>
#include <ko/value.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <set>
#include <thread>

namespace
{

struct Unregistered
{};

struct RegisteredLater
{
  float level = 0.f;
};

bool isListed(const ko::StructTypeInterface* type)
{
  const std::vector<ko::StructTypeInterface*> structs = ko::registeredStructs();
  return std::count(structs.begin(), structs.end(), type) == 1;
}

TEST(Types, OfAClassThatNobodyRegisteredIsNull)
{
  EXPECT_EQ(nullptr, ko::typeOf<Unregistered>());
  EXPECT_EQ(nullptr, ko::getType(typeid(Unregistered)));
}

TEST(Types, AreFoundOnceRegisteredEvenIfLookedUpBefore)
{
  ASSERT_EQ(nullptr, ko::typeOf<RegisteredLater>());
  EXPECT_TRUE(ko::registerRecord<RegisteredLater>("RegisteredLater", {{"level", &RegisteredLater::level}}));

  ASSERT_NE(nullptr, ko::typeOf<RegisteredLater>());
  EXPECT_EQ(ko::getType(typeid(RegisteredLater)), ko::typeOf<RegisteredLater>());
}

TEST(Types, ReportTheCppTypeThatTheyDescribe)
{
  EXPECT_EQ(typeid(shapes::Point), ko::typeOf<shapes::Point>()->info());
  EXPECT_EQ(typeid(std::vector<float>), ko::typeOf<std::vector<float>>()->info());
}

TEST(Types, AreTheSameInterfaceAtEveryLookUp)
{
  EXPECT_EQ(ko::typeOf<shapes::Point>(), ko::typeOf<shapes::Point>());
  EXPECT_EQ(ko::typeOf<std::vector<int>>(), ko::typeOf<std::vector<int>>());
  EXPECT_EQ(ko::getType(typeid(std::vector<int>)), ko::typeOf<std::vector<int>>());
}

TEST(Types, KeepTheirFirstRegistration)
{
  ko::TypeInterface* first = ko::typeOf<shapes::Point>();

  EXPECT_FALSE(ko::registerRecord<shapes::Point>("::shapes::Point", {{"x", &shapes::Point::x}}));
  EXPECT_FALSE(ko::registerType(typeid(shapes::Point), ko::typeOf<float>()));

  EXPECT_EQ(first, ko::getType(typeid(shapes::Point)));
  EXPECT_EQ(first, ko::findStruct("::shapes::Point"));
}

TEST(Types, OfANameThatIsTakenAreNotRegistered)
{
  struct Namesake
  {
    int x = 0;
  };
  EXPECT_FALSE(ko::registerRecord<Namesake>("shapes::Point", {{"x", &Namesake::x}}));

  EXPECT_EQ(nullptr, ko::typeOf<Namesake>());
  EXPECT_EQ(ko::typeOf<shapes::Point>(), ko::findStruct("shapes::Point"));
  EXPECT_TRUE(ko::registerRecord<Namesake>("Namesake", {{"x", &Namesake::x}})) << "nothing is left of the first try";
}

TEST(Types, OfNoInterfaceAreNotRegistered)
{
  EXPECT_FALSE(ko::registerType(typeid(Unregistered), nullptr));
  EXPECT_FALSE(ko::registerStruct(nullptr));
}

TEST(Structs, AreRegisteredByNameOnlyIfTheyAreStructs)
{
  EXPECT_FALSE(ko::registerStruct(ko::typeOf<float>()));
  EXPECT_FALSE(ko::registerStruct((ko::typeOf<std::pair<int, int>>())));
}

TEST(Structs, MayBeRegisteredTwiceAndAreListedOnce)
{
  EXPECT_TRUE(ko::registerStruct(ko::typeOf<shapes::Point>()));
  EXPECT_TRUE(isListed(ko::findStruct("shapes::Point")));
}

TEST(Structs, AreListedInTheOrderOfRegistration)
{
  std::vector<std::string> names;
  for (const ko::StructTypeInterface* type : ko::registeredStructs())
  {
    if (type->className().rfind("::shapes::", 0) == 0)
      names.push_back(type->className());
  }
  EXPECT_EQ(
      (std::vector<std::string>{"::shapes::Point", "::shapes::Outline", "::shapes::CanvasRecord", "::shapes::Canvas"}),
      names);
}

TEST(Structs, AreFoundByEverySpellingOfTheirName)
{
  ko::StructTypeInterface* point = ko::findStruct("::shapes::Point");
  ASSERT_EQ(ko::typeOf<shapes::Point>(), point);
  EXPECT_EQ(point, ko::findStruct("shapes::Point"));
  EXPECT_EQ(point, ko::findStruct(" struct shapes :: Point"));
}

TEST(Structs, OfAnUnknownNameAreNull)
{
  EXPECT_EQ(nullptr, ko::findStruct("shapes::Circle"));
  EXPECT_EQ(nullptr, ko::findStruct(""));
}

TEST(Handles, AreRegisteredOnlyOnce)
{
  const ko::TypeInterface* const canvas = ko::typeOf<shapes::Canvas>();

  EXPECT_FALSE(ko::registerHandle("::shapes::OtherCanvas", &shapes::Canvas::record));

  EXPECT_EQ(canvas, ko::getType(typeid(shapes::Canvas)));
  EXPECT_EQ(nullptr, ko::findStruct("::shapes::OtherCanvas"));
}

TEST(Handles, AreRegisteredOnlyIfTheirRecordIsAStruct)
{
  struct Handle
  {
    std::shared_ptr<int> number;
  };
  EXPECT_FALSE(ko::registerHandle("HandleOnANumber", &Handle::number));
  EXPECT_EQ(nullptr, ko::typeOf<Handle>());
}

TEST(Handles, AreRegisteredOnlyAfterTheirRecord)
{
  struct Handle
  {
    std::shared_ptr<Unregistered> record;
  };
  EXPECT_FALSE(ko::registerHandle("Handle", &Handle::record));
  EXPECT_EQ(nullptr, ko::typeOf<Handle>());
}

TEST(Types, AreNamedTowardsPeople)
{
  EXPECT_EQ("bool", ko::typeName(ko::typeOf<bool>()));
  EXPECT_EQ("int32", ko::typeName(ko::typeOf<int>()));
  EXPECT_EQ("uint8", ko::typeName(ko::typeOf<std::uint8_t>()));
  EXPECT_EQ("float", ko::typeName(ko::typeOf<float>()));
  EXPECT_EQ("double", ko::typeName(ko::typeOf<double>()));
  EXPECT_EQ("string", ko::typeName(ko::typeOf<std::string>()));
  EXPECT_EQ("any", ko::typeName(ko::typeOf<ko::Value>()));
  EXPECT_EQ("list of float", ko::typeName(ko::typeOf<std::vector<float>>()));
  EXPECT_EQ("map from string to list of any",
            ko::typeName((ko::typeOf<std::map<std::string, std::vector<ko::Value>>>())));
  EXPECT_EQ("optional ::shapes::Point", ko::typeName(ko::typeOf<std::optional<shapes::Point>>()));
  EXPECT_EQ("(int32, (bool), ())", ko::typeName((ko::typeOf<std::tuple<int, std::tuple<bool>, std::tuple<>>>())));
  EXPECT_EQ("list of an unregistered type", ko::typeName(ko::typeOf<std::vector<Unregistered>>()));
  EXPECT_EQ("a type of unknown kind", ko::typeName(&strangers::strangerType));
}

template <typename T>
void lookUpAtOnce()
{
  constexpr std::size_t threadCount = 8;
  std::promise<void> start;
  const std::shared_future<void> started = start.get_future().share();
  std::vector<ko::TypeInterface*> found(threadCount, nullptr);
  std::vector<std::thread> threads;
  for (ko::TypeInterface*& type : found)
  {
    threads.emplace_back([started, &type] {
      started.wait();
      type = ko::typeOf<T>();
    });
  }
  start.set_value();
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_NE(nullptr, found.front());
  EXPECT_EQ(1U, std::set<ko::TypeInterface*>(found.begin(), found.end()).size());
}

TEST(Types, AreOneInterfaceForThreadsThatLookThemUpFirstAtTheSameTime)
{
  lookUpAtOnce<std::map<short, std::vector<std::optional<char>>>>();
  lookUpAtOnce<std::tuple<short, std::map<short, char>>>();
  lookUpAtOnce<std::optional<std::vector<std::pair<short, char>>>>();
}

TEST(Structs, MayBeLookedUpWhileOthersAreRegistered)
{
  struct Late
  {
    bool value = false;
  };
  std::thread registrant([] { ko::registerRecord<Late>("Late", {{"value", &Late::value}}); });
  bool isPointFound = true;
  for (int i = 0; i < 1000; ++i)
    isPointFound = isPointFound && ko::findStruct("shapes::Point") && !ko::registeredStructs().empty();
  registrant.join();

  EXPECT_TRUE(isPointFound);
  EXPECT_EQ(ko::typeOf<Late>(), ko::findStruct("Late"));
}

}  // namespace
