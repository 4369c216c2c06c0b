#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/session/replacedfile.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace
{

using KV::session::ReplacedFile;
using KV::session::WriteError;
using replaytests::TemporaryFolder;
using Names = std::set<std::string>;

TEST(ReplacedFile, TakesItsPlaceWhenItIsCommitted)
{
  const TemporaryFolder folder;
  folder.write("export", "old");
  ReplacedFile file(folder.path("export"));
  file.stream() << "new";
  file.stream().flush();
  EXPECT_EQ("old", folder.read("export"));
  file.commit();
  EXPECT_EQ("new", folder.read("export"));
  EXPECT_EQ((Names{"export"}), folder.names());
}

TEST(ReplacedFile, IsDroppedIfItIsNotCommitted)
{
  const TemporaryFolder folder;
  folder.write("export", "old");
  {
    ReplacedFile file(folder.path("export"));
    file.stream() << "new";
    EXPECT_EQ(2U, folder.names().size());
  }
  EXPECT_EQ("old", folder.read("export"));
  EXPECT_EQ((Names{"export"}), folder.names());
}

TEST(ReplacedFile, MayBeNew)
{
  const TemporaryFolder folder;
  ReplacedFile file(folder.path("export"));
  file.commit();
  EXPECT_EQ((Names{"export"}), folder.names());
}

TEST(ReplacedFile, KeepsThePermissionsOfTheOldOne)
{
  const TemporaryFolder folder;
  folder.write("export", "old");
  chmod(folder.path("export").c_str(), 0640);
  ReplacedFile file(folder.path("export"));
  file.commit();
  struct stat status = {};
  stat(folder.path("export").c_str(), &status);
  EXPECT_EQ(0640U, status.st_mode & 0777U);
}

TEST(ReplacedFile, HasTheUsualPermissionsIfItIsNew)
{
  const mode_t former = umask(027);
  const TemporaryFolder folder;
  ReplacedFile file(folder.path("export"));
  file.commit();
  umask(former);
  struct stat status = {};
  stat(folder.path("export").c_str(), &status);
  EXPECT_EQ(0640U, status.st_mode & 0777U);
}

TEST(ReplacedFile, ReplacesWhatALinkLeadsTo)
{
  const TemporaryFolder folder;
  folder.write("target", "old");
  std::filesystem::create_symlink("target", folder.path("link"));
  ReplacedFile file(folder.path("link"));
  file.stream() << "new";
  file.commit();
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
  EXPECT_EQ("new", folder.read("target"));
}

TEST(ReplacedFile, WritesToADeviceAsItIs)
{
  ReplacedFile file("/dev/null");
  file.stream() << "text";
  file.commit();
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(ReplacedFile, ReportsAFullDisk)
{
  ReplacedFile file("/dev/full");
  file.stream() << "text";
  EXPECT_EQ("/dev/full: No space left on device", support::textThrownBy<WriteError>([&file] { file.commit(); }));
}

TEST(ReplacedFile, CannotReplaceAFolder)
{
  const TemporaryFolder folder;
  const std::string path = folder.path("");
  EXPECT_EQ(path + ": Is a directory", support::textThrownBy<WriteError>([&path] { const ReplacedFile file(path); }));
}

TEST(ReplacedFile, CannotBeMadeInAFolderThatIsNotThere)
{
  const TemporaryFolder folder;
  const std::string path = folder.path("missing/export");
  EXPECT_EQ(path + ": No such file or directory",
            support::textThrownBy<WriteError>([&path] { const ReplacedFile file(path); }));
}

}  // namespace
