#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace
{

using replaytests::CommandResult;
using replaytests::runCommand;

/// Options that are refused before the node joins the others.
TEST(RosOptions, NameAFileForEachOutput)
{
  const replaytests::TemporaryFolder folder;
  const std::string file = folder.path("out.jsonl");
  const CommandResult result = runCommand({"ros", "--record", file, "--jsonl", file});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: " + file + ": is written twice; give each output a file of its own\n", result.errors);
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(RosOptions, HavePeersWhereOtherNodesAreLookedForOnly)
{
  for (const char* const range : {"off", "system-default"})
  {
    const CommandResult result = runCommand({"ros", "--range", range, "--peer", "192.168.1.2"});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("skeigiot: --peer counts with the ranges localhost and subnet only: add --range localhost\n",
              result.errors);
  }
}

TEST(RosOptions, NamePeersByTheirAddresses)
{
  const CommandResult result = runCommand({"ros", "--peer", "192.168.1.2", "--peer", "robot"});
  EXPECT_EQ(2, result.status);
  EXPECT_NE(std::string::npos,
            result.errors.find("--peer: expected an IPv4 address such as 192.168.1.2, found 'robot'"))
      << result.errors;
}

TEST(RosOptions, NameOneOrTwoJointsOfTheHeadOrTheFrameOfTheBody)
{
  for (const char* const joints : {"a,b,c", ",b"})
    EXPECT_NE(std::string::npos,
              runCommand({"ros", "--head-joints", joints})
                  .errors.find("--head-joints: expected the name of a joint, or two with ',' between them, found '" +
                               std::string(joints) + "'"));
  EXPECT_NE(std::string::npos, runCommand({"ros", "--head-joints", "pan", "--head-base", "base_link"})
                                   .errors.find("--head-joints excludes --head-base"));
}

TEST(RosOptions, TakeTheTimeOfASimulationOrOfWriters)
{
  const CommandResult result = runCommand({"ros", "--use-sim-time", "--times", "source"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: --use-sim-time needs --times arrival: the times are those of /clock\n", result.errors);
}

/// A file of parameters. Both outputs of the command are the same file, so that a command whose parameters are taken is
/// refused, too.
class RosParametersOfTheCommand : public ::testing::Test
{
protected:
  static CommandResult run(std::vector<std::string> options)
  {
    options.insert(options.begin(), {"ros", "--record", "/x", "--jsonl", "/x"});
    CommandResult result = runCommand(options);
    EXPECT_EQ(2, result.status) << result.errors;
    return result;
  }

  /// Returns the errors of a run with these lines, from the third line on.
  std::string errorsOf(const std::string& parameters, std::vector<std::string> options = {}) const
  {
    std::ofstream(file) << "skeigiot:\n  ros__parameters:\n" << parameters;
    options.insert(options.end(), {"--params-file", file});
    return run(options).errors;
  }

  replaytests::TemporaryFolder folder;
  std::string file = folder.path("robot.yaml");
  std::string thirdLine = "skeigiot: " + file + ": line 3: ";
  std::string taken = "skeigiot: /x: is written twice; give each output a file of its own\n";
};

TEST_F(RosParametersOfTheCommand, AreItsOptions)
{
  EXPECT_EQ(taken, errorsOf(R"(    cycle: 20
    times: source
    hold: 0.1
    silence: 2
    ros_distro: humble
    look_at: [0, 0.2, 0]
    rest: none
    camera_height: 1.2
    mirrored: true
    min_confidence: 0.5
    au_full_scale: 5
    mapping: mapping.json
    use_sim_time: false
    boundary:
      positive: 0.4
      negative: -0.4
      confidence: 0.2
      looking_at_robot: 0.6
      strictly_looking_at_robot: 0.9
      excited: 0.7
)"));
}

struct RefusedParameter
{
  const char* name;
  std::string line;
  std::string message;
};

class RosParametersOfTheCommandRefuse : public RosParametersOfTheCommand,
                                        public ::testing::WithParamInterface<RefusedParameter>
{};

TEST_P(RosParametersOfTheCommandRefuse, AValueByFileLineAndName)
{
  EXPECT_EQ(thirdLine + GetParam().message + "\n", errorsOf("    " + GetParam().line + "\n"));
}

INSTANTIATE_TEST_SUITE_P(
    Each, RosParametersOfTheCommandRefuse,
    ::testing::Values(
        RefusedParameter{"Cycle", "cycle: x",
                         "cycle: expected recorded or a number of updates a second above 0, up to 1000, found 'x'"},
        RefusedParameter{"Times", "times: never", "times: expected one of arrival, source, found 'never'"},
        RefusedParameter{"HoldAboveItsRange", "hold: 10.5", "hold: expected a number from 0 to 10, found '10.5'"},
        RefusedParameter{"SilenceAsATruth", "silence: true", "silence: expected a number, found 'true'"},
        RefusedParameter{"SilenceAsAList", "silence: [1, 2]", "silence: expected a number, found '1,2'"},
        RefusedParameter{"Distribution", "ros_distro: noetic",
                         "ros_distro: expected one of humble, jazzy, none, found 'noetic'"},
        RefusedParameter{"CameraHeight", "camera_height: ''", "camera_height: expected a number, found ''"},
        RefusedParameter{"MirroredAsANumber", "mirrored: 3", "mirrored: expected true or false, found '3'"},
        RefusedParameter{"AShareAboveOne", "min_confidence: 1.5",
                         "min_confidence: expected a number from 0 to 1, found '1.5'"},
        RefusedParameter{"FullScale", "au_full_scale: 0", "au_full_scale: expected a number above 0, found '0'"},
        RefusedParameter{"BoundaryAsAText", "boundary: {positive: high}",
                         "boundary.positive: expected a number, found 'high'"},
        RefusedParameter{"BoundaryOutOfItsRange", "boundary: {positive: 2}",
                         "boundary.positive: 2 does not lie strictly between -1 and 1"},
        RefusedParameter{"PointWithTwoNumbers", "look_at: [0, 1]",
                         "look_at: '0,1' is not camera, axis, learned, or metres RIGHT,DOWN,FORWARD from the camera "
                         "such as 0,-0.2,0.05"},
        RefusedParameter{"Rest", "rest: soon",
                         "rest: 'soon' is not learned, none, or a span of seconds such as 2..7.5"},
        RefusedParameter{"UnknownButSimilar", "cycel: 20", "cycel: there is no such parameter; did you mean 'cycle'?"},
        RefusedParameter{"Unknown", "gain: 20",
                         "gain: there is no such parameter; expected one of au_full_scale, boundary.confidence, "
                         "boundary.excited, boundary.looking_at_robot, boundary.negative, boundary.positive, "
                         "boundary.strictly_looking_at_robot, camera_height, cycle, head_base, "
                         "head_joints, hold, jsonl, look_at, mapping, min_confidence, mirrored, record, rest, "
                         "ros_distro, rosbridge, silence, times, use_sim_time"},
        RefusedParameter{"Group", "look_at: {x: 1}", "look_at.x: there is no such parameter; did you mean 'look_at'?"},
        RefusedParameter{"OptionOfTheCommandLine", "domain: 3",
                         "domain: is no parameter: give --domain in the command line"},
        RefusedParameter{"SimulatedTime", "use_sim_time: soon", "use_sim_time: expected true or false, found 'soon'"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(RosParametersOfTheCommand, OfAllNodesMayBeForAnotherNode)
{
  std::ofstream(file) << "/**: {ros__parameters: {use_sim_time: true, gain: 3, domain: x}}\n";
  EXPECT_EQ(taken, run({"--params-file", file}).errors);
  std::ofstream(file) << "/**: {ros__parameters: {cycle: x}}\n";
  EXPECT_EQ(0U, run({"--params-file", file}).errors.find("skeigiot: " + file + ": line 1: cycle: "));
}

TEST_F(RosParametersOfTheCommand, OfTheCommandLineReplaceThoseOfFilesButNoOptions)
{
  EXPECT_EQ("skeigiot: --param: silence: expected a number, found 'x'\n",
            errorsOf("    silence: 2\n", {"--param", "silence:=x"}));
  EXPECT_EQ(taken, errorsOf("    silence: x\n", {"--silence", "3", "-p", "silence:=y"}));
  EXPECT_EQ(0U, run({"-p", "gain:="}).errors.find("skeigiot: --param: gain: has no value\n"));
}

TEST_F(RosParametersOfTheCommand, MayNameOutputs)
{
  std::ofstream(file) << "skeigiot: {ros__parameters: {record: /y, jsonl: /y}}\n";
  const CommandResult result = runCommand({"ros", "--params-file", file});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: /y: is written twice; give each output a file of its own\n", result.errors);
}

TEST_F(RosParametersOfTheCommand, AreThoseOfTheNodeByItsName)
{
  std::ofstream(file) << "robot: {ros__parameters: {cycle: 20}}\n";
  EXPECT_EQ(taken, run({"--ros-args", "-r", "__node:=robot", "--params-file", file}).errors);
  EXPECT_EQ("skeigiot: " + file +
                ": has no parameters of the node 'skeigiot': expected 'skeigiot:' or '/**:' with 'ros__parameters:' "
                "below it, found 'robot' in line 1\n",
            run({"--params-file", file}).errors);
}

TEST_F(RosParametersOfTheCommand, OfAFileThatIsNotThereAreRefused)
{
  EXPECT_EQ("skeigiot: " + file + ": there is no such file\n", run({"--params-file", file}).errors);
}

TEST(RosNames, OfTopicsThatAreNotThereAreRefused)
{
  const CommandResult result = runCommand({"ros", "--remap", "/camera:=/eye"});
  EXPECT_EQ(2, result.status);
  EXPECT_NE(
      std::string::npos,
      result.errors.find("--remap: expected a topic that the node reads or publishes, such as /tf, or one of the "
                         "roots /humans, /humans/faces, /humans/persons, /humans/voices, /humans/interactions and "
                         "/skeigiot, found '/camera'"))
      << result.errors;
}

TEST(RosOptions, ShowThePersonsInOnePlaceOnly)
{
  const CommandResult both = runCommand({"ros", "--watch", "--serve"});
  EXPECT_EQ(2, both.status);
  EXPECT_NE(std::string::npos, both.errors.find("--watch excludes --serve")) << both.errors;
  const CommandResult none = runCommand({"ros", "--no-open"});
  EXPECT_EQ(2, none.status);
  EXPECT_NE(std::string::npos, none.errors.find("--no-open requires --serve")) << none.errors;
}

}  // namespace
