#include "input/filehead.hpp"

#include "librecordings/support.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>

#include <gtest/gtest.h>

#include <string>

namespace
{

using KV::recordings::headOfFile;

TEST(FileHead, IsTheBeginningOfTheFile)
{
  const support::TemporaryFolder folder;
  EXPECT_EQ("abc", headOfFile(folder.write("file", "abcdef"), 3));
  EXPECT_EQ("abcdef", headOfFile(folder.path("file"), 100));
  EXPECT_EQ("", headOfFile(folder.write("empty", ""), 100));
}

TEST(FileHead, SaysWhyTheFileCannotBeRead)
{
  const support::TemporaryFolder folder;
  const std::string missing = folder.path("missing");
  EXPECT_EQ(missing + ": cannot be opened: No such file or directory",
            support::textThrownBy<KV::recordings::Error>([&] { headOfFile(missing, 4); }));
  EXPECT_EQ(folder.path() + ": cannot be read: Is a directory",
            support::textThrownBy<KV::recordings::Error>([&] { headOfFile(folder.path(), 4); }));
}

}  // namespace
