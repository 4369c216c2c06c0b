#include "libsession/entries.hpp"
#include "support/childprocess.hpp"
#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/observationjson.hpp>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using livetests::ChildProcess;
using nlohmann::json;

const std::string seen = R"({"person":1,"observation":{"gaze":{"yaw":0,"pitch":0}}})"
                         "\n";

TEST(StreamProcess, ShowsAChangeInTheExampleOfItsHelp)
{
  const std::string help = runCommand({"stream", "--help"}).output;
  const std::size_t example = help.find("  for score in ");
  ASSERT_NE(std::string::npos, example);
  // The pauses of the example begin when the line before them is answered: a program may take long to start.
  const TemporaryFolder folder;
  const std::string functions = R"sh(
skeigiot() { $skeigiot "$@" >>answers; cat answers; }
sleep() {
  asked=$((asked + 1))
  for i in $(seq 400)
  do
    [ "$(wc -l <answers)" -lt $asked ] || break
    command sleep 0.05
  done
  command sleep "$1"
}
)sh";
  const CommandResult result = runShell("cd " + folder.path("") + "\n: >answers\n" + functions + help.substr(example));
  EXPECT_EQ(0, result.status) << result.errors;
  std::istringstream lines(result.output);
  std::vector<float> valences;
  for (std::string line; std::getline(lines, line);)
    valences.push_back(json::parse(line)["valence"]);
  ASSERT_EQ(4U, valences.size());
  EXPECT_LT(0.f, valences[0]);
  EXPECT_LT(valences[0], valences[1]);
  EXPECT_GT(valences[1], valences[2]);
  EXPECT_GT(0.f, valences[3]);
}

// Lines at the rate of a camera, at 30 Hz by their times, for ten seconds: each line is written only after the answer
// to the line before it.
TEST(StreamProcess, AnswersEachLineBeforeTheNextIsWritten)
{
  ChildProcess stream({"stream", "--times", "lines"});
  for (int i = 0; i < 300; ++i)
  {
    ASSERT_FALSE(stream.hasOutput()) << "there is an answer to what was not asked yet";
    stream.write(KV::recordings::stepToJson(seenAt(i / 30., i % 2)) + "\n");
    const json answer = json::parse(stream.readLine());
    ASSERT_EQ(i + 1, answer["line"]);
    ASSERT_EQ(i % 2, answer["person"]);
    ASSERT_EQ((start + inNanoseconds(i / 30.)).time_since_epoch().count(), answer["time"]);
  }
  stream.closeInput();
  EXPECT_EQ("", stream.readLine());
  EXPECT_EQ(0, stream.wait());
}

TEST(StreamProcess, RunsByTheWallClockByDefault)
{
  ChildProcess stream({"stream"});
  std::int64_t last = 0;
  for (int i = 0; i < 3; ++i)
  {
    stream.write(seen);
    const json answer = json::parse(stream.readLine());
    EXPECT_GE(answer["time"].get<std::int64_t>(), last);
    last = answer["time"];
  }
  EXPECT_GT(last, start.time_since_epoch().count());
}

TEST(StreamProcess, AnswersSeveralLinesThatComeAtOnceInTheirOrder)
{
  ChildProcess stream({"stream"});
  stream.write(seen + "nonsense\n" + "\n" + seen);
  stream.closeInput();
  EXPECT_EQ(1, json::parse(stream.readLine())["person"]);
  EXPECT_TRUE(json::parse(stream.readLine()).contains("error"));
  EXPECT_EQ(3, json::parse(stream.readLine())["line"]);
  EXPECT_EQ(4, json::parse(stream.readLine())["line"]);
  EXPECT_EQ(0, stream.wait());
}

TEST(StreamProcess, AnswersALastLineWithoutALineEnd)
{
  ChildProcess stream({"stream"});
  stream.write("{\"person\":7,\"observation\":{}}");
  EXPECT_FALSE(stream.hasOutput());
  stream.closeInput();
  EXPECT_EQ(7, json::parse(stream.readLine())["person"]);
  EXPECT_EQ(0, stream.wait());
}

TEST(StreamProcess, RefusesALineOfTwentyMebibytesAndGoesOn)
{
  ChildProcess stream({"stream"});
  const std::string piece(std::size_t{1} << 20U, 'x');
  for (int i = 0; i < 20; ++i)
    stream.write(piece);
  stream.write("\n" + seen);
  EXPECT_EQ("is longer than 16777216 bytes", json::parse(stream.readLine())["error"]["message"]);
  EXPECT_EQ(1, json::parse(stream.readLine())["person"]);
}

struct SignalCase
{
  const char* name;
  int signal;
};

class StreamProcessSignal : public ::testing::TestWithParam<SignalCase>
{};

TEST_P(StreamProcessSignal, EndsItCleanly)
{
  ChildProcess stream({"stream"});
  stream.write(seen);
  EXPECT_NE("", stream.readLine());  // it runs, and waits
  stream.signal(GetParam().signal);
  EXPECT_EQ("", stream.readLine());
  EXPECT_EQ(0, stream.wait());
}

INSTANTIATE_TEST_SUITE_P(FromOutside, StreamProcessSignal,
                         ::testing::Values(SignalCase{"Terminate", SIGTERM}, SignalCase{"Interrupt", SIGINT},
                                           SignalCase{"HangUp", SIGHUP}),
                         [](const auto& tested) { return std::string(tested.param.name); });

// A pipe holds 64 KiB: the program waits until its answers are read.
TEST(StreamProcess, EndsOnASignalEvenIfNobodyReadsItsAnswers)
{
  ChildProcess stream({"stream"});
  for (int i = 0; i < 400; ++i)
    stream.write(seen);
  EXPECT_NE("", stream.readLine());
  stream.signal(SIGTERM);
  EXPECT_EQ(0, stream.wait());
}

TEST(StreamProcess, EndsCleanlyWhenItsReaderGoesAway)
{
  ChildProcess stream({"stream"});
  stream.closeOutput();
  stream.write(seen);
  EXPECT_EQ(0, stream.wait());
}

TEST(StreamProcess, RefusesUnknownTimes)
{
  EXPECT_EQ(2, ChildProcess({"stream", "--times", "never"}).wait());
}

}  // namespace
