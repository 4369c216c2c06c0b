#include "librecordings/support.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <gmock/gmock.h>

#include <string>

namespace
{
using support::Contents;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using LibreFaceReader = support::RecordingTest;

const std::string header =
    ",frame_idx,frame_time_in_ms,pitch,yaw,roll,facial_expression,au_6,au_12,au_6_intensity,au_12_intensity\n";

TEST_F(LibreFaceReader, ReadsIntensitiesOfActionUnits)
{
  KV::recordings::ReadingOptions options;
  options.rest.kind = KV::recordings::Rest::Kind::None;
  const Contents contents = read(header + "0,0,0.0,1,2,3,Neutral,0,0,0,0\n1,1,40.5,1,2,3,Happiness,1,1,3,3\n", options);
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.badLines, IsEmpty());
  ASSERT_THAT(contents.entries, SizeIs(2));
  EXPECT_DOUBLE_EQ(0., support::secondsOf(contents.entries[0]));
  EXPECT_NEAR(0.0405, support::secondsOf(contents.entries[1]), 1e-6);
  ASSERT_TRUE(contents.entries[1].observation.smile);
  EXPECT_FLOAT_EQ(0.f, contents.entries[0].observation.smile->value.value);
  EXPECT_GT(contents.entries[1].observation.smile->value.value, 0.5f);
  EXPECT_FALSE(contents.entries[1].observation.headPosture) << "the signs of the angles are not documented";
  EXPECT_FALSE(contents.entries[1].observation.gaze);
}

TEST_F(LibreFaceReader, GivesTheReadingsOfOpenFaceForTheSameIntensities)
{
  const Contents libreFace = read("frame_idx,frame_time_in_ms,au_6_intensity,au_12_intensity\n0,0,1,2\n1,40,2,4\n");
  const Contents openFace = read("frame,timestamp,AU06_r,AU12_r\n0,0,1,2\n1,0.04,2,4\n");
  ASSERT_THAT(libreFace.entries, SizeIs(2));
  ASSERT_THAT(openFace.entries, SizeIs(2));
  for (std::size_t i = 0; i < 2; ++i)
  {
    EXPECT_EQ(openFace.entries[i].observation.smile->value.value, libreFace.entries[i].observation.smile->value.value);
    EXPECT_EQ(openFace.entries[i].observation.expressions->value.joy.value,
              libreFace.entries[i].observation.expressions->value.joy.value);
  }
}

TEST_F(LibreFaceReader, TakesARowWithoutIntensitiesForAFrameWithoutAFace)
{
  const Contents contents =
      read(header + "0,0,0,1,2,3,Neutral,0,0,1,1\n1,1,40,,,,,,,,\n2,2,80,1,2,3,Neutral,0,0,1,1\n");
  EXPECT_THAT(contents.badLines, IsEmpty());
  ASSERT_THAT(contents.entries, SizeIs(3));
  EXPECT_TRUE(contents.entries[0].seen);
  EXPECT_FALSE(contents.entries[1].seen);
  EXPECT_TRUE(contents.entries[2].seen);
}

TEST_F(LibreFaceReader, SaysHowItReads)
{
  const Contents contents = read(header + "0,0,0,1,2,3,Neutral,0,0,1,1\n");
  ASSERT_THAT(contents.description, SizeIs(2));
  EXPECT_THAT(contents.description[0],
              HasSubstr("LibreFace: action units of 3, by their intensities; head angles are not "
                        "read, since their signs are not documented"));
  EXPECT_THAT(contents.description[1],
              HasSubstr("all rows are person 0, confidence 1, since there is no such column; missing: head pose, gaze, "
                        "distance, landmarks"));
}

TEST_F(LibreFaceReader, CountsFramesAndPersonsWhereColumnsSaySo)
{
  KV::recordings::ReadingOptions options;
  options.personColumn = "who";
  const Contents contents =
      read("frame_time_in_ms,who,au_6_intensity,au_12_intensity\n0,anna,1,1\n0,ben,1,1\n40,anna,1,1\n", options);
  EXPECT_THAT(contents.badLines, IsEmpty());
  ASSERT_FALSE(contents.entries.empty());
  EXPECT_EQ("anna", contents.entries[0].personName);
}

TEST_F(LibreFaceReader, SaysWhatIsWrongAndWhere)
{
  EXPECT_EQ("2: au_6_intensity: expected a number, found 'x'",
            errorOf("frame_idx,au_6_intensity,au_12_intensity\n0,x,1\n"));
  EXPECT_EQ("2: 2 fields, expected 3 as in the header", errorOf("frame_idx,au_6_intensity,au_12_intensity\n0,1\n"));
  EXPECT_EQ(
      "1: there is nothing to read; expected intensities of action units (such as au_6_intensity, "
      "au_12_intensity)",
      errorOf("frame_idx,au_3_intensity,au_8_intensity\n0,1,1\n"));
}

}  // namespace
