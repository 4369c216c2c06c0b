#include "serve/orders.hpp"
#include "serve/liveorders.hpp"

#include <skeigiot/personstate.hpp>
#include <skeigiot/session/boundary.hpp>

#include <gmock/gmock.h>

#include <poll.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace
{

using KV::tools::carryOut;
using KV::tools::OrderAnswer;
using KV::tools::Orders;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

bool canBeRead(const Orders& orders)
{
  pollfd descriptor{orders.descriptor(), POLLIN, 0};
  return ::poll(&descriptor, 1, 0) > 0;
}

TEST(Orders, AreDoneByTheThreadThatAsksForThem)
{
  Orders orders;
  std::thread::id doer;
  OrderAnswer answer;
  std::thread submitter([&] {
    answer = orders.submit([&] {
      doer = std::this_thread::get_id();
      return OrderAnswer{409, "no"};
    });
  });
  pollfd descriptor{orders.descriptor(), POLLIN, 0};
  ASSERT_EQ(1, ::poll(&descriptor, 1, 20'000));
  orders.doAll();
  submitter.join();
  EXPECT_EQ(std::this_thread::get_id(), doer);
  EXPECT_EQ(409, answer.status);
  EXPECT_EQ("no", answer.text);
  EXPECT_FALSE(canBeRead(orders));
}

TEST(Orders, AreNotWaitedForForever)
{
  Orders orders;
  const OrderAnswer answer = orders.submit([] { return OrderAnswer(); }, std::chrono::milliseconds(1));
  EXPECT_EQ(503, answer.status);
  EXPECT_EQ("the session is busy", answer.text);
  orders.doAll();
}

TEST(Orders, AreRefusedWhereTooManyWait)
{
  Orders orders;
  std::atomic<int> done = 0;
  const auto submit = [&] {
    return orders.submit(
        [&] {
          ++done;
          return OrderAnswer();
        },
        std::chrono::milliseconds(1));
  };
  for (int i = 0; i < 16; ++i)
    EXPECT_EQ("the session is busy", submit().text);
  EXPECT_EQ("too many orders wait", submit().text);
  orders.doAll();
  EXPECT_EQ(16, done);
}

TEST(Orders, AreRefusedWhenTheSessionEnds)
{
  Orders orders;
  std::thread closer([&] {
    pollfd descriptor{orders.descriptor(), POLLIN, 0};
    ::poll(&descriptor, 1, 20'000);
    orders.close();
  });
  EXPECT_EQ("the session ends", orders.submit([] { return OrderAnswer(); }, std::chrono::seconds(20)).text);
  closer.join();
  EXPECT_EQ("the session ends", orders.submit([] { return OrderAnswer(); }).text);
}

class LiveOrders : public ::testing::Test
{
protected:
  OrderAnswer give(const std::string& json)
  {
    return carryOut(json, view, [this](const KV::recordings::Step& step) {
      for (const auto& scope : step.scopeStarts)
        steps.push_back("start " + scope.name);
      for (const auto& scope : step.scopeStops)
        steps.push_back("stop " + scope);
      return refusal;
    });
  }

  const KV::session::SavedBoundaries boundariesAsBefore;
  KV::session::LiveView view;
  std::vector<std::string> steps;
  std::string refusal;
};

TEST_F(LiveOrders, StartAndStopScopes)
{
  EXPECT_EQ(200, give(R"({"startScope":"greeting"})").status);
  EXPECT_EQ(200, give(R"({"stopScope":"greeting"})").status);
  EXPECT_THAT(steps, ElementsAre("start greeting", "stop greeting"));
}

TEST_F(LiveOrders, ReturnTheReasonWhyAScopeIsRefused)
{
  refusal = "the recording has ended";
  const OrderAnswer answer = give(R"({"startScope":"greeting"})");
  EXPECT_EQ(409, answer.status);
  EXPECT_EQ("the recording has ended", answer.text);
}

TEST_F(LiveOrders, TakeNamesOfABoundedLength)
{
  EXPECT_EQ(200, give("{\"startScope\":\"" + std::string(200, 'x') + "\"}").status);
  for (const std::string& json :
       {std::string(R"({"startScope":""})"), "{\"startScope\":\"" + std::string(201, 'x') + "\"}",
        std::string(R"({"startScope":1})"), std::string(R"({"stopScope":null})")})
    EXPECT_EQ("The name of a scope has 1 to 200 bytes.", give(json).text) << json;
}

TEST_F(LiveOrders, MoveBoundariesAndPutThemBack)
{
  const float before = KV::PersonState::getBinaryBoundaryPositive();
  EXPECT_EQ(200, give(R"({"boundary":"boundary-positive","value":0.625})").status);
  EXPECT_FLOAT_EQ(0.625f, KV::PersonState::getBinaryBoundaryPositive());
  EXPECT_TRUE(view.hasNews());
  EXPECT_THAT(view.takeNews({}, nullptr), HasSubstr(R"("value":0.625,"first":)"));
  EXPECT_EQ(200, give(R"({"putBack":true})").status);
  EXPECT_FLOAT_EQ(before, KV::PersonState::getBinaryBoundaryPositive());
}

TEST_F(LiveOrders, RefuseBoundariesThatTheLibraryRejects)
{
  const float before = KV::PersonState::getBinaryBoundaryPositive();
  EXPECT_EQ("1.5 does not lie strictly between -1 and 1.",
            give(R"({"boundary":"boundary-positive","value":1.5})").text);
  EXPECT_EQ("There is no boundary 'x'.", give(R"({"boundary":"x","value":0.5})").text);
  EXPECT_EQ("A boundary needs a number as its value.", give(R"({"boundary":"boundary-positive","value":"0.5"})").text);
  EXPECT_EQ("A boundary needs a number as its value.", give(R"({"boundary":"boundary-positive"})").text);
  EXPECT_EQ(400, give(R"({"boundary":[]})").status);
  EXPECT_FLOAT_EQ(before, KV::PersonState::getBinaryBoundaryPositive());
}

TEST_F(LiveOrders, AreObjectsWithAKnownMember)
{
  for (const std::string json : {"", "1", "[]", "{", "\xff", "null"})
    EXPECT_EQ("An order is a JSON object.", give(json).text) << json;
  EXPECT_EQ("An order is a JSON object.", give(std::string(60'000, '[')).text);
  for (const std::string json : {"{}", R"({"putBack":false})", R"({"putBack":1})", R"({"x":true})"})
    EXPECT_EQ("An order has one of the members startScope, stopScope, boundary and putBack.", give(json).text) << json;
  EXPECT_THAT(steps, IsEmpty());
}

}  // namespace
