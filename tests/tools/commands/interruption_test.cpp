#include "support/command.hpp"
#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <ostream>
#include <string>

/// \file
/// A signal ends the built command soon, while it reads anything.

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;

/// Starts the command in the background, where a shell would let it ignore an interrupt.
const std::string start = "env --default-signal=INT $skeigiot ";

/// Runs the command on the input, sends the signal once it has opened the file, and returns how it ended.
CommandResult interrupted(const std::string& arguments, const std::string& input, const std::string& opened, int signal)
{
  return runShell(start + arguments +
                      " \"$1\" &\n"
                      "command=$!\n"
                      "until readlink /proc/$command/fd/* 2> /dev/null | grep -q \"$2\"; do :; done\n"
                      "kill -" +
                      std::to_string(signal) + " $command\n" + "wait $command\n",
                  {input, opened});
}

struct InterruptionCase
{
  const char* name;
  int signal;
};

std::ostream& operator<<(std::ostream& stream, const InterruptionCase& one)
{
  return stream << one.name;
}

class Interruption : public ::testing::TestWithParam<InterruptionCase>
{
protected:
  int status() const { return 128 + GetParam().signal; }

  TemporaryFolder folder;
};

TEST_P(Interruption, EndsALineWithoutAnEnd)
{
  const CommandResult result = interrupted("inspect --format jsonl", "/dev/zero", "^/dev/zero", GetParam().signal);
  EXPECT_EQ(status(), result.status);
  EXPECT_THAT(result.errors, ::testing::AnyOf("", "Terminated\n"))
      << "the shell names the signal, the command is silent";
}

TEST_P(Interruption, EndsTheUnpackingOfAnEndlessLine)
{
  // 16 MiB of zeros take 16 KiB; a thousand such parts are a line of 16 GiB.
  runShell("head -c 16777216 /dev/zero | gzip > \"$1\"", {folder.path("part")});
  const std::string part = folder.read("part");
  std::string parts;
  for (int i = 0; i < 1000; ++i)
    parts += part;
  const std::string path = folder.write("line.gz", parts);
  EXPECT_EQ(status(), interrupted("inspect --format jsonl", path, "line.gz", GetParam().signal).status);
}

TEST_P(Interruption, EndsWhatWaitsForASilentPipe)
{
  const std::string path = folder.path("silent");
  runShell("mkfifo \"$1\"", {path});
  EXPECT_EQ(status(), interrupted("inspect --format jsonl", path, "/silent$", GetParam().signal).status);
}

INSTANTIATE_TEST_SUITE_P(Signals, Interruption,
                         ::testing::Values(InterruptionCase{"Interrupt", SIGINT},
                                           InterruptionCase{"Terminate", SIGTERM}),
                         support::RowName());

TEST(BagFolder, WithAPipeInItIsRefused)
{
  const TemporaryFolder folder;
  folder.write("metadata.yaml", "");
  const CommandResult result = runShell("mkfifo \"$1/bag.db3\"; exec $skeigiot replay \"$1\"", {folder.path("")});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, HasSubstr("bag.db3: is no regular file, which the files of a bag must be"));
}

}  // namespace
