#include "openface/openfacecolumns.hpp"
#include "librecordings/support.hpp"

namespace
{
using OpenFaceColumns = support::RecordingTest;

TEST(OpenFaceHeader, IsKnownByTwoOfItsNames)
{
  EXPECT_TRUE(KV::recordings::looksLikeOpenFace("frame,face_id,timestamp,confidence,success,AU01_r\n1,0,0,1,1,0\n"));
  EXPECT_TRUE(KV::recordings::looksLikeOpenFace(",frame, gaze_0_x, gaze_0_y\r\n"));
  EXPECT_TRUE(KV::recordings::looksLikeOpenFace("\"frame\",\"AU12_c\""));
  EXPECT_TRUE(KV::recordings::looksLikeOpenFace("\n\nframe;timestamp"));
  EXPECT_FALSE(KV::recordings::looksLikeOpenFace("frame,AU12,Pitch,Roll,Yaw\n"));
  EXPECT_FALSE(KV::recordings::looksLikeOpenFace("t_s,face_id,person_id\n"));
  EXPECT_FALSE(KV::recordings::looksLikeOpenFace("1,0,0.000,0.98,1\nframe,timestamp\n"));
  EXPECT_FALSE(KV::recordings::looksLikeOpenFace(""));
}

TEST_F(OpenFaceColumns, MustHaveAFrameOrATime)
{
  EXPECT_EQ("1: there is no column frame and no column timestamp; expected at least one of them",
            errorOf("confidence,success,AU12_r\n1,1,2\n"));
}

TEST_F(OpenFaceColumns, MustHaveSomeReadingOfTheFace)
{
  EXPECT_EQ(
      "1: there is nothing to read; expected head pose (pose_Rx, pose_Ry, pose_Rz), gaze (gaze_angle_x, "
      "gaze_angle_y; or gaze_0_x, gaze_0_y, gaze_0_z, gaze_1_x, gaze_1_y, gaze_1_z) or action units (such as "
      "AU06_r, AU12_r)",
      errorOf("frame,timestamp,pose_Rx,pose_Ry,gaze_angle_x,gaze_0_x,AU12_c\n1,0,0,0,0,0,1\n"));
}

TEST_F(OpenFaceColumns, OfOpenFace3AreRefused)
{
  EXPECT_EQ(
      "1: AU03_r: OpenFace 2 has no such action unit: this is the layout of OpenFace 3, whose columns AU01_r to "
      "AU08_r hold other action units than their names say; expected a file of OpenFace 2",
      errorOf("frame,timestamp,AU01_r,AU02_r,AU03_r\n1,0,0,0,0\n"));
}

TEST_F(OpenFaceColumns, BetweenOtherDelimitersAreRefused)
{
  EXPECT_EQ("1: the columns are separated by semicolons; expected commas, and numbers with a decimal point",
            errorOf("frame;timestamp;AU12_r\n1;0;2,5\n"));
  EXPECT_EQ("2: the columns are separated by tabs; expected commas, and numbers with a decimal point",
            errorOf("\nframe\ttimestamp\tAU12_r\n1\t0\t2.5\n"));
}

TEST_F(OpenFaceColumns, AreRefusedIfOneIsThereTwice)
{
  EXPECT_EQ("1: timestamp: this column is there twice", errorOf("frame,timestamp,AU12_r,timestamp\n1,0,2,0\n"));
}

TEST_F(OpenFaceColumns, OfOtherProgramsMayBeThereTwice)
{
  EXPECT_EQ("", errorOf("frame,timestamp,AU12_r,note,note\n1,0.5,2,a,b\n"));
}

TEST_F(OpenFaceColumns, AreMissingInAnEmptyFile)
{
  EXPECT_EQ(" the file is empty", errorOf(""));
  EXPECT_EQ(folder.path("recording") + ": the file is empty",
            support::contentsOf(folder.write("recording", "\n\n"), "openface").fatal);
}

TEST_F(OpenFaceColumns, AloneAreNoRecording)
{
  EXPECT_EQ("1: there is no row below the header", errorOf("frame,timestamp,AU12_r\n"));
  EXPECT_EQ("1: there is no row below the header", errorOf("frame,timestamp,AU12_r"));
}

}  // namespace
