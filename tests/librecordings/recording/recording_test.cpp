#include "recording.hpp"

#include <gtest/gtest.h>

namespace
{
TEST(RecordingError, NamesFileLineAndField)
{
  EXPECT_STREQ("face.csv:7: pose_Rx: expected a number",
               tools::RecordingError({"face.csv", 7, "pose_Rx"}, "expected a number").what());
}

TEST(RecordingError, LeavesOutWhatIsNotKnown)
{
  EXPECT_STREQ("face.csv: the file is empty", tools::RecordingError({"face.csv", 0, {}}, "the file is empty").what());
  EXPECT_STREQ("face.csv:7: is cut", tools::RecordingError({"face.csv", 7, {}}, "is cut").what());
  EXPECT_STREQ("is cut", tools::RecordingError({{}, 0, {}}, "is cut").what());
}

TEST(RecordingError, KeepsItsPlace)
{
  const tools::BadLine error({"face.csv", 7, "pose_Rx"}, "expected a number");
  EXPECT_EQ("face.csv", error.place().file);
  EXPECT_EQ(7u, error.place().line);
  EXPECT_EQ("pose_Rx", error.place().field);
}

}  // namespace
