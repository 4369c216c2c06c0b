#include "rosbridge/rosjson.hpp"

#include "librecordings/rosbag2/bagwriter.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace
{

using KV::ros2::cdrOfJson;
using KV::ros2::RosJsonError;
using nlohmann::json;

const json header = {{"stamp", {{"sec", 0}, {"nanosec", 0}}}, {"frame_id", ""}};

json expression()
{
  return {{"header", header}, {"expression", "happy"}, {"valence", 0.5}, {"arousal", 0}, {"confidence", 0.25}};
}

std::string textOf(const KV::ros2::CdrBytes& bytes)
{
  return {bytes.begin(), bytes.end()};
}

/// Returns why a message is refused; empty if it is taken.
std::string refusalOf(const json& message, const std::string& type)
{
  try
  {
    cdrOfJson(message, type);
    return {};
  }
  catch (const RosJsonError& error)
  {
    return error.what();
  }
}

TEST(RosJson, HasTheBytesThatANodeSends)
{
  EXPECT_EQ(support::stringMessage("f1"), textOf(cdrOfJson({{"data", "f1"}}, "std_msgs/msg/String")));
  EXPECT_EQ(support::boolMessage(true), textOf(cdrOfJson({{"data", true}}, "std_msgs/msg/Bool")));
}

TEST(RosJson, MayHaveMembersInAnyOrderAndMore)
{
  json message = expression();
  message["more"] = {1, 2, 3};
  EXPECT_EQ(cdrOfJson(expression(), "hri_msgs/msg/Expression"), cdrOfJson(message, "hri_msgs/msg/Expression"));
}

TEST(RosJson, OfANullIsNotANumber)
{
  json message = expression();
  message["valence"] = nullptr;
  const KV::ros2::CdrBytes bytes = cdrOfJson(message, "hri_msgs/msg/Expression");
  // 4 bytes in front; the header has 13, the word begins at 16, and the three numbers are the last ones.
  float valence = 0.f;
  std::memcpy(&valence, bytes.data() + bytes.size() - 3 * sizeof(float), sizeof(valence));
  EXPECT_TRUE(std::isnan(valence));
}

TEST(RosJson, OfANumberThatNoFloatCanHoldIsInfinite)
{
  json message = expression();
  message["confidence"] = -1e300;
  const KV::ros2::CdrBytes bytes = cdrOfJson(message, "hri_msgs/msg/Expression");
  float confidence = 0.f;
  std::memcpy(&confidence, bytes.data() + bytes.size() - sizeof(float), sizeof(confidence));
  EXPECT_EQ(-std::numeric_limits<float>::infinity(), confidence);
}

TEST(RosJson, OfAMatchHasItsKindsInOneByteEach)
{
  json match = {{"id1", "a"}, {"id1_type", -128}, {"id2", "b"}, {"id2_type", 127}, {"confidence", 1e300}};
  const KV::ros2::CdrBytes bytes = cdrOfJson(match, "hri_msgs/msg/IdsMatch");
  // 4 bytes in front; "a" takes 4 + 2 bytes and its kind 1; "b" begins at the next multiple of 4.
  EXPECT_EQ(-128, static_cast<std::int8_t>(bytes.at(4 + 6)));
  EXPECT_EQ(127, static_cast<std::int8_t>(bytes.at(4 + 8 + 6)));
  float confidence = 0.f;
  std::memcpy(&confidence, bytes.data() + bytes.size() - sizeof(float), sizeof(confidence));
  EXPECT_EQ(std::numeric_limits<float>::infinity(), confidence);
  match["id1_type"] = 128;
  EXPECT_EQ("its member 'id1_type': is out of its range", refusalOf(match, "hri_msgs/msg/IdsMatch"));
  match["id1_type"] = -129;
  EXPECT_EQ("its member 'id1_type': is out of its range", refusalOf(match, "hri_msgs/msg/IdsMatch"));
}

TEST(RosJson, OfSpeechMayBeThatOfAnyVersion)
{
  const json common = {{"header", header}, {"incremental", "well"}, {"final", ""}, {"confidence", 0.5}};
  for (const char* const member : {"locale", "language"})
  {
    json speech = common;
    speech[member] = "en";
    EXPECT_EQ("", refusalOf(speech, "hri_msgs/msg/LiveSpeech"));
  }
  EXPECT_EQ("its member 'locale': is missing", refusalOf(common, "hri_msgs/msg/LiveSpeech"));
}

struct Refusal
{
  const char* name;
  const char* pointer;  // of the member that is replaced
  const char* value;    // as JSON; empty: the member is taken away
  const char* why;
};

class RosJsonIsRefused : public ::testing::TestWithParam<Refusal>
{};

TEST_P(RosJsonIsRefused, WithTheMemberByName)
{
  json message = {{"header", header}, {"landmarks", json::array()}, {"height", 480}, {"width", 640}};
  for (int i = 0; i < 70; ++i)
    message["landmarks"].push_back({{"x", 0.5}, {"y", 0.5}, {"c", 1}});
  EXPECT_EQ("", refusalOf(message, "hri_msgs/msg/FacialLandmarks"));
  const json::json_pointer place(GetParam().pointer);
  if (*GetParam().value == '\0')
    message.at(place.parent_pointer()).erase(place.back());
  else
    message.at(place) = json::parse(GetParam().value);
  EXPECT_EQ(GetParam().why, refusalOf(message, "hri_msgs/msg/FacialLandmarks"));
}

INSTANTIATE_TEST_SUITE_P(
    Members, RosJsonIsRefused,
    ::testing::Values(
        Refusal{"NotThere", "/height", "", "its member 'height': is missing"},
        Refusal{"InAnArray", "/landmarks/3/x", "\"0\"", "its member 'landmarks[3].x': expected a number, found string"},
        Refusal{"WithFewElements", "/landmarks", "[]", "its member 'landmarks': expected 70 elements, found 0"},
        Refusal{"NoArray", "/landmarks", "{}", "its member 'landmarks': expected an array, found object"},
        Refusal{"NoObject", "/header/stamp", "1", "its member 'header.stamp': expected an object, found number"},
        Refusal{"NoText", "/header/frame_id", "1", "its member 'header.frame_id': expected a text, found number"},
        Refusal{"NoInteger", "/height", "1.5", "its member 'height': expected an integer, found number"},
        Refusal{"Negative", "/height", "-1", "its member 'height': is out of its range"},
        Refusal{"TooGreat", "/width", "4294967296", "its member 'width': is out of its range"},
        Refusal{"Huge", "/width", "18446744073709551615", "its member 'width': is out of its range"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RosJson, IsRefusedIfItIsNoObjectOrOfAnUnknownType)
{
  EXPECT_EQ("expected an object, found array", refusalOf(json::array(), "std_msgs/msg/String"));
  EXPECT_EQ("the type std_msgs/msg/Other is not known", refusalOf(json::object(), "std_msgs/msg/Other"));
  EXPECT_EQ("its member 'data': expected true or false, found number", refusalOf({{"data", 1}}, "std_msgs/msg/Bool"));
}

TEST(RosJson, OfAnswersHasAllMembersOfTheirTypes)
{
  KV::ros2::EngagementMessage engagement;
  engagement.stamp = 1'500'000'002;
  engagement.level = 3;
  const json stamp = {{"sec", 1}, {"nanosec", 500'000'002}};
  EXPECT_EQ((json{{"header", {{"stamp", stamp}, {"frame_id", ""}}}, {"level", 3}}), jsonOf(engagement));

  KV::ros2::ExpressionMessage affect;
  affect.expression = "sad";
  affect.valence = -0.5f;
  affect.confidence = 0.75f;
  EXPECT_EQ((json{{"header", header}, {"expression", "sad"}, {"valence", -0.5}, {"arousal", 0.}, {"confidence", 0.75}}),
            jsonOf(affect));

  KV::ros2::GazeMessage gaze;
  gaze.sender = "ada";
  EXPECT_EQ((json{{"header", header}, {"sender", "ada"}, {"receiver", ""}}), jsonOf(gaze));

  KV::ros2::DiagnosticMessage diagnostic;
  diagnostic.level = 1;
  diagnostic.name = "n";
  diagnostic.message = "m";
  diagnostic.values = {{"persons", "2"}};
  const json status = {{"level", 1},
                       {"name", "n"},
                       {"message", "m"},
                       {"hardware_id", ""},
                       {"values", json::array({{{"key", "persons"}, {"value", "2"}}})}};
  EXPECT_EQ((json{{"header", header}, {"status", json::array({status})}}), jsonOf(diagnostic));
}

TEST(RosJson, OfATextIsItsData)
{
  EXPECT_EQ((json{{"data", "hi"}}), jsonOf(KV::ros2::TextMessage{"hi"}));
}

TEST(RosJson, OfAnswersIsReadAsTheCdrOfTheSameAnswer)
{
  KV::ros2::ExpressionMessage affect;
  affect.stamp = 1'700'000'000'123'456'789;
  affect.expression = "happy";
  affect.valence = 0.3f;
  affect.confidence = 0.1f;
  EXPECT_EQ(cdrOf(affect), cdrOfJson(jsonOf(affect), affect.type));

  KV::ros2::EngagementMessage engagement;
  engagement.level = 4;
  EXPECT_EQ(cdrOf(engagement), cdrOfJson(jsonOf(engagement), engagement.type));
}

}  // namespace
