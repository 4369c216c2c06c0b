#include "faultyprocess.hpp"
#include "smallrecording.hpp"
#include "smallstudy.hpp"

#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

namespace
{

using faults::ProcessFault;
using faults::ProcessResult;
using replaytests::TemporaryFolder;

struct OutputCase
{
  std::string name;
  std::vector<std::string> arguments;  ///< RECORDING is replaced by the path of a recording larger than a pipe
  bool isLong = true;                  ///< writes more than fits into a pipe
  bool endsWell = false;               ///< ends without an error when the reader leaves, as documented
};

class BlockedOutput : public ::testing::TestWithParam<OutputCase>
{
protected:
  ProcessResult run(const ProcessFault& fault) const
  {
    std::vector<std::string> arguments = GetParam().arguments;
    const std::string recording = folder.write("recording", faults::recordingOf(900));
    faults::writeStudy(folder);
    for (std::string& argument : arguments)
      argument = argument == "RECORDING" ? recording : argument == "STUDY" ? folder.path("study") : argument;
    ProcessFault withInput = fault;
    withInput.input = recording;
    return faults::runCommand(arguments, withInput);
  }

  const TemporaryFolder folder;
};

TEST_P(BlockedOutput, IsReportedIfTheDiskIsFull)
{
  ProcessFault fault;
  fault.output = "/dev/full";
  const ProcessResult result = run(fault);
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("skeigiot: standard output: No space left on device\n", result.errors);
}

TEST_P(BlockedOutput, EndsTheCommandQuietlyIfTheReaderHasLeft)
{
  ProcessFault fault;
  fault.readerLeaves = true;
  const ProcessResult result = run(fault);
  EXPECT_NE("", result.output) << "the first line arrived";
  EXPECT_EQ("", result.errors);
  const bool wasQuicker = !GetParam().isLong && result.status == 0;  // as the reader has
  EXPECT_TRUE(GetParam().endsWell ? result.status == 0 : wasQuicker || result.status == 1) << result.status;
}

INSTANTIATE_TEST_SUITE_P(
    Of, BlockedOutput,
    ::testing::Values(OutputCase{"AReplay", {"replay", "RECORDING"}, false},
                      OutputCase{"AnExport", {"replay", "RECORDING", "--csv", "-"}},
                      OutputCase{"AnInspection", {"inspect", "RECORDING"}, false},
                      OutputCase{"AnExplanation", {"why", "RECORDING", "--person", "3", "--at", "1"}, false},
                      OutputCase{"AListOfTypes", {"types"}, false}, OutputCase{"AHelp", {"replay", "--help"}, false},
                      OutputCase{"AVersion", {"--version"}, false}, OutputCase{"AMapping", {"mapping"}, false},
                      OutputCase{"AStudyCheck", {"study", "check", "STUDY"}, false},
                      OutputCase{"AnswersToLines", {"stream", "--times", "lines"}, true, true}),
    support::RowName());

TEST(FullDisk, IsReportedWithTheFileAndLeavesTheOldOne)
{
  for (const std::string option : {"--csv", "--jsonl", "--to-jsonl"})
  {
    const TemporaryFolder folder;
    const std::string recording = folder.write("recording", faults::recordingOf(900));
    const std::string exported = folder.write("export", "old");
    ProcessFault fault;
    fault.greatestFile = 65536;
    const ProcessResult result =
        faults::runCommand({"replay", recording, "--quiet", "--force", option, exported}, fault);
    EXPECT_EQ(1, result.status) << option;
    EXPECT_EQ("skeigiot: " + exported + ": File too large\n", result.errors) << option;
    EXPECT_EQ("old", folder.read("export")) << option;
    EXPECT_EQ((std::set<std::string>{"export", "recording"}), folder.names()) << option;
  }
}

}  // namespace
