#include "librecordings/rosbag2/bagwriter.hpp"
#include "librecordings/support.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <map>
#include <string>
#include <vector>

/// Bags with a robot's information on persons that public bags lack: expressions, action units, speech.

namespace
{
using namespace support;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t begin = 1700000000000000000;  // [ns] since 1970
constexpr double framesPerSecond = 10.;

/// The last fields of LiveSpeech, by the version of hri_msgs.
enum class Speech
{
  WithoutLanguage,        // 2.0
  WithLanguage,           // 2.0, later
  WithLanguageAndLocale,  // 2.1 to 2.2.0
  WithLocale              // from 2.2.1
};

std::string speechOf(Speech version, const std::string& incremental, const std::string& final)
{
  CdrWriter writer;
  writer.header("") << incremental << final << 0.75;
  if (version == Speech::WithLanguage || version == Speech::WithLanguageAndLocale)
    writer << "en";
  if (version == Speech::WithLocale || version == Speech::WithLanguageAndLocale)
    writer << "en_GB";
  return writer.bytes();
}

std::string unitsOf(float smile)
{
  CdrWriter units;
  units.header("");
  for (int i = 0; i < 99; ++i)
    units << (i == 12 || i == 6 ? smile : 0.f);
  for (int i = 0; i < 99; ++i)
    units << 0.9f;
  return units.bytes();
}

/// Ten seconds of two persons in front of a robot. Ada talks for the second half of the time, at first by voice alone,
/// and is happy, sent as a word. Ben smiles more and more, sent as action units, and says one sentence.
class TwoPersons : public ::testing::TestWithParam<Speech>
{
protected:
  void write(BagWriter& bag) const
  {
    const std::map<std::string, std::array<std::string, 2>> persons = {{"ada", {"f1", "v1"}}, {"ben", {"f2", "v2"}}};
    for (const auto& [person, ids] : persons)
    {
      bag.add(0., "/humans/persons/" + person + "/face_id", stringMessage(ids[0]));
      bag.add(0., "/humans/persons/" + person + "/voice_id", stringMessage(ids[1]));
    }
    for (int frame = 0; frame < frames; ++frame)
    {
      const double time = 0.01 + frame / framesPerSecond;
      bag.add(time, "/humans/faces/f1/expression", expressionMessage("happy", 0.8f, 0.9f));
      bag.add(time, "/humans/faces/f2/facs", unitsOf(3.f * static_cast<float>(frame) / frames));
      if (frame == frames / 2)
        bag.add(time, "/humans/voices/v1/is_speaking", boolMessage(true));
      if (frame == 20)
        bag.add(time, "/humans/voices/v2/speech", speechOf(GetParam(), "good", ""));
      if (frame == 30)
        bag.add(time, "/humans/voices/v2/speech", speechOf(GetParam(), "", "good morning"));
      bag.add(time + 0.01, "/tf", tfMessage({faceFrame("f1", {-0.3, 0., 1.5}), faceFrame("f2", {0.3, 0., 2.}, 20.)}));
      bag.add(time + 0.011, "/humans/faces/tracked", idsMessage({"f1", "f2"}));
    }
  }

  std::vector<KV::recordings::Step> stepsOf(const std::string& person)
  {
    std::vector<KV::recordings::Step> steps;
    for (const auto& step : contents.entries)
      if (step.personName == person)
        steps.push_back(step);
    return steps;
  }

  /// The frames in which a person begins to speak, or ends.
  std::vector<std::string> speechIn(const std::vector<KV::recordings::Step>& steps) const
  {
    std::vector<std::string> changes;
    for (std::size_t i = 0; i < steps.size(); ++i)
      if (steps[i].observation.speaking)
        changes.push_back((steps[i].observation.speaking->value ? "speaks at " : "ends at ") + std::to_string(i));
    return changes;
  }

  void expectPersons()
  {
    EXPECT_EQ("", contents.fatal);
    EXPECT_THAT(contents.badLines, IsEmpty());
    const auto ada = stepsOf("ada");
    const auto ben = stepsOf("ben");
    ASSERT_EQ(static_cast<std::size_t>(frames), ada.size());
    ASSERT_EQ(static_cast<std::size_t>(frames), ben.size());
    EXPECT_THAT(speechIn(ada), ElementsAre("speaks at 50"));
    EXPECT_THAT(speechIn(ben), ElementsAre("speaks at 20", "ends at 30"));
    for (const auto& step : ada)
    {
      EXPECT_EQ(1.f, step.observation.expressions->value.joy.value);
      EXPECT_EQ(0.9f, step.observation.expressions->value.joy.confidence);
      EXPECT_FALSE(step.observation.smile);
    }
    for (std::size_t i = 1; i < ben.size(); ++i)
      EXPECT_GE(ben[i].observation.smile->value.value, ben[i - 1].observation.smile->value.value) << i;
    EXPECT_EQ(0.f, ben.front().observation.smile->value.value);
    EXPECT_GT(ben.back().observation.smile->value.value, 0.7f);
    EXPECT_GT(ben.back().observation.expressions->value.joy.value, 0.7f);
    EXPECT_NEAR(std::hypot(0.3, 2.), ben.back().observation.distance->value, 1e-5);
  }

  static constexpr int frames = 100;

  TemporaryFolder folder;
  Contents contents;
};

TEST_P(TwoPersons, AreReadFromABagOfSqlite)
{
  {
    BagWriter bag(folder.path("bag.db3"), begin);
    write(bag);
  }
  contents = contentsOf(folder.path("bag.db3"));
  expectPersons();
}

TEST_P(TwoPersons, AreReadFromABagOfMcap)
{
  BagWriter bag(folder.path("bag.db3"), begin);
  write(bag);
  contents = contentsOf(folder.write("bag.mcap", bag.inMcap({"", "zstd", true, 5000})));
  expectPersons();
}

std::string nameOf(const ::testing::TestParamInfo<Speech>& tested)
{
  switch (tested.param)
  {
    case Speech::WithoutLanguage:
      return "HriMsgs20";
    case Speech::WithLanguage:
      return "HriMsgs20WithLanguage";
    case Speech::WithLanguageAndLocale:
      return "HriMsgs21";
    default:
      return "HriMsgs23";
  }
}

INSTANTIATE_TEST_SUITE_P(WithTheSpeechOf, TwoPersons,
                         ::testing::Values(Speech::WithoutLanguage, Speech::WithLanguage, Speech::WithLanguageAndLocale,
                                           Speech::WithLocale),
                         nameOf);

/// Ten seconds in which Ada is seen, at first as somebody unknown, and later under another face; Ben behind the robot
/// is heard in the first half of the time, and a voice that belongs to nobody is heard, too.
void writeUnknownAndUnseen(BagWriter& bag)
{
  bag.add(0., "/humans/persons/p1/anonymous", boolMessage(true));
  bag.add(0., "/humans/persons/p1/face_id", stringMessage("f1"));
  bag.add(0., "/humans/persons/ben/voice_id", stringMessage("v2"));
  for (int frame = 0; frame < 100; ++frame)
  {
    const double time = 0.01 + frame / framesPerSecond;
    const std::string face = frame < 50 ? "f1" : "f2";
    if (frame == 30)
      bag.add(time, "/humans/persons/p1/alias", stringMessage("ada"));
    if (frame == 50)
      bag.add(time, "/humans/persons/ada/face_id", stringMessage("f2"));
    if (frame % 5 == 0 && frame < 50)
      bag.add(time + 0.001, "/humans/voices/v2/is_speaking", boolMessage(frame < 40));
    if (frame == 60)
      bag.add(time + 0.001, "/humans/voices/v3/is_speaking", boolMessage(true));
    bag.add(time + 0.01, "/tf", tfMessage({faceFrame(face, {0., 0., 1.5})}));
    bag.add(time + 0.011, "/humans/faces/tracked", idsMessage({face}));
  }
}

void expectUnknownAndUnseen(const Contents& contents)
{
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.badLines, IsEmpty());
  int ada = 0;
  std::vector<bool> spoken;
  int missing = 0;
  boost::optional<std::int32_t> numberOfAda;
  KV::recordings::Step last;
  for (const KV::recordings::Step& step : contents.entries)
  {
    EXPECT_GE(step.time, last.time);
    last = step;
    if (step.personName == "ada")
    {
      ++ada;
      EXPECT_TRUE(step.observation.headPosture);
      EXPECT_EQ(numberOfAda.value_or(*step.person), *step.person);
      numberOfAda = step.person;
      continue;
    }
    EXPECT_EQ("ben", step.personName);
    EXPECT_FALSE(step.observation.faceDetected);
    if (step.seen)
      spoken.push_back(step.observation.speaking->value);
    else
      ++missing;
  }
  EXPECT_EQ(100, ada);
  EXPECT_EQ((std::vector<bool>{true, true, true, true, true, true, true, true, false, false}), spoken);
  EXPECT_EQ(45, missing);  // from a second after the last message on
}

TEST(PersonsOfABag, WhoAreUnknownOrUnseenAreReadFromSqlite)
{
  const TemporaryFolder folder;
  {
    BagWriter bag(folder.path("bag.db3"), begin);
    writeUnknownAndUnseen(bag);
  }
  expectUnknownAndUnseen(contentsOf(folder.path("bag.db3")));
}

TEST(PersonsOfABag, WhoAreUnknownOrUnseenAreReadFromMcap)
{
  TemporaryFolder folder;
  BagWriter bag(folder.path("bag.db3"), begin);
  writeUnknownAndUnseen(bag);
  expectUnknownAndUnseen(contentsOf(folder.write("bag.mcap", bag.inMcap({"", "lz4", true, 5000}))));
}

}  // namespace
