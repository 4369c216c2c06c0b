#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/session/outputcheck.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using KV::session::OutputCheck;
using KV::session::OutputFault;
using KV::session::OutputRefused;
using replaytests::TemporaryFolder;

const char* const recording = "time,reading,value\n0,smile,1\n";
const char* const exported = "recording,person,time,clock\n";

class OutputCheckTest : public ::testing::Test
{
protected:
  std::string refusalOf(const std::string& target)
  {
    return support::textThrownBy<OutputRefused>([&] { check.admit(target); });
  }

  static std::string isInput(const std::string& target, const std::string& protectedAs)
  {
    return target + ": is the input " + protectedAs + ", which would be overwritten; write to another file";
  }

  TemporaryFolder folder;
  const std::string input = folder.write("face.csv", recording);
  OutputCheck check;
};

TEST_F(OutputCheckTest, AdmitsNewFilesAndReturnsTheirPaths)
{
  check.protect(input);
  EXPECT_EQ(std::filesystem::canonical(folder.path("")).string() + "/new.csv", check.admit(folder.path("./new.csv")));
}

TEST_F(OutputCheckTest, RefusesAnInput)
{
  check.protect(input);
  EXPECT_EQ(isInput(input, input), refusalOf(input));
}

TEST_F(OutputCheckTest, RefusesAnInputEvenIfItLooksLikeAnExportOrIsForced)
{
  const std::string old = folder.write("old.csv", exported);
  check = OutputCheck(true);
  check.protect(old);
  EXPECT_EQ(isInput(old, old), refusalOf(old));
}

TEST_F(OutputCheckTest, RefusesAnInputUnderEverySpellingAndThroughEveryLink)
{
  std::filesystem::create_directory(folder.path("inner"));
  std::filesystem::create_symlink(input, folder.path("symbolic"));
  std::filesystem::create_symlink("symbolic", folder.path("symbolic2"));
  std::filesystem::create_directory_symlink(folder.path(""), folder.path("inner/up"));
  std::filesystem::create_hard_link(input, folder.path("hard"));
  check.protect(folder.path("symbolic"));
  for (const char* const name : {"./face.csv", "inner/../face.csv", "symbolic2", "hard", "inner/up/hard"})
    EXPECT_EQ(isInput(folder.path(name), folder.path("symbolic")), refusalOf(folder.path(name))) << name;
}

TEST_F(OutputCheckTest, RefusesEachFileOfAFolderThatIsAnInput)
{
  std::filesystem::create_directory(folder.path("bag"));
  const std::string file = folder.write("bag/bag_0.db3", "");
  check.protect(KV::session::SessionInputs{{{folder.path("bag"), {}}}});
  EXPECT_EQ(isInput(file, file), refusalOf(file));
}

TEST_F(OutputCheckTest, RefusesTheFileThatIsStandardInput)
{
  const int before = dup(STDIN_FILENO);
  const int file = open(input.c_str(), O_RDONLY);
  dup2(file, STDIN_FILENO);
  check.protect("-");
  dup2(before, STDIN_FILENO);
  close(file);
  close(before);
  EXPECT_EQ(isInput(input, "-"), refusalOf(input));
}

TEST_F(OutputCheckTest, TakesInputsThatAreNoRegularFilesOrAreNotThere)
{
  check.protect("/dev/null");
  check.protect(folder.path("missing.csv"));
  check.protect("");
  EXPECT_EQ("/dev/null", check.admit("/dev/null"));
  check.admit(folder.path("missing.csv"));
}

TEST_F(OutputCheckTest, RefusesTwoOutputsToOneFile)
{
  check.admit(folder.path("al"));
  EXPECT_EQ(folder.path("al") + ": is written twice; give each output a file of its own", refusalOf(folder.path("al")));
  EXPECT_EQ(
      folder.path("./al") + ": is written twice, also as " + folder.path("al") + "; give each output a file of its own",
      refusalOf(folder.path("./al")));
}

TEST_F(OutputCheckTest, RefusesTwoOutputsToTwoLinksOfOneFile)
{
  const std::string old = folder.write("old.csv", exported);
  std::filesystem::create_hard_link(old, folder.path("hard"));
  check.admit(old);
  EXPECT_EQ(folder.path("hard") + ": is written twice, also as " + old + "; give each output a file of its own",
            refusalOf(folder.path("hard")));
}

TEST_F(OutputCheckTest, AdmitsSeveralOutputsToADeviceUnderTwoNames)
{
  std::filesystem::create_symlink("/dev/null", folder.path("void"));
  EXPECT_EQ("/dev/null", check.admit(folder.path("void")));
}

TEST_F(OutputCheckTest, AdmitsAnOldExportAndAnEmptyFile)
{
  check.admit(folder.write("old.csv", exported));
  check.admit(folder.write("empty.csv", ""));
}

TEST_F(OutputCheckTest, RefusesAFileOfSomebodyElseUnlessItIsForced)
{
  EXPECT_EQ(input + ": exists, and is no export of skeigiot; write to another file", refusalOf(input));
  OutputCheck forced(true);
  forced.admit(input);
}

TEST_F(OutputCheckTest, RefusesAFileThatItCannotLookInto)
{
  const std::string old = folder.write("old.csv", exported);
  chmod(old.c_str(), 0);
  if (access(old.c_str(), R_OK) == 0)
    GTEST_SKIP() << "root may read everything";
  EXPECT_EQ(old + ": exists, and is no export of skeigiot; write to another file", refusalOf(old));
}

TEST_F(OutputCheckTest, SaysWhatIsWrong)
{
  const auto faultOf = [this](const std::string& target) {
    try
    {
      check.admit(target);
    }
    catch (const OutputRefused& refused)
    {
      return refused.fault();
    }
    throw std::logic_error("it was not refused");
  };
  EXPECT_EQ(OutputFault::NotOurs, faultOf(input));
  check.admit(folder.path("new"));
  EXPECT_EQ(OutputFault::NamedTwice, faultOf(folder.path("new")));
  check.protect(input);
  EXPECT_EQ(OutputFault::IsInput, faultOf(input));
}

}  // namespace
