#include "names.hpp"

#include <gtest/gtest.h>

namespace
{

TEST(NamesOfTopics, HaveAPrefixInDds)
{
  EXPECT_EQ("rt/humans/faces/tracked", KV::ros2::ddsTopicOf("/humans/faces/tracked"));
  EXPECT_EQ("/humans/faces/tracked", KV::ros2::rosTopicOfDds("rt/humans/faces/tracked").value());
}

TEST(NamesOfTopics, AreNotMadeOfWhatIsNoTopicOfRos)
{
  EXPECT_FALSE(KV::ros2::rosTopicOfDds("ros_discovery_info"));
  EXPECT_FALSE(KV::ros2::rosTopicOfDds("rq/service/request"));
  EXPECT_FALSE(KV::ros2::rosTopicOfDds("rt"));
  EXPECT_FALSE(KV::ros2::rosTopicOfDds(""));
}

TEST(NamesOfTypes, AreTheSameThereAndBack)
{
  EXPECT_EQ("hri_msgs::msg::dds_::EngagementLevel_", KV::ros2::ddsTypeOf("hri_msgs/msg/EngagementLevel"));
  EXPECT_EQ("hri_msgs/msg/EngagementLevel", KV::ros2::rosTypeOfDds("hri_msgs::msg::dds_::EngagementLevel_"));
}

TEST(NamesOfTypes, StayWhatTheyAreIfTheyAreNotOfRos)
{
  EXPECT_EQ("Module::Struct", KV::ros2::rosTypeOfDds("Module::Struct"));
  EXPECT_EQ("Module::dds_::Struct", KV::ros2::rosTypeOfDds("Module::dds_::Struct"))
      << "there is no underscore at its end";
  EXPECT_EQ("", KV::ros2::rosTypeOfDds(""));
}

}  // namespace
