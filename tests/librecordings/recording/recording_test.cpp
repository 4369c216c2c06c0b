#include <skeigiot/recordings/recording.hpp>

#include <gtest/gtest.h>

namespace
{
TEST(Error, NamesFileLineAndField)
{
  EXPECT_STREQ("face.csv:7: pose_Rx: expected a number",
               KV::recordings::Error({"face.csv", 7, "pose_Rx"}, "expected a number").what());
}

TEST(Error, LeavesOutWhatIsNotKnown)
{
  EXPECT_STREQ("face.csv: the file is empty", KV::recordings::Error({"face.csv", 0, {}}, "the file is empty").what());
  EXPECT_STREQ("face.csv:7: is cut", KV::recordings::Error({"face.csv", 7, {}}, "is cut").what());
  EXPECT_STREQ("is cut", KV::recordings::Error({{}, 0, {}}, "is cut").what());
}

TEST(Error, KeepsItsPlace)
{
  const KV::recordings::BadLine error({"face.csv", 7, "pose_Rx"}, "expected a number");
  EXPECT_EQ("face.csv", error.place().file);
  EXPECT_EQ(7u, error.place().line);
  EXPECT_EQ("pose_Rx", error.place().field);
}

}  // namespace
