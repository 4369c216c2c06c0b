#include "librecordings/support.hpp"
#include "support/tablename.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <numeric>
#include <set>
#include <string>
#include <vector>

namespace
{

using KV::recordings::Reader;
using ::testing::AllOf;
using ::testing::Ge;
using ::testing::IsEmpty;
using ::testing::Le;

/// The smallest recording of each format.
struct SmallRecording
{
  const char* name;
  const char* file;
  const char* format;
  bool isTable;  ///< has columns
};

/// A reader, of any format.
class EveryReader : public ::testing::TestWithParam<SmallRecording>
{
protected:
  std::unique_ptr<Reader> reader =
      KV::recordings::openRecording(std::string(SKEIGIOT_FUZZ_CORPUS "/") + GetParam().file, "", {});
};

TEST_P(EveryReader, IsThatOfTheFormat)
{
  EXPECT_EQ(GetParam().format, KV::recordings::formatNameOf(std::string(SKEIGIOT_FUZZ_CORPUS "/") + GetParam().file));
}

TEST_P(EveryReader, ComesToTheEndOfItsFileAndNeverGoesBack)
{
  double last = reader->progress();
  EXPECT_THAT(last, AllOf(Ge(0.), Le(1.)));
  std::size_t steps = 0;
  while (reader->next())
  {
    ++steps;
    EXPECT_THAT(reader->progress(), AllOf(Ge(last), Le(1.))) << "after step " << steps;
    last = reader->progress();
  }
  EXPECT_GT(steps, 0U);
  EXPECT_EQ(1., reader->progress());
  EXPECT_FALSE(reader->next()) << "there is nothing behind the end";
}

TEST_P(EveryReader, GivesTimesThatNeverGoBack)
{
  auto last = ko::SystemClock::time_point::min();
  while (const auto step = reader->next())
  {
    EXPECT_LE(last, step->time);
    last = step->time;
  }
}

TEST_P(EveryReader, DescribesItselfInLines)
{
  while (reader->next())
  {}
  EXPECT_THAT(reader->describe(), ::testing::Not(IsEmpty()));
  for (const std::vector<std::string>& lines : {reader->describe(), reader->describeLearned(), reader->takeWarnings()})
    for (const std::string& line : lines)
    {
      EXPECT_NE("", line);
      EXPECT_EQ(std::string::npos, line.find('\n')) << line;
    }
  EXPECT_THAT(reader->takeWarnings(), IsEmpty()) << "each warning is taken once";
}

TEST_P(EveryReader, HasColumnsIfItIsATable)
{
  while (reader->next())
  {}
  const KV::recordings::Columns columns = reader->columns();
  EXPECT_EQ(GetParam().isTable, !columns.used.empty());
  std::set<std::string> names(columns.used.begin(), columns.used.end());
  for (const std::string& ignored : columns.ignored)
    EXPECT_TRUE(names.insert(ignored).second) << ignored << " is used, or ignored twice";
}

INSTANTIATE_TEST_SUITE_P(Of, EveryReader,
                         ::testing::Values(SmallRecording{"Blendshapes", "blendshapes/scores.csv", "blendshapes", true},
                                           SmallRecording{"Gzip", "rosbag2/greeting.db3.gz", "rosbag2", false},
                                           SmallRecording{"JsonLines", "jsonl/all-readings.jsonl", "jsonl", false},
                                           SmallRecording{"LibreFace", "libreface/face.csv", "libreface", true},
                                           SmallRecording{"LiveLink", "livelink/face.csv", "livelink", true},
                                           SmallRecording{"Mcap", "rosbag2/greeting.mcap", "rosbag2", false},
                                           SmallRecording{"MediaPipe", "mediapipe/array.json", "mediapipe", false},
                                           SmallRecording{"OpenFace", "openface/two-faces.csv", "openface", true},
                                           SmallRecording{"PyFeat", "pyfeat/degrees.csv", "pyfeat", true},
                                           SmallRecording{"Sqlite", "rosbag2/greeting.db3", "rosbag2", false},
                                           SmallRecording{"TidyCsv", "tidy/many-readings.csv", "tidy", true},
                                           SmallRecording{"Whisper", "whisper/whisperx.json", "whisper", false},
                                           SmallRecording{"Xdf", "xdf/markers.xdf", "xdf", false}),
                         support::RowName());

/// A recording of one row for each face and frame, and the field that has its time.
struct SmallTable
{
  const char* name;
  const char* file;
  const char* time;
};

class EveryTableOfFaces : public ::testing::TestWithParam<SmallTable>
{
protected:
  EveryTableOfFaces()
  {
    std::ifstream file(std::string(SKEIGIOT_FUZZ_CORPUS "/") + GetParam().file);
    for (std::string line; std::getline(file, line);)
      lines.push_back(line + "\n");
  }

  /// Writes the lines to a file, and returns its path.
  std::string written() const
  {
    return folder.write("face", std::accumulate(lines.begin(), lines.end(), std::string()));
  }

  static std::ptrdiff_t facesIn(const support::Contents& contents)
  {
    return std::count_if(contents.entries.begin(), contents.entries.end(), [](const auto& step) { return step.seen; });
  }

  support::TemporaryFolder folder;
  std::vector<std::string> lines;
};

TEST_P(EveryTableOfFaces, NamesTheFieldOfATimeThatRunsBackwards)
{
  const std::ptrdiff_t faces = facesIn(support::contentsOf(written()));
  lines.push_back(lines[lines.front()[0] == '{' ? 0 : 1]);
  const support::Contents contents = support::contentsOf(written());
  ASSERT_EQ(1U, contents.badLines.size());
  EXPECT_THAT(contents.badLines[0], ::testing::StartsWith(folder.path("face") + ":" + std::to_string(lines.size()) +
                                                          ": " + GetParam().time + ": time runs backwards"));
  EXPECT_EQ(faces, facesIn(contents)) << "nothing that was good is lost";
}

class EveryCsvOfFaces : public EveryTableOfFaces
{};

TEST_P(EveryCsvOfFaces, RefusesSemicolonsBetweenItsColumns)
{
  for (std::string& line : lines)
    std::replace(line.begin(), line.end(), ',', ';');
  EXPECT_EQ(folder.path("face") +
                ":1: the columns are separated by semicolons; expected commas, and numbers with a decimal point",
            support::contentsOf(written()).fatal);
}

const std::array<SmallTable, 5> csvOfFaces{{{"Blendshapes", "blendshapes/scores.csv", "timestamp"},
                                            {"LibreFace", "libreface/face.csv", "frame_time_in_ms"},
                                            {"LiveLink", "livelink/face.csv", "Timecode"},
                                            {"OpenFace", "openface/one-face.csv", "timestamp"},
                                            {"PyFeat", "pyfeat/degrees.csv", "frame"}}};

INSTANTIATE_TEST_SUITE_P(Of, EveryCsvOfFaces, ::testing::ValuesIn(csvOfFaces), support::RowName());
INSTANTIATE_TEST_SUITE_P(Of, EveryTableOfFaces, ::testing::ValuesIn(csvOfFaces), support::RowName());
INSTANTIATE_TEST_SUITE_P(OfJson, EveryTableOfFaces,
                         ::testing::Values(SmallTable{"MediaPipe", "mediapipe/lines.jsonl", "timestamp"}),
                         support::RowName());

}  // namespace
