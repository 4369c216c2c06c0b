#include "librecordings/rosbag2/bagwriter.hpp"
#include "librecordings/rosbag2/mcapwriter.hpp"
#include "librecordings/support.hpp"
#include "rosbag2/bagfolder.hpp"
#include "rosbag2/openbagfile.hpp"
#include "support/thrown.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

/// Files of MCAP: those of other people, the order of messages, and how far files are read. rosbagreader_test.cpp reads
/// each of its bags as MCAP too.

namespace
{
using namespace support;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr std::int64_t begin = 1700000000000000000;  // [ns] since 1970
constexpr std::int64_t second = 1000000000;          // [ns]

const std::string transforms = "tf2_msgs/msg/TFMessage";

/// The content of a file by other people: its topics, and the number of all their messages.
struct OtherFile
{
  std::string name;
  std::size_t topics;
  std::size_t messages;
  std::string topic;  ///< one of them
  std::string type;   ///< of its messages
};

class OtherMcap : public ::testing::TestWithParam<OtherFile>
{};

std::string pathOf(const std::string& name)
{
  return std::string(SKEIGIOT_REAL_RECORDINGS) + "/mcap/" + name;
}

// Their contents were read by another library, @mcap/core of npm.
const std::vector<OtherFile> others = {
    {"bag_with_topics_and_service_events", 5, 10, "/test_topic2", "test_msgs/msg/Strings"},
    {"cdr_test_0", 2, 7, "/test_topic", "test_msgs/msg/BasicTypes"},
    {"multiple_files_0", 1, 1324, "/chatter", "std_msgs/msg/String"},
    {"multiple_files_1", 1, 1324, "/chatter", "std_msgs/msg/String"},
    {"multiple_files_2", 1, 529, "/chatter", "std_msgs/msg/String"},
    {"only_services", 1, 12, "/add_two_ints/_service_event", "example_interfaces/srv/AddTwoInts_Event"},
    {"only_topics", 3, 7, "/rosout", "rcl_interfaces/msg/Log"},
    {"rewriter_a_0", 2, 150, "a_empty", "test_msgs/msg/Empty"},
    {"rewriter_b_0", 2, 75, "c_strings", "test_msgs/msg/Strings"},
    {"talker", 3, 20, "/rosout", "rcl_interfaces/msg/Log"},
    {"test_bag_for_seek_0", 1, 5, "topic1", "test_msgs/BasicTypes"},
    {"topics_and_services", 5, 13, "/rosout", "rcl_interfaces/msg/Log"},
    {"wbag_0", 8, 1246, "AAA", "std_msgs/msg/String"},
    {"wbag_1", 8, 1240, "HHH", "std_msgs/msg/String"},
    {"wbag_2", 8, 1240, "HHH", "std_msgs/msg/String"},
    {"wbag_3", 8, 1240, "HHH", "std_msgs/msg/String"},
    {"wbag_4", 8, 1108, "HHH", "std_msgs/msg/String"},
    {"wrong_rmw_test_0", 2, 7, "/test_topic", "test_msgs/msg/BasicTypes"}};

TEST_P(OtherMcap, IsReadToItsEndInTheOrderOfTimes)
{
  const std::string path = pathOf(GetParam().name + ".mcap");
  if (!std::filesystem::exists(path))
    GTEST_SKIP() << path << " is not at hand";
  const auto bag = KV::recordings::openBagFile(path);
  EXPECT_EQ("", bag->lack());
  EXPECT_EQ(GetParam().topics, bag->topics().size());
  std::vector<std::int64_t> all;
  std::map<std::string, std::string> types;
  for (const auto& [key, topic] : bag->topics())
  {
    all.push_back(key);
    types[topic.name] = topic.type;
    EXPECT_EQ(GetParam().name == "wrong_rmw_test_0" ? "wrong_format" : "cdr", topic.format);
  }
  EXPECT_EQ(GetParam().type, types[GetParam().topic]);

  const auto messages = bag->messagesOf(all);
  KV::recordings::BagMessage message;
  std::set<std::int64_t> numbers;
  std::int64_t before = 0;
  while (messages->next(message))
  {
    EXPECT_GE(message.time, before);
    before = message.time;
    numbers.insert(message.number);
    EXPECT_GE(message.data.size(), 4u) << "CDR has as many bytes in front of the first field";
  }
  EXPECT_EQ(GetParam().messages, numbers.size());
}

TEST_P(OtherMcap, IsRefusedForItsTopics)
{
  const std::string path = pathOf(GetParam().name + ".mcap");
  if (!std::filesystem::exists(path))
    GTEST_SKIP() << path << " is not at hand";
  EXPECT_THAT(
      contentsOf(path).fatal,
      StartsWith(path + ": has no topic that is read: expected /tf or topics of ROS4HRI below /humans, found '"));
}

INSTANTIATE_TEST_SUITE_P(OfRosbag2, OtherMcap, ::testing::ValuesIn(others),
                         [](const auto& tested) { return tested.param.name; });

TEST(OtherMcapFiles, AreAllListed)
{
  if (!std::filesystem::exists(pathOf("")))
    GTEST_SKIP() << pathOf("") << " is not at hand";
  std::set<std::string> listed;
  for (const OtherFile& file : others)
    listed.insert(file.name + ".mcap");
  std::set<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(pathOf("")))
    found.insert(entry.path().filename().string());
  EXPECT_EQ(listed, found);
}

class Mcap : public ::testing::Test
{
protected:
  /// The message about a face at so many metres, to identify the message.
  static std::string face(double distance) { return tfMessage({faceFrame("a", {0., 0., distance})}); }

  /// A file with the topic /tf, to be completed.
  static std::string beginning()
  {
    return std::string(mcapMagic) + mcapRecord(1, mcapText("ros2") + mcapText("a test")) + mcapSchema(1, transforms) +
           mcapChannel(1, 1, "/tf");
  }

  static std::string tf(double seconds)
  {
    return mcapMessage(1, begin + static_cast<std::int64_t>(seconds * 1e9), face(seconds + 1.));
  }

  Contents read(const std::string& bytes, const std::string& name = "bag.mcap")
  {
    return contentsOf(folder.write(name, bytes));
  }

  static std::vector<float> distancesOf(const Contents& contents)
  {
    std::vector<float> distances;
    for (const auto& step : contents.entries)
      distances.push_back(step.observation.distance->value);
    return distances;
  }

  TemporaryFolder folder;
};

TEST_F(Mcap, IsReadInTheOrderOfTimesWhateverItsChunks)
{
  const std::string chunks = mcapChunk(tf(5.) + tf(1.), "zstd") + mcapChunk(tf(2.) + tf(0.) + tf(7.), "lz4") + tf(3.) +
                             tf(6.) + mcapChunk(tf(4.), "");
  const Contents contents = read(beginning() + chunks + mcapDataEnd() + mcapFooter());
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(distancesOf(contents), ElementsAre(1.f, 2.f, 3.f, 4.f, 5.f, 6.f, 7.f, 8.f));
  EXPECT_THAT(contents.description.at(0),
              StartsWith("ROS 2 bag (MCAP, chunks compressed by lz4 and chunks compressed by zstd and chunks not "
                         "compressed and without chunks): angles"));
}

TEST_F(Mcap, KeepsMessagesOfOneTimeInTheirOrder)
{
  std::string messages;
  for (int i = 0; i < 100; ++i)
    messages += mcapMessage(1, begin, face(1. + i));
  const auto bag = KV::recordings::openBagFile(
      folder.write("bag.mcap", beginning() + mcapChunk(messages, "zstd") + messages + mcapDataEnd() + mcapFooter()));
  const auto all = bag->messagesOf({1});
  KV::recordings::BagMessage message;
  for (std::int64_t number = 1; number <= 200; ++number)
  {
    ASSERT_TRUE(all->next(message));
    EXPECT_EQ(number, message.number);
  }
  EXPECT_FALSE(all->next(message));
}

TEST_F(Mcap, MayDeclareTopicsInsideOfChunksAndOnceMore)
{
  const std::string declared = mcapSchema(1, transforms) + mcapChannel(1, 1, "/tf");
  const Contents contents = read(std::string(mcapMagic) + mcapChunk(declared + tf(0.), "zstd") + declared + tf(1.) +
                                 mcapDataEnd() + declared + mcapFooter());
  EXPECT_THAT(contents.entries, SizeIs(2));
}

TEST_F(Mcap, MayDeclareTopicsWithoutMessagesInItsSummary)
{
  const std::string summary = mcapSchema(1, transforms) + mcapChannel(1, 1, "/tf");
  const Contents contents = read(std::string(mcapMagic) + mcapDataEnd() + summary + mcapFooter());
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.entries, IsEmpty());
  EXPECT_EQ("", read(beginning() + mcapDataEnd() + mcapSchema(1, "other") + mcapFooter()).fatal) << "it is not needed";
}

TEST_F(Mcap, SkipsRecordsOfOtherKinds)
{
  const std::string other = mcapRecord(9, "an attachment") + mcapRecord(12, "metadata") + mcapRecord(0x80, "private");
  const Contents contents =
      read(beginning() + other + tf(0.) + other + mcapChunk(mcapRecord(0x81, "x") + tf(1.), "lz4") + mcapRecord(7, "") +
           mcapDataEnd() + mcapRecord(11, "statistics") + mcapFooter());
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.entries, SizeIs(2));
  EXPECT_THAT(contents.badLines, IsEmpty());
}

TEST_F(Mcap, IsReadAsFarAsItGoesIfItWasCut)
{
  for (const std::string compression : {"", "lz4", "zstd", "unchunked"})
  {
    SCOPED_TRACE(compression);
    std::string file = beginning();
    for (int i = 0; i < 6; ++i)
      file += compression == "unchunked" ? tf(2. * i) + tf(2. * i + 1.)
                                         : mcapChunk(tf(2. * i) + tf(2. * i + 1.), compression);
    const std::string whole = file + mcapDataEnd(checksumOf(file)) + mcapFooter();
    ASSERT_THAT(read(whole).entries, SizeIs(12));
    std::size_t most = 0;
    for (std::size_t size = beginning().size(); size < file.size(); size += 7)
    {
      SCOPED_TRACE(size);
      const Contents contents = read(whole.substr(0, size));
      EXPECT_GE(contents.entries.size(), most) << "more of the file holds no less";
      most = std::max(most, contents.entries.size());
      EXPECT_EQ("", contents.fatal);
      EXPECT_THAT(contents.badLines, IsEmpty());
      EXPECT_THAT(contents.warnings,
                  Contains(AllOf(StartsWith(folder.path("bag.mcap") + ": ends early, at byte "),
                                 EndsWith(": the file was cut, or its recording was not ended. What stands before is "
                                          "read"))));
    }
    EXPECT_GE(most, 10u) << "all chunks but the one that was cut";
  }
}

TEST_F(Mcap, LacksNothingIfOnlyItsSummaryWasCut)
{
  const std::string data = beginning() + tf(0.) + mcapDataEnd();
  for (const std::string& file : {data, data + mcapRecord(11, "statistics"), data + "\x0e"})
  {
    const Contents contents = read(file);
    EXPECT_THAT(contents.entries, SizeIs(1));
    EXPECT_THAT(contents.warnings, Not(Contains(HasSubstr("ends early"))));
  }
}

TEST_F(Mcap, IsCutWhereZerosReplaceRecords)
{
  const std::string data = beginning() + tf(0.);
  const Contents contents = read(data + std::string(1000, '\0'));
  EXPECT_THAT(contents.entries, SizeIs(1));
  EXPECT_THAT(contents.warnings, Contains(HasSubstr("ends early, at byte " + std::to_string(data.size()) + ":")));
}

TEST_F(Mcap, SaysThatItWasCutBeforeItsFirstTopic)
{
  EXPECT_EQ(folder.path("bag.mcap") +
                ": has no topic that is read, and ends early, at byte 8: the file was cut, or its recording was not "
                "ended. What stands before is read",
            read(beginning().substr(0, 12)).fatal);
}

TEST_F(Mcap, MayBePackedAsAFile)
{
  const std::string file = beginning() + mcapChunk(tf(0.) + tf(1.), "lz4") + mcapDataEnd() + mcapFooter();
  const Contents zstd = read(packedByZstd(file), "bag.mcap.zstd");
  EXPECT_THAT(zstd.entries, SizeIs(2));
  EXPECT_THAT(zstd.description.at(0),
              StartsWith("ROS 2 bag (MCAP, chunks compressed by lz4, the file compressed by zstd): angles"));
  const Contents gzip = contentsOf(folder.writeCompressed("bag.mcap.gz", file));
  EXPECT_THAT(gzip.entries, SizeIs(2));
  EXPECT_THAT(gzip.description.at(0), HasSubstr("the file compressed by gzip"));
}

TEST_F(Mcap, IsReadAsFarAsItGoesIfItsPackedFileWasCut)
{
  std::string file = beginning();
  std::string image(100, '\0');
  for (int i = 0; i < 3000; ++i)
  {
    std::generate(image.begin(), image.end(), [state = static_cast<unsigned>(i)]() mutable {
      state = state * 1664525U + 1013904223U;
      return static_cast<char>(state >> 24U);
    });
    file += tf(i) + mcapRecord(0x80, image);
  }
  const std::string packed = packedByZstd(file + mcapDataEnd() + mcapFooter());
  const Contents contents = read(packed.substr(0, packed.size() / 2), "bag.mcap.zstd");
  EXPECT_EQ("", contents.fatal);
  EXPECT_GT(contents.entries.size(), 500u);
  EXPECT_THAT(contents.warnings, Contains(HasSubstr("ends early")));
}

TEST_F(Mcap, NeedsAnotherVersionOfTheProgramIfItsVersionIsAnother)
{
  EXPECT_EQ(folder.path("bag.mcap") + ": does not begin as a file of MCAP, version 0",
            read("\x89MCAP1\r\n" + beginning().substr(8)).fatal);
}

TEST_F(Mcap, ReportsTopicsWithoutATypeAndMessagesOfRos1)
{
  const std::string none = std::string(mcapMagic) + mcapChannel(1, 0, "/tf") + tf(0.);
  EXPECT_THAT(read(none + mcapDataEnd() + mcapFooter()).fatal, HasSubstr("has no topic that is read"));
  const std::string ros1 =
      std::string(mcapMagic) + mcapSchema(1, "tf2_msgs/TFMessage") + mcapChannel(1, 1, "/tf", "ros1") + tf(0.);
  EXPECT_EQ(folder.path("bag.mcap") +
                ": /tf: expected messages in the format cdr, found 'ros1': convert the bag to ROS 2 first",
            read(ros1 + mcapDataEnd() + mcapFooter()).fatal);
}

TEST_F(Mcap, ReadsMessagesThatArePackedOneByOne)
{
  BagWriter bag(folder.path("bag.db3"), begin);
  for (int i = 0; i < 3; ++i)
    bag.add(i, "/tf", packedByZstd(face(i + 1.)));
  bag.add(3., "/tf", packedByZstd(face(4.)).substr(0, 20));
  bag.add(4., "/tf", packedByZstd(std::string(2000000, 'x')));
  const Contents contents = contentsOf(folder.path("bag.db3"));
  EXPECT_THAT(distancesOf(contents), ElementsAre(1.f, 2.f, 3.f));
  EXPECT_THAT(contents.badLines,
              ElementsAre(HasSubstr("/tf: message 4: its compressed data are damaged: they end too early"),
                          HasSubstr("/tf: message 5: its compressed data are damaged: they unpack to more than 1048576 "
                                    "bytes")));
}

TEST_F(Mcap, SaysThatItWasCutSinceItWasOpened)
{
  const std::string bytes = beginning() + tf(0.) + tf(1.) + mcapDataEnd() + mcapFooter();
  const std::string path = folder.write("bag.mcap", bytes);
  const auto bag = KV::recordings::openBagFile(path);
  std::filesystem::resize_file(path, bytes.size() - 1);
  EXPECT_EQ(path + ": has become shorter while it was read", support::textThrownBy<KV::recordings::Error>([&] {
              KV::recordings::BagMessage message;
              bag->messagesOf({1})->next(message);
            }));
}

TEST_F(Mcap, SaysThatItWasOverwrittenSinceItWasOpened)
{
  const std::string bytes = beginning() + mcapChunk(tf(0.) + tf(1.), "zstd") + mcapDataEnd() + mcapFooter();
  const std::string path = folder.write("bag.mcap", bytes);
  const auto bag = KV::recordings::openBagFile(path);
  folder.write("bag.mcap", std::string(bytes.size(), '\0'));
  EXPECT_THAT(support::textThrownBy<KV::recordings::Error>([&] {
                KV::recordings::BagMessage message;
                bag->messagesOf({1})->next(message);
              }),
              HasSubstr(" is damaged: its compressed data are damaged: "));
}

TEST_F(Mcap, MayEndItsDataWithTheFooter)
{
  const Contents contents = read(beginning() + tf(0.) + tf(1.) + mcapFooter());
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(distancesOf(contents), ElementsAre(1.f, 2.f));
}

}  // namespace
