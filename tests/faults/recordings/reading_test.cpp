#include "faults/repeatedfailure.hpp"

#include "librecordings/support.hpp"
#include "support/tablename.hpp"

#include <skeigiot/recordings/mergedrecording.hpp>
#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/table.hpp>

#include <gtest/gtest.h>
#include <zstd.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::recordings::openRecording;
using KV::recordings::Reader;
using KV::recordings::ReadingOptions;
using KV::recordings::Step;

constexpr std::size_t mostItems = 2000;  // of a recording here

std::string fromCorpus(const std::string& file)
{
  return SKEIGIOT_FUZZ_CORPUS "/" + file;
}

std::string contentOf(const std::string& file)
{
  std::ifstream stream(fromCorpus(file), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string packedByZstd(const std::string& text)
{
  std::string packed(ZSTD_compressBound(text.size()), '\0');
  packed.resize(ZSTD_compress(packed.data(), packed.size(), text.data(), text.size(), 1));
  return packed;
}

/// The recordings that the corpus of the fuzzers does not have.
class Files
{
public:
  Files()
  {
    _folder.write("lines.jsonl.zst", packedByZstd(contentOf("jsonl/steps.jsonl")));
    _folder.write("bad.jsonl",
                  contentOf("jsonl/steps.jsonl") +
                      R"({"time":1,"person":1,"observation":{"smile":{"value":"broad"}}})"
                      "\n{\"time\":2,\"person\":1,\"unknown\":[1,{\"a\":2}]}\n{\"time\":3,\"time\":4}\n"
                      "{\"time\":1577836800000000000,\"person\":1,\"name\":\"Zo\\u00eb of the house\","
                      "\"observation\":{\"distance\":{\"value\":1.5},\"gaze\":{\"yaw\":1,\"pitch\":2}}}\n[");
    _folder.write("bad.csv", contentOf("openface/one-face.csv") + "1,2,3\nfour,5\n");
    std::filesystem::create_directory(_folder.path("bag"));
    std::filesystem::copy_file(fromCorpus("rosbag2/greeting.mcap"), _folder.path("bag/greeting.mcap"));
    _folder.write("bag/metadata.yaml",
                  "rosbag2_bagfile_information:\n  version: 5\n  relative_file_paths:\n"
                  "    - greeting.mcap\n    - one_that_is_not_there.mcap\n");
    _folder.write("touch.csv", "time,person,reading,value\n0.05,1,touch,1\n0.35,1,touch,-1\n");
  }

  std::string path(const std::string& name) const { return _folder.path(name); }

private:
  support::TemporaryFolder _folder;
};

/// The steps and texts of a recording.
struct Contents
{
  Contents()
  {
    steps.reserve(mostItems);
    complaints.reserve(mostItems);
  }

  std::vector<Step> steps;
  std::vector<std::string> complaints;  ///< on bad lines, and on the end
  std::vector<std::string> description;
  std::vector<std::string> learned;
  std::vector<std::string> warnings;
  KV::recordings::Columns columns;
  bool isDated = false;
};

using Open = std::function<std::unique_ptr<Reader>()>;

/// Reads the recording to its end, skipping bad lines.
void readAll(Reader& reader, Contents& contents)
{
  for (std::size_t i = 0; i < mostItems; ++i)
  {
    try
    {
      boost::optional<Step> step = reader.next();
      if (!step)
        break;
      contents.steps.push_back(std::move(*step));
    }
    catch (const KV::recordings::BadLine& error)
    {
      contents.complaints.emplace_back(error.what());
    }
  }
  contents.description = reader.describe();
  contents.learned = reader.describeLearned();
  contents.warnings = reader.takeWarnings();
  contents.columns = reader.columns();
  contents.isDated = reader.isDated();
}

void readAll(const Open& open, Contents& contents)
{
  try
  {
    readAll(*open(), contents);
  }
  catch (const KV::recordings::Error& error)
  {
    contents.complaints.emplace_back(error.what());
  }
}

std::vector<std::string> textsOf(const std::vector<Step>& steps)
{
  std::vector<std::string> texts;
  for (const Step& step : steps)
    texts.push_back(KV::recordings::stepToJson(step));
  return texts;
}

template <typename T>
bool beginsWith(const std::vector<T>& all, const std::vector<T>& beginning)
{
  return all.size() >= beginning.size() && std::equal(beginning.begin(), beginning.end(), all.begin());
}

std::vector<std::string> namesOf(const KV::recordings::Columns& columns)
{
  std::vector<std::string> names = columns.used;
  names.insert(names.end(), columns.ignored.begin(), columns.ignored.end());
  return names;
}

/// Expects the same as `whole`, or its beginning if memory ran out.
void expectPartOf(const Contents& whole, const Contents& contents, bool ranOut)
{
  const std::vector<std::string> all = textsOf(whole.steps);
  const std::vector<std::string> read = textsOf(contents.steps);
  EXPECT_TRUE(beginsWith(all, read)) << "another step was read";
  EXPECT_TRUE(beginsWith(whole.complaints, contents.complaints))
      << (contents.complaints.empty() ? "" : contents.complaints.back());
  if (ranOut)
    return;
  EXPECT_EQ(all.size(), read.size()) << "steps were lost";
  EXPECT_EQ(whole.complaints, contents.complaints);
  EXPECT_EQ(whole.description, contents.description);
  EXPECT_EQ(whole.learned, contents.learned);
  EXPECT_EQ(whole.warnings, contents.warnings);
  EXPECT_EQ(namesOf(whole.columns), namesOf(contents.columns));
  EXPECT_EQ(whole.isDated, contents.isDated);
}

void expectAllOrTooLittleMemory(const Open& open, std::size_t leastThrown = 20)
{
  Contents whole;
  readAll(open, whole);
  ASSERT_LT(whole.steps.size(), mostItems);
  ASSERT_FALSE(whole.steps.empty() && whole.complaints.empty() && whole.warnings.empty());
  const std::size_t thrown =
      faults::failRepeatedly([] { return Contents(); }, [&open](Contents& contents) { readAll(open, contents); },
                             [&whole](const Contents& contents, bool threw) { expectPartOf(whole, contents, threw); });
  EXPECT_GT(thrown, leastThrown);

  Contents again;
  readAll(open, again);
  expectPartOf(whole, again, false);
}

struct RecordingCase
{
  std::string name;
  std::string file;  ///< in the corpus of the fuzzers, or of Files
  bool isOwn = false;
  void (*setOptions)(ReadingOptions& options) = [](ReadingOptions&) {};
};

class ReadingWithoutMemory : public ::testing::TestWithParam<RecordingCase>
{
protected:
  std::string path() const { return GetParam().isOwn ? files.path(GetParam().file) : fromCorpus(GetParam().file); }

  ReadingOptions options() const
  {
    ReadingOptions options;
    GetParam().setOptions(options);
    return options;
  }

  const Files files;
};

TEST_P(ReadingWithoutMemory, GivesTheWholeRecordingOrThrows)
{
  const std::string recording = path();
  const ReadingOptions chosen = options();
  expectAllOrTooLittleMemory([&] { return openRecording(recording, "", chosen); });
}

/// A program that has freed some memory may go on with the same reader: it need not read the rest, but must end.
TEST_P(ReadingWithoutMemory, LetsTheReaderBeUsedFurther)
{
  const std::string recording = path();
  const ReadingOptions chosen = options();
  faults::failRepeatedly(
      [&] {
        try
        {
          return openRecording(recording, "", chosen);
        }
        catch (const KV::recordings::Error&)
        {
          return std::unique_ptr<Reader>();
        }
      },
      [](std::unique_ptr<Reader>& reader) {
        Contents contents;
        if (reader != nullptr)
          try
          {
            readAll(*reader, contents);
          }
          catch (const KV::recordings::Error&)
          {}
      },
      [](std::unique_ptr<Reader>& reader, bool threw) {
        if (!threw || reader == nullptr)
          return;
        Contents rest;
        try
        {
          readAll(*reader, rest);
        }
        catch (const KV::recordings::Error&)
        {}
        EXPECT_LT(rest.steps.size() + rest.complaints.size(), mostItems) << "it never ends";
      });
}

INSTANTIATE_TEST_SUITE_P(
    Of, ReadingWithoutMemory,
    ::testing::Values(
        RecordingCase{"OpenFace", "openface/one-face.csv"}, RecordingCase{"OpenFaceOfTwo", "openface/two-faces.csv"},
        RecordingCase{"OpenFaceWithLandmarks", "openface/landmarks.csv"},
        RecordingCase{"OpenFaceWithBadRows", "bad.csv", true}, RecordingCase{"PyFeat", "pyfeat/degrees.csv"},
        RecordingCase{"LibreFace", "libreface/face.csv"}, RecordingCase{"LiveLink", "livelink/over-midnight.csv"},
        RecordingCase{"Blendshapes", "blendshapes/scores.csv"},
        RecordingCase{"BlendshapesMatrix", "blendshapes/matrix.csv"},
        RecordingCase{"MediapipeArray", "mediapipe/array.json"},
        RecordingCase{"MediapipeLines", "mediapipe/lines.jsonl"},
        RecordingCase{"MediapipeOfPython", "mediapipe/python-names.json"},
        RecordingCase{"Tidy", "tidy/many-readings.csv"}, RecordingCase{"TidyPoints", "tidy/points.csv"},
        RecordingCase{"TidyNotUtf8", "tidy/scope-that-is-not-utf8.csv"},
        RecordingCase{"Whisper", "whisper/openai.json"}, RecordingCase{"WhisperSegments", "whisper/segments.jsonl"},
        RecordingCase{"WhisperX", "whisper/whisperx.json"}, RecordingCase{"Xdf", "xdf/face.xdf"},
        RecordingCase{"XdfMarkers", "xdf/markers.xdf"}, RecordingCase{"JsonLines", "jsonl/steps.jsonl"},
        RecordingCase{"JsonLinesOfAllReadings", "jsonl/all-readings.jsonl"},
        RecordingCase{"JsonLinesWithBadLines", "bad.jsonl", true}, RecordingCase{"Gzip", "gzip/lines.gz"},
        RecordingCase{"GzipThatIsCut", "gzip/cut.gz"}, RecordingCase{"GzipThatIsDamaged", "gzip/damaged.gz"},
        RecordingCase{"Zstd", "lines.jsonl.zst", true}, RecordingCase{"Sqlite", "rosbag2/greeting.db3"},
        RecordingCase{"SqlitePacked", "rosbag2/greeting.db3.gz"}, RecordingCase{"Mcap", "rosbag2/greeting.mcap"},
        RecordingCase{"McapNotCompressed", "mcap/none"}, RecordingCase{"McapLz4", "mcap/lz4"},
        RecordingCase{"McapZstd", "mcap/zstd"}, RecordingCase{"McapPacked", "mcap/packed"},
        RecordingCase{"McapSummed", "mcap/summed"}, RecordingCase{"McapWithoutChunks", "mcap/unchunked"},
        RecordingCase{"McapThatIsCut", "mcap/cut"}, RecordingCase{"McapZstdThatIsCut", "mcap/cut-zstd"},
        RecordingCase{"FolderOfBag", "bag", true},
        RecordingCase{"XdfWithMapping", "xdf/face.xdf", false,
                      [](ReadingOptions& options) { options.mapping = fromCorpus("mapping/streams.json"); }},
        RecordingCase{"OpenFaceWithMapping", "openface/one-face.csv", false,
                      [](ReadingOptions& options) { options.mapping = fromCorpus("mapping/documented.json"); }},
        RecordingCase{"UnknownFormat", "mapping/empty.json"}),
    support::RowName());

TEST(ReadingAStreamWithoutMemory, GivesTheWholeRecordingOrThrows)
{
  for (const std::string file : {"openface/one-face.csv", "gzip/lines.gz", "mediapipe/array.json", "xdf/face.xdf"})
  {
    SCOPED_TRACE(file);
    const std::string content = contentOf(file);
    std::istringstream stream;
    expectAllOrTooLittleMemory([&] {
      stream.clear();
      stream.str(content);
      return openRecording(stream, "stream", "", {});
    });
  }
}

TEST(ReadingSeveralFilesWithoutMemory, GivesTheWholeSessionOrThrows)
{
  const Files files;
  expectAllOrTooLittleMemory([&] {
    std::vector<KV::recordings::RecordingInput> inputs;
    for (const std::string& path : {fromCorpus("openface/one-face.csv"), files.path("touch.csv")})
      inputs.push_back({path, openRecording(path, "", {}), {}});
    return std::make_unique<KV::recordings::MergedRecording>(std::move(inputs));
  });
}

TEST(ReadingATableWithoutMemory, GivesTheWholeTableOrThrows)
{
  const std::vector<double> times = {0., 0.1, 0.2};
  const std::vector<double> angles = {3., 4., 5.};
  KV::recordings::Table wide{"wide", 3, {}};
  wide.columns = {{"time", times.data(), {}}, {"gaze.yaw", angles.data(), {}}, {"gaze.pitch", angles.data(), {}}};
  expectAllOrTooLittleMemory([&] { return KV::recordings::openTable(wide); });

  KV::recordings::Table frontEnd{"front end", 3, {}};
  frontEnd.columns = {{"timestamp", times.data(), {}}, {"pose_Rx", angles.data(), {}}, {"AU12_r", angles.data(), {}}};
  expectAllOrTooLittleMemory([&] { return KV::recordings::openTable(frontEnd, "", {}); });
}

}  // namespace
