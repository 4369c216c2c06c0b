#include "writers.hpp"

#include "typehash.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace
{

using KV::ros2::FoundWriter;
using KV::ros2::ReadingQuality;
using KV::ros2::Writers;

constexpr std::size_t most = 100;

const std::string expressionType = "hri_msgs/msg/Expression";

std::string typeOf(const std::string& topic)
{
  return topic.find("/expression") == std::string::npos ? std::string() : expressionType;
}

FoundWriter writerOf(const std::string& id, bool isReliable = true, bool isTransientLocal = false)
{
  FoundWriter writer;
  writer.id = id;
  writer.topic = "/humans/faces/f/expression";
  writer.type = expressionType;
  writer.hash = KV::ros2::typeHashesOf(expressionType).front();
  writer.isReliable = isReliable;
  writer.isTransientLocal = isTransientLocal;
  return writer;
}

TEST(Writers, AreFollowedOnTopicsThatAreReadOnly)
{
  Writers writers(typeOf, most);
  FoundWriter other = writerOf("1");
  other.topic = "/camera/image";

  EXPECT_EQ("", writers.add(other));
  EXPECT_EQ("/humans/faces/f/expression", writers.add(writerOf("2")));
  EXPECT_FALSE(writers.qualityOf("/camera/image"));
}

TEST(Writers, DetermineTheQualityByTheLeastThatOneOfThemOffers)
{
  Writers writers(typeOf, most);
  writers.add(writerOf("1", true, true));
  EXPECT_EQ((ReadingQuality{true, true}), writers.qualityOf("/humans/faces/f/expression").value());

  writers.add(writerOf("2", true, false));
  EXPECT_EQ((ReadingQuality{true, false}), writers.qualityOf("/humans/faces/f/expression").value());

  writers.add(writerOf("3", false, true));
  EXPECT_EQ((ReadingQuality{false, false}), writers.qualityOf("/humans/faces/f/expression").value());

  EXPECT_EQ("/humans/faces/f/expression", writers.remove("3"));
  EXPECT_EQ((ReadingQuality{true, false}), writers.qualityOf("/humans/faces/f/expression").value());
}

TEST(Writers, LeaveATopicUnreadWhenTheLastIsGone)
{
  Writers writers(typeOf, most);
  writers.add(writerOf("1"));
  writers.remove("1");
  EXPECT_FALSE(writers.qualityOf("/humans/faces/f/expression"));
  EXPECT_EQ("", writers.remove("1"));
}

TEST(Writers, WithAnotherLayoutAreRefusedOnceForEachTopic)
{
  Writers writers(typeOf, most);
  FoundWriter fork = writerOf("1");
  fork.hash = "RIHS01_00";
  writers.add(fork);
  fork.id = "2";
  writers.add(fork);

  EXPECT_FALSE(writers.qualityOf(fork.topic));
  EXPECT_TRUE(writers.isRefused("1"));
  EXPECT_TRUE(writers.isRefused("2"));
  EXPECT_EQ(
      std::vector<std::string>{"a writer of the topic /humans/faces/f/expression is refused: its messages of the type "
                               "hri_msgs/msg/Expression have another layout, with the hash RIHS01_00, expected "
                               "RIHS01_411b88e0604397d44775d8ec6a4bc69398fb0dfbfe864c33a40fa99ee85f1b00"},
      writers.takeNotes());
  EXPECT_TRUE(writers.takeNotes().empty());
  writers.remove("1");
  EXPECT_FALSE(writers.isRefused("1"));
}

TEST(Writers, WithAnotherTypeAreRefusedByName)
{
  Writers writers(typeOf, most);
  FoundWriter other = writerOf("1");
  other.type = "std_msgs/msg/String";
  writers.add(other);

  EXPECT_EQ(
      std::vector<std::string>{
          "a writer of the topic /humans/faces/f/expression is refused: it has messages of the type "
          "std_msgs/msg/String, expected hri_msgs/msg/Expression"},
      writers.takeNotes());
}

TEST(Writers, WithoutAHashAreTakenAsBeforeIron)
{
  Writers writers(typeOf, most);
  FoundWriter humble = writerOf("1");
  humble.hash.clear();
  writers.add(humble);
  EXPECT_FALSE(writers.isRefused("1"));
  EXPECT_TRUE(writers.qualityOf(humble.topic));
}

TEST(Writers, ThatChangeCountAsTheyAreLast)
{
  Writers writers(typeOf, most);
  FoundWriter writer = writerOf("1");
  writer.hash = "RIHS01_00";
  writers.add(writer);
  writers.add(writerOf("1"));
  EXPECT_FALSE(writers.isRefused("1"));
  EXPECT_TRUE(writers.qualityOf(writer.topic));
}

TEST(Writers, OfWhichThereAreTooManyAreLeftOutWithOneNote)
{
  Writers writers(typeOf, 2);
  writers.add(writerOf("1", true));
  writers.add(writerOf("2", true));
  EXPECT_TRUE(writers.takeNotes().empty());
  EXPECT_FALSE(writers.isRefused("3")) << "its messages may come in before it is known";
  writers.add(writerOf("3", false));
  writers.add(writerOf("4", false));

  EXPECT_EQ(std::vector<std::string>{"there are more than 2 writers of topics to read: those that came later are left "
                                     "out"},
            writers.takeNotes());
  EXPECT_TRUE(writers.isRefused("3"));
  EXPECT_FALSE(writers.isRefused("2"));
  EXPECT_EQ((ReadingQuality{true, false}), writers.qualityOf("/humans/faces/f/expression").value());
}

TEST(Writers, ThatWereLeftOutAreTakenIfTheyAreAnnouncedAgainWhenThereIsRoom)
{
  Writers writers(typeOf, 1);
  writers.add(writerOf("1"));
  writers.add(writerOf("2"));
  writers.remove("1");
  EXPECT_FALSE(writers.qualityOf("/humans/faces/f/expression"));
  writers.add(writerOf("2"));
  EXPECT_TRUE(writers.qualityOf("/humans/faces/f/expression"));
  EXPECT_FALSE(writers.isRefused("2"));
}

TEST(Writers, ThatChangeAreNotOneMore)
{
  Writers writers(typeOf, 1);
  writers.add(writerOf("1", true));
  writers.add(writerOf("1", false));
  EXPECT_EQ((ReadingQuality{false, false}), writers.qualityOf("/humans/faces/f/expression").value());
  EXPECT_TRUE(writers.takeNotes().empty());
}

TEST(Writers, ThatComeAndGoAThousandTimesLeaveNothing)
{
  Writers writers(typeOf, 1);
  for (int i = 0; i < 1000; ++i)
  {
    FoundWriter writer = writerOf(std::to_string(i));
    writer.topic = "/humans/faces/f" + std::to_string(i) + "/expression";
    EXPECT_EQ(writer.topic, writers.add(writer));
    EXPECT_TRUE(writers.qualityOf(writer.topic));
    EXPECT_EQ(writer.topic, writers.remove(writer.id));
    EXPECT_FALSE(writers.qualityOf(writer.topic));
  }
  EXPECT_TRUE(writers.takeNotes().empty());
}

}  // namespace
