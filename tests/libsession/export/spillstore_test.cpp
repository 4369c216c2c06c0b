#include "export/spillstore.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace
{

using KV::session::SpillStore;
using replaytests::TemporaryFolder;

std::size_t openFiles()
{
  const std::filesystem::directory_iterator entries("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::string blockOf(char letter)
{
  return std::string(SpillStore::blockSize, letter);
}

std::string read(const SpillStore& store, SpillStore::Block block)
{
  std::string bytes(SpillStore::blockSize, ' ');
  store.read(block, bytes.data());
  return bytes;
}

TEST(SpillStore, KeepsManyBlocksInOneFileWithoutAName)
{
  const TemporaryFolder folder;
  SpillStore store(folder.path(""));
  const std::size_t before = openFiles();
  for (int i = 0; i < 100; ++i)
    store.keep(blockOf(static_cast<char>('A' + i % 26)).data());
  EXPECT_EQ(before + 1, openFiles());
  EXPECT_TRUE(folder.names().empty());
  EXPECT_EQ(blockOf('A'), read(store, 0));
  EXPECT_EQ(blockOf('C'), read(store, 2));
}

TEST(SpillStore, UsesAReleasedBlockAgain)
{
  const TemporaryFolder folder;
  SpillStore store(folder.path(""));
  const SpillStore::Block first = store.keep(blockOf('a').data());
  const SpillStore::Block second = store.keep(blockOf('b').data());
  store.release(first);
  EXPECT_EQ(first, store.keep(blockOf('c').data()));
  EXPECT_EQ(blockOf('c'), read(store, first));
  EXPECT_EQ(blockOf('b'), read(store, second));
}

TEST(SpillStore, MakesNoFileBeforeTheFirstBlock)
{
  const std::size_t before = openFiles();
  const SpillStore store("/no/such/folder");
  EXPECT_EQ(before, openFiles());
}

TEST(SpillStore, SaysWhereItCouldNotMakeItsFile)
{
  SpillStore store("/no/such/folder");
  try
  {
    store.keep(blockOf('a').data());
    FAIL() << "there is no such folder";
  }
  catch (const KV::session::WriteError& error)
  {
    EXPECT_STREQ("temporary file in /no/such/folder: No such file or directory", error.what());
  }
}

}  // namespace
