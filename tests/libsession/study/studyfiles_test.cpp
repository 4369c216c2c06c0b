#include "study/studyfiles.hpp"

#include "studyfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace session = KV::session;

class FilesBelowAFolder : public ::testing::Test
{
protected:
  void add(const std::string& name) const { folder.add(name, ""); }

  void link(const std::string& name, const std::string& target) const
  {
    std::filesystem::create_directory_symlink(target, folder.path(name));
  }

  std::string errorFor(const std::string& name) const
  {
    return support::textThrownBy<KV::recordings::Error>([&] { session::studyFilesIn(folder.path(name)); });
  }

  StudyFolder folder;
};

TEST_F(FilesBelowAFolder, HaveRelativePathsInTheOrderOfTheirNames)
{
  add("p02/face.csv");
  add("p01/voice.csv");
  add("p01/face.csv");
  add("notes.txt");
  EXPECT_THAT(session::studyFilesIn(folder.path("")),
              ElementsAre("notes.txt", "p01/face.csv", "p01/voice.csv", "p02/face.csv"));
}

TEST_F(FilesBelowAFolder, MayBeNone)
{
  EXPECT_THAT(session::studyFilesIn(folder.path("")), IsEmpty());
}

TEST_F(FilesBelowAFolder, LeaveOutWhatIsHidden)
{
  add(".face.csv");
  add(".trash/face.csv");
  add("p01/.face.csv");
  add("p01/face.csv");
  EXPECT_THAT(session::studyFilesIn(folder.path("")), ElementsAre("p01/face.csv"));
}

TEST_F(FilesBelowAFolder, LeaveOutResultsOfStudies)
{
  add("results.sqlite");
  add("results.sqlite-journal");
  add("old/results.sqlite");
  add("old/sqlite.csv");
  EXPECT_THAT(session::studyFilesIn(folder.path("")), ElementsAre("old/sqlite.csv"));
}

TEST_F(FilesBelowAFolder, HaveABagAsOneFile)
{
  add("p01/bag/metadata.yaml");
  add("p01/bag/bag_0.mcap");
  add("p01/bag/more/face.csv");
  add("p01/nobag/bag_0.mcap");
  EXPECT_THAT(session::studyFilesIn(folder.path("")), ElementsAre("p01/bag", "p01/nobag/bag_0.mcap"));
}

TEST_F(FilesBelowAFolder, LeaveOutWhatWouldNeverEnd)
{
  add("face.csv");
  ASSERT_EQ(0, ::mkfifo(folder.path("pipe.csv").c_str(), 0600));
  EXPECT_THAT(session::studyFilesIn(folder.path("")), ElementsAre("face.csv"));
}

TEST_F(FilesBelowAFolder, AreAtMostThirtyTwoFoldersDeep)
{
  std::string deepest;
  for (int i = 0; i < 32; ++i)
    deepest += "a/";
  add(deepest + "face.csv");
  add(deepest + "a/face.csv");
  EXPECT_THAT(session::studyFilesIn(folder.path("")), ElementsAre(deepest + "face.csv"));
}

TEST_F(FilesBelowAFolder, AreAlsoThoseOfLinkedFolders)
{
  add("a/x.csv");
  link("b", "a");
  EXPECT_THAT(session::studyFilesIn(folder.path("")), ElementsAre("a/x.csv", "b/x.csv"));
}

TEST_F(FilesBelowAFolder, HaveAnEndWhereLinksLeadInACircle)
{
  add("a/x.csv");
  add("b/y.csv");
  link("a/self", ".");
  link("a/up", "..");
  for (const std::string name : {"1", "2", "3"})
  {
    link("a/to-b" + name, "../b");
    link("b/to-a" + name, "../a");
  }
  link("a/nowhere", "nowhere");
  link("a/around", "around");
  const std::vector<std::string> files = session::studyFilesIn(folder.path(""));
  EXPECT_EQ(2U + 3U + 3U, files.size()) << "each way to a file that goes through no folder twice";
}

TEST_F(FilesBelowAFolder, CannotBeThoseOfAFolderThatDoesNotExist)
{
  EXPECT_EQ(folder.path("nowhere") + ": cannot be read: No such file or directory", errorFor("nowhere"));
}

TEST_F(FilesBelowAFolder, CannotBeThoseOfAFile)
{
  add("face.csv");
  EXPECT_EQ(folder.path("face.csv") + ": cannot be read: Not a directory", errorFor("face.csv"));
}

TEST(NameOfAFolder, IsItsLastPart)
{
  EXPECT_EQ("greetings", session::nameOfFolder("/data/greetings"));
  EXPECT_EQ("greetings", session::nameOfFolder("/data/greetings/"));
  EXPECT_EQ("greetings", session::nameOfFolder("/data/greetings/p01/.."));
}

TEST(NameOfAFolder, IsAlsoKnownOfTheCurrentFolder)
{
  EXPECT_EQ(std::filesystem::current_path().filename().string(), session::nameOfFolder("."));
}

TEST(NamesOfLabels, AreThoseOfElanAndPraat)
{
  EXPECT_TRUE(session::isNamedAsLabels("p01/phases.eaf"));
  EXPECT_TRUE(session::isNamedAsLabels("p01/phases.TextGrid"));
  EXPECT_FALSE(session::isNamedAsLabels("p01/phases.csv"));
  EXPECT_FALSE(session::isNamedAsLabels("p01.eaf/face"));
}

}  // namespace
