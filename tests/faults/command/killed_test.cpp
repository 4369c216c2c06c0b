#include "faultyprocess.hpp"
#include "smallrecording.hpp"

#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <map>

namespace
{

using faults::ProcessFault;
using faults::ProcessResult;
using replaytests::TemporaryFolder;

constexpr int steps = 700;  // so that every export takes more than one write
const std::vector<std::string> exportNames{"states.csv", "states.jsonl", "recording.jsonl"};

class KilledCommand : public ::testing::Test
{
protected:
  ProcessResult runExport(const ProcessFault& fault = {}) const
  {
    return faults::runCommand(
        {"replay", recording, "--quiet", "--force", "--jobs", "1", "--csv", folder.path(exportNames[0]), "--jsonl",
         folder.path(exportNames[1]), "--to-jsonl", folder.path(exportNames[2])},
        fault);
  }

  std::map<std::string, std::string> contents() const
  {
    std::map<std::string, std::string> all;
    for (const std::string& name : exportNames)
      all[name] = folder.read(name);
    return all;
  }

  const TemporaryFolder folder;
  const std::string recording = folder.write("recording", faults::recordingOf(steps));
};

TEST_F(KilledCommand, LeavesTheOldFileOrTheNewOneWhereverItIsKilled)
{
  ASSERT_EQ(0, runExport().status);
  const std::map<std::string, std::string> whole = contents();
  for (const auto& [name, content] : whole)
    ASSERT_GT(content.size(), 65536U) << name << " is written at once";

  int untouched = 0;
  int replaced = 0;
  std::size_t call = 0;
  for (;; ++call)
  {
    SCOPED_TRACE("killed before call " + std::to_string(call));
    for (const std::string& name : exportNames)
      folder.write(name, "old");
    ProcessFault fault;
    fault.killedAtCall = call;
    const ProcessResult result = runExport(fault);
    for (const auto& [name, content] : contents())
    {
      const bool isOld = content == "old";
      EXPECT_TRUE(isOld || content == whole.at(name)) << name << " has " << content.size() << " bytes";
      ++(isOld ? untouched : replaced);
    }
    if (result.status == 0)
      break;
    ASSERT_EQ(-SIGKILL, result.status);
    ASSERT_LT(call, 200U) << "it never ends";
  }
  EXPECT_GE(call, 18U);  // making, writing twice, making permanent, putting in place and closing three files
  EXPECT_GT(untouched, 30);
  EXPECT_GT(replaced, 5);
  EXPECT_EQ(whole, contents());
}

TEST_F(KilledCommand, LeavesNoNewFileThatIsNotWhole)
{
  ASSERT_EQ(0, runExport().status);
  const std::map<std::string, std::string> whole = contents();
  for (std::size_t call = 0;; call += 3)
  {
    for (const std::string& name : exportNames)
      std::filesystem::remove(folder.path(name));
    ProcessFault fault;
    fault.killedAtCall = call;
    const ProcessResult result = runExport(fault);
    for (const std::string& name : exportNames)
      EXPECT_TRUE(!std::filesystem::exists(folder.path(name)) || folder.read(name) == whole.at(name))
          << name << " killed before call " << call;
    if (result.status == 0)
      break;
  }
}

}  // namespace
