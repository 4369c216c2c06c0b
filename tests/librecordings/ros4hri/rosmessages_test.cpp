#include "ros4hri/rosmessages.hpp"
#include "librecordings/rosbag2/bagwriter.hpp"
#include "support/thrown.hpp"

#include <gmock/gmock.h>

#include <functional>

namespace
{
using KV::recordings::RosData;
using KV::recordings::RosMessageError;
using support::CdrWriter;
using testing::ElementsAre;

RosData dataOf(const std::string& bytes)
{
  return {bytes.begin(), bytes.end()};
}

std::string actionUnitsMessage()
{
  CdrWriter writer;
  writer.header("camera");
  for (int i = 0; i < 2 * 99; ++i)
    writer << static_cast<float>(i);
  return writer.bytes();
}

std::string landmarksMessage()
{
  CdrWriter writer;
  writer.header("");
  for (int i = 0; i < 3 * 70; ++i)
    writer << static_cast<float>(i);
  writer << std::uint32_t{480} << std::uint32_t{640};
  return writer.bytes();
}

TEST(RosMessages, ReportFrames)
{
  for (const bool bigEndian : {false, true})
  {
    RosData data = dataOf(
        support::tfMessage({{"map", "base", {1., 2., 3.}, {0., 0., 0.6, 0.8}}, {"base", "x", {}, {}}}, bigEndian));
    const auto transforms = KV::recordings::readTransforms(data);
    ASSERT_EQ(2u, transforms.size());
    EXPECT_EQ("map", transforms[0].parent);
    EXPECT_EQ("base", transforms[0].child);
    EXPECT_THAT(transforms[0].translation, ElementsAre(1., 2., 3.));
    EXPECT_THAT(transforms[0].rotation, ElementsAre(0., 0., 0.6, 0.8));
    EXPECT_EQ("x", transforms[1].child);
  }
}

TEST(RosMessages, ReportIds)
{
  RosData data = dataOf(support::idsMessage({"23ed9", "", "f00000"}, "camera"));
  const auto list = KV::recordings::readIdsList(data);
  EXPECT_EQ("camera", list.header.frame);
  EXPECT_THAT(list.ids, ElementsAre("23ed9", "", "f00000"));
}

TEST(RosMessages, ReportExpressions)
{
  RosData data = dataOf(support::expressionMessage("happy", 0.5f, 0.75f));
  const auto expression = KV::recordings::readExpression(data);
  EXPECT_EQ("happy", expression.expression);
  EXPECT_EQ(0.5f, expression.valence);
  EXPECT_EQ(0.75f, expression.confidence);
}

TEST(RosMessages, ReportActionUnits)
{
  RosData data = dataOf(actionUnitsMessage());
  const auto units = KV::recordings::readActionUnits(data);
  EXPECT_EQ(12.f, units.intensity[12]);
  EXPECT_EQ(99.f + 12.f, units.confidence[12]);
}

TEST(RosMessages, ReportLandmarks)
{
  RosData data = dataOf(landmarksMessage());
  const auto landmarks = KV::recordings::readLandmarks(data);
  EXPECT_EQ(3.f, landmarks.points[1].x);
  EXPECT_EQ(4.f, landmarks.points[1].y);
  EXPECT_EQ(5.f, landmarks.points[1].confidence);
  EXPECT_EQ(480u, landmarks.height);
  EXPECT_EQ(640u, landmarks.width);
}

TEST(RosMessages, ReportTextsAndTruths)
{
  RosData text = dataOf(support::stringMessage("rorql"));
  EXPECT_EQ("rorql", KV::recordings::readString(text));
  RosData truth = dataOf(support::boolMessage(true));
  EXPECT_TRUE(KV::recordings::readBool(truth));
  RosData speech = dataOf(support::speechMessage("hel", "hello"));
  EXPECT_EQ("hello", KV::recordings::readSpeech(speech).final);
}

struct MessageCase
{
  const char* name;
  std::string bytes;
  std::function<void(RosData&)> read;
};

class CutRosMessage : public ::testing::TestWithParam<MessageCase>
{};

TEST_P(CutRosMessage, IsRefusedWhereverItIsCut)
{
  RosData whole = dataOf(GetParam().bytes);
  EXPECT_NO_THROW(GetParam().read(whole));
  for (std::size_t size = 0; size < GetParam().bytes.size(); ++size)
  {
    RosData data = dataOf(GetParam().bytes.substr(0, size));
    EXPECT_THROW(GetParam().read(data), RosMessageError) << size << " of " << GetParam().bytes.size() << " bytes";
  }
}

TEST_P(CutRosMessage, WithTurnedBytesIsReadOrRefused)
{
  for (std::size_t place = 0; place < GetParam().bytes.size(); ++place)
  {
    std::string bytes = GetParam().bytes;
    bytes[place] = static_cast<char>(~static_cast<unsigned char>(bytes[place]));
    RosData data = dataOf(bytes);
    try
    {
      GetParam().read(data);
    }
    catch (const RosMessageError& error)
    {
      EXPECT_STRNE("", error.what());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    OfEachType, CutRosMessage,
    ::testing::Values(
        MessageCase{"Frames", support::tfMessage({{"map", "base", {}, {}}}),
                    [](RosData& d) { KV::recordings::readTransforms(d); }},
        MessageCase{"Ids", support::idsMessage({"a", "b"}), [](RosData& d) { KV::recordings::readIdsList(d); }},
        MessageCase{"Expression", support::expressionMessage("sad", 0.f, 1.f),
                    [](RosData& d) { KV::recordings::readExpression(d); }},
        MessageCase{"ActionUnits", actionUnitsMessage(), [](RosData& d) { KV::recordings::readActionUnits(d); }},
        MessageCase{"Landmarks", landmarksMessage(), [](RosData& d) { KV::recordings::readLandmarks(d); }},
        MessageCase{"SoftBiometrics", support::softBiometricsMessage(30, 0.5f, 1, 0.75f),
                    [](RosData& d) { KV::recordings::readSoftBiometrics(d); }},
        MessageCase{"Joints", support::jointStatesMessage({"a", "b"}, {1., 2.}),
                    [](RosData& d) { KV::recordings::readJointStates(d); }},
        MessageCase{"Clock", support::clockMessage(1'500'000'000), [](RosData& d) { KV::recordings::readClock(d); }},
        MessageCase{"Text", support::stringMessage("abc"), [](RosData& d) { KV::recordings::readString(d); }},
        MessageCase{"Truth", support::boolMessage(true), [](RosData& d) { KV::recordings::readBool(d); }}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(RosMessages, AreRefusedWhereTheyLieAboutTheirLength)
{
  CdrWriter writer;
  writer << std::uint32_t{0xffffffff} << 1. << 2.;
  RosData data = dataOf(writer.bytes());
  try
  {
    KV::recordings::readTransforms(data);
    FAIL() << "four milliards of frames in 20 bytes";
  }
  catch (const RosMessageError& error)
  {
    EXPECT_STREQ("claims 4294967295 elements, but has 20 bytes left", error.what());
  }
}

TEST(RosMessages, OfAClockAreTimesFromZeroOn)
{
  RosData time = dataOf(support::clockMessage(1'500'000'000));
  EXPECT_EQ(1'500'000'000, KV::recordings::readClock(time));
  RosData before = dataOf(support::clockMessage(-2'000'000'000));
  EXPECT_EQ("has a time that is none: -2 s and 0 ns",
            support::textThrownBy<RosMessageError>([&] { KV::recordings::readClock(before); }));
  CdrWriter writer;
  writer << std::int32_t{1} << std::uint32_t{1'000'000'000};
  RosData tooManyNanoseconds = dataOf(writer.bytes());
  EXPECT_EQ("has a time that is none: 1 s and 1000000000 ns",
            support::textThrownBy<RosMessageError>([&] { KV::recordings::readClock(tooManyNanoseconds); }));
}

TEST(RosMessages, AreRefusedInOtherFormats)
{
  for (const std::string& bytes : {std::string("\x28\xb5\x2f\xfd\x04\x00", 6), std::string("\x00\x0b\x00\x00\x01", 5)})
  {
    RosData data = dataOf(bytes);
    EXPECT_THROW(KV::recordings::readBool(data), RosMessageError);
  }
}

}  // namespace
