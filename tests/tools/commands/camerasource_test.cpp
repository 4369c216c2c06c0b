#include "commands/camerasource.hpp"

#include <skeigiot/recordings/blendshapes.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace
{

using KV::session::TimePoint;
using KV::tools::CameraSource;
using KV::tools::OrderAnswer;
using Json = nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr int badRequest = 400;
constexpr int refused = 409;

struct Steps : KV::session::SessionObserver
{
  void stepBegins(const KV::recordings::Step& step) override { all.push_back(step); }
  std::vector<KV::recordings::Step> all;
};

class CameraSourceTest : public ::testing::Test
{
protected:
  void open(const std::string& video = "")
  {
    source = std::make_unique<CameraSource>(
        arguments, KV::tools::LiveListeners{{&steps}, [this](std::int32_t person) { left.push_back(person); }},
        [this] { return now += boost::chrono::milliseconds(100); }, video, [this] { return steady; });
  }

  /// Gives a frame of the page "a", with these members besides.
  OrderAnswer give(const std::string& members) { return source->takeFrame(R"({"page":"a",)" + members + "}"); }

  const KV::PersonObservation& last() const { return steps.all.back().observation; }

  KV::tools::LiveArguments arguments;
  Steps steps;
  std::vector<std::int32_t> left;
  TimePoint now{boost::chrono::seconds(1'700'000'000)};
  CameraSource::Clock::time_point steady{std::chrono::hours(1)};
  std::unique_ptr<CameraSource> source;
};

const std::string face = R"({"track":5,"matrix":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,-80,1]})";

TEST_F(CameraSourceTest, MakesReadingsOfAFace)
{
  open();
  const OrderAnswer answer = give(
      R"("faces":[{"track":5,"matrix":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,-80,1],"gaze":[0,0,1],"smile":[0.5,0.9],)"
      R"("points":{"36":[10,20]},"emotions":{"neutral":0,"happy":1,"sad":0,"surprise":0,"fear":0,"disgust":0,"anger":0},)"
      R"("emotionConfidence":0.75}])");
  EXPECT_TRUE(answer.isDone()) << answer.text;
  EXPECT_EQ(Json({{"5", 1}}), Json::parse(answer.text)["persons"]);
  ASSERT_EQ(1U, steps.all.size());
  EXPECT_FLOAT_EQ(0.8f, last().distance->value);
  EXPECT_FLOAT_EQ(0.f, last().headPosture->value.yaw());
  EXPECT_FLOAT_EQ(0.f, last().gaze->value.yaw);
  EXPECT_FLOAT_EQ(0.5f, last().smile->value.value);
  EXPECT_FLOAT_EQ(0.9f, last().smile->value.confidence);
  EXPECT_GT(last().expressions->value.joy.value, 0.9f);
  EXPECT_FLOAT_EQ(0.75f, last().expressions->value.joy.confidence);
  EXPECT_FLOAT_EQ(10.f, last().facialPoints->value.facialPoint(KV::FacialPoint0).value.first);
  EXPECT_TRUE(last().faceDetected->value);
}

TEST_F(CameraSourceTest, MakesSmileAndExpressionsOfBlendshapesAsSureAsThePageIs)
{
  open();
  std::string shapes;
  for (const std::string& name : KV::recordings::blendshapeNames())
    if (name.find("eyeLook") == std::string::npos)
      shapes += (shapes.empty() ? "\"" : ",\"") + name + (name.find("mouthSmile") == 0 ? "\":0.75" : "\":0");
  const std::string detected = face.substr(0, face.size() - 1) + ",\"blendshapes\":{" + shapes + "}";

  ASSERT_TRUE(give("\"faces\":[" + detected + "}]").isDone());
  const float smile = last().smile->value.value;
  EXPECT_GT(smile, 0.5f);
  EXPECT_FLOAT_EQ(1.f, last().smile->value.confidence);
  EXPECT_GT(last().expressions->value.joy.value, 0.5f);
  EXPECT_FLOAT_EQ(1.f, last().expressions->value.joy.confidence);
  EXPECT_FALSE(last().gaze) << "no scores of the eyes were sent";

  ASSERT_TRUE(give("\"faces\":[" + detected + ",\"blendshapeConfidence\":0.25,\"points\":{\"36\":[10,20]}}]").isDone());
  EXPECT_NEAR(smile, last().smile->value.value, 0.01f) << "apart from what was learned of the face at rest";
  EXPECT_FLOAT_EQ(0.25f, last().smile->value.confidence);
  EXPECT_FLOAT_EQ(0.25f, last().expressions->value.joy.confidence);
  EXPECT_FLOAT_EQ(0.25f, last().expressions->value.calm.confidence);
  EXPECT_FLOAT_EQ(1.f, last().facialPoints->value.facialPoint(KV::FacialPoint0).confidence);
}

TEST_F(CameraSourceTest, SaysNothingOfWhatThePageDidNotSee)
{
  open();
  ASSERT_TRUE(give("\"faces\":[" + face + "]").isDone());
  EXPECT_TRUE(last().headPosture);
  EXPECT_FALSE(last().gaze || last().smile || last().expressions || last().facialPoints);
}

TEST_F(CameraSourceTest, CountsAnglesFromTheLineOfSight)
{
  open();
  ASSERT_TRUE(give(R"("faces":[{"track":5,"matrix":[1,0,0,0,0,1,0,0,0,0,1,0,80,0,-80,1]}])").isDone());
  EXPECT_NEAR(-45.f, last().headPosture->value.yaw(), 1e-3f) << "to the right in the picture, and turned ahead";
  EXPECT_NEAR(1.1314f, last().distance->value, 1e-3f);
}

TEST_F(CameraSourceTest, DatesReadingsByTheAgeOfThePicture)
{
  open();
  ASSERT_TRUE(give("\"age\":0.05,\"faces\":[" + face + "]").isDone());
  const KV::recordings::Step& step = steps.all.back();
  EXPECT_GT(step.time, step.observation.headPosture->time);
  EXPECT_TRUE(step.isDated);
}

TEST_F(CameraSourceTest, GivesTracksNumbersAndReportsPersonsNotSeen)
{
  open();
  ASSERT_TRUE(give(R"("faces":[{"track":5},{"track":9}])").isDone());
  EXPECT_EQ(2, steps.all.back().person.value());
  ASSERT_TRUE(give(R"("faces":[{"track":9}],"lost":[5,77])").isDone());
  ASSERT_EQ(4U, steps.all.size()) << "of a track that was never found nothing is known";
  EXPECT_EQ(1, steps.all.back().person.value());
  EXPECT_FALSE(steps.all.back().seen);
  const OrderAnswer answer = give(R"("left":[5,77])");
  EXPECT_EQ(Json({{"9", 2}}), Json::parse(answer.text)["persons"]);
  EXPECT_THAT(left, ElementsAre(1));
  ASSERT_TRUE(give(R"("faces":[{"track":5}])").isDone());
  EXPECT_EQ(3, steps.all.back().person.value()) << "no number is given twice";
}

TEST_F(CameraSourceTest, RefusesASecondPage)
{
  open();
  ASSERT_TRUE(give("\"faces\":[" + face + "]").isDone());
  const OrderAnswer answer = source->takeFrame(R"({"page":"b"})");
  EXPECT_EQ(refused, answer.status);
  EXPECT_EQ("Another page sends already. Close it, and wait for three seconds.", answer.text);
}

TEST_F(CameraSourceTest, LetsAnotherPageTakeOverAfterThreeSeconds)
{
  open();
  ASSERT_TRUE(give(R"("faces":[{"track":5},{"track":9}])").isDone());
  steady += std::chrono::milliseconds(2999);
  EXPECT_EQ(refused, source->takeFrame(R"({"page":"b","faces":[{"track":5}]})").status);
  EXPECT_TRUE(left.empty());
  steady += std::chrono::milliseconds(1);
  const OrderAnswer answer = source->takeFrame(R"({"page":"b","faces":[{"track":5}]})");
  EXPECT_EQ(Json({{"5", 3}}), Json::parse(answer.text)["persons"]) << "the track of another page is another person";
  EXPECT_THAT(left, ElementsAre(1, 2));
  EXPECT_EQ(refused, give(R"("faces":[{"track":5}])").status) << "the first page has been silent for too long";
}

TEST_F(CameraSourceTest, LetsNoPageTakeOverByAFrameThatIsRefused)
{
  open("clip.mp4");
  ASSERT_TRUE(give("\"time\":2,\"faces\":[" + face + "]").isDone());
  steady += std::chrono::seconds(3);
  EXPECT_EQ(badRequest, source->takeFrame(R"({"page":"b","time":1,"faces":[{"track":5}]})").status);
  EXPECT_EQ(badRequest, source->takeFrame(R"({"page":"b","faces":[{"track":5}]})").status);
  EXPECT_TRUE(left.empty());
  EXPECT_TRUE(give("\"time\":3,\"faces\":[" + face + "]").isDone()) << "the first page still sends";
  EXPECT_EQ(1, steps.all.back().person.value());
}

TEST_F(CameraSourceTest, RefusesAFrameAsAWhole)
{
  open();
  const OrderAnswer answer = give("\"faces\":[" + face + R"(,{"track":6,"gaze":[0,0,0]}])");
  EXPECT_EQ(badRequest, answer.status);
  EXPECT_EQ("faces[1].gaze: expected a direction", answer.text);
  EXPECT_TRUE(steps.all.empty());
  EXPECT_EQ(1U, source->status().refused);
  EXPECT_EQ(answer.text, source->status().lastError);
  EXPECT_EQ("time: is for videos only", give("\"time\":1").text);
  EXPECT_EQ("time: is for videos only", give("\"time\":1,\"ended\":true").text);
  EXPECT_FALSE(source->status().ended);
}

TEST_F(CameraSourceTest, LeavesOutAFaceForWhomTheOpenScopesHaveNoRoomAndTakesTheRestOfTheFrame)
{
  open();
  ASSERT_TRUE(give("\"faces\":[]").isDone());
  for (std::size_t i = 0; i < KV::session::Scopes::mostOpen; ++i)
  {
    KV::recordings::Step step;
    step.scopeStarts.push_back({"scope " + std::to_string(i), -1});
    ASSERT_EQ("", source->takeScopes(step));
  }
  ASSERT_TRUE(give("\"faces\":[" + face + "]").isDone());
  std::int32_t track = 100;
  for (; source->status().refused == 0; ++track)
  {
    ASSERT_LT(track, 100'000) << "somebody is one too many";
    ASSERT_TRUE(give(R"("faces":[{"track":)" + std::to_string(track) + "}]").isDone());
  }
  EXPECT_THAT(source->status().lastError, HasSubstr("the open scopes have too many persons together"));
  const std::size_t taken = steps.all.size();
  ASSERT_TRUE(give(R"("faces":[{"track":)" + std::to_string(track) + "}," + face + R"(],"left":[100])").isDone());
  EXPECT_EQ(2U, source->status().refused);
  ASSERT_GT(steps.all.size(), taken);
  EXPECT_EQ(1, steps.all[taken].person.value()) << "the face behind the one that was left out";
  EXPECT_THAT(left, ElementsAre(2));
}

TEST_F(CameraSourceTest, PlaysAVideoByItsOwnTimes)
{
  open("clip.mp4");
  EXPECT_EQ("clip.mp4", source->status().name);
  ASSERT_TRUE(give("\"time\":0,\"faces\":[" + face + "]").isDone());
  EXPECT_FALSE(steps.all.back().isDated);
  const OrderAnswer answer = give("\"time\":1.5,\"faces\":[" + face + "]");
  EXPECT_EQ(1'500'000'000, Json::parse(answer.text)["time"]);
  EXPECT_EQ(boost::chrono::milliseconds(1500), steps.all[1].time - steps.all[0].time);
  EXPECT_EQ(steps.all[1].time, last().headPosture->time);
  EXPECT_EQ("time: lies before the last frame. A session takes a video once: start the command again",
            give("\"time\":1").text);
  EXPECT_EQ("time: is missing", give("\"faces\":[]").text);
  ASSERT_TRUE(give("\"left\":[5],\"time\":2").isDone());
  EXPECT_THAT(left, ElementsAre(1));
  EXPECT_FALSE(source->status().ended);
  EXPECT_EQ("time: is missing", give("\"ended\":true,\"faces\":[" + face + "]").text);
  ASSERT_TRUE(give("\"ended\":true").isDone());
  EXPECT_TRUE(source->status().ended);
}

TEST_F(CameraSourceTest, TakesScopesOnceTheVideoHasBegun)
{
  open("clip.mp4");
  KV::recordings::Step step;
  step.scopeStarts.push_back({"greeting", -1});
  EXPECT_THAT(source->takeScopes(step), HasSubstr("no line has come in yet"));
  ASSERT_TRUE(give("\"time\":0,\"faces\":[" + face + "]").isDone());
  EXPECT_EQ("", source->takeScopes(step));
}

}  // namespace
