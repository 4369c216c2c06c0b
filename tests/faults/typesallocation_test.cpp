#include "everyallocation.hpp"

#include "libko/types/shapes.hpp"

#include <skeigiot/person.hpp>

#include <ko/cbor.hpp>
#include <ko/json.hpp>
#include <ko/record.hpp>
#include <ko/typeerror.hpp>
#include <ko/value.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace
{

using faults::AllocationFault;
using faults::failEveryAllocation;
using faults::Outcome;
using ko::Value;

shapes::Outline someOutline()
{
  return {"an outline with a label that is longer than a string keeps inside",
          {{1, 2.f}, {3, 4.f}},
          {{"a length that is long enough", 1.5}},
          shapes::Point{5, 6.f}};
}

/// The same operation on the same class, again and again, until no allocation of it fails; so the class is registered
/// once only. Calls `check` after each failure, and returns in how many tries an allocation failed.
template <typename Operate, typename Check>
std::size_t failUntilDone(Operate operate, Check check)
{
  for (std::size_t which = 0;; ++which)
  {
    SCOPED_TRACE("allocation " + std::to_string(which) + " failed");
    const AllocationFault fault(which);
    try
    {
      operate();
      EXPECT_FALSE(fault.happened());
      return which;
    }
    catch (const std::bad_alloc&)
    {
      check();
    }
  }
}

/// Classes that are not registered before the tests.
struct Unknown
{
  int number = 0;
  float share = 0.f;
};

struct UnknownRecord
{
  int number = 0;
};

struct UnknownHandle
{
  std::shared_ptr<UnknownRecord> record = std::make_shared<UnknownRecord>();
};

std::size_t registeredStructCount()
{
  return std::async(std::launch::async, [] { return ko::registeredStructs().size(); }).get();
}

TEST(RegistrationWithoutMemory, RegistersARecordOrChangesNothing)
{
  const std::string name = "::faults::UnknownWithANameThatNeedsMemory";
  const std::size_t before = registeredStructCount();
  const std::size_t failures = failUntilDone(
      [&] {
        EXPECT_TRUE(ko::registerRecord<Unknown>(name, {{"number", &Unknown::number}, {"share", &Unknown::share}}));
      },
      [&] {
        EXPECT_EQ(nullptr, ko::findStruct(name));
        EXPECT_EQ(nullptr, ko::getType(typeid(Unknown)));
        EXPECT_EQ(before, registeredStructCount());
      });
  EXPECT_GT(failures, 5U);
  EXPECT_EQ(before + 1, registeredStructCount());
  ASSERT_NE(nullptr, ko::findStruct(name));
  EXPECT_EQ(ko::findStruct(name), ko::getType(typeid(Unknown)));
  EXPECT_EQ((std::vector<std::string>{"number", "share"}), ko::findStruct(name)->elementsName());
}

TEST(RegistrationWithoutMemory, RegistersAHandleOrChangesNothing)
{
  const std::string name = "::faults::UnknownHandleWithANameThatNeedsMemory";
  ASSERT_TRUE(ko::registerRecord<UnknownRecord>("::faults::UnknownRecord", {{"number", &UnknownRecord::number}}));
  const std::size_t before = registeredStructCount();
  const std::size_t failures = failUntilDone([&] { EXPECT_TRUE(ko::registerHandle(name, &UnknownHandle::record)); },
                                             [&] {
                                               EXPECT_EQ(nullptr, ko::findStruct(name));
                                               EXPECT_EQ(nullptr, ko::getType(typeid(UnknownHandle)));
                                               EXPECT_EQ(before, registeredStructCount());
                                             });
  EXPECT_GT(failures, 3U);
  EXPECT_EQ(before + 1, registeredStructCount());
}

TEST(RegistrationWithoutMemory, RegistersAStructByItsNameOrChangesNothing)
{
  const ko::detail::RecordType<Unknown> type("::faults::OnlyByItsNameWhichIsLong", {{"number", &Unknown::number}});
  static auto& registered = *new ko::detail::RecordType<Unknown>(type.className(), {{"number", &Unknown::number}});
  const std::size_t before = registeredStructCount();
  const std::size_t failures = failUntilDone([&] { EXPECT_TRUE(ko::registerStruct(&registered)); },
                                             [&] {
                                               EXPECT_EQ(nullptr, ko::findStruct(type.className()));
                                               EXPECT_EQ(before, registeredStructCount());
                                             });
  EXPECT_GT(failures, 1U);
  EXPECT_EQ(&registered, ko::findStruct(type.className()));
}

// With more structs than before, the list of all has to grow once at least.
TEST(RegistrationWithoutMemory, RegistersMoreStructsThanTheListHasRoomForOrForgetsTheirNames)
{
  using Struct = ko::detail::RecordType<Unknown>;
  static auto& structs = *new std::vector<std::unique_ptr<Struct>>;
  const std::size_t before = registeredStructCount();
  for (std::size_t i = 0; i <= before; ++i)
  {
    const std::string name = "::faults::OneOfMany" + std::to_string(i);
    structs.push_back(
        std::make_unique<Struct>(name, std::vector{ko::detail::Member<Unknown>("number", &Unknown::number)}));
    failUntilDone([&] { EXPECT_TRUE(ko::registerStruct(structs.back().get())); },
                  [&] { EXPECT_EQ(nullptr, ko::findStruct(name)); });
  }
  EXPECT_EQ(before + before + 1, registeredStructCount());
}

TEST(RegistrationWithoutMemory, MakesAnInterfaceOnFirstUseOrNone)
{
  using Native = std::map<std::string, std::vector<std::pair<std::int16_t, double>>>;
  const std::size_t failures = failUntilDone([] { EXPECT_NE(nullptr, ko::typeOf<Native>()); },
                                             [] { EXPECT_EQ(nullptr, ko::getType(typeid(Native))); });
  EXPECT_GT(failures, 0U);
  EXPECT_EQ(ko::typeOf<Native>(), ko::getType(typeid(Native)));
}

TEST(ValueWithoutMemory, IsWholeOrThrows)
{
  const Value original = Value::from(someOutline());
  const std::size_t failures =
      failEveryAllocation([] { return Value(); }, [&](Value& value) { value = original.detached(); },
                          [](Value& value, Outcome outcome) {
                            EXPECT_EQ(Outcome::Threw, outcome);
                            EXPECT_TRUE(value.isEmpty());
                          });
  EXPECT_GT(failures, 5U);
}

TEST(ValueWithoutMemory, KeepsAMemberThatCannotBeSet)
{
  const Value label = Value::from(std::string("another label that is also longer than a string keeps inside"));
  const Value before = Value::from(someOutline());
  const std::size_t failures =
      failEveryAllocation([] { return Value::from(someOutline()); }, [&](Value& value) { value.set("label", label); },
                          [&](Value& value, Outcome outcome) {
                            EXPECT_EQ(Outcome::Threw, outcome);
                            EXPECT_EQ(before, value);
                          });
  EXPECT_GT(failures, 0U);
}

TEST(ValueWithoutMemory, IsConvertedOrThrows)
{
  const Value outline = Value::from(someOutline());
  const Value form = ko::json::decode(ko::json::encode(outline));
  const std::size_t failures = failEveryAllocation(
      [] { return Value(); }, [&](Value& value) { value = form.convertedTo(ko::typeOf<shapes::Outline>()); },
      [](Value& value, Outcome outcome) {
        EXPECT_EQ(Outcome::Threw, outcome);
        EXPECT_TRUE(value.isEmpty());
      });
  EXPECT_GT(failures, 5U);
}

TEST(WireWithoutMemory, EncodesAllOrNothing)
{
  const Value person = Value::from(KV::Person(3));
  const Value outline = Value::from(someOutline());
  for (const Value& value : {person, outline})
  {
    EXPECT_GT(failEveryAllocation([] { return std::string("former"); },
                                  [&](std::string& text) { text = ko::json::encode(value, 2); },
                                  [](std::string& text, Outcome) { EXPECT_EQ("former", text); }),
              5U);
    EXPECT_GT(failEveryAllocation([] { return std::vector<std::uint8_t>(); },
                                  [&](auto& bytes) { bytes = ko::cbor::encode(value); },
                                  [](auto& bytes, Outcome) { EXPECT_TRUE(bytes.empty()); }),
              5U);
  }
}

TEST(WireWithoutMemory, DecodesAllOrNothing)
{
  for (const Value& value : {Value::from(KV::Person(3)), Value::from(someOutline())})
  {
    const std::string text = ko::json::encode(value);
    const std::vector<std::uint8_t> bytes = ko::cbor::encode(value);
    const auto isEmpty = [](Value& decoded, Outcome outcome) {
      EXPECT_EQ(Outcome::Threw, outcome);
      EXPECT_TRUE(decoded.isEmpty());
    };
    EXPECT_GT(failEveryAllocation([] { return Value(); },
                                  [&](Value& decoded) { decoded = ko::json::decode(text, value.type()); }, isEmpty),
              10U);
    EXPECT_GT(failEveryAllocation([] { return Value(); },
                                  [&](Value& decoded) { decoded = ko::cbor::decode(bytes, value.type()); }, isEmpty),
              10U);
  }
}

/// A text that is refused must not become one that is accepted because its error message does not fit.
TEST(WireWithoutMemory, RefusesOrRunsOutOfMemory)
{
  for (const std::string text : {R"({"personID": 1, "surplus": {"a": [1, 2, 3]}})", R"({"personID": 1)", R"([1, 2)"})
  {
    int refusals = 0;
    const std::size_t failures = failEveryAllocation([] { return 0; },
                                                     [&](int) {
                                                       try
                                                       {
                                                         ko::json::decode(text, ko::typeOf<KV::Person>());
                                                         ADD_FAILURE() << "accepted " << text;
                                                       }
                                                       catch (const ko::TypeError&)
                                                       {
                                                         ++refusals;
                                                       }
                                                     },
                                                     [](int, Outcome) {});
    EXPECT_GT(failures, 5U);
    EXPECT_GT(refusals, 0);
  }
}

}  // namespace
