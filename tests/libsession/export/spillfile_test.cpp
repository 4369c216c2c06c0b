#include "export/spillfile.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace
{

using replaytests::TemporaryFolder;

TEST(SpillFile, GivesBackWhatWasWritten)
{
  const TemporaryFolder folder;
  KV::session::SpillFile file(folder.path(""));
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
  const KV::session::SpillFile file(folder.path(""));
  EXPECT_TRUE(folder.names().empty());
}

TEST(SpillFile, NeedsAFolder)
{
  const TemporaryFolder folder;
  EXPECT_THROW(KV::session::SpillFile(folder.path("none")), KV::session::WriteError);
}

}  // namespace
