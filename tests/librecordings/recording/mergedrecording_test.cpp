#include "librecordings/bits.hpp"
#include "librecordings/support.hpp"

#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/recordings/mergedrecording.hpp>

#include <gmock/gmock.h>

#include <sstream>

namespace
{
using support::secondsOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// A file of a session, written by the test.
struct File
{
  std::string name;
  std::string text;
  double offset = 0.;
};

class MergedRecordings : public support::RecordingTest
{
protected:
  using RecordingTest::read;

  std::unique_ptr<KV::recordings::MergedRecording> open(const std::vector<File>& files) const
  {
    std::vector<KV::recordings::RecordingInput> inputs;
    for (const File& file : files)
    {
      auto reader = KV::recordings::openRecording(folder.write(file.name, file.text), "", {});
      const auto offset = ko::SystemClock::duration(static_cast<std::int64_t>(file.offset * 1e9));
      inputs.push_back({file.name, std::move(reader), offset});
    }
    return std::make_unique<KV::recordings::MergedRecording>(std::move(inputs));
  }

  support::Contents read(const std::vector<File>& files) const
  {
    const auto recording = open(files);
    return support::contentsOf(*recording);
  }

  /// Returns "<seconds> person <number>: <readings>" of every step.
  static std::vector<std::string> linesOf(const support::Contents& contents)
  {
    std::vector<std::string> steps;
    for (const KV::recordings::Step& entry : contents.entries)
    {
      std::ostringstream step;
      step << secondsOf(entry);
      if (entry.person)
        step << " person " << *entry.person << (entry.seen ? "" : " unseen");
      const auto& o = entry.observation;
      step << (o.smile ? " smile" : "") << (o.asrEmotion ? " speech" : "") << (o.touchEmotion ? " touch" : "");
      for (const auto& scope : entry.scopeStarts)
        step << " start " << scope.name;
      steps.push_back(step.str());
    }
    return steps;
  }

  const std::string header = "time,person,reading,value\n";
};

TEST_F(MergedRecordings, TakeTheSameNameForTheSamePerson)
{
  const auto contents = read({{"a", header + "0,anna,smile,1\n1,ben,smile,1\n"},
                              {"b", header + "10,ben,asrEmotion,1\n11,zoe,asrEmotion,1\n12,anna,asrEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("0 person 0 smile", "1 person 1 smile", "10 person 1 speech",
                                             "11 person 2 speech", "12 person 0 speech"));
  EXPECT_EQ("ben", contents.entries.at(2).personName);
  EXPECT_EQ("zoe", contents.entries.at(3).personName);
  EXPECT_THAT(contents.warnings, IsEmpty());
}

TEST_F(MergedRecordings, JoinNamesAndNumbersByTheNumber)
{
  const auto contents = read({{"a", header + "0,0,smile,1\n"}, {"b", header + "0,anna,asrEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("0 person 0 smile speech"));
  EXPECT_EQ("anna", contents.entries.at(0).personName);
}

TEST_F(MergedRecordings, ReportTheStepsInTheOrderOfTheirTimes)
{
  const auto contents = read({{"a", header + "0,1,smile,1\n10,1,smile,1\n"},
                              {"b", header + "5,2,asrEmotion,1\n15,2,asrEmotion,1\n"},
                              {"c", header + "7,3,touchEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("0 person 1 smile", "5 person 2 speech", "7 person 3 touch",
                                             "10 person 1 smile", "15 person 2 speech"));
}

TEST_F(MergedRecordings, ReportStepsOfOneTimeInTheOrderOfTheInputs)
{
  const auto contents = read(
      {{"a", header + "1,9,smile,1\n"}, {"b", header + "1,5,asrEmotion,1\n"}, {"c", header + "1,1,touchEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 9 smile", "1 person 5 speech", "1 person 1 touch"));
}

TEST_F(MergedRecordings, UpdateAPersonOnceForAllReadingsOfOneTime)
{
  const auto contents = read(
      {{"a", header + "1,1,smile,1\n"}, {"b", header + "1,1,asrEmotion,1\n"}, {"c", header + "1,1,touchEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 1 smile speech touch"));
}

TEST_F(MergedRecordings, UpdateAPersonOnceInEachCycleOfTheFirstInput)
{
  const auto contents = read({{"a", header + "1,1,smile,1\n1.125,1,smile,1\n1.25,1,smile,1\n"},
                              {"b", header + "1.0625,1,asrEmotion,1\n1.1875,1,asrEmotion,1\n"}});
  ASSERT_THAT(linesOf(contents),
              ElementsAre("1 person 1 smile", "1.125 person 1 smile speech", "1.25 person 1 smile speech"));
  const auto& joined = contents.entries[1];
  EXPECT_EQ(joined.time, joined.observation.smile.value().time);
  EXPECT_EQ(support::recordingEpoch + 1062500000, support::nanosecondsOf(joined.observation.asrEmotion.value().time));
}

TEST_F(MergedRecordings, DoNotWaitForACycleThatIsTooFarAway)
{
  const auto contents = read({{"a", header + "1,1,smile,1\n2,1,smile,1\n"}, {"b", header + "1.5,1,asrEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 1 smile", "1.5 person 1 speech", "2 person 1 smile"));
}

TEST_F(MergedRecordings, WaitForTheSamePersonOnly)
{
  const auto contents = read({{"a", header + "1.125,2,smile,1\n"}, {"b", header + "1,1,asrEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 1 speech", "1.125 person 2 smile"));
}

TEST_F(MergedRecordings, KeepReadingsOfOneKindInStepsOfTheirOwn)
{
  const auto contents = read({{"a", header + "1.125,1,smile,1\n"}, {"b", header + "1,1,smile,0\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 1 smile", "1.125 person 1 smile"));
  EXPECT_FLOAT_EQ(0.f, contents.entries[0].observation.smile.value().value.value);
}

TEST_F(MergedRecordings, RefuseTheSameReadingOfAPersonAtTheSameTime)
{
  const auto contents = read({{"a", header + "0,1,smile,1\n1,1,smile,1\n"}, {"b", header + "1,1,smile,0\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("0 person 1 smile"));
  EXPECT_EQ(
      "b: smile: person 1 has this reading at the same time in a: these are recordings of two persons, or of two "
      "sessions",
      contents.fatal);
}

TEST_F(MergedRecordings, RefuseTheSameReadingOfAnyTwoInputs)
{
  const auto contents = read(
      {{"a", header + "1,1,smile,1\n"}, {"b", header + "1,1,asrEmotion,1\n"}, {"c", header + "1,1,asrEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), IsEmpty());
  EXPECT_THAT(contents.fatal, StartsWith("c: asrEmotion: person 1 has this reading at the same time in b: "));
}

TEST_F(MergedRecordings, NameSessionsOfTheirOwnAsTheRemedyForTheSameReading)
{
  const auto recording = open({{"a", header + "1,1,smile,1\n"}, {"b", header + "1,1,smile,0\n"}});
  try
  {
    recording->next();
    FAIL() << "expected an error";
  }
  catch (const KV::recordings::Error& error)
  {
    ASSERT_TRUE(error.remedy());
    EXPECT_EQ("", error.remedy()->input);
  }
}

TEST_F(MergedRecordings, TakeTheSameReadingOfTwoPersons)
{
  const auto contents = read({{"a", header + "1,1,smile,1\n"}, {"b", header + "1,2,smile,0\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 1 smile", "1 person 2 smile"));
}

TEST_F(MergedRecordings, LetTheLastOfSeveralReadingsOfOneKindWait)
{
  const auto contents =
      read({{"a", header + "1.125,1,smile,1\n"}, {"b", header + "1,1,asrEmotion,1\n1.0625,1,asrEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 1 speech", "1.125 person 1 smile speech"));
}

TEST_F(MergedRecordings, TakeForSeenWhoIsObservedByOneInput)
{
  const auto contents = read({{"a", header + "1,1,seen,false\n"}, {"b", header + "1,1,asrEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 1 speech"));
}

TEST_F(MergedRecordings, DoNotDelayScopes)
{
  const auto contents = read(
      {{"a", header + "1.125,1,smile,1\n"}, {"b", "time,person,reading,value\n1,,start,talk\n1,1,asrEmotion,1\n"}});
  EXPECT_THAT(linesOf(contents), ElementsAre("1 person 1 speech start talk", "1.125 person 1 smile"));
}

TEST_F(MergedRecordings, MoveAnInputByItsOffset)
{
  const auto contents = read({{"a", header + "1,1,smile,1\n"}, {"b", header + "0.75,1,asrEmotion,1\n", 0.25}});
  ASSERT_THAT(linesOf(contents), ElementsAre("1 person 1 smile speech"));
  EXPECT_EQ(contents.entries[0].time, contents.entries[0].observation.asrEmotion.value().time);
  EXPECT_THAT(contents.description[3], StartsWith("b (moved by 0.250 s): Tidy CSV: "));
}

TEST_F(MergedRecordings, SayHowEachInputIsRead)
{
  const auto contents = read({{"a", header + "1,1,smile,1\n"}, {"b", "{\"time\":1577836800000000000}\n"}});
  ASSERT_EQ(5u, contents.description.size());
  EXPECT_EQ("One session of 2 inputs, merged by time; readings of the others join the next step of the first",
            contents.description[0]);
  EXPECT_THAT(contents.description[1], StartsWith("a: Tidy CSV: "));
  EXPECT_THAT(contents.description[4], StartsWith("b: times in nanoseconds since 1970"));
}

TEST_F(MergedRecordings, GiveTheSameFromTheOwnFormat)
{
  const auto contents = read({{"a", header + "1,1,smile,1\n1.1,2,smile,0.3\n"},
                              {"b", header + "0.9,1,asrEmotion,1\n1.3,1,asrEmotion,1\n", 0.013}});
  std::ostringstream file;
  KV::recordings::JsonLinesWriter writer(file);
  for (const auto& entry : contents.entries)
    writer.write(entry);
  const auto again = RecordingTest::read(file.str());
  ASSERT_EQ(contents.entries.size(), again.entries.size());
  for (std::size_t i = 0; i < again.entries.size(); ++i)
    EXPECT_EQ(support::Bits::of(contents.entries[i]), support::Bits::of(again.entries[i]));
}

TEST_F(MergedRecordings, AreDatedIfAllInputsAreOrWereMovedToADate)
{
  const std::string fromZero = header + "0,1,smile,1\n";
  const std::string dated = header + "1700000000,1,asrEmotion,1\n";
  const std::string atTheBeginningOf2020 = "{\"time\":1577836800000000000}\n";
  EXPECT_TRUE(read({{"a", dated}, {"b", dated}}).isDated);
  EXPECT_TRUE(read({{"a", fromZero, 1700000000. - 1577836800.}, {"b", dated}}).isDated);
  EXPECT_FALSE(read({{"a", fromZero}, {"b", fromZero, 0.25}}).isDated);
  EXPECT_FALSE(read({{"a", fromZero}, {"b", atTheBeginningOf2020}}).isDated);
}

TEST_F(MergedRecordings, SetNeitherZeroAgainstADate)
{
  const auto contents = read({{"a", header + "0,1,smile,1\n"}, {"b", header + "1700000000,1,asrEmotion,1\n"}});
  EXPECT_THAT(contents.entries, IsEmpty());
  EXPECT_EQ(
      "b: begins at 2023-11-14 22:13:20 UTC, but a at 2020-01-01 00:00:00 UTC: one counts from its start (which is "
      "placed at 2020), the other since 1970, or they are no inputs of one session",
      contents.fatal);
}

TEST_F(MergedRecordings, TakeAZeroAndADateTogetherWithTheOffsetBetweenThem)
{
  const auto contents =
      read({{"a", header + "0,1,smile,1\n", 122163200.}, {"b", header + "1700000000,1,asrEmotion,1\n"}});
  EXPECT_EQ("", contents.fatal);
  EXPECT_EQ(1u, contents.entries.size());
}

TEST_F(MergedRecordings, RefuseAnOffsetToBefore1970)
{
  const auto contents = read({{"a", header + "0,1,smile,1\n"}, {"b", header + "0,1,asrEmotion,1\n", -1.6e9}});
  EXPECT_EQ("b: the offset moves it to before 1970", contents.fatal);
}

TEST_F(MergedRecordings, ReportAnErrorAtThePlaceOfTheInput)
{
  const auto recording = open({{"a", header + "0,1,smile,1\n1,1,smile,1\n5,1,smile,1\n"},
                               {"b", header + "0.5,2,asrEmotion,1\n2,2,asrEmotion,loud\n3,2,asrEmotion,1\n"}});
  EXPECT_DOUBLE_EQ(0., secondsOf(*recording->next()));
  EXPECT_DOUBLE_EQ(0.5, secondsOf(*recording->next()));
  try
  {
    recording->next();
    FAIL() << "expected an error";
  }
  catch (const KV::recordings::BadLine& error)
  {
    EXPECT_THAT(error.what(), StartsWith(folder.path("b") + ":3: value: expected a number"));
  }
  const auto rest = support::contentsOf(*recording);
  EXPECT_THAT(linesOf(rest), ElementsAre("1 person 1 smile", "3 person 2 speech", "5 person 1 smile"));
}

TEST_F(MergedRecordings, WarnIfTheyHaveNoPersonInCommon)
{
  const auto contents = read({{"a", header + "0,0,smile,1\n"}, {"b", header + "0,1,asrEmotion,1\n"}});
  EXPECT_THAT(contents.warnings, ElementsAre("b has person 1, a has person 0, and no person is in both: give the same "
                                             "person the same number"));
  EXPECT_THAT(read({{"a", header + "0,0,smile,1\n"}, {"b", header + "0,0,asrEmotion,1\n"}}).warnings, IsEmpty());
}

TEST_F(MergedRecordings, NameTheInputOfAWarning)
{
  EXPECT_THAT(read({{"a", header + "0,0,smile,1\n"}, {"b", "time,reading,value,mood\n0,asrEmotion,1,x\n"}}).warnings,
              ElementsAre("b: columns that are not read: mood"));
}

TEST_F(MergedRecordings, AreReadAsFarAsTheMeanOfTheirInputs)
{
  const auto recording =
      open({{"a", header + "0,1,smile,1\n1,1,smile,1\n"}, {"b", header + "0.5,1,asrEmotion,1\n5,1,asrEmotion,1\n"}});
  double last = recording->progress();
  while (recording->next())
  {
    EXPECT_GE(recording->progress(), last);
    EXPECT_LE(recording->progress(), 1.);
    last = recording->progress();
  }
  EXPECT_EQ(1., recording->progress());
}

TEST_F(MergedRecordings, NameTheInputWhoseFaceWasLearned)
{
  std::string calm = "frame,face_id,timestamp,confidence,success,AU04_r,AU12_r\n";
  for (int i = 0; i < 900; ++i)
    calm += std::to_string(i) + ",0," + std::to_string(i * 0.1) + ",0.95,1," + (i % 7 == 0 ? "1.1" : "1") + ",0.1\n";
  const auto recording = open({{"face", calm}, {"voice", header + "0,0,asrEmotion,1\n"}});
  while (recording->next())
  {}
  const std::vector<std::string> learned = recording->describeLearned();
  ASSERT_FALSE(learned.empty());
  for (const std::string& line : learned)
    EXPECT_THAT(line, StartsWith("face: "));
}

}  // namespace
