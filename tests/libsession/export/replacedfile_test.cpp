#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/session/replacedfile.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace
{

using KV::session::OutputCheck;
using KV::session::ReplacedFile;
using KV::session::WriteError;
using replaytests::TemporaryFolder;
using Names = std::set<std::string>;

class ReplacedFileTest : public ::testing::Test
{
protected:
  TemporaryFolder folder;
  OutputCheck check{true};
};

TEST_F(ReplacedFileTest, TakesItsPlaceWhenItIsCommitted)
{
  folder.write("export", "old");
  ReplacedFile file(folder.path("export"), check);
  file.stream() << "new";
  file.stream().flush();
  EXPECT_EQ("old", folder.read("export"));
  file.commit();
  EXPECT_EQ("new", folder.read("export"));
  EXPECT_EQ((Names{"export"}), folder.names());
}

TEST_F(ReplacedFileTest, IsDroppedIfItIsNotCommitted)
{
  folder.write("export", "old");
  {
    ReplacedFile file(folder.path("export"), check);
    file.stream() << "new";
    EXPECT_EQ(2U, folder.names().size());
  }
  EXPECT_EQ("old", folder.read("export"));
  EXPECT_EQ((Names{"export"}), folder.names());
}

TEST_F(ReplacedFileTest, MayBeNew)
{
  ReplacedFile file(folder.path("export"), check);
  file.commit();
  EXPECT_EQ((Names{"export"}), folder.names());
}

TEST_F(ReplacedFileTest, KeepsThePermissionsOfTheOldOne)
{
  folder.write("export", "old");
  chmod(folder.path("export").c_str(), 0640);
  ReplacedFile file(folder.path("export"), check);
  file.commit();
  struct stat status = {};
  stat(folder.path("export").c_str(), &status);
  EXPECT_EQ(0640U, status.st_mode & 0777U);
}

TEST_F(ReplacedFileTest, HasTheUsualPermissionsIfItIsNew)
{
  const mode_t former = umask(027);
  ReplacedFile file(folder.path("export"), check);
  file.commit();
  umask(former);
  struct stat status = {};
  stat(folder.path("export").c_str(), &status);
  EXPECT_EQ(0640U, status.st_mode & 0777U);
}

TEST_F(ReplacedFileTest, ReplacesWhatALinkLeadsTo)
{
  folder.write("target", "old");
  std::filesystem::create_symlink("target", folder.path("link"));
  ReplacedFile file(folder.path("link"), check);
  file.stream() << "new";
  file.commit();
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
  EXPECT_EQ("new", folder.read("target"));
}

TEST_F(ReplacedFileTest, WritesToADeviceAsItIs)
{
  ReplacedFile file("/dev/null", check);
  file.stream() << "text";
  file.commit();
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(ReplacedFileTest, ReportsAFullDisk)
{
  ReplacedFile file("/dev/full", check);
  file.stream() << "text";
  EXPECT_EQ("/dev/full: No space left on device", support::textThrownBy<WriteError>([&file] { file.commit(); }));
}

TEST_F(ReplacedFileTest, CannotReplaceAFolder)
{
  const std::string path = folder.path("");
  EXPECT_EQ(path + ": Is a directory",
            support::textThrownBy<WriteError>([&] { const ReplacedFile file(path, check); }));
}

TEST_F(ReplacedFileTest, CannotBeMadeInAFolderThatIsNotThere)
{
  const std::string path = folder.path("missing/export");
  EXPECT_EQ(path + ": No such file or directory",
            support::textThrownBy<WriteError>([&] { const ReplacedFile file(path, check); }));
}

TEST_F(ReplacedFileTest, MayHaveTheLongestNameThatThereCanBe)
{
  const std::string name(255, 'n');
  ReplacedFile file(folder.path(name), check);
  file.stream() << "new";
  file.commit();
  EXPECT_EQ((Names{name}), folder.names());
  EXPECT_EQ("new", folder.read(name));
}

TEST_F(ReplacedFileTest, IsNotMadeIfTheCheckRefusesIt)
{
  const std::string recording = folder.write("recording.csv", "time,reading,value\n");
  OutputCheck careful;
  EXPECT_THROW(ReplacedFile(recording, careful), KV::session::OutputRefused);
  EXPECT_EQ((Names{"recording.csv"}), folder.names());
}

}  // namespace
