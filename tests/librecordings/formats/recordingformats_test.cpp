#include "librecordings/support.hpp"

#include <set>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace
{
using RecordingFormats = support::RecordingTest;

std::string known()
{
  std::string text;
  for (const auto& format : KV::recordings::recordingFormats())
    text += (text.empty() ? "" : ", ") + format.name + " (" + format.description + ")";
  return text;
}

TEST_F(RecordingFormats, HaveNamesAndDescriptions)
{
  std::set<std::string> names;
  for (const auto& format : KV::recordings::recordingFormats())
  {
    EXPECT_TRUE(names.insert(format.name).second) << format.name;
    EXPECT_FALSE(format.description.empty());
  }
  EXPECT_EQ((std::set<std::string>{"livelink", "pyfeat", "blendshapes", "openface", "mediapipe", "tidy", "rosbag2",
                                   "jsonl", "whisper", "xdf", "libreface"}),
            names);
}

TEST_F(RecordingFormats, AreDetectedByTheContents)
{
  EXPECT_EQ("OpenFace: ", read("frame,AU12_r\n1,1\n").description.front().substr(0, 10));
  EXPECT_EQ("Tidy CSV: ", read("time,reading,value\n0,smile,1\n").description.front().substr(0, 10));
  EXPECT_EQ("JSON Lines: ", read("\n {\"time\":0}\n").description.front().substr(0, 12));
  EXPECT_EQ("JSON Lines: ", read("\xEF\xBB\xBF{\"time\":0}\n").description.front().substr(0, 12));
}

TEST_F(RecordingFormats, MayBeNamed)
{
  const std::string path = folder.write("f", "frame,AU12_r\n1,1\n");
  EXPECT_EQ(1u, support::contentsOf(path, "openface").entries.size());
  EXPECT_EQ(0u, support::contentsOf(path, "jsonl").entries.size());
  EXPECT_EQ(2u, support::contentsOf(path, "jsonl").badLines.size());
}

TEST_F(RecordingFormats, AreListedWithWhatTheFileLacksWhereNoneFits)
{
  std::string lines;
  for (const auto& format : KV::recordings::recordingFormats())
  {
    EXPECT_FALSE(format.missing.empty()) << format.name;
    lines += "\n  no " + format.name + ": " + format.missing;
  }
  EXPECT_EQ(" the format is not known. The file looks like a table with the columns 'Timecode', 'Frame'" + lines,
            errorOf("Timecode,Frame\n"));
}

TEST_F(RecordingFormats, AreListedWhereTheNameIsOfNone)
{
  EXPECT_EQ(folder.path("f") + ": there is no format 'xml'; expected one of: " + known(),
            support::contentsOf(folder.write("f", "x"), "xml").fatal);
}

TEST_F(RecordingFormats, NeedAFile)
{
  EXPECT_EQ(folder.path("none") + ": there is no such file", support::contentsOf(folder.path("none")).fatal);
  EXPECT_EQ(folder.path("none") + ": there is no such file", support::contentsOf(folder.path("none"), "jsonl").fatal);
  EXPECT_EQ(folder.path() + ": is a folder, expected a file", support::contentsOf(folder.path()).fatal);
  EXPECT_EQ(" the file is empty", errorOf(""));
  EXPECT_EQ(folder.path("f") + ": the file is empty", support::contentsOf(folder.writeCompressed("f", "")).fatal);
}

TEST_F(RecordingFormats, AreNotDetectedInAPipe)
{
  ASSERT_EQ(0, mkfifo(folder.path("pipe").c_str(), 0600));
  EXPECT_EQ(folder.path("pipe") + ": is not a regular file, so its format cannot be detected: name the format",
            support::contentsOf(folder.path("pipe")).fatal);
}

TEST_F(RecordingFormats, OfFaceAnalysersListTheColumnsTheyRead)
{
  const struct
  {
    std::string text;
    std::vector<std::string> used;
  } tables[] = {
      {"frame,other,AU12_r\n1,1,1\n", {"frame", "AU12_r"}},
      {"FaceScore,other,Happy,frame\n1,1,1,1\n", {"FaceScore", "Happy", "frame"}},
      {"mouthSmileLeft,mouthSmileRight,other,jawOpen,browInnerUp\n1,1,1,1,1\n",
       {"mouthSmileLeft", "mouthSmileRight", "jawOpen", "browInnerUp"}},
      {"Timecode,BlendShapeCount,other,JawOpen\n00:00:00:00.0,0\n", {"Timecode", "BlendShapeCount", "JawOpen"}},
  };
  for (const auto& table : tables)
  {
    const auto reader = KV::recordings::openRecording(folder.write("f", table.text), "", {});
    EXPECT_EQ(table.used, reader->columns().used) << table.text;
    EXPECT_EQ(std::vector<std::string>{"other"}, reader->columns().ignored) << table.text;
  }
}

TEST(IsRecording, LeavesTheErrorOfAFileThatCannotBeReadToTheReader)
{
  const support::TemporaryFolder folder;
  EXPECT_FALSE(KV::recordings::isRecording(folder.write("notes.txt", "A text of words.\n")));
  EXPECT_TRUE(KV::recordings::isRecording(folder.path("none")));
}

}  // namespace
