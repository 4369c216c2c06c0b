#include "librecordings/support.hpp"
#include "support/tablename.hpp"

#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace
{

using support::Contents;

constexpr std::size_t cutBytes = 2048;  // at the end of a recording

struct CutCase
{
  std::string name;
  std::string file;  ///< in the corpus of the fuzzer, which has a small recording of each format
  std::string format;
  boost::optional<double> framesPerSecond = {};  ///< here the rate is guessed from all rows
};

std::string contentOf(const std::string& file)
{
  std::ifstream stream(std::string(SKEIGIOT_FUZZ_CORPUS "/") + file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> textsOf(const std::vector<KV::recordings::Step>& entries)
{
  std::vector<std::string> texts;
  for (const KV::recordings::Step& entry : entries)
    texts.push_back(KV::recordings::stepToJson(entry));
  return texts;
}

bool beginsWith(const std::vector<std::string>& texts, const std::vector<std::string>& beginning)
{
  return texts.size() >= beginning.size() && std::equal(beginning.begin(), beginning.end(), texts.begin());
}

bool beginsWith(const std::string& text, const std::string& beginning)
{
  return text.compare(0, beginning.size(), beginning) == 0;
}

class CutRecording : public ::testing::TestWithParam<CutCase>
{
protected:
  Contents read(std::size_t size) const
  {
    KV::recordings::ReadingOptions options;
    options.framesPerSecond = GetParam().framesPerSecond;
    std::filesystem::remove(folder.path("cut"));  // some file systems write the replacement of a file at once
    return support::contentsOf(folder.write("cut", whole.substr(0, size)), GetParam().format, options);
  }

  std::size_t firstCut() const { return whole.size() > cutBytes ? whole.size() - cutBytes : 1; }

  static std::vector<std::string> complaintsOf(const Contents& contents)
  {
    std::vector<std::string> all = contents.badLines;
    if (!contents.fatal.empty())
      all.push_back(contents.fatal);
    return all;
  }

  const support::TemporaryFolder folder;
  const std::string whole = contentOf(GetParam().file);
};

/// Tables and lines: everything before the line in which the file was cut is read as usual.
class CutText : public CutRecording
{};

TEST_P(CutText, KeepsTheLinesBeforeTheCutAndNamesTheLineThatIsNotWhole)
{
  ASSERT_EQ("", read(whole.size()).fatal);
  const std::size_t stepsInAll = read(whole.size()).entries.size();
  ASSERT_GT(stepsInAll, 0U);
  int complaints = 0;
  for (std::size_t size = firstCut(); size < whole.size(); ++size)
  {
    SCOPED_TRACE("cut at " + std::to_string(size) + " of " + std::to_string(whole.size()) + " bytes");
    const std::size_t lineEnd = whole.rfind('\n', size - 1);
    const std::size_t lineBegin = lineEnd == std::string::npos ? 0 : lineEnd + 1;
    if (size == lineBegin)
      continue;
    std::vector<std::string> good = textsOf(read(lineBegin).entries);
    const std::size_t goodSteps = good.size();
    if (!good.empty())
      good.pop_back();  // the rest of the cut line may belong to the last step
    const Contents contents = read(size);
    EXPECT_TRUE(beginsWith(textsOf(contents.entries), good));
    EXPECT_LE(contents.entries.size(), stepsInAll);

    const auto line = std::count(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size), '\n') + 1;
    for (const std::string& complaint : complaintsOf(contents))
    {
      ++complaints;
      EXPECT_TRUE(beginsWith(complaint, folder.path("cut") + ":")) << complaint;
      if (goodSteps > 0)
      {
        EXPECT_TRUE(beginsWith(complaint, folder.path("cut") + ":" + std::to_string(line) + ":")) << complaint;
      }
    }
    if (HasFailure())
      break;
  }
  EXPECT_GT(complaints, 100);
}

INSTANTIATE_TEST_SUITE_P(Of, CutText,
                         ::testing::Values(CutCase{"OpenFace", "openface/one-face.csv", "openface"},
                                           CutCase{"PyFeat", "pyfeat/degrees.csv", "pyfeat", 30.},
                                           CutCase{"Mediapipe", "mediapipe/lines.jsonl", "mediapipe"},
                                           CutCase{"Blendshapes", "blendshapes/scores.csv", "blendshapes"},
                                           CutCase{"LiveLink", "livelink/face.csv", "livelink"},
                                           CutCase{"TidyCsv", "tidy/many-readings.csv", "tidy"},
                                           CutCase{"JsonLines", "jsonl/steps.jsonl", "jsonl"},
                                           CutCase{"JsonLinesOfAllReadings", "jsonl/all-readings.jsonl", "jsonl"}),
                         support::RowName());

/// The format is detected as well, from the remaining part of the file.
class CutCompressedText : public CutRecording
{};

TEST_P(CutCompressedText, KeepsTheStepsBeforeTheCutAndSaysThatItWasCut)
{
  const std::vector<std::string> all = textsOf(read(whole.size()).entries);
  ASSERT_FALSE(all.empty());
  std::size_t most = 0;
  for (std::size_t size = firstCut(); size < whole.size(); ++size)
  {
    SCOPED_TRACE("cut at " + std::to_string(size) + " of " + std::to_string(whole.size()) + " bytes");
    const Contents contents = read(size);
    EXPECT_TRUE(beginsWith(all, textsOf(contents.entries)));
    most = std::max(most, contents.entries.size());
    ASSERT_FALSE(complaintsOf(contents).empty());
    EXPECT_TRUE(beginsWith(complaintsOf(contents).back(), folder.path("cut") + ":")) << complaintsOf(contents).back();
    if (!contents.entries.empty())
    {
      EXPECT_NE(std::string::npos, contents.fatal.find("the file was cut")) << contents.fatal;
    }
  }
  EXPECT_EQ(all.size(), most) << "a check sum that is missing costs no step";
}

INSTANTIATE_TEST_SUITE_P(Of, CutCompressedText, ::testing::Values(CutCase{"JsonLines", "gzip/lines.gz", ""}),
                         support::RowName());

/// Bags are refused as a whole.
class CutBag : public CutRecording
{};

TEST_P(CutBag, IsRefusedWithItsName)
{
  ASSERT_EQ("", read(whole.size()).fatal);
  ASSERT_FALSE(read(whole.size()).entries.empty());
  for (std::size_t size = firstCut(); size < whole.size(); ++size)
  {
    const Contents contents = read(size);
    EXPECT_TRUE(contents.entries.empty()) << size;
    EXPECT_TRUE(beginsWith(contents.fatal, folder.path("cut"))) << size << ": " << contents.fatal;
  }
}

INSTANTIATE_TEST_SUITE_P(Of, CutBag,
                         ::testing::Values(CutCase{"Plain", "rosbag2/greeting.db3", "rosbag2"},
                                           CutCase{"Compressed", "rosbag2/greeting.db3.gz", "rosbag2"}),
                         support::RowName());

}  // namespace
