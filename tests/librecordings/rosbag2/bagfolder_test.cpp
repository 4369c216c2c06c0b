#include "rosbag2/bagfolder.hpp"
#include "librecordings/rosbag2/bagwriter.hpp"
#include "librecordings/support.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace
{
using namespace support;
using KV::recordings::filesListedIn;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::int64_t begin = 1700000000000000000;  // [ns] since 1970

/// The text that `ros2 bag record` writes before and after the names of its files.
std::string metadataOf(const std::vector<std::string>& files)
{
  std::string text =
      "rosbag2_bagfile_information:\n  version: 9\n  storage_identifier: mcap\n  duration:\n    nanoseconds: 5\n"
      "  starting_time:\n    nanoseconds_since_epoch: 1700000000000000000\n  message_count: 3\n"
      "  topics_with_message_count:\n    - topic_metadata:\n        name: /tf\n        type: tf2_msgs/msg/TFMessage\n"
      "        offered_qos_profiles:\n          - history: keep_last\n            depth: 10\n      message_count: 3\n"
      "  compression_format: \"\"\n  compression_mode: \"\"\n  relative_file_paths:\n";
  for (const std::string& file : files)
    text += "    - " + file + "\n";
  return text + "  files:\n    - path: other_0.mcap\n      message_count: 3\n  custom_data: ~\n  ros_distro: jazzy\n";
}

TEST(ListOfFiles, IsFoundWhereRosbag2WritesIt)
{
  EXPECT_THAT(filesListedIn(metadataOf({"a_0.mcap", "a_1.mcap"})), ElementsAre("a_0.mcap", "a_1.mcap"));
  EXPECT_THAT(filesListedIn("rosbag2_bagfile_information: {relative_file_paths: [a_0.mcap.zstd, 'b c.mcap']}"),
              ElementsAre("a_0.mcap.zstd", "b c.mcap"));
}

TEST(ListOfFiles, IsEmptyWhereThereIsNone)
{
  for (const char* const text :
       {"", "x", "rosbag2_bagfile_information:\n", "relative_file_paths: [a.mcap]", "[[[a.mcap]]]",
        "rosbag2_bagfile_information:\n  relative_file_paths: a.mcap\n",
        "rosbag2_bagfile_information:\n  relative_file_paths: {a.mcap: b.mcap}\n",
        "rosbag2_bagfile_information:\n  other:\n    relative_file_paths: [a.mcap]\n",
        "[relative_file_paths]: [a.mcap]", "{{a: b}: c, rosbag2_bagfile_information: {[1]: [a.mcap]}}"})
    EXPECT_THAT(filesListedIn(text), IsEmpty()) << text;
}

TEST(ListOfFiles, NamesNoFileElsewhere)
{
  EXPECT_THAT(filesListedIn(metadataOf({"old_name/a_0.mcap", "/etc/passwd", "../../b.mcap", "~"})),
              ElementsAre("a_0.mcap", "passwd", "b.mcap"));
}

TEST(ListOfFiles, LeavesOutWhatRefersToAnotherName)
{
  EXPECT_THAT(filesListedIn("rosbag2_bagfile_information: {relative_file_paths: [&first a.mcap, *first, b.mcap]}"),
              ElementsAre("a.mcap", "b.mcap"));
}

TEST(ListOfFiles, SaysWhereItCannotBeRead)
{
  const auto faultOf = [](const std::string& text) -> std::string {
    try
    {
      filesListedIn(text);
    }
    catch (const std::runtime_error& error)
    {
      return error.what();
    }
    return "";
  };
  EXPECT_THAT(faultOf("a:\n  - b\n c: ["), HasSubstr("line 3: "));
  EXPECT_EQ("is larger than 1 MiB", faultOf(std::string((std::size_t{1} << 20U) + 1, ' ')));
  EXPECT_THAT(faultOf(std::string(100000, '[')), HasSubstr("line 1: ")) << "not as deep as the stack";
  EXPECT_THAT(faultOf(std::string(100000, '{')), HasSubstr("line 1: "));
}

class BagFolder : public ::testing::Test
{
protected:
  BagFolder()
  {
    for (int i = 0; i < 3; ++i)
    {
      McapWriter writer;
      writer.topic("/tf", "tf2_msgs/msg/TFMessage");
      writer.add(begin + i * 1000000000LL, "/tf", tfMessage({faceFrame("a", {0., 0., i + 1.})}));
      files.push_back(writer.finish());
    }
  }

  std::vector<float> distances()
  {
    contents = contentsOf(folder.path());
    std::vector<float> found;
    for (const auto& step : contents.entries)
      found.push_back(step.observation.distance->value);
    return found;
  }

  TemporaryFolder folder;
  std::vector<std::string> files;  // of a bag that was split: one message each
  Contents contents;
};

TEST_F(BagFolder, IsReadAsItsMetadataListsIt)
{
  for (std::size_t i = 0; i < files.size(); ++i)
    folder.write("bag_" + std::to_string(i) + ".mcap", files[i]);
  folder.write("metadata.yaml", metadataOf({"bag_0.mcap", "bag_2.mcap"}));
  EXPECT_THAT(distances(), ElementsAre(1.f, 3.f));
  EXPECT_THAT(contents.warnings, Contains(folder.path() + ": 'bag_1.mcap' is not listed in metadata.yaml, and is not "
                                                          "read"));
}

TEST_F(BagFolder, SaysWhichFilesAreMissing)
{
  folder.write("bag_0.mcap", files[0]);
  folder.write("metadata.yaml", metadataOf({"bag_0.mcap", "bag_1.mcap"}));
  EXPECT_THAT(distances(), ElementsAre(1.f));
  EXPECT_THAT(contents.warnings,
              Contains(folder.path() + ": 'bag_1.mcap' is listed in metadata.yaml, and is not in the folder: what it "
                                       "holds is missing"));
  folder.write("metadata.yaml", metadataOf({"bag_1.mcap"}));
  distances();
  EXPECT_EQ(folder.path() + ": none of the files that metadata.yaml lists is in the folder", contents.fatal);
}

TEST_F(BagFolder, FindsFilesThatWerePackedOrUnpackedSince)
{
  folder.write("bag_0.mcap.zst", packedByZstd(files[0]));
  folder.write("bag_1.mcap", files[1]);
  folder.writeCompressed("bag_2.mcap.gz", files[2]);
  folder.write("metadata.yaml", metadataOf({"bag_0.mcap", "bag_1.mcap.zstd", "bag_2.mcap"}));
  EXPECT_THAT(distances(), ElementsAre(1.f, 2.f, 3.f));
  EXPECT_THAT(contents.warnings, Not(Contains(HasSubstr("metadata.yaml"))));
}

TEST_F(BagFolder, ReadsAllFilesIfTheMetadataCannotBeRead)
{
  for (std::size_t i = 0; i < files.size(); ++i)
    folder.write("bag_" + std::to_string(i) + ".mcap", files[i]);
  folder.write("metadata.yaml", "a: [");
  EXPECT_THAT(distances(), ElementsAre(1.f, 2.f, 3.f));
  EXPECT_THAT(contents.warnings, Contains(HasSubstr("metadata.yaml: cannot be read, so all files of the folder are "
                                                    "read: line ")));
}

TEST_F(BagFolder, MayMixContainers)
{
  folder.write("bag_1.mcap", files[1]);
  BagWriter(folder.path("bag_0.db3"), begin).add(0., "/tf", tfMessage({faceFrame("a", {0., 0., 9.})}));
  folder.write("metadata.yaml", "x");
  EXPECT_THAT(distances(), ElementsAre(9.f, 2.f));
  EXPECT_THAT(contents.description.at(0), testing::StartsWith("ROS 2 bag (SQLite; MCAP, chunks not compressed): "));
}

TEST_F(BagFolder, HasToExist)
{
  EXPECT_EQ(folder.path("none") + ": there is no such file",
            support::textThrownBy<KV::recordings::Error>([this] { KV::recordings::filesOfBag(folder.path("none")); }));
}

}  // namespace
