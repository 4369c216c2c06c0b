#include "rosbridge/rosbridgeoperations.hpp"

#include <gmock/gmock.h>

#include <string>

namespace
{

using KV::ros2::readRosbridgeText;
using KV::ros2::RosbridgeText;
using nlohmann::json;

TEST(RosbridgeOperations, AreThoseOfTheProtocol)
{
  EXPECT_EQ((json{{"op", "subscribe"}, {"topic", "/tf"}, {"type", "tf2_msgs/msg/TFMessage"}}),
            json::parse(KV::ros2::subscribeOperation("/tf", "tf2_msgs/msg/TFMessage")));
  EXPECT_EQ((json{{"op", "unsubscribe"}, {"topic", "/tf"}}), json::parse(KV::ros2::unsubscribeOperation("/tf")));
  EXPECT_EQ((json{{"op", "advertise"}, {"topic", "/a"}, {"type", "std_msgs/msg/Bool"}}),
            json::parse(KV::ros2::advertiseOperation("/a", "std_msgs/msg/Bool")));
  EXPECT_EQ(
      (json{
          {"op", "advertise"}, {"topic", "/a"}, {"type", "std_msgs/msg/String"}, {"latch", true}, {"queue_size", 10}}),
      json::parse(KV::ros2::advertiseLatchedOperation("/a", "std_msgs/msg/String", 10)));
  EXPECT_EQ((json{{"op", "unadvertise"}, {"topic", "/a"}}), json::parse(KV::ros2::unadvertiseOperation("/a")));
  EXPECT_EQ((json{{"op", "publish"}, {"topic", "/a"}, {"msg", {{"data", true}}}}),
            json::parse(KV::ros2::publishOperation("/a", {{"data", true}})));
}

TEST(RosbridgeText, OfAMessageHasItsTopicAndContent)
{
  const RosbridgeText text = readRosbridgeText(R"({"op": "publish", "topic": "/a", "msg": {"data": 1}, "id": 7})");
  EXPECT_EQ(RosbridgeText::Kind::Message, text.kind);
  EXPECT_EQ("/a", text.topic);
  EXPECT_EQ((json{{"data", 1}}), text.message);
}

TEST(RosbridgeText, OfAStatusHasItsWordsShortened)
{
  const RosbridgeText text = readRosbridgeText(R"({"op": "status", "level": "error", "msg": "no such type"})");
  EXPECT_EQ(RosbridgeText::Kind::Status, text.kind);
  EXPECT_EQ("no such type", text.words);
  EXPECT_EQ(200U, readRosbridgeText(json{{"op", "status"}, {"msg", std::string(5000, 'x')}}.dump()).words.size());
  EXPECT_EQ("an error without words", readRosbridgeText(R"({"op": "status", "msg": 1})").words);
}

TEST(RosbridgeText, OfAStatusIsNoWarningIfItsLevelSaysSo)
{
  for (const char* const level : {"info", "none"})
    EXPECT_EQ(RosbridgeText::Kind::Information,
              readRosbridgeText(json{{"op", "status"}, {"level", level}, {"msg", "x"}}.dump()).kind)
        << level;
  for (const json& level : {json("error"), json("warning"), json("Info"), json(1), json()})
    EXPECT_EQ(RosbridgeText::Kind::Status,
              readRosbridgeText(json{{"op", "status"}, {"level", level}, {"msg", "x"}}.dump()).kind)
        << level;
  EXPECT_EQ(RosbridgeText::Kind::Status, readRosbridgeText(R"({"op": "status", "msg": "x"})").kind);
}

TEST(RosbridgeText, OfAFragmentHasItsDataAndPlace)
{
  const RosbridgeText text =
      readRosbridgeText(R"({"op": "fragment", "id": "a", "data": "{\"op\": \u00e9", "num": 1, "total": 3})");
  EXPECT_EQ(RosbridgeText::Kind::Fragment, text.kind);
  EXPECT_EQ("\"a\"", text.fragment.id);
  EXPECT_EQ("{\"op\": \xc3\xa9", text.fragment.data);
  EXPECT_EQ(1U, text.fragment.number);
  EXPECT_EQ(3U, text.fragment.total);
  EXPECT_EQ("1", readRosbridgeText(R"({"op": "fragment", "id": 1, "data": "", "num": 0, "total": 1})").fragment.id)
      << "a number is another id than the text";
}

struct InvalidCase
{
  const char* name;
  std::string text;
  const char* why;
};

class RosbridgeTextIsInvalid : public ::testing::TestWithParam<InvalidCase>
{};

TEST_P(RosbridgeTextIsInvalid, WithAReason)
{
  const RosbridgeText text = readRosbridgeText(GetParam().text);
  EXPECT_EQ(RosbridgeText::Kind::Invalid, text.kind);
  EXPECT_EQ(GetParam().why, text.words);
}

std::string nested(int levels)
{
  return std::string(static_cast<std::size_t>(levels), '[') + std::string(static_cast<std::size_t>(levels), ']');
}

const char* const noFragment = "it is a fragment without 'id', 'data', 'num' or 'total'";

INSTANTIATE_TEST_SUITE_P(
    Fragments, RosbridgeTextIsInvalid,
    ::testing::Values(
        InvalidCase{"WithoutId", R"({"op": "fragment", "data": "x", "num": 0, "total": 1})", noFragment},
        InvalidCase{"WithAnIdThatIsNone", R"({"op": "fragment", "id": 0.5, "data": "x", "num": 0, "total": 1})",
                    noFragment},
        InvalidCase{"WithoutData", R"({"op": "fragment", "id": "a", "num": 0, "total": 1})", noFragment},
        InvalidCase{"WithDataThatAreNoText", R"({"op": "fragment", "id": "a", "data": {}, "num": 0, "total": 1})",
                    noFragment},
        InvalidCase{"WithoutNum", R"({"op": "fragment", "id": "a", "data": "x", "total": 1})", noFragment},
        InvalidCase{"WithANegativeNum", R"({"op": "fragment", "id": "a", "data": "x", "num": -1, "total": 1})",
                    noFragment},
        InvalidCase{"WithoutTotal", R"({"op": "fragment", "id": "a", "data": "x", "num": 0})", noFragment},
        InvalidCase{"WithAPartOfATotal", R"({"op": "fragment", "id": "a", "data": "x", "num": 0, "total": 1.5})",
                    noFragment}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Texts, RosbridgeTextIsInvalid,
    ::testing::Values(InvalidCase{"Empty", "", "it is no JSON"}, InvalidCase{"Cut", R"({"op": "pub)", "it is no JSON"},
                      InvalidCase{"NotUtf8", "{\"op\": \"\xff\"}", "it is no JSON"},
                      InvalidCase{"BehindANul", std::string("{}\0{}", 5), "it has a character NUL"},
                      InvalidCase{"Deep", nested(17), "it has more than 16 levels"},
                      InvalidCase{"VeryDeep", std::string(1'000'000, '['), "it has more than 16 levels"},
                      InvalidCase{"AsDeepAsAllowed", nested(16), "it is no object"},
                      InvalidCase{"ANumber", "1", "it is no object"},
                      InvalidCase{"WithoutOp", "{}", "its 'op' is none of 'publish', 'fragment' and 'status'"},
                      InvalidCase{"WithAnotherOp", R"({"op": "png", "data": ""})",
                                  "its 'op' is none of 'publish', 'fragment' and 'status'"},
                      InvalidCase{"WithAnOpThatIsNoText", R"({"op": ["publish"]})",
                                  "its 'op' is none of 'publish', 'fragment' and 'status'"},
                      InvalidCase{"WithoutTopic", R"({"op": "publish", "msg": {}})", "it has no 'topic' or no 'msg'"},
                      InvalidCase{"WithoutMessage", R"({"op": "publish", "topic": "/a"})",
                                  "it has no 'topic' or no 'msg'"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(IdsInMessages, AreTheTextsOfTheList)
{
  EXPECT_THAT(KV::ros2::idsIn({{"ids", {"a", 1, "b"}}}), ::testing::ElementsAre("a", "b"));
  EXPECT_THAT(KV::ros2::idsIn({{"ids", "a"}}), ::testing::IsEmpty());
  EXPECT_THAT(KV::ros2::idsIn(json::array()), ::testing::IsEmpty());
}

}  // namespace
