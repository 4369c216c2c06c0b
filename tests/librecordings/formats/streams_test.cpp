#include "librecordings/bits.hpp"
#include "librecordings/support.hpp"
#include "librecordings/xdf/xdfwriter.hpp"

#include <skeigiot/recordings/openedrecording.hpp>

#include <map>
#include <sstream>

namespace
{
/// Two markers, and a chunk that is cut.
std::string markers()
{
  return support::xdfBegin() + support::xdfHeader(1, "Events", "Markers", "string", 0., {"marker"}) +
         support::xdfSamples(
             1, {support::xdfTime(5.) + support::xdfText("a"), support::xdfTime(6.) + support::xdfText("b")}) +
         support::xdfChunk(5, std::string(16, 'b')).substr(0, 10);
}

/// How many steps there are, where it is not two.
const std::map<std::string, std::size_t> steps = {{"whisper", 12}, {"xdf", 3}};

// The content of some recording of each format, and a fault in it, so that an error has a place.
const std::map<std::string, std::string> samples = {
    {"livelink",
     "Timecode,BlendShapeCount,MouthSmileLeft,MouthSmileRight,HeadYaw,HeadPitch,HeadRoll\n"
     "10:00:00:00.0,61,0.3,0.7,0.1,0.2,0.3\n10:00:00:01.0,61,x,0.7,0.1,0.2,0.3\n10:00:00:02.0,61,0.5,0.1,0,0,0\n"},
    {"pyfeat", "frame,FaceScore,Happy,Pitch,Roll,Yaw\n0,0.9,0.3,1,2,3\n1,0.9,0.3\n2,0.9,0.1,10,20,30\n"},
    {"blendshapes",
     "timestamp,mouthSmileLeft,mouthSmileRight,jawOpen,browInnerUp\n0,0.1,0.7,0.3,0\n0.1,x,0,0,0\n0.2,1,1,0,0\n"},
    {"openface",
     "frame,timestamp,AU12_r,pose_Rx,pose_Ry,pose_Rz\n1,0,1.7,0.1,0.2,0.3\n2,0.1,x,0,0,0\n3,0.2,3.3,0,0,0\n"},
    {"libreface", "frame_idx,frame_time_in_ms,au_6_intensity,au_12_intensity\n0,0,1.5,2\n1,33,x,0\n2,66,0.5,4\n"},
    {"tidy", "time,person,reading,value\n0,1,smile,0.3\n1,1,smile,x\n2,1,smile,0.7\n"},
    {"mediapipe",
     "{\"timestamp_ms\":0,\"face_blendshapes\":[[{\"category_name\":\"mouthSmileLeft\",\"score\":0.7}]]}\n"
     "{\"timestamp_ms\":33,\"face_blendshapes\":7}\n"
     "{\"timestamp_ms\":66,\"face_blendshapes\":[[{\"category_name\":\"mouthSmileLeft\",\"score\":0.1}]]}\n"},
    {"whisper", "[{\"start\":0,\"end\":0.1,\"avg_logprob\":-0.2},\n{\"start\":\"x\"},\n{\"start\":0.1,\"end\":0.2}]\n"},
    {"xdf", markers()},
    {"jsonl",
     "{\"time\":1000,\"person\":3,\"observation\":{\"smile\":{\"value\":0.7,\"confidence\":1}}}\n{\"time\":x}\n"
     "{\"time\":2000,\"person\":3,\"seen\":false}\n"},
};

constexpr const char* streamName = "what came in";

support::Contents fromStream(const std::string& bytes, const std::string& format = "")
{
  std::istringstream stream(bytes);
  try
  {
    return support::contentsOf(*KV::recordings::openRecording(stream, streamName, format, {}));
  }
  catch (const KV::recordings::Error& error)
  {
    support::Contents contents;
    contents.fatal = error.what();
    return contents;
  }
}

std::string bytesOf(const std::string& path)
{
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The message with the name of the stream instead of the path.
std::string renamed(std::string message, const std::string& path)
{
  const std::size_t place = message.find(path);
  return place == std::string::npos ? message : message.replace(place, path.size(), streamName);
}

void expectSame(const support::Contents& ofPath, const support::Contents& ofStream, const std::string& path)
{
  ASSERT_EQ(ofPath.entries.size(), ofStream.entries.size());
  for (std::size_t i = 0; i < ofPath.entries.size(); ++i)
    EXPECT_EQ(support::Bits::of(ofPath.entries[i]), support::Bits::of(ofStream.entries[i])) << "step " << i;
  ASSERT_EQ(ofPath.badLines.size(), ofStream.badLines.size());
  for (std::size_t i = 0; i < ofPath.badLines.size(); ++i)
    EXPECT_EQ(renamed(ofPath.badLines[i], path), ofStream.badLines[i]);
  EXPECT_EQ(renamed(ofPath.fatal, path), ofStream.fatal);
  EXPECT_EQ(ofPath.warnings, ofStream.warnings);
  EXPECT_EQ(ofPath.description, ofStream.description);
}

class Streams : public ::testing::Test
{
protected:
  support::TemporaryFolder folder;
};

TEST_F(Streams, GiveTheStepsAndErrorsOfTheFileForEveryFormatThatIsReadForward)
{
  for (const auto& format : KV::recordings::recordingFormats())
  {
    SCOPED_TRACE(format.name);
    if (format.read == nullptr)
      continue;
    ASSERT_EQ(1u, samples.count(format.name)) << "there is no sample of this format";
    const std::string& text = samples.at(format.name);
    const std::string plain = folder.write("f", text);
    const std::string packed = folder.writeCompressed("f.gz", text);

    const support::Contents expected = support::contentsOf(plain);

    EXPECT_EQ(format.name, KV::recordings::formatNameOf(plain));
    std::istringstream detected(text);
    EXPECT_EQ(format.name, KV::recordings::openDetected(detected, streamName, "", {}).format);
    const auto known = steps.find(format.name);
    EXPECT_EQ(known == steps.end() ? 2u : known->second, expected.entries.size());
    EXPECT_EQ(1u, expected.badLines.size());
    expectSame(expected, fromStream(text), plain);
    expectSame(expected, fromStream(text, format.name), plain);
    expectSame(expected, fromStream(bytesOf(packed)), plain);
    expectSame(support::contentsOf(packed), fromStream(bytesOf(packed)), packed);
  }
}

TEST_F(Streams, NameTheStreamAndTheLineInErrors)
{
  const auto contents = fromStream("frame,AU12_r\n1,1\n2,x\n");
  ASSERT_EQ(1u, contents.badLines.size());
  EXPECT_EQ("what came in:3: AU12_r: expected a number, found 'x'", contents.badLines.front());
}

TEST_F(Streams, MayHoldMoreThanTheBufferAndSeveralPackedParts)
{
  std::string text = "frame,AU12_r\n";
  for (int i = 0; i < 50000; ++i)
    text += std::to_string(i) + "," + std::to_string(i % 6) + "\n";
  const std::size_t middle = text.size() / 2;
  const std::string path = folder.write("f", text);
  const std::string parts = bytesOf(folder.writeCompressed("a", text.substr(0, middle))) +
                            bytesOf(folder.writeCompressed("b", text.substr(middle)));

  const auto expected = support::contentsOf(path);

  EXPECT_EQ(50000u, expected.entries.size());
  expectSame(expected, fromStream(text), path);
  expectSame(expected, fromStream(parts), path);
}

TEST_F(Streams, ReportOtherBytesBehindPackedParts)
{
  const std::string line = "{\"time\":1000}\n";
  const std::string part = bytesOf(folder.writeCompressed("f", line));
  const std::string place =
      ": other data follow the compressed data, at byte " + std::to_string(part.size()) + ": the rest cannot be read";
  for (const std::string& behind : {"x" + part, std::string("x"), part.substr(0, 1)})
  {
    SCOPED_TRACE(behind);
    const support::Contents ofStream = fromStream(part + behind);
    EXPECT_EQ(1u, ofStream.entries.size()) << "what stands before is lost";
    EXPECT_EQ(streamName + (":1" + place), ofStream.fatal);
    const std::string path = folder.write("g", part + behind);
    expectSame(support::contentsOf(path), ofStream, path);
  }
  const support::Contents padded = fromStream(part + std::string(300000, '\0') + part + std::string(1, '\0'));
  EXPECT_EQ("", padded.fatal) << "zeros fill up what tapes and disks hold";
  EXPECT_EQ(2u, padded.entries.size());
}

TEST_F(Streams, AreReadFromTheirPosition)
{
  std::istringstream stream("a line before\n\xEF\xBB\xBF{\"time\":1000}\n");
  std::string line;
  std::getline(stream, line);
  const auto contents = support::contentsOf(*KV::recordings::openRecording(stream, streamName, "", {}));
  EXPECT_EQ(1u, contents.entries.size());
  EXPECT_EQ("", contents.fatal);
}

TEST_F(Streams, SayThatCompressedDataAreCutOrDamaged)
{
  std::string text;
  for (int i = 0; i < 20000; ++i)
    text += "{\"time\":" + std::to_string(i * 7919) + "}\n";
  const std::string packed = bytesOf(folder.writeCompressed("f", text));

  const auto cut = fromStream(packed.substr(0, packed.size() / 2));
  EXPECT_GT(cut.entries.size(), 5000u) << "what stands before the cut is lost";
  EXPECT_NE(std::string::npos, cut.fatal.find("the compressed data end too early: the file was cut")) << cut.fatal;

  std::string damaged = packed;
  damaged[damaged.size() - 6] ^= 1;  // of the check sum
  EXPECT_NE(std::string::npos, fromStream(damaged).fatal.find("the compressed data are damaged: incorrect data check"));
}

TEST_F(Streams, SayWhyTheyCannotBeRead)
{
  EXPECT_EQ("what came in: the file is empty", fromStream("").fatal);
  EXPECT_EQ(0u, fromStream("xyz").fatal.find("what came in: the format is not known"));
  EXPECT_EQ("what came in: the format rosbag2 cannot be read from a stream; expected a path",
            fromStream("anything", "rosbag2").fatal);
  EXPECT_EQ("what came in: the format rosbag2 cannot be read from a stream; expected a path",
            fromStream(std::string("SQLite format 3\0", 16) + std::string(100, 'x')).fatal);

  std::ifstream none(folder.path("none"));
  EXPECT_THROW(KV::recordings::openRecording(none, streamName, "", {}), KV::recordings::Error);
}

class BreaksDown : public std::streambuf
{
protected:
  int_type underflow() override { throw std::runtime_error("the line is gone"); }
};

TEST_F(Streams, MayThrowThemselves)
{
  BreaksDown buffer;
  std::istream stream(&buffer);
  stream.exceptions(std::ios::badbit | std::ios::failbit);
  try
  {
    KV::recordings::openRecording(stream, streamName, "jsonl", {});
    FAIL() << "nothing was thrown";
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_STREQ("what came in: the stream cannot be read", error.what());
  }
}

}  // namespace
