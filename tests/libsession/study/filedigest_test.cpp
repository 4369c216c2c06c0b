#include "study/filedigest.hpp"

#include "studyfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace
{

using namespace replaytests;
namespace session = KV::session;

TEST(Sha256OfAText, IsThatOfTheStandard)
{
  EXPECT_EQ("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", session::hexSha256(""));
  EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", session::hexSha256("abc"))
      << "the first example of FIPS 180-4";
  EXPECT_EQ(0xbaU, session::sha256("abc").front());
  EXPECT_EQ(0xadU, session::sha256("abc").back());
}

TEST(FileDigest, IsThatOfTheContents)
{
  const StudyFolder folder;
  folder.add("face.csv", "abc");
  const session::FileDigest digest = session::digestOfFile(folder.path("face.csv"));
  EXPECT_EQ(3U, digest.bytes);
  EXPECT_EQ(session::hexSha256("abc"), digest.sha256);
}

TEST(FileDigest, ReadsMoreThanOneBlock)
{
  const StudyFolder folder;
  const std::string contents(3U << 18U, 'a');
  folder.add("face.csv", contents + "b");
  EXPECT_EQ(session::hexSha256(contents + "b"), session::digestOfFile(folder.path("face.csv")).sha256);
}

TEST(FileDigest, HasTheTimeOfTheLastChange)
{
  const StudyFolder folder;
  folder.add("face.csv", "abc");
  session::FileDigest before;
  ASSERT_TRUE(session::lookAtFile(folder.path("face.csv"), before));
  EXPECT_EQ("", before.sha256) << "a look does not read the file";
  const std::filesystem::path face = folder.path("face.csv");
  std::filesystem::last_write_time(face, std::filesystem::last_write_time(face) + std::chrono::nanoseconds(2500000001));
  session::FileDigest after;
  ASSERT_TRUE(session::lookAtFile(folder.path("face.csv"), after));
  EXPECT_EQ(2500000001, after.modified - before.modified);
}

TEST(FileDigest, OfAFolderIsThatOfTheNamesAndContentsOfItsFiles)
{
  const StudyFolder folder;
  folder.add("bag/b.db3", "abcd");
  folder.add("bag/a.yaml", "abc");
  folder.add("bag/below/ignored.csv", "abc");
  const session::FileDigest digest = session::digestOfFile(folder.path("bag"));
  EXPECT_EQ(7U, digest.bytes);
  EXPECT_EQ(session::hexSha256(session::hexSha256("abc") + "  a.yaml\n" + session::hexSha256("abcd") + "  b.db3\n"),
            digest.sha256)
      << "a list as sha256sum prints it";
  session::FileDigest newest;
  ASSERT_TRUE(session::lookAtFile(folder.path("bag/b.db3"), newest));
  const std::filesystem::path first = folder.path("bag/a.yaml");
  std::filesystem::last_write_time(first, std::filesystem::last_write_time(first) + std::chrono::hours(1));
  session::FileDigest changed;
  ASSERT_TRUE(session::lookAtFile(folder.path("bag/a.yaml"), changed));
  ASSERT_TRUE(session::lookAtFile(folder.path("bag"), newest));
  EXPECT_EQ(changed.modified, newest.modified) << "the latest of its files";
}

TEST(FileDigest, OfAFolderWithOneFileIsNotThatOfTheFile)
{
  const StudyFolder folder;
  folder.add("bag/a.yaml", "abc");
  EXPECT_EQ(session::hexSha256(session::hexSha256("abc") + "  a.yaml\n"),
            session::digestOfFile(folder.path("bag")).sha256);
}

TEST(FileDigest, RefusesAFileThatDoesNotExist)
{
  const StudyFolder folder;
  session::FileDigest digest;
  EXPECT_FALSE(session::lookAtFile(folder.path("gone.csv"), digest));
  EXPECT_EQ(folder.path("gone.csv") + ": cannot be read: No such file or directory",
            support::textThrownBy<KV::recordings::Error>([&] { session::digestOfFile(folder.path("gone.csv")); }));
}

}  // namespace
