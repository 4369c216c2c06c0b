#include "support/command.hpp"
#include "support/temporaryfolder.hpp"
#include "tools/commands/rebuildrecording.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

/// \file
/// The recording of the demo, explained.

namespace
{

using namespace replaytests;

class DemoRecording : public ::testing::Test
{
protected:
  DemoRecording() { made = runShell("\"$1\" \"$2\"", {SKEIGIOT_MAKE_GREETING, folder.path("greeting.jsonl")}); }

  void SetUp() override { ASSERT_EQ(0, made.status) << made.errors; }

  TemporaryFolder folder;
  CommandResult made;
};

TEST_F(DemoRecording, IsRebuiltFromItsForcesToTheLastBit)
{
  for (const std::int32_t person : {1, 2})
  {
    const auto [rebuilt, persons] = explaintests::rebuild(folder.path("greeting.jsonl"), person);
    EXPECT_EQ("", rebuilt.firstDifference) << "person " << person;
    EXPECT_EQ(2u, persons.size());
    EXPECT_GT(rebuilt.updates, 300u);
    EXPECT_GT(rebuilt.forces, 4 * rebuilt.updates);
  }
}

/// The commands that the page shows after "$ skeigiot", each with the output below it.
std::vector<std::pair<std::string, std::string>> shownCommands()
{
  const std::string prompt = "$ skeigiot ";
  std::ifstream page(SKEIGIOT_EXPLAIN_PAGE);
  std::vector<std::pair<std::string, std::string>> commands;
  bool isInside = false;
  for (std::string line; std::getline(page, line);)
  {
    if (line.rfind("```", 0) == 0)
      isInside = false;
    else if (isInside)
      commands.back().second += line + "\n";
    else if (line.rfind(prompt, 0) == 0)
    {
      commands.emplace_back(line.substr(prompt.size()), "");
      isInside = true;
    }
  }
  return commands;
}

TEST_F(DemoRecording, IsExplainedByThePageAsByTheCommand)
{
  const auto commands = shownCommands();
  ASSERT_GE(commands.size(), 4u);
  for (const auto& [command, output] : commands)
  {
    const CommandResult result = runShell("cd \"$1\" && \"$skeigiot\" " + command, {folder.path("")});
    EXPECT_EQ(0, result.status) << command << "\n" << result.errors;
    EXPECT_EQ(result.output, output) << command;
  }
}

}  // namespace
