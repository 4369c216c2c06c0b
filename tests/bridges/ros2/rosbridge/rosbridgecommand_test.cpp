#include "bridges/ros2/rosbridge/rosbridgeserver.hpp"
#include "support/childprocess.hpp"
#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <string>
#include <vector>

namespace
{

using nlohmann::json;
using replaytests::CommandResult;
using replaytests::runCommand;
using rostests::RosbridgeServer;

const json header = {{"stamp", {{"sec", 0}, {"nanosec", 0}}}, {"frame_id", "camera_optical"}};

/// The frame of a face that looks at the camera, 1.5 m away.
json faceFrame(const std::string& id)
{
  const json transform = {{"translation", {{"x", 0}, {"y", 0}, {"z", 1.5}}},
                          {"rotation", {{"x", 0.5}, {"y", 0.5}, {"z", -0.5}, {"w", -0.5}}}};
  return {
      {"transforms", json::array({{{"header", header}, {"child_frame_id", "face_" + id}, {"transform", transform}}})}};
}

/// Options that are refused before the node connects.
TEST(RosbridgeOption, IsRefusedWithWhatWasExpected)
{
  for (const char* const address : {"robot", "http://robot", "ws://", "ws://:9090", "ws://robot:", "ws://robot:0",
                                    "ws://robot:65536", "ws://robot:9090x", "ws://[::1", "ws://[]", "ws://a b"})
  {
    const CommandResult result = runCommand({"ros", "--rosbridge", address});
    EXPECT_EQ(2, result.status) << address;
    EXPECT_NE(std::string::npos, result.errors.find("expected ws://HOST:PORT, found '" + std::string(address) + "'"))
        << result.errors;
  }
  EXPECT_NE(std::string::npos,
            runCommand({"ros", "--rosbridge", "wss://robot"}).errors.find("encrypted connections are not supported"));
}

TEST(RosbridgeOption, ExcludesThoseOfDds)
{
  const std::vector<std::vector<std::string>> others = {
      {"--domain", "1"}, {"--range", "subnet"}, {"--peer", "192.168.1.2"}, {"--ros-distro", "humble"}};
  for (const std::vector<std::string>& other : others)
  {
    std::vector<std::string> arguments = {"ros", "--rosbridge", "ws://robot"};
    arguments.insert(arguments.end(), other.begin(), other.end());
    const CommandResult result = runCommand(arguments);
    EXPECT_EQ(2, result.status);
    EXPECT_NE(std::string::npos, result.errors.find(other.front() + " excludes --rosbridge")) << result.errors;
  }
}

TEST(RosbridgeOption, NeedsTheTimesOfArrival)
{
  const CommandResult result = runCommand({"ros", "--rosbridge", "ws://robot", "--times", "source"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: --rosbridge needs --times arrival: rosbridge does not say when a message was written\n",
            result.errors);
}

TEST(RosOverRosbridge, AnswersAsOverDdsAndRecords)
{
  const replaytests::TemporaryFolder folder;
  RosbridgeServer server;
  livetests::ChildProcess node({"ros", "--rosbridge", "ws://127.0.0.1:" + std::to_string(server.port()), "--record",
                                folder.path("record.jsonl"), "--remap", "/humans:=/robot/humans"});
  server.accept();
  EXPECT_EQ("tf2_msgs/msg/TFMessage", server.readUntil("subscribe", "/tf")["type"]);
  server.publish("/robot/humans/faces/tracked", {{"header", header}, {"ids", {"f1"}}});
  EXPECT_EQ("hri_msgs/msg/Expression", server.readUntil("subscribe", "/robot/humans/faces/f1/expression")["type"]);
  server.publish(
      "/robot/humans/faces/f1/expression",
      {{"header", header}, {"expression", "happy"}, {"valence", 0.9}, {"arousal", 0.1}, {"confidence", 0.9}});
  server.publish("/tf", faceFrame("f1"));
  server.publish("/tf", faceFrame("f1"));

  const std::string engagement = "/robot/humans/persons/f1/engagement_status";
  EXPECT_EQ("hri_msgs/msg/EngagementLevel", server.readUntil("advertise", engagement)["type"]);
  EXPECT_TRUE(server.readUntil("publish", engagement)["msg"]["level"].is_number());
  EXPECT_EQ("skeigiot: persons", server.readUntil("publish", "/diagnostics")["msg"]["status"][0]["name"]);
  server.publish("/skeigiot/scopes", {{"data", R"({"startScope": "greeting"})"}});
  for (int i = 0; i < 3; ++i)
    server.publish("/tf", faceFrame("f1"));
  server.publish("/skeigiot/scopes", {{"data", R"({"stopScope": "greeting"})"}});
  const json verdict = json::parse(server.readUntil("publish", "/skeigiot/verdicts")["msg"]["data"].get<std::string>());
  EXPECT_EQ("greeting", verdict["scope"]);
  EXPECT_EQ("complete", verdict["end"]);
  node.signal(SIGTERM);
  EXPECT_FALSE(server.readUntil("unadvertise", engagement).is_null());
  EXPECT_EQ(0, node.wait());

  std::ifstream recording(folder.path("record.jsonl"));
  std::string line;
  std::getline(recording, line);
  EXPECT_NE(std::string::npos, line.find("joy")) << line;
}

}  // namespace
