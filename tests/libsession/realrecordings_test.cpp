#include "support/command.hpp"
#include "support/exportedtable.hpp"
#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>

/// \file
/// The built command on recordings of real people, if they are installed.

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;

struct RealRecordingCase
{
  const char* name;
  const char* file;
  long updates;
};

class RealRecording : public ::testing::TestWithParam<RealRecordingCase>
{
protected:
  void SetUp() override
  {
    if (!std::filesystem::exists(path()))
      GTEST_SKIP() << "there is no " << path();
  }

  static std::string path() { return std::string(SKEIGIOT_REAL_RECORDINGS "/openface/") + GetParam().file; }

  TemporaryFolder folder;
};

TEST_P(RealRecording, IsReplayedWholeAndGivesTheSameFromTheOwnFormat)
{
  const CommandResult result = runCommand(
      {"replay", path(), "--cycle", "recorded", "--csv", folder.path("1.csv"), "--to-jsonl", folder.path("own.jsonl")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  EXPECT_THAT(result.output, HasSubstr("'whole recording'"));
  const std::string csv = folder.read("1.csv");
  EXPECT_EQ(GetParam().updates + 1, std::count(csv.begin(), csv.end(), '\n'));

  runCommand({"replay", "-q", folder.path("own.jsonl"), "--cycle", "recorded", "--csv", folder.path("2.csv")});
  EXPECT_EQ(withoutFile(csv), withoutFile(folder.read("2.csv")));
}

INSTANTIATE_TEST_SUITE_P(OfOpenFace, RealRecording,
                         ::testing::Values(RealRecordingCase{"WithAllColumns", "openfaceR_lara.csv.gz", 2203},
                                           RealRecordingCase{"WithActionUnitsAlone", "livetalking_au.csv.gz", 8000},
                                           RealRecordingCase{"OfTheOldLayout", "pyfeat_OpenFace_Test.csv", 100}),
                         support::RowName());

}  // namespace
