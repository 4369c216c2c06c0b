#include "rosbridge/listedtopics.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace
{

using KV::ros2::ListedTopics;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t second = 1'000'000'000;

bool isPlain(const std::string& topic)
{
  return topic.find(' ') == std::string::npos;
}

ListedTopics topicsOf(std::size_t most = 100)
{
  return ListedTopics({"/tf", "/faces/tracked", "/faces/*/facs", "/faces/*/landmarks", "/persons/*/alias"},
                      {"/faces/tracked", "/persons/tracked", "/persons/known"}, isPlain, most);
}

TEST(ListedTopics, AreFirstThoseWithoutAnIdAndTheLists)
{
  EXPECT_THAT(topicsOf().all(), UnorderedElementsAre("/tf", "/faces/tracked", "/persons/tracked", "/persons/known"));
}

TEST(ListedTopics, AreReadAsSoonAsAListHasTheirId)
{
  ListedTopics topics = topicsOf();
  topics.take("/faces/tracked", {"f1"});
  EXPECT_THAT(topics.follow(0).begun, ElementsAre("/faces/f1/facs", "/faces/f1/landmarks"));
  EXPECT_THAT(topics.follow(0).begun, IsEmpty());
}

TEST(ListedTopics, AreReadUntilNoListHadTheirIdForTenSeconds)
{
  ListedTopics topics = topicsOf();
  topics.take("/persons/tracked", {"ada"});
  topics.take("/persons/known", {"ada"});
  topics.follow(0);
  topics.take("/persons/tracked", {});
  EXPECT_THAT(topics.follow(100 * second).ended, IsEmpty()) << "still known";
  topics.take("/persons/known", {});
  EXPECT_THAT(topics.follow(110 * second - 1).ended, IsEmpty());
  EXPECT_THAT(topics.follow(110 * second).ended, ElementsAre("/persons/ada/alias"));
  EXPECT_THAT(topics.all(), UnorderedElementsAre("/tf", "/faces/tracked", "/persons/tracked", "/persons/known"));
}

TEST(ListedTopics, AreLeftOutForIdsThatNoTopicCanHave)
{
  ListedTopics topics = topicsOf();
  topics.take("/persons/tracked", {"a b", "ben"});
  EXPECT_THAT(topics.follow(0).begun, ElementsAre("/persons/ben/alias"));
}

TEST(ListedTopics, OfTooManyAreThoseThatCameFirstUntilThereIsRoom)
{
  ListedTopics topics = topicsOf(3);
  topics.take("/faces/tracked", {"f1"});
  topics.follow(0);
  EXPECT_FALSE(topics.areTooMany());
  topics.take("/faces/tracked", {"f0", "f1"});
  EXPECT_THAT(topics.follow(second).begun, IsEmpty());
  EXPECT_TRUE(topics.areTooMany());

  topics.take("/faces/tracked", {"f0"});
  const ListedTopics::Changes changes = topics.follow(11 * second);
  EXPECT_THAT(changes.ended, ElementsAre("/faces/f1/facs", "/faces/f1/landmarks"));
  EXPECT_THAT(changes.begun, ElementsAre("/faces/f0/facs", "/faces/f0/landmarks"));
}

TEST(ListedTopics, OfIdsThatComeAndGoAThousandTimesLeaveNothing)
{
  ListedTopics topics = topicsOf();
  std::size_t begun = 0;
  std::size_t ended = 0;
  for (int i = 0; i < 1000; ++i)
  {
    topics.take("/faces/tracked", {"f" + std::to_string(i)});
    const ListedTopics::Changes changes = topics.follow(i * 10 * second);
    begun += changes.begun.size();
    ended += changes.ended.size();
    EXPECT_LE(topics.all().size(), 8U);
  }
  EXPECT_EQ(2000U, begun);
  EXPECT_EQ(1998U, ended);
}

}  // namespace
