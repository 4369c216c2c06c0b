#include "faultyprocess.hpp"
#include "smallrecording.hpp"
#include "smallstudy.hpp"

#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/session/report.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace
{

using faults::ProcessFault;
using faults::ProcessResult;
using replaytests::TemporaryFolder;

namespace fs = std::filesystem;

/// A command that writes files. In its arguments, "@name" is a path in the folder of the test.
struct WriterCase
{
  std::string name;
  std::vector<std::string> arguments;
  bool needsPage = false;  ///< of a report, which is not in every build
};

using Contents = std::map<std::string, std::string>;

bool isTemporary(const fs::path& path)
{
  return path.filename().string().compare(0, 10, ".skeigiot.") == 0;
}

/// Every file that a command writes, with a fault at each call that changes a file.
class Writer : public ::testing::TestWithParam<WriterCase>
{
protected:
  void SetUp() override
  {
    if (GetParam().needsPage && !KV::session::Report::isAvailable())
      GTEST_SKIP() << "built without the page";
    ::setenv("SOURCE_DATE_EPOCH", "1577836800", 1);       // reports have the same date each time
    folder.write("recording", faults::recordingOf(700));  // so that most exports take more than one write
    folder.write("labels.csv", "start,end,value,person\n0,10,positive,3\n");
    faults::writeStudy(folder);
    fs::create_directory(folder.path("recordings"));
    for (const std::string name : {"recordings/first.jsonl", "recordings/second.jsonl"})
      folder.write(name, faults::recordingOf(50));
    const ProcessResult ofStudy =
        faults::runCommand({"study", "run", "--quiet", "-o", folder.path("results.sqlite"), folder.path("study")});
    ASSERT_EQ(0, ofStudy.status) << ofStudy.errors;

    const Contents inputs = contents();
    const ProcessResult well = run();
    ASSERT_EQ(0, well.status) << well.errors;
    whole = contents();
    for (const auto& [name, content] : whole)
      if (inputs.count(name) == 0 || inputs.at(name) != content)
        outputs.push_back(name);
    ASSERT_FALSE(outputs.empty());
  }

  ProcessResult run(const ProcessFault& fault = {}) const
  {
    std::vector<std::string> arguments = GetParam().arguments;
    for (std::string& argument : arguments)
      argument = argument.front() == '@' ? folder.path(argument.substr(1)) : argument;
    return faults::runCommand(arguments, fault);
  }

  /// Returns all files in the folder of the test, by their paths.
  Contents contents() const
  {
    Contents all;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path("")))
      if (entry.is_regular_file())
      {
        const std::string name = fs::relative(entry.path(), folder.path("")).string();
        all[name] = folder.read(name);
      }
    return all;
  }

  void putOldFiles() const
  {
    for (const std::string& name : outputs)
      folder.write(name, "old");
  }

  /// Expects each output to be the old or the new one, and all other files as they were.
  void expectOldOrWhole(const Contents& now) const
  {
    for (const auto& [name, content] : whole)
    {
      const auto found = now.find(name);
      ASSERT_TRUE(found != now.end()) << name << " is gone";
      const bool isOutput = std::find(outputs.begin(), outputs.end(), name) != outputs.end();
      EXPECT_TRUE(found->second == content || (isOutput && found->second == "old"))
          << name << " has " << found->second.size() << " of " << content.size() << " bytes";
    }
    for (const auto& [name, content] : now)
      EXPECT_TRUE(whole.count(name) != 0 || isTemporary(name)) << name << " is new";
  }

  const TemporaryFolder folder;
  Contents whole;
  std::vector<std::string> outputs;
};

TEST_P(Writer, NamesTheFileThatDoesNotFitOnTheDiskAndLeavesTheOldOne)
{
  int complaints = 0;
  for (std::size_t call = 0; call < 1000 && !HasFailure(); ++call)
  {
    SCOPED_TRACE("no room from call " + std::to_string(call) + " on");
    putOldFiles();
    ProcessFault fault;
    fault.fullAtCall = call;
    const ProcessResult result = run(fault);
    const Contents now = contents();
    expectOldOrWhole(now);
    for (const auto& [name, content] : now)
      EXPECT_FALSE(isTemporary(name)) << name << " is left";
    if (!result.faulted)
    {
      EXPECT_EQ(whole, now);
      break;
    }
    ++complaints;
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("skeigiot: ", result.errors.substr(0, 10));
    EXPECT_NE(std::string::npos, result.errors.find(folder.path("").substr(0, folder.path("").size() - 1)))
        << result.errors;
    EXPECT_NE(std::string::npos, result.errors.find(": No space left on device\n")) << result.errors;
  }
  EXPECT_GE(complaints, 4);  // making, writing, making permanent and putting in place
}

TEST_P(Writer, LeavesTheOldFileOrTheNewOneWhereverItIsKilled)
{
  std::size_t call = 0;
  for (; call < 1000 && !HasFailure(); ++call)
  {
    SCOPED_TRACE("killed before call " + std::to_string(call));
    putOldFiles();
    ProcessFault fault;
    fault.killedAtCall = call;
    const ProcessResult result = run(fault);
    const Contents now = contents();
    expectOldOrWhole(now);
    for (const auto& [name, content] : now)
      if (isTemporary(name))
        fs::remove(folder.path(name));
    if (!result.faulted)
    {
      EXPECT_EQ(0, result.status) << result.errors;
      EXPECT_EQ(whole, now);
      break;
    }
    ASSERT_EQ(-SIGKILL, result.status);
  }
  EXPECT_GE(call, 5U);
}

INSTANTIATE_TEST_SUITE_P(
    Of, Writer,
    ::testing::Values(
        WriterCase{"Csv", {"replay", "@recording", "--quiet", "--force", "--csv", "@export"}},
        WriterCase{"JsonLines", {"replay", "@recording", "--quiet", "--force", "--jsonl", "@export"}},
        WriterCase{"Summary", {"replay", "@recording", "--quiet", "--force", "--summary", "@export"}},
        WriterCase{"Recording", {"replay", "@recording", "--quiet", "--force", "--to-jsonl", "@export"}},
        WriterCase{"Elan", {"replay", "@recording", "--quiet", "--force", "--eaf", "@export"}},
        WriterCase{"Audacity", {"replay", "@recording", "--quiet", "--force", "--audacity", "@export"}},
        WriterCase{"SessionsAtTheSameTime",
                   {"replay", "@recording", "@study/b/robot.jsonl", "--separately", "--jobs", "2", "--quiet", "--force",
                    "--csv", "@export"}},
        WriterCase{"ReportOfAReplay", {"replay", "@recording", "--quiet", "--force", "--report", "@export"}, true},
        WriterCase{"Report", {"report", "@recording", "--force", "-o", "@export"}, true},
        WriterCase{"FolderOfReports", {"report", "@recordings", "--force", "-o", "@pages"}, true},
        WriterCase{"Agreement", {"agree", "@recording", "--labels", "@labels.csv", "--force", "--csv", "@export"}},
        WriterCase{"StudyFile", {"study", "init", "@study", "--quiet", "--force", "-o", "@export"}},
        WriterCase{"TableOfAStudy",
                   {"study", "export", "@results.sqlite", "--table", "updates", "--force", "-o", "@export"}},
        WriterCase{"TablesOfAStudy", {"study", "export", "@results.sqlite", "--quiet", "--force", "-o", "@tables"}},
        WriterCase{
            "ReportOfAStudy", {"study", "report", "@results.sqlite", "--quiet", "--force", "-o", "@export"}, true}),
    support::RowName());

}  // namespace
