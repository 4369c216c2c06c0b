#include "faultyprocess.hpp"
#include "smallrecording.hpp"

#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using faults::ProcessFault;
using faults::ProcessResult;
using replaytests::TemporaryFolder;

const std::string message = "skeigiot: there is not enough memory\n";

struct CommandCase
{
  std::string name;
  std::vector<std::string> before;  ///< arguments before the recording
  std::vector<std::string> after;   ///< and after it
};

class CommandWithoutMemory : public ::testing::TestWithParam<CommandCase>
{
protected:
  std::vector<std::string> arguments() const
  {
    std::vector<std::string> all = GetParam().before;
    all.push_back(recording);
    all.insert(all.end(), GetParam().after.begin(), GetParam().after.end());
    std::replace(all.begin(), all.end(), std::string("EXPORT"), exported);
    std::replace(all.begin(), all.end(), std::string("LABELS"), labels);
    return all;
  }

  ProcessResult runWithout(std::size_t allocation) const
  {
    ProcessFault fault;
    fault.failingAllocation = allocation;
    return faults::runCommand(arguments(), fault);
  }

  const TemporaryFolder folder;
  const std::string recording = folder.write("recording", faults::recordingOf(5));
  const std::string labels = folder.write("labels.csv", "start,end,value,person\n0,10,positive,3\n");
  const std::string exported = folder.path("export");
};

/// The first allocations one by one, then fewer and fewer: there are thousands.
std::size_t next(std::size_t allocation)
{
  return allocation + 1 + allocation / 20;
}

TEST_P(CommandWithoutMemory, EndsWithAMessageAndWithoutHalfAFile)
{
  const ProcessResult well = faults::runCommand(arguments());
  ASSERT_EQ(0, well.status) << well.errors;
  const std::string whole = folder.read("export");

  int complaints = 0;
  for (std::size_t allocation = 0;; allocation = next(allocation))
  {
    SCOPED_TRACE("allocation " + std::to_string(allocation) + " fails");
    folder.write("export", "old");
    const ProcessResult result = runWithout(allocation);
    const std::string content = folder.read("export");
    if (result.status == 0)
    {
      EXPECT_EQ(well.output, result.output);  // it was not needed, or replaced
      EXPECT_EQ(whole.empty() ? "old" : whole, content);
      if (!result.faulted)
        break;
      continue;
    }
    ++complaints;
    EXPECT_EQ(1, result.status) << result.errors;
    EXPECT_EQ(message, result.errors);
    EXPECT_TRUE(content == "old" || content == whole) << content;
    if (HasFailure())
      break;
  }
  EXPECT_GT(complaints, 50);
}

INSTANTIATE_TEST_SUITE_P(
    Of, CommandWithoutMemory,
    ::testing::Values(CommandCase{"Replay", {"replay"}, {"--quiet", "--force", "--csv", "EXPORT"}},
                      CommandCase{"ReplayOnSeveralThreads", {"replay", "--separately"}, {}},
                      CommandCase{"Inspect", {"inspect"}, {}},
                      CommandCase{"Elan", {"replay"}, {"--quiet", "--force", "--eaf", "EXPORT"}},
                      CommandCase{"Agree", {"agree"}, {"--labels", "LABELS", "--force", "--csv", "EXPORT"}},
                      CommandCase{"Why", {"why"}, {"--person", "3", "--at", "0.3", "--json"}}),
    support::RowName());

}  // namespace
