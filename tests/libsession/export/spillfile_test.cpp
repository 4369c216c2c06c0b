#include "export/spillfile.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

namespace
{

using KV::session::SpillFile;
using KV::session::SpillStore;
using replaytests::TemporaryFolder;

std::string numbersFrom(int first, int count)
{
  std::string text;
  for (int i = first; i < first + count; ++i)
    text += std::to_string(i) + '\n';
  return text;
}

std::string contentOf(SpillFile& file)
{
  std::ostringstream target;
  file.copyTo(target);
  return target.str();
}

class SpillFileTest : public ::testing::Test
{
protected:
  TemporaryFolder folder;
  std::shared_ptr<SpillStore> store = std::make_shared<SpillStore>(folder.path(""));
};

TEST_F(SpillFileTest, GivesBackWhatWasWritten)
{
  SpillFile file(store);
  file.stream() << numbersFrom(0, 50'000);
  EXPECT_EQ(numbersFrom(0, 50'000), contentOf(file));
}

TEST_F(SpillFileTest, IsEmptyWithoutAnythingWritten)
{
  SpillFile file(store);
  EXPECT_EQ("", contentOf(file));
}

TEST_F(SpillFileTest, GivesBackExactlyOneBlock)
{
  const std::string block(SpillStore::blockSize, 'x');
  SpillFile file(store);
  file.stream() << block;
  EXPECT_EQ(block, contentOf(file));
  file.stream() << 'y';
  EXPECT_EQ(block + 'y', contentOf(file));
}

TEST_F(SpillFileTest, KeepsItsBytesApartFromThoseOfAnotherOne)
{
  SpillFile one(store);
  SpillFile other(store);
  for (int i = 0; i < 50; ++i)
  {
    one.stream() << numbersFrom(1000 * i, 1000);
    other.stream() << numbersFrom(1'000'000 + 1000 * i, 1000);
  }
  EXPECT_EQ(numbersFrom(0, 50'000), contentOf(one));
  EXPECT_EQ(numbersFrom(1'000'000, 50'000), contentOf(other));
}

TEST_F(SpillFileTest, NeedsAFolderOnlyForWhatDoesNotFitIntoMemory)
{
  SpillFile file(std::make_shared<SpillStore>(folder.path("none")));
  file.stream() << "short";
  EXPECT_EQ("short", contentOf(file));
  EXPECT_THROW(file.stream() << std::string(SpillStore::blockSize, 'x'), KV::session::WriteError);
}

}  // namespace
