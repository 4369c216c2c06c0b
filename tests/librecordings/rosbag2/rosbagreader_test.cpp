#include "face/personsinview.hpp"
#include "librecordings/bits.hpp"
#include "librecordings/rosbag2/bagwriter.hpp"
#include "librecordings/support.hpp"
#include "rosbag2/openbagfile.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/rosface.hpp>
#include <skeigiot/recordings/rosreadings.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <optional>

namespace
{
using namespace support;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr float rounding = 1e-4f;  // [deg] single precision of angles up to 180
constexpr double gazeTilt = 10.;   // [deg]

class RosbagReaderTest : public ::testing::Test
{
protected:
  BagWriter& bag()
  {
    if (!_bag)
      _bag.emplace(path(), begin);
    return *_bag;
  }

  std::string path() const { return folder.path("bag.db3"); }

  /// Closes the bag, and reads it. In other forms it must read the same.
  Contents read(const KV::recordings::ReadingOptions& options = {})
  {
    std::vector<std::pair<McapForm, std::string>> others;
    if (_bag)
      for (const McapForm& form : otherForms)
        others.emplace_back(form, _bag->inMcap(form));
    _bag.reset();
    const Contents contents = contentsOf(path(), "", options);
    for (const auto& [form, bytes] : others)
      if (!bytes.empty())
        expectSame(contents, contentsOf(folder.write(form.name, bytes), "", options), form);
    return contents;
  }

  /// The parts that two forms of one bag share; in messages, they have different names.
  void expectSame(const Contents& expected, const Contents& found, const McapForm& form) const
  {
    SCOPED_TRACE("MCAP, " + form.name);
    const auto named = [&](std::vector<std::string> texts) {
      for (std::string& text : texts)
        if (const auto place = text.find(path()); place != std::string::npos)
          text.replace(place, path().size(), folder.path(form.name));
      return texts;
    };
    EXPECT_EQ(written(expected), written(found));
    EXPECT_EQ(named(expected.badLines), found.badLines);
    EXPECT_EQ(named({expected.fatal}), std::vector<std::string>{found.fatal});
    EXPECT_EQ(named(expected.warnings), found.warnings);
    EXPECT_EQ(expected.isDated, found.isDated);
  }

  /// A frame of a face, and the list of the tracked ones, as a node publishes them for every image.
  void image(double seconds, const std::vector<FrameMessage>& faces)
  {
    std::vector<std::string> ids;
    for (const FrameMessage& face : faces)
    {
      bag().add(seconds, "/tf", tfMessage({face}));
      ids.push_back(face.child.substr(5));
    }
    bag().add(seconds + 0.001, "/humans/faces/tracked", idsMessage(ids));
  }

  /// The steps as text.
  static std::vector<std::string> written(const Contents& contents)
  {
    std::vector<std::string> texts;
    for (const auto& step : contents.entries)
      texts.push_back(KV::recordings::stepToJson(step));
    return texts;
  }

  inline static const std::vector<McapForm> otherForms = {{"plain", "", true, 1000},
                                                          {"lz4", "lz4", true, 1000},
                                                          {"zstd", "zstd", true, 100000},
                                                          {"unchunked", "", false, 0}};

  TemporaryFolder folder;
  std::int64_t begin = 1700000000000000000;  // [ns] since 1970, of the bag

private:
  std::optional<BagWriter> _bag;
};

/// The persons who are seen, or not, step by step: "0", "-0".
std::vector<std::string> stepsOf(const Contents& contents)
{
  std::vector<std::string> steps;
  for (const auto& entry : contents.entries)
    steps.push_back((entry.seen ? "" : "-") + std::to_string(entry.person.value()));
  return steps;
}

double secondsSince(std::int64_t begin, ko::SystemClock::time_point time)
{
  return static_cast<double>(nanosecondsOf(time) - begin) * 1e-9;
}

TEST_F(RosbagReaderTest, ReportsWhereAFaceIsAndHowItIsTurned)
{
  image(0., {faceFrame("a", {0., 0., 2.}, 20., 10., 5.)});
  const auto contents = read();
  EXPECT_EQ("", contents.fatal);
  ASSERT_EQ(1u, contents.entries.size());
  const auto& observation = contents.entries[0].observation;
  EXPECT_EQ(2.f, observation.distance->value);
  EXPECT_NEAR(20.f, observation.headPosture->value.yaw(), rounding);
  EXPECT_NEAR(10.f, observation.headPosture->value.pitch(), rounding);
  EXPECT_NEAR(5.f, observation.headPosture->value.roll(), rounding);
  EXPECT_TRUE(observation.faceDetected->value);
  EXPECT_FALSE(observation.headHeight);
  EXPECT_FALSE(observation.gaze);
}

// A person to the right of the axis in the image, and below it, who looks into the camera is turned to their own right
// (to the left in the image) and up.
TEST_F(RosbagReaderTest, CountsAnglesFromTheLineOfSightIfAsked)
{
  KV::recordings::ReadingOptions options;
  options.lookAt.kind = KV::recordings::LookAt::Kind::Camera;
  const double azimuth = std::atan2(1., 2.) * 57.29577951308232;
  image(0., {faceFrame("a", {1., 0., 2.}, azimuth, 0.), faceFrame("b", {0., 1., 2.}, 0., azimuth)});
  auto entries = read(options).entries;
  ASSERT_EQ(2u, entries.size());
  for (const auto& entry : entries)
  {
    EXPECT_NEAR(0.f, entry.observation.headPosture->value.yaw(), rounding);
    EXPECT_NEAR(0.f, entry.observation.headPosture->value.pitch(), rounding);
    EXPECT_FLOAT_EQ(std::sqrt(5.f), entry.observation.distance->value);
  }

  options.lookAt.kind = KV::recordings::LookAt::Kind::FormatsOwn;
  options.cameraHeight = 1.5f;
  entries = read(options).entries;
  EXPECT_NEAR(azimuth, entries[0].observation.headPosture->value.yaw(), rounding);
  EXPECT_NEAR(azimuth, entries[1].observation.headPosture->value.pitch(), rounding);
  EXPECT_FLOAT_EQ(0.5f, entries[1].observation.headHeight->value);
}

TEST_F(RosbagReaderTest, ExchangesLeftAndRightOfAMirrorImage)
{
  image(0., {faceFrame("a", {0., 0., 2.}, 20., 10., 5.)});
  KV::recordings::ReadingOptions options;
  options.mirrored = true;
  const auto contents = read(options);
  const auto& head = contents.entries.at(0).observation.headPosture->value;
  EXPECT_NEAR(-20.f, head.yaw(), rounding);
  EXPECT_NEAR(10.f, head.pitch(), rounding);
  EXPECT_NEAR(-5.f, head.roll(), rounding);
  EXPECT_THAT(contents.description.front(), HasSubstr(", mirrored"));
}

// The same numbers, once as messages in a bag and once by hand.
TEST_F(RosbagReaderTest, AgreesToTheLastBitWithTheAdapterOnTheSameMessages)
{
  const FrameMessage face = faceFrame("a", {0.31, -0.17, 1.93}, 20., 10., 5.);
  const FrameMessage gaze = {
      "camera_optical", "gaze_a", {}, product(turned(171., {0., 1., 0.}), turned(3., {1., 0., 0.}))};
  const KV::recordings::RosFace detected{face.translation, face.rotation, gaze.rotation};
  const KV::recordings::RosExpression expression{"", -0.37f, 0.2f, 0.81f};
  for (const bool mirrored : {false, true})
  {
    begin += 1000000000;
    bag().add(0., "/tf", tfMessage({face, gaze}));
    bag().add(0.002, "/humans/faces/a/expression",
              expressionMessage(expression.expression, expression.valence, expression.confidence));
    bag().add(0.1, "/tf", tfMessage({face, gaze}));
    KV::recordings::ReadingOptions options;
    options.mirrored = mirrored;
    options.cameraHeight = 1.21f;
    options.lookAt.kind = KV::recordings::LookAt::Kind::Axis;  // an adapter without a rest learns no direction
    const auto entries = read(options).entries;
    ASSERT_EQ(2u, entries.size());

    const KV::recordings::FaceAdapter adapter(options);
    KV::recordings::Step adapted = entries[0];
    adapted.observation = adapter.observe(faceOf(detected), timeOf(begin)).value();
    adapted.observation.expressions = readingsOf(expression).observedAt(timeOf(begin + 2000000)).expressions;
    EXPECT_EQ(Bits::of(adapted), Bits::of(entries[0]));
    adapted = entries[1];
    adapted.observation = adapter.observe(faceOf(detected), timeOf(begin + 100000000)).value();
    EXPECT_EQ(Bits::of(adapted), Bits::of(entries[1]));
    std::filesystem::remove(path());
  }
}

// The eyes turn against the head: about the y of the gaze, which points down, to the person's own right.
TEST_F(RosbagReaderTest, ReportsWhereThePersonLooks)
{
  const auto looking = [](double ownLeft, double up) {
    const auto turn = product(turned(-ownLeft, {0., 1., 0.}), turned(up, {1., 0., 0.}));
    return FrameMessage{"face_a", "gaze_a", {}, product(gazeAhead, turn)};
  };
  for (const auto& [time, ownLeft, up] : {std::tuple(0., gazeTilt, 0.), std::tuple(0.1, -gazeTilt, 5.)})
  {
    bag().add(time, "/tf", tfMessage({faceFrame("a", {0., 0., 2.})}));
    bag().add(time + 0.002, "/tf", tfMessage({looking(ownLeft, up)}));
  }
  const auto contents = read();
  ASSERT_EQ(2u, contents.entries.size());
  EXPECT_NEAR(gazeTilt, contents.entries[0].observation.gaze->value.yaw, rounding) << "own left is positive";
  EXPECT_NEAR(0., contents.entries[0].observation.gaze->value.pitch, rounding);
  EXPECT_NEAR(-gazeTilt, contents.entries[1].observation.gaze->value.yaw, rounding);
  EXPECT_NEAR(5., contents.entries[1].observation.gaze->value.pitch, rounding) << "up is positive";
  EXPECT_THAT(contents.warnings, IsEmpty());
}

TEST_F(RosbagReaderTest, WarnsOfAGazeThatNeverMoves)
{
  for (int i = 0; i < 3; ++i)
    bag().add(0.1 * i, "/tf", tfMessage({faceFrame("a", {0., 0., 2.}, 10. * i), {"face_a", "gaze_a", {}, gazeAhead}}));
  KV::recordings::ReadingOptions options;
  options.lookAt.kind = KV::recordings::LookAt::Kind::Axis;
  const auto contents = read(options);
  EXPECT_NEAR(-20., contents.entries.back().observation.gaze->value.yaw, rounding) << "it goes with the face";
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("no eye tracking")));
}

TEST_F(RosbagReaderTest, WarnsWhereThereIsNoGaze)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  EXPECT_THAT(read().warnings, ElementsAre(HasSubstr("this bag has no gaze")));
}

TEST_F(RosbagReaderTest, FindsFacesByWayOfOtherFrames)
{
  bag().add(0., "/tf_static", tfMessage({{"head", "camera_optical", {0., 0., 1.}, facingCamera}}));
  FrameMessage face = faceFrame("a", {0., 0., 2.});
  face.parent = "other_camera";
  bag().add(0.1, "/tf_static", tfMessage({{"/camera_optical", "other_camera", {0.5, 0., 0.}, turned(0., {})}}));
  bag().add(0.2, "/humans/faces/tracked", idsMessage({"a"}, "camera_optical"));
  bag().add(0.201, "/tf", tfMessage({face}));
  const auto entries = read().entries;
  ASSERT_EQ(1u, entries.size());
  EXPECT_FLOAT_EQ(std::hypot(0.5f, 2.f), entries[0].observation.distance->value);
}

TEST_F(RosbagReaderTest, TakesTheTimesAtWhichMessagesWereReceived)
{
  image(1.5, {faceFrame("a", {0., 0., 2.})});
  const auto contents = read();
  EXPECT_NEAR(1.5, secondsSince(begin, contents.entries.at(0).time), 1e-9);
  EXPECT_EQ(contents.entries[0].time, contents.entries[0].observation.headPosture->time);
  EXPECT_THAT(contents.description.back(), HasSubstr("times at which the messages were received"));
  EXPECT_TRUE(contents.isDated);
}

TEST_F(RosbagReaderTest, PlacesASimulationAtTheBeginningOfRecordings)
{
  begin = 1000;
  image(1., {faceFrame("a", {0., 0., 2.})});
  image(2., {faceFrame("a", {0., 0., 2.})});
  const auto contents = read();
  EXPECT_NEAR(0., secondsOf(contents.entries.at(0)), 1e-9);
  EXPECT_NEAR(1., secondsOf(contents.entries.at(1)), 1e-9);
  EXPECT_THAT(contents.description.back(), HasSubstr("placed at 2020-01-01"));
  EXPECT_FALSE(contents.isDated);
}

TEST_F(RosbagReaderTest, TakesFacesOfOneImageForOneCycle)
{
  image(0., {faceFrame("a", {0., 0., 2.}), faceFrame("b", {1., 0., 2.})});
  image(0.033, {faceFrame("b", {1., 0., 2.}), faceFrame("a", {0., 0., 2.})});
  EXPECT_THAT(stepsOf(read()), ElementsAre("0", "1", "0", "1"));
}

TEST_F(RosbagReaderTest, ReportsAPersonWhoLeavesAndComesBack)
{
  const auto here = faceFrame("a", {0., 0., 2.});
  image(0., {here});
  image(0.033, {});
  image(0.066, {});
  image(0.1, {here});
  const auto contents = read();
  EXPECT_THAT(stepsOf(contents), ElementsAre("0", "-0", "-0", "0"));
  EXPECT_NEAR(0.034, secondsSince(begin, contents.entries[1].time), 1e-9);
}

TEST_F(RosbagReaderTest, ReportsAPersonWhoLeavesWhileAnotherStays)
{
  const auto a = faceFrame("a", {0., 0., 2.});
  const auto b = faceFrame("b", {1., 0., 2.});
  image(0., {a, b});
  image(0.033, {a});
  image(0.066, {a});
  EXPECT_THAT(stepsOf(read()), ElementsAre("0", "1", "0", "-1", "0", "-1"));
}

TEST_F(RosbagReaderTest, DoesNotMissWhoIsTrackedWithoutAFrame)
{
  const auto a = faceFrame("a", {0., 0., 2.});
  image(0., {a, faceFrame("b", {1., 0., 2.})});
  bag().add(0.033, "/tf", tfMessage({a}));
  bag().add(0.034, "/humans/faces/tracked", idsMessage({"a", "b"}));
  EXPECT_THAT(stepsOf(read()), ElementsAre("0", "1", "0"));
}

TEST_F(RosbagReaderTest, MissesAFaceWithoutFramesIfTheTrackedOnesAreNotListed)
{
  const auto a = faceFrame("a", {0., 0., 2.});
  bag().add(0., "/tf", tfMessage({a, faceFrame("b", {1., 0., 2.})}));
  bag().add(0.2, "/tf", tfMessage({a}));
  bag().add(0.4, "/tf", tfMessage({a}));
  EXPECT_THAT(stepsOf(read()), ElementsAre("0", "1", "0", "0", "-1"));
}

TEST_F(RosbagReaderTest, ReportsAMissingPersonForALimitedTime)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  for (int i = 1; i <= 400; ++i)
    image(0.033 * i, {});
  EXPECT_EQ(1u + KV::recordings::PersonsInView::longestAbsence, read().entries.size());
}

TEST_F(RosbagReaderTest, KnowsAPersonWhoseFaceIsFoundAnew)
{
  bag().add(0., "/humans/persons/ada/face_id", stringMessage("a"));
  bag().add(5., "/humans/persons/ada/face_id", stringMessage("c"));
  image(0.1, {faceFrame("a", {0., 0., 2.}), faceFrame("b", {1., 0., 2.})});
  image(6., {faceFrame("c", {0., 0., 2.})});
  const auto contents = read();
  EXPECT_THAT(stepsOf(contents), ElementsAre("0", "1", "0", "-1"));
  EXPECT_THAT(contents.description.back(), HasSubstr("person 0 is 'ada'"));
  EXPECT_EQ("ada", contents.entries.at(0).personName);
  EXPECT_EQ("b", contents.entries.at(1).personName) << "a face that belongs to nobody has its id";
  EXPECT_EQ("b", contents.entries.at(3).personName) << "so has one that is missing";
}

TEST_F(RosbagReaderTest, NumbersPersonsInTheOrderOfTheirMessages)
{
  bag().add(1., "/humans/persons/zoe/face_id", stringMessage("z"));
  bag().add(2., "/humans/persons/ada/face_id", stringMessage("a"));
  image(3., {faceFrame("a", {0., 0., 2.})});
  EXPECT_THAT(stepsOf(read()), ElementsAre("1"));
}

TEST_F(RosbagReaderTest, ReportsAnExpressionWithTheNextFrame)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  bag().add(0.02, "/humans/faces/a/expression", expressionMessage("happy", 0.f, 0.75f));
  image(0.033, {faceFrame("a", {0., 0., 2.})});
  const auto entries = read().entries;
  ASSERT_EQ(2u, entries.size());
  EXPECT_FALSE(entries[0].observation.expressions);
  const auto& expressions = entries[1].observation.expressions;
  ASSERT_TRUE(expressions);
  EXPECT_EQ(1.f, expressions->value.joy.value);
  EXPECT_EQ(0.75f, expressions->value.joy.confidence);
  EXPECT_EQ(0.f, expressions->value.anger.value);
  EXPECT_EQ(0.75f, expressions->value.anger.confidence);
  EXPECT_NEAR(0.02, secondsSince(begin, expressions->time), 1e-9);
}

TEST_F(RosbagReaderTest, ReportsAnExpressionAloneWhereThereAreNoFrames)
{
  bag().add(0., "/humans/faces/a/expression", expressionMessage("sad", 0.f, 1.f));
  bag().add(0.1, "/humans/faces/a/expression", expressionMessage("", -0.25f, 0.5f));
  bag().add(0.2, "/humans/faces/a/expression", expressionMessage("bored", 0.f, 0.5f));
  const auto entries = read().entries;
  ASSERT_EQ(2u, entries.size()) << "of boredom without a valence nothing is known";
  EXPECT_EQ(1.f, entries[0].observation.expressions->value.sorrow.value);
  EXPECT_EQ(0.25f, entries[1].observation.expressions->value.sorrow.value);
  EXPECT_EQ(0.75f, entries[1].observation.expressions->value.calm.value);
  EXPECT_EQ(0.f, entries[1].observation.expressions->value.surprise.confidence);
}

TEST_F(RosbagReaderTest, MakesReadingsOfActionUnits)
{
  CdrWriter units;
  units.header("");
  for (int i = 0; i < 99; ++i)
    units << (i == 12 ? 4.f : 0.f);
  for (int i = 0; i < 99; ++i)
    units << (i == 4 ? 0.f : 0.8f);  // the brow is hidden
  bag().add(0., "/humans/faces/a/facs", units.bytes());
  image(0.001, {faceFrame("a", {0., 0., 2.})});
  const auto observation = read().entries.at(0).observation;
  EXPECT_FLOAT_EQ(0.8f, observation.smile->value.value) << "all of 3, less the rest";
  EXPECT_FLOAT_EQ(0.8f, observation.smile->value.confidence);
  EXPECT_FLOAT_EQ(0.8f, observation.expressions->value.joy.value);
  EXPECT_EQ(0.f, observation.expressions->value.anger.confidence) << "anger needs the brow";
}

TEST_F(RosbagReaderTest, ReportsFacialPointsInPixels)
{
  CdrWriter landmarks;
  landmarks.header("");
  for (int i = 0; i < 70; ++i)
    landmarks << (i == 30 ? 0.5f : 0.f) << (i == 30 ? 0.25f : 0.f) << (i == 30 ? 0.9f : 0.1f);
  landmarks << std::uint32_t{480} << std::uint32_t{640};
  bag().add(0., "/humans/faces/a/landmarks", landmarks.bytes());
  image(0.001, {faceFrame("a", {0., 0., 2.})});
  const auto nose =
      read().entries.at(0).observation.facialPoints->value.facialPoint(static_cast<KV::PointDescription>(6));
  EXPECT_EQ(320.f, nose.value.first);
  EXPECT_EQ(120.f, nose.value.second);
  EXPECT_EQ(0.9f, nose.confidence);
}

TEST_F(RosbagReaderTest, ReportsWhoSpeaks)
{
  bag().add(0., "/humans/persons/ada/face_id", stringMessage("a"));
  bag().add(0., "/humans/persons/ada/voice_id", stringMessage("v"));
  const std::vector<std::pair<std::string, std::string>> messages = {
      {"/humans/voices/v/is_speaking", boolMessage(true)},
      {"/humans/voices/v/is_speaking", boolMessage(false)},
      {"/humans/voices/v/speech", speechMessage("hel", "")},
      {"/humans/voices/v/speech", speechMessage("", "hello")},
      {"/humans/voices/stranger/is_speaking", boolMessage(true)}};
  double time = 1.;
  for (const auto& [topic, message] : messages)
  {
    bag().add(time, topic, message);
    image(time + 0.01, {faceFrame("a", {0., 0., 2.})});
    time += 1.;
  }
  const auto entries = read().entries;
  ASSERT_EQ(5u, entries.size());
  EXPECT_TRUE(entries[0].observation.speaking->value);
  EXPECT_FALSE(entries[1].observation.speaking->value);
  EXPECT_TRUE(entries[2].observation.speaking->value);
  EXPECT_FALSE(entries[3].observation.speaking->value);
  EXPECT_FALSE(entries[4].observation.speaking) << "a voice of nobody";
}

TEST_F(RosbagReaderTest, ReadsACompressedBagAndLeavesNothingBehind)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  read();
  std::ifstream file(path(), std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  const std::string compressed = folder.writeCompressed("bag.db3.gz", bytes);

  const TemporaryFolder temporary;
  setenv("TMPDIR", temporary.path().c_str(), 1);
  const auto contents = contentsOf(compressed);
  unsetenv("TMPDIR");
  EXPECT_THAT(stepsOf(contents), ElementsAre("0"));
  EXPECT_TRUE(std::filesystem::is_empty(temporary.path()));
}

TEST_F(RosbagReaderTest, ReadsAFolderOfFilesInTheOrderOfTheirTimes)
{
  const std::string bagFolder = folder.path("bag");
  std::filesystem::create_directory(bagFolder);
  for (const auto& [name, time] : {std::pair("bag_1.db3", 1.), std::pair("bag_10.db3", 2.), std::pair("a.db3", 3.)})
    BagWriter(bagFolder + "/" + name, begin).add(time, "/tf", tfMessage({faceFrame("a", {0., 0., time})}));
  EXPECT_EQ(bagFolder + ": is a folder, expected a file", contentsOf(bagFolder).fatal) << "there is no metadata.yaml";
  std::ofstream(bagFolder + "/metadata.yaml") << "rosbag2_bagfile_information:\n";

  const auto contents = contentsOf(bagFolder);
  EXPECT_EQ("", contents.fatal);
  std::vector<float> distances;
  for (const auto& entry : contents.entries)
    distances.push_back(entry.observation.distance->value);
  EXPECT_THAT(distances, ElementsAre(1.f, 2.f, 3.f));
}

TEST_F(RosbagReaderTest, RefusesAFolderWithoutAFileOfABag)
{
  const std::string bagFolder = folder.path("bag");
  std::filesystem::create_directory(bagFolder);
  std::ofstream(bagFolder + "/metadata.yaml") << "x";
  EXPECT_EQ(bagFolder + ": the folder has no bag file (.mcap or .db3)", contentsOf(bagFolder).fatal);
  std::ofstream(bagFolder + "/bag_0.mcap") << "x";
  EXPECT_THAT(contentsOf(bagFolder).fatal, HasSubstr("bag_0.mcap: has no table 'topics': this is no bag"));
}

TEST_F(RosbagReaderTest, NamesTheTopicAndTheMessageThatItCannotRead)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  bag().add(0.1, "/humans/faces/tracked", std::string("\0\1\0\0\1", 5));
  image(0.2, {faceFrame("a", {0., 0., 2.})});
  const auto contents = read();
  EXPECT_THAT(stepsOf(contents), ElementsAre("0", "0"));
  EXPECT_THAT(
      contents.badLines,
      ElementsAre(HasSubstr("bag.db3: /humans/faces/tracked: message 3: ends too early, or is of another type")));
}

TEST_F(RosbagReaderTest, RefusesBadMessagesAboutPersonsAtTheirPlaces)
{
  const std::string cut("\0\1\0\0\x05", 5);
  image(0., {faceFrame("a", {0., 0., 2.})});
  bag().add(0.1, "/humans/persons/ada/face_id", cut);
  bag().add(0.2, "/humans/persons/ada/face_id", cut);
  bag().add(0.3, "/humans/persons/ada/voice_id", cut);
  bag().add(0.4, "/humans/persons/ada/voice_id", stringMessage(std::string(1 << 20, 'v')));
  bag().add(0.5, "/humans/persons/ada/face_id", stringMessage("a"));
  image(0.6, {faceFrame("a", {0., 0., 2.})});
  const auto contents = read();
  EXPECT_EQ("", contents.fatal);
  ASSERT_THAT(stepsOf(contents), ElementsAre("0", "0"));
  EXPECT_EQ("ada", contents.entries[0].personName);
  EXPECT_THAT(
      contents.badLines,
      ElementsAre(HasSubstr("bag.db3: /humans/persons/ada/face_id: message 3: ends too early, or is of another type"),
                  HasSubstr("bag.db3: /humans/persons/ada/face_id: message 4: ends too early, or is of another type"),
                  HasSubstr("bag.db3: /humans/persons/ada/voice_id: message 5: ends too early, or is of another type"),
                  HasSubstr("/humans/persons/ada/voice_id: message 6: has 1048585 bytes, too many for its type")));
}

TEST_F(RosbagReaderTest, RefusesMessagesThatLieAboutTheirLength)
{
  bag().add(0., "/tf", (CdrWriter() << std::uint32_t{1000000000}).bytes());
  EXPECT_THAT(read().badLines,
              ElementsAre(HasSubstr("/tf: message 1: claims 1000000000 elements, but has 0 bytes left")));
}

TEST_F(RosbagReaderTest, RefusesFramesWithoutAPlace)
{
  FrameMessage face = faceFrame("a", {0., 0., 2.});
  face.rotation = {0., 0., 0., 0.};
  bag().add(0., "/tf", tfMessage({face}));
  face = faceFrame("a", {0., 0., std::nan("")});
  bag().add(1., "/tf", tfMessage({face}));
  const auto contents = read();
  EXPECT_THAT(contents.entries, IsEmpty());
  EXPECT_THAT(contents.badLines, ElementsAre(HasSubstr("the frame 'face_a' has no position"), HasSubstr("message 2")));
}

TEST_F(RosbagReaderTest, RefusesWhatIsNoMessage)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  bag().run(
      "INSERT INTO messages(topic_id, timestamp, data) VALUES(1, 1700000001000000000, 'text'),"
      "(1, -5, x'00'), (1, 'noon', x'00')");
  const auto contents = read();
  EXPECT_EQ(1u, contents.entries.size());
  EXPECT_THAT(contents.badLines,
              ElementsAre(HasSubstr("message 4: its time is no count"), HasSubstr("message 3: its data"),
                          HasSubstr("message 5: its time is no count")));
}

TEST_F(RosbagReaderTest, RefusesMessagesBeyondTheClock)
{
  begin = 0;
  image(0., {faceFrame("a", {0., 0., 2.})});
  bag().run("UPDATE messages SET timestamp = 9223372036854775807 WHERE id = 2");
  EXPECT_THAT(read().badLines, ElementsAre(HasSubstr("message 2: its time is beyond what the clock can show")));
}

TEST_F(RosbagReaderTest, LeavesTopicsOfOtherTypesOut)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  bag().topic("/humans/faces/a/expression", "std_msgs/msg/String");
  EXPECT_THAT(read().warnings,
              Contains(AllOf(HasSubstr("/humans/faces/a/expression is left out"), HasSubstr("std_msgs/msg/String"))));
}

TEST_F(RosbagReaderTest, PassesOverTopicsWithNamesThatRosDoesNotAllow)
{
  bag().topic("/humans/faces/a\033[2J/expression", "hri_msgs/msg/Expression");
  EXPECT_THAT(read().fatal, HasSubstr("has no topic that is read"));
}

TEST_F(RosbagReaderTest, RefusesOtherFormatsOfMessages)
{
  bag().topic("/tf", "tf2_msgs/msg/TFMessage", "protobuf");
  EXPECT_EQ(path() + ": /tf: expected messages in the format cdr, found 'protobuf'", read().fatal);
}

TEST_F(RosbagReaderTest, NeedsATopicThatItKnows)
{
  bag().topic("/camera/image", "sensor_msgs/msg/Image");
  EXPECT_EQ(path() +
                ": has no topic that is read: expected /tf or topics of ROS4HRI below /humans, found "
                "'/camera/image'",
            read().fatal);
}

TEST_F(RosbagReaderTest, NamesFourOfTheTopicsThatItDoesNotKnow)
{
  for (const char* const name : {"/a", "/b", "/c", "/d", "/e", "/f"})
    bag().topic(name, "sensor_msgs/msg/Image");
  EXPECT_THAT(read().fatal, testing::EndsWith("below /humans, found '/a', '/b', '/c', '/d', 2 more"));
}

TEST_F(RosbagReaderTest, TakesEachDifferentMessageAboutPersonsOnce)
{
  for (const char* const face : {"a", "b", "a", "a", "b"})
    bag().add(1., "/humans/persons/ada/face_id", stringMessage(face));
  bag().add(2., "/humans/persons/ben/face_id", stringMessage("a"));
  read();
  const auto opened = KV::recordings::openBagFile(path());
  std::vector<std::int64_t> keys;
  for (const auto& [key, topic] : opened->topics())
    keys.push_back(key);
  std::vector<std::int64_t> numbers;
  EXPECT_TRUE(opened->forEachDifferent(keys, [&](const auto& message) { numbers.push_back(message.number); }));
  EXPECT_THAT(numbers, ElementsAre(1, 2, 6));
}

TEST_F(RosbagReaderTest, NeedsTheTablesOfABag)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  bag().run("DROP TABLE topics");
  EXPECT_EQ(path() + ": has no table 'topics': this is no bag", read().fatal);
}

TEST_F(RosbagReaderTest, RefusesAViewInThePlaceOfATable)
{
  bag().topic("/tf", "tf2_msgs/msg/TFMessage");
  bag().run("DROP TABLE messages");
  bag().run(
      "CREATE VIEW messages AS WITH RECURSIVE endless(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM endless) "
      "SELECT i AS id, 1 AS topic_id, i AS timestamp, x'00' AS data FROM endless");
  EXPECT_EQ(path() + ": has no table 'messages': this is no bag", read().fatal);
}

TEST_F(RosbagReaderTest, NeedsTheColumnsOfABag)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  bag().run("ALTER TABLE messages RENAME COLUMN data TO content");
  EXPECT_THAT(read().fatal, HasSubstr("cannot be read as a bag: no such column: data"));
}

TEST_F(RosbagReaderTest, SaysWhereADatabaseWasCut)
{
  for (int i = 0; i < 300; ++i)
    image(0.033 * i, {faceFrame("a", {0., 0., 2.})});
  read();
  const auto size = std::filesystem::file_size(path());
  for (const auto kept : {size - 4096, size / 2, size / 4, std::uintmax_t{4096}, std::uintmax_t{100}})
  {
    std::filesystem::resize_file(path(), kept);
    EXPECT_THAT(contentsOf(path()).fatal, AllOf(HasSubstr("bag.db3: "), HasSubstr("mal"))) << kept << " of " << size;
  }
}

TEST_F(RosbagReaderTest, SaysThatCompressedDataWereCut)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  read();
  std::ifstream file(path(), std::ios::binary);
  const std::string compressed =
      folder.writeCompressed("bag.db3.gz", std::string{std::istreambuf_iterator<char>(file), {}});
  std::filesystem::resize_file(compressed, std::filesystem::file_size(compressed) - 20);
  EXPECT_EQ(compressed + ": the compressed data end too early: the file was cut",
            contentsOf(compressed, "rosbag2").fatal);
}

TEST_F(RosbagReaderTest, ReadsAnEmptyBag)
{
  bag().topic("/tf", "tf2_msgs/msg/TFMessage");
  const auto contents = read();
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.entries, IsEmpty());
}

TEST_F(RosbagReaderTest, SaysThatARateHasNoEffect)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  KV::recordings::ReadingOptions options;
  options.framesPerSecond = 25.;
  EXPECT_THAT(read(options).warnings, Contains(HasSubstr("messages of a bag have times of their own")));
}

TEST_F(RosbagReaderTest, SaysWhatIsMissing)
{
  image(0., {faceFrame("a", {0., 0., 2.})});
  EXPECT_EQ(
      "ROS 2 bag (SQLite): angles from the frames of the faces, counted from the optical axis of the camera, moved by "
      "up to 5 degrees towards where the head rests, not mirrored; "
      "missing: expressions, action units, landmarks, speech",
      read().description.front());
}

TEST(RosbagPath, MayHoldCharactersThatMeanSomethingInAnAddress)
{
  const support::TemporaryFolder folder;
  for (const char* const name : {"a?mode=rwc.db3", "a#b.db3", "100%.db3", "%41.db3"})
  {
    support::BagWriter(folder.path(name), 1700000000000000000)
        .add(0., "/tf", support::tfMessage({support::faceFrame("a", {0., 0., 2.})}));
    const support::Contents contents = support::contentsOf(folder.path(name));
    EXPECT_EQ("", contents.fatal) << name;
    EXPECT_EQ(1U, contents.entries.size()) << name;
  }
}

}  // namespace
