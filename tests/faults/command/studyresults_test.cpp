#include "faultyprocess.hpp"
#include "smallstudy.hpp"

#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace
{

using faults::ProcessFault;
using faults::ProcessResult;
using replaytests::TemporaryFolder;

namespace fs = std::filesystem;

/// A fault happens at every third call that changes a file: all of them would take minutes.
constexpr std::size_t stride = 3;

/// The results of a study, which SQLite writes, with a fault at calls that change a file.
class ResultsOfAStudy : public ::testing::Test
{
protected:
  ResultsOfAStudy()
  {
    faults::writeStudy(folder);
    runStudy(whole);
    wholeTables = tablesOf(whole);
  }

  ProcessResult runStudy(const std::string& results, const ProcessFault& fault = {}) const
  {
    return faults::runCommand({"study", "run", "--quiet", "--jobs", "1", "-o", results, folder.path("study")}, fault);
  }

  /// Returns the tables as CSV, by their names.
  std::map<std::string, std::string> tablesOf(const std::string& results) const
  {
    const TemporaryFolder exported;
    const ProcessResult result =
        faults::runCommand({"study", "export", "--quiet", results, "-o", exported.path("tables")});
    EXPECT_EQ(0, result.status) << result.errors;
    std::map<std::string, std::string> tables;
    for (const auto& entry : fs::directory_iterator(exported.path("tables")))
      tables[entry.path().filename().string()] = exported.read("tables/" + entry.path().filename().string());
    return tables;
  }

  /// Makes results of the first two sessions only.
  void makeFormerResults() const
  {
    fs::rename(folder.path("study/c"), folder.path("c"));
    ASSERT_EQ(0, runStudy(folder.path("former.sqlite")).status);
    fs::rename(folder.path("c"), folder.path("study/c"));
  }

  /// Expects that each session of the results is in them whole, and returns how many there are.
  std::size_t expectWholeSessions(const std::string& results) const
  {
    const std::map<std::string, std::string> tables = tablesOf(results);
    std::istringstream sessions(tables.at("sessions.csv"));
    std::set<std::string> names;
    for (std::string line; std::getline(sessions, line);)
      names.insert(line.substr(0, line.find(',')));
    for (const auto& [name, table] : tables)
    {
      std::string expected;  // the rows of the whole results that are about these sessions
      std::istringstream rows(wholeTables.at(name));
      for (std::string line; std::getline(rows, line);)
        if (wholeTables.at(name).compare(0, 8, "session,") != 0 || names.count(line.substr(0, line.find(','))) != 0)
          expected += line + "\n";
      EXPECT_EQ(expected, table) << name;
    }
    return names.size() - 1;  // without the header
  }

  const TemporaryFolder folder;
  const std::string whole = folder.path("whole.sqlite");
  std::map<std::string, std::string> wholeTables;
};

TEST_F(ResultsOfAStudy, AreTheSameAfterARunThatIsKilledAnywhereAndStartedAgain)
{
  ASSERT_EQ(3U, expectWholeSessions(whole));
  const std::string results = folder.path("results.sqlite");
  std::size_t call = 0;
  for (; call < 5000 && !HasFailure(); call += stride)
  {
    SCOPED_TRACE("killed before call " + std::to_string(call));
    fs::remove(results);
    fs::remove(results + "-journal");
    ProcessFault fault;
    fault.killedAtCall = call;
    const ProcessResult result = runStudy(results, fault);
    if (!result.faulted)
    {
      EXPECT_EQ(0, result.status) << result.errors;
      break;
    }
    ASSERT_EQ(-SIGKILL, result.status);
    const ProcessResult again = runStudy(results);
    ASSERT_EQ(0, again.status) << again.errors;
    ASSERT_EQ(wholeTables, tablesOf(results));
  }
  EXPECT_GT(call, 20U);
  EXPECT_EQ(wholeTables, tablesOf(results));
}

TEST_F(ResultsOfAStudy, HaveWholeSessionsWhereverARunIsKilled)
{
  makeFormerResults();
  const std::string results = folder.path("results.sqlite");
  std::set<std::size_t> found;
  for (std::size_t call = 0; call < 5000 && !HasFailure(); call += stride)
  {
    SCOPED_TRACE("killed before call " + std::to_string(call));
    fs::remove(results + "-journal");
    fs::copy_file(folder.path("former.sqlite"), results, fs::copy_options::overwrite_existing);
    ProcessFault fault;
    fault.killedAtCall = call;
    const ProcessResult result = runStudy(results, fault);
    found.insert(expectWholeSessions(results));
    if (!result.faulted)
      break;
  }
  EXPECT_EQ((std::set<std::size_t>{2, 3}), found);
}

TEST_F(ResultsOfAStudy, KeepTheFormerSessionsIfTheDiskIsFull)
{
  makeFormerResults();
  const std::string results = folder.path("results.sqlite");
  int complaints = 0;
  for (std::size_t call = 0; call < 5000 && !HasFailure(); call += stride)
  {
    SCOPED_TRACE("no room from call " + std::to_string(call) + " on");
    fs::copy_file(folder.path("former.sqlite"), results, fs::copy_options::overwrite_existing);
    ProcessFault fault;
    fault.fullAtCall = call;
    const ProcessResult result = runStudy(results, fault);
    EXPECT_FALSE(fs::exists(results + "-journal"));
    if (!result.faulted)
      break;
    ++complaints;
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("skeigiot: " + results + ": database or disk is full\n", result.errors);
    EXPECT_EQ(2U, expectWholeSessions(results));
  }
  EXPECT_GT(complaints, 2);
  ASSERT_EQ(0, runStudy(results).status);
  EXPECT_EQ(wholeTables, tablesOf(results));
}

TEST_F(ResultsOfAStudy, CanBeMadeAfterTheDiskWasFull)
{
  const std::string results = folder.path("results.sqlite");
  int complaints = 0;
  for (std::size_t call = 0; call < 5000 && !HasFailure(); call += stride)
  {
    SCOPED_TRACE("no room from call " + std::to_string(call) + " on");
    fs::remove(results);
    ProcessFault fault;
    fault.fullAtCall = call;
    const ProcessResult result = runStudy(results, fault);
    EXPECT_FALSE(fs::exists(results + "-journal"));
    if (!result.faulted)
      break;
    ++complaints;
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("skeigiot: " + results + ": database or disk is full\n", result.errors);
    const ProcessResult again = runStudy(results);
    ASSERT_EQ(0, again.status) << again.errors;
    ASSERT_EQ(wholeTables, tablesOf(results));
  }
  EXPECT_GT(complaints, 5);
}

}  // namespace
