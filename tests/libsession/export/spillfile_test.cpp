#include "spillfile.hpp"

#include "temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace
{

using replaytests::TemporaryFolder;

TEST(SpillFile, GivesBackWhatWasWritten)
{
  const TemporaryFolder folder;
  tools::SpillFile file(folder.path(""));
  std::string text;
  for (int i = 0; i < 50'000; ++i)
    text += std::to_string(i) + '\n';
  file.stream() << text;
  std::ostringstream target;
  file.copyTo(target);
  EXPECT_EQ(text, target.str());
}

TEST(SpillFile, HasNoName)
{
  const TemporaryFolder folder;
  const tools::SpillFile file(folder.path(""));
  EXPECT_TRUE(folder.names().empty());
}

TEST(SpillFile, NeedsAFolder)
{
  const TemporaryFolder folder;
  EXPECT_THROW(tools::SpillFile(folder.path("none")), tools::WriteError);
}

}  // namespace
