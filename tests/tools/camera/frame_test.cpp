#include "camera/frame.hpp"

#include <skeigiot/recordings/observationjson.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace
{

using KV::recordings::MemberError;
using KV::tools::Frame;
using KV::tools::readFrame;

const std::string straight = "[1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,-50,1]";

/// Returns a frame with one face that has these members besides its track.
std::string withFace(const std::string& members)
{
  return R"({"page":"a","faces":[{"track":1,)" + members + "}]}";
}

TEST(Frame, ReadsWhatThePageFound)
{
  const Frame frame = readFrame(
      R"({"page":"a","age":0.25,"faces":[{"track":3,"matrix":)" + straight +
      R"(,"gaze":[0,0,1],"points":{"36":[10,20.5]},"smile":[0.5,0.9],"emotions":{"happy":1,"neutral":0},)"
      R"("emotionConfidence":0.75,"blendshapes":{"jawOpen":0.25},"blendshapeConfidence":0.5}],"lost":[1],"left":[2],"ended":false})");
  EXPECT_EQ("a", frame.page);
  EXPECT_DOUBLE_EQ(0.25, frame.age);
  EXPECT_FALSE(frame.time);
  EXPECT_FALSE(frame.ended);
  EXPECT_EQ(std::vector<std::int32_t>{1}, frame.lost);
  EXPECT_EQ(std::vector<std::int32_t>{2}, frame.left);
  ASSERT_EQ(1U, frame.faces.size());
  const KV::tools::FoundFace& found = frame.faces.front();
  EXPECT_EQ(3, found.track);
  EXPECT_DOUBLE_EQ(50., found.face.pose.position->distance());
  EXPECT_DOUBLE_EQ(100., found.face.pose.positionUnitsPerMetre);
  EXPECT_FLOAT_EQ(0.f, found.face.pose.headPosture->yaw());
  EXPECT_FLOAT_EQ(0.f, found.face.pose.gaze->yaw);
  EXPECT_FLOAT_EQ(20.5f, found.face.landmarks->points.at(36).y);
  EXPECT_TRUE(std::isnan(found.face.landmarks->points.at(39).x)) << "what is not sent is not known";
  EXPECT_FLOAT_EQ(0.5f, found.smile->value);
  EXPECT_FLOAT_EQ(0.9f, found.smile->confidence);
  EXPECT_FLOAT_EQ(1.f, found.emotions->happy);
  EXPECT_TRUE(std::isnan(found.emotions->sad));
  EXPECT_FLOAT_EQ(0.75f, found.emotionConfidence);
  EXPECT_FALSE(found.face.blendshapes->areUnknown());
  EXPECT_FLOAT_EQ(0.5f, found.blendshapeConfidence);
}

TEST(Frame, LeavesOutWhatWasNotSent)
{
  const Frame frame = readFrame(R"({"page":"a","time":1.5,"faces":[{"track":0}]})");
  EXPECT_DOUBLE_EQ(1.5, frame.time.value());
  const KV::tools::FoundFace& found = frame.faces.front();
  EXPECT_FALSE(found.face.pose.position || found.face.pose.headPosture || found.face.pose.gaze);
  EXPECT_FALSE(found.face.landmarks || found.face.blendshapes || found.smile || found.emotions);
  EXPECT_FLOAT_EQ(1.f, found.blendshapeConfidence) << "other programs need not send one";
}

// Gaze and head turn by the same angle, in the same direction; the library counts their yaws in opposite directions.
TEST(Frame, CountsTheGazeToThePersonsOwnLeftAndUp)
{
  const Frame frame = readFrame(withFace(R"("gaze":[0.5,0,0.8660254])"));
  EXPECT_NEAR(30.f, frame.faces.front().face.pose.gaze->yaw, 1e-4f) << "to the right in the picture";
  EXPECT_FLOAT_EQ(0.f, frame.faces.front().face.pose.gaze->pitch);
  const Frame above = readFrame(withFace(R"("gaze":[0,0.5,0.8660254])"));
  EXPECT_NEAR(30.f, above.faces.front().face.pose.gaze->pitch, 1e-4f);
  const Frame turned = readFrame(withFace(R"("matrix":[0.8660254,0,-0.5,0, 0,1,0,0, 0.5,0,0.8660254,0, 0,0,-50,1])"));
  EXPECT_NEAR(-30.f, turned.faces.front().face.pose.headPosture->yaw(), 1e-4f) << "to the right in the picture";
}

struct Refusal
{
  const char* name;
  std::string json;
  std::string member;
  std::string message;
};

class FrameRefuses : public ::testing::TestWithParam<Refusal>
{};

TEST_P(FrameRefuses, WithItsMemberNamed)
{
  try
  {
    readFrame(GetParam().json);
    FAIL() << "was taken";
  }
  catch (const MemberError& error)
  {
    EXPECT_EQ(GetParam().member, error.member());
    EXPECT_EQ(GetParam().message, std::string(error.what()));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Each, FrameRefuses,
    ::testing::Values(
        Refusal{"NoJson", "{", "", "expected a JSON object"}, Refusal{"NoObject", "[]", "", "expected a JSON object"},
        Refusal{"DeepNesting", std::string(60'000, '['), "", "expected a JSON object"},
        Refusal{"NoPage", "{}", "page", "is missing"},
        Refusal{"EmptyPage", R"({"page":""})", "page", "expected a text of 1 to 64 bytes"},
        Refusal{"LongPage", R"({"page":")" + std::string(65, 'x') + "\"}", "page", "expected a text of 1 to 64 bytes"},
        Refusal{"UnknownMember", R"({"page":"a","picture":"data:"})", "picture", "is unknown"},
        Refusal{"NegativeAge", R"({"page":"a","age":-0.1})", "age", "expected a number from 0 to 10"},
        Refusal{"HighAge", R"({"page":"a","age":10.1})", "age", "expected a number from 0 to 10"},
        Refusal{"NegativeTime", R"({"page":"a","time":-1})", "time", "expected a number from 0 to 10000000"},
        Refusal{"NoFlag", R"({"page":"a","ended":1})", "ended", "expected true or false"},
        Refusal{"NoList", R"({"page":"a","faces":{}})", "faces", "expected a list of 16 faces at most"},
        Refusal{"NoFace", R"({"page":"a","faces":[1]})", "faces[0]", "expected an object"},
        Refusal{"NoTrack", R"({"page":"a","faces":[{}]})", "faces[0].track", "is missing"},
        Refusal{"NegativeTrack", R"({"page":"a","lost":[-1]})", "lost[0]", "expected the number of a track"},
        Refusal{"LargeTrack", R"({"page":"a","left":[2147483648]})", "left[0]", "expected the number of a track"},
        Refusal{"TrackTwice", R"({"page":"a","faces":[{"track":1}],"lost":[1]})", "lost", "has the track 1 twice"},
        Refusal{"UnknownFaceMember", withFace(R"("crop":"")"), "faces[0].crop", "is unknown"},
        Refusal{"ShortMatrix", withFace(R"("matrix":[1,2])"), "faces[0].matrix", "expected 16 numbers"},
        Refusal{"LongMatrix", withFace(R"("matrix":[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17])"), "faces[0].matrix",
                "expected a list of 16 numbers at most"},
        Refusal{"NoTransformation", withFace(R"("matrix":[1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1])"), "faces[0].matrix",
                "The matrix is no transformation: neither its last row nor its last column is 0, 0, 0, 1."},
        Refusal{"TextInMatrix", withFace(R"("matrix":["x",0,0,0,0,1,0,0,0,0,1,0,0,0,0,1])"), "faces[0].matrix[0]",
                "expected a number from -1000000 to 1000000"},
        Refusal{"NoDirection", withFace(R"("gaze":[0,0,0])"), "faces[0].gaze", "expected a direction"},
        Refusal{"ShortGaze", withFace(R"("gaze":[0,0])"), "faces[0].gaze", "expected 3 numbers"},
        Refusal{"LongGaze", withFace(R"("gaze":[0,0,2])"), "faces[0].gaze[2]", "expected a number from -1 to 1"},
        Refusal{"NoPoints", withFace(R"("points":[])"), "faces[0].points",
                "expected an object of points by the numbers of their landmarks"},
        Refusal{"UnknownPoint", withFace(R"("points":{"68":[1,2]})"), "faces[0].points.68",
                "is not the number of a landmark, which is 0 to 67"},
        Refusal{"NamedPoint", withFace(R"("points":{"1x":[1,2]})"), "faces[0].points.1x",
                "is not the number of a landmark, which is 0 to 67"},
        Refusal{"HalfPoint", withFace(R"("points":{"36":[1]})"), "faces[0].points.36", "expected 2 numbers"},
        Refusal{"HalfSmile", withFace(R"("smile":[1])"), "faces[0].smile", "expected a smile and its confidence"},
        Refusal{"LargeSmile", withFace(R"("smile":[1,1.5])"), "faces[0].smile[1]", "expected a number from 0 to 1"},
        Refusal{"UnknownEmotion", withFace(R"("emotions":{"bored":1})"), "faces[0].emotions.bored", "is unknown"},
        Refusal{"NoShapes", withFace(R"("blendshapes":[])"), "faces[0].blendshapes",
                "expected an object of scores by the names of their blendshapes"},
        Refusal{"LargeShapeConfidence", withFace(R"("blendshapeConfidence":1.5)"), "faces[0].blendshapeConfidence",
                "expected a number from 0 to 1"},
        Refusal{"UnknownShape", withFace(R"("blendshapes":{"wink":1})"), "faces[0].blendshapes.wink",
                "is not the name of a blendshape"}),
    [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
