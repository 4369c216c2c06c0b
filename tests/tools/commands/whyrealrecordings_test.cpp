#include "support/tablename.hpp"
#include "tools/commands/rebuildrecording.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace
{

struct RealRecordingCase
{
  const char* name;
  const char* file;
  std::int32_t person;
};

class ExplainedRealRecording : public ::testing::TestWithParam<RealRecordingCase>
{
protected:
  void SetUp() override
  {
    if (!std::filesystem::exists(path()))
      GTEST_SKIP() << "there is no " << path();
  }

  static std::string path() { return std::string(SKEIGIOT_REAL_RECORDINGS "/") + GetParam().file; }
};

TEST_P(ExplainedRealRecording, IsRebuiltFromItsForcesToTheLastBit)
{
  const auto [rebuilt, persons] = explaintests::rebuild(path(), GetParam().person);
  EXPECT_EQ("", rebuilt.firstDifference);
  EXPECT_GT(rebuilt.updates, 10u);
  EXPECT_GT(rebuilt.forces, 4 * rebuilt.updates);
}

INSTANTIATE_TEST_SUITE_P(Files, ExplainedRealRecording,
                         ::testing::Values(RealRecordingCase{"OfOpenFace", "openface/openfaceR_lara.csv.gz", 0},
                                           RealRecordingCase{"OfTheOldLayout", "openface/pyfeat_OpenFace_Test.csv", 0},
                                           RealRecordingCase{"OfPyFeat", "pyfeat/news_001.csv.gz", 0}),
                         support::RowName());

}  // namespace
