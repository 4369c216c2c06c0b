#include "study/studyinputs.hpp"

#include <gtest/gtest.h>

#include <string>

namespace
{

namespace session = KV::session;

std::string relative(const std::string& folder, const std::string& text)
{
  session::Study study;
  study.folder = folder;
  return session::withoutFolder(study, text);
}

TEST(TextsOfAStudy, HavePathsRelativeToItsFolder)
{
  EXPECT_EQ("p01/face.csv: 'p01/voice.csv' is shorter",
            relative("/data/s", "/data/s/p01/face.csv: '/data/s/p01/voice.csv' is shorter"));
}

TEST(TextsOfAStudy, KeepFoldersOfTheSameNameBelowIt)
{
  EXPECT_EQ("data/face.csv", relative("a", "a/data/face.csv"));
  EXPECT_EQ("a/a/face.csv", relative("a", "a/a/a/face.csv"));
}

TEST(TextsOfAStudy, KeepOtherFoldersThatEndInItsName)
{
  EXPECT_EQ("mystudy/face.csv", relative("study", "mystudy/face.csv"));
  EXPECT_EQ("see other/study/face.csv", relative("study", "see other/study/face.csv"));
}

TEST(TextsOfAStudy, AreAsTheyAreInTheCurrentFolder)
{
  EXPECT_EQ("p01/face.csv", relative(".", "p01/face.csv"));
}

}  // namespace
