#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/builtinmapping.hpp>

#include <gtest/gtest.h>

#include <string>

namespace
{

using replaytests::CommandResult;
using replaytests::runCommand;
using replaytests::TemporaryFolder;

constexpr const char* face =
    "frame,face_id,timestamp,confidence,success,AU04_r,AU12_r\n"
    "1,0,0.0,0.98,1,0.1,2.5\n"
    "2,0,0.1,0.98,1,1.9,0.2\n"
    "3,0,0.2,0.98,1,2.4,0.0\n";

TEST(MappingCommand, PrintsTheBuiltInTables)
{
  const CommandResult result = runCommand({"mapping"});

  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  EXPECT_EQ(KV::recordings::builtInMapping(), result.output);
}

TEST(MappingCommand, PrintsAFileThatChangesNothing)
{
  const TemporaryFolder folder;
  const std::string recording = folder.write("face.csv", face);
  const std::string mapping = folder.write("mapping.json", runCommand({"mapping"}).output);

  const CommandResult builtIn = runCommand({"replay", recording, "--csv", "-", "--quiet"});
  const CommandResult read = runCommand({"replay", recording, "--csv", "-", "--quiet", "--mapping", mapping});

  EXPECT_EQ(0, builtIn.status) << builtIn.errors;
  EXPECT_EQ(builtIn.output, read.output) << read.errors;
}

}  // namespace
