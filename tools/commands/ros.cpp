#include "commands/ros.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/livearguments.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "commands/liveserver.hpp"
#include "commands/livetable.hpp"
#include "commands/rosnode.hpp"
#include "ros/busmodule.hpp"
#include "ros/renamingbus.hpp"
#include "ros/rosarguments.hpp"
#include "ros/rosbridgeaddress.hpp"
#include "ros/rosenvironment.hpp"
#include "serve/advancingclock.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/ros4hriinput.hpp>
#include <skeigiot/session/outputcheck.hpp>

// CLI11 counts on all of its headers being included in order.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace KV::tools
{

namespace
{

const char* const description = "Answers the nodes of ROS 2 with the estimates of the persons";

const char* const footer =
    R"(Reads the topics of ROS4HRI as a node of ROS 2, without an installation of ROS:
  /tf, /tf_static                    frames face_ID and gaze_ID
  /clock                             the time of a simulation, with --use-sim-time
  /joint_states                      the robot's own head, with --head-joints
  /humans/faces/tracked              faces that are seen
  /humans/faces/ID/expression        also facs and landmarks
  /humans/persons/ID/face_id         the face of a person; also voice_id, alias and anonymous
  /humans/voices/ID/is_speaking      also speech
  /skeigiot/scopes                   starts and stops scopes: {"startScope": "greeting"}, {"stopScope": "greeting"}

Publishes with each update of a person:
  /humans/persons/ID/engagement_status   hri_msgs/EngagementLevel, from where the person looks
  /humans/persons/ID/affect              hri_msgs/Expression with valence and confidence
  /humans/interactions/gazing            hri_msgs/Gaze, while the person looks at the robot
  /skeigiot/verdicts                     on each scope that ends, as JSON
  /diagnostics                           once a second: persons, messages, refused and dropped messages

ID is the id of the person, or of a face that belongs to nobody. A topic is read while somebody writes it. A writer whose
messages have another type or layout is refused.

The environment variables ROS_DOMAIN_ID, ROS_AUTOMATIC_DISCOVERY_RANGE, ROS_STATIC_PEERS and ROS_LOCALHOST_ONLY count as
in ROS. Without them, only nodes on this machine are found. Ctrl-C and SIGTERM end the command; what was recorded is
complete then.

With --rosbridge, messages come and go as JSON by a node rosbridge_websocket, which passes them on. It reaches the nodes
of a robot whose network has no DDS. The topics of an id are read as soon as a list has the id: faces/tracked,
persons/tracked, persons/known or voices/tracked.

With --watch, a table shows the persons as 'skeigiot watch' does; q ends the command. Warnings come at the end. With
--serve, a page in the browser shows them as 'skeigiot serve' does; its address is printed.

Parameters are options of this command: --look-at is look_at, --boundary-positive is boundary.positive. A file of
--params-file has them below the name of the node, or below /** for all nodes:
  skeigiot:
    ros__parameters:
      cycle: 20
      look_at: [0, 0.2, 0]
      boundary: {positive: 0.3, looking_at_robot: 0.7}

Examples:
  skeigiot ros
  skeigiot ros --watch
  skeigiot ros --serve --no-open --listen 127.0.0.1:8080
  skeigiot ros --range subnet --record session.jsonl
  skeigiot ros --rosbridge ws://robot:9090
  skeigiot ros --params-file robot.yaml --param cycle:=20 --remap /humans:=/robot1/humans)";

struct Arguments
{
  bool watch = false;
  bool serve = false;
  LiveServerOptions server;
  ros2::BusOptions bus;
  RosNodeOptions node;
  ReadingArguments reading;
  RosArguments ros;
  std::optional<int> domain;
  std::optional<ros2::DiscoveryRange> range;
  std::vector<std::string> peers;
  std::optional<ros2::RosbridgeAddress> rosbridge;
  bool usesSimulatedTime = false;
};

/// Returns the time of the wall clock to any thread; it advances with each call.
class SharedClock
{
public:
  session::TimePoint operator()()
  {
    const std::lock_guard lock(_mutex);
    return _clock();
  }

private:
  std::mutex _mutex;
  AdvancingClock _clock{wallClock};  // guarded by _mutex
};

std::string variable(const std::string& name)
{
  const char* const value = std::getenv(name.c_str());  // NOLINT(concurrency-mt-unsafe): nobody sets any
  return value == nullptr ? std::string() : value;
}

/// Returns how the other nodes are reached, in words.
std::string placeOf(const Arguments& arguments)
{
  return arguments.rosbridge ? "rosbridge at " + ros2::textOf(*arguments.rosbridge)
                             : "domain " + std::to_string(arguments.bus.domain);
}

/// Sets the options of the environment, and then those of the command line.
void completeOptions(Arguments& arguments)
{
  applyEnvironment(variable, arguments.bus);
  arguments.bus.domain = arguments.domain.value_or(arguments.bus.domain);
  arguments.bus.range = arguments.range.value_or(arguments.bus.range);
  if (!arguments.peers.empty())
    arguments.bus.staticPeers = arguments.peers;
  const bool isAround =
      arguments.bus.range == ros2::DiscoveryRange::Localhost || arguments.bus.range == ros2::DiscoveryRange::Subnet;
  if (!arguments.peers.empty() && !isAround)
    throw std::invalid_argument("--peer counts with the ranges localhost and subnet only: add --range localhost");
  arguments.bus.node = arguments.ros.names.node();
  arguments.node.source.reading = arguments.reading.options;
  arguments.node.isQuiet = arguments.watch;
  arguments.node.source.name = "ROS 2, " + placeOf(arguments);
  if (arguments.usesSimulatedTime && arguments.node.source.times == RosTimes::Source)
    throw std::invalid_argument("--use-sim-time needs --times arrival: the times are those of /clock");
  if (arguments.usesSimulatedTime)
    arguments.node.source.times = RosTimes::Simulated;
  if (arguments.rosbridge && arguments.node.source.times == RosTimes::Source)
    throw std::invalid_argument("--rosbridge needs --times arrival: rosbridge does not say when a message was written");
}

/// \throws OutputRefused if both files are the same.
void checkOutputs(const Arguments& arguments)
{
  session::OutputCheck check(true);  // whether files may be replaced is checked when they are made
  for (const std::string& file : {arguments.node.recording, arguments.node.updates})
    if (!file.empty())
      check.admit(file);
}

/// Where the persons are shown: in a table, on a page, or nowhere.
class Views
{
public:
  /// \throws std::runtime_error if there is no page. The arguments must outlive the object.
  explicit Views(const Arguments& arguments) : _server(arguments.server)
  {
    if (arguments.watch)
      _table.emplace();
    if (!arguments.serve)
      return;
    requireLivePage();
    _page.emplace(arguments.node.source.cycle);
  }

  LiveListeners listeners()
  {
    if (_table)
      return _table->listeners();
    return _page ? _page->listeners() : LiveListeners();
  }

  /// Runs the node; returns whether all went well.
  bool run(RosNode& node, Messages& messages)
  {
    if (_table)
      return node.run([this](LiveSource& source) { _table->show(source); });
    if (_page)
      return node.run([this, &messages](LiveSource& source) { _page->serve(source, _server, messages); });
    return node.run();
  }

private:
  const LiveServerOptions& _server;
  std::optional<LiveTable> _table;
  std::optional<LiveServer> _page;
};

ros2::RosbridgeOptions optionsOf(const Arguments& arguments)
{
  ros2::RosbridgeOptions options;
  options.address = *arguments.rosbridge;
  options.topics = RosSource::topics(arguments.node.source);
  options.lists = recordings::Ros4hriInput::lists();
  options.nameOf = [names = arguments.ros.names](const std::string& topic) { return names.outside(topic); };
  return options;
}

/// Joins the other nodes. The clock may be called by any thread.
std::unique_ptr<ros2::Bus> busOf(const Arguments& arguments, const std::shared_ptr<SharedClock>& clock)
{
  const RosNames& names = arguments.ros.names;
  const auto typeOf = [names, source = arguments.node.source](const std::string& topic) {
    return RosSource::typeOf(names.inside(topic), source);
  };
  const auto time = [clock] { return static_cast<std::int64_t>((*clock)().time_since_epoch().count()); };
  auto bus =
      arguments.rosbridge ? openRosbridgeBus(optionsOf(arguments), typeOf, time) : openBus(arguments.bus, typeOf, time);
  if (!names.changeTopics())
    return bus;
  return std::make_unique<RenamingBus>(std::move(bus), names);
}

ExitStatus run(CLI::App& command, Arguments& arguments)
{
  Messages messages(std::cerr, false);
  try
  {
    applyRosParameters(command, arguments.ros);
    completeOptions(arguments);
    checkOutputs(arguments);
    const auto clock = std::make_shared<SharedClock>();
    Views views(arguments);
    RosNode node(
        busOf(arguments, clock), [clock] { return (*clock)(); }, arguments.node, messages, views.listeners());
    messages.note("reads and publishes topics of ROS 2, " + placeOf(arguments) + "; Ctrl-C ends");
    return views.run(node, messages) ? Success : Failure;
  }
  catch (const NoBusModule& error)
  {
    messages.error(error.what());
    return Failure;
  }
  catch (const recordings::Error& error)
  {
    messages.error(messageOf(error));
    return BadInput;
  }
  catch (const std::invalid_argument& error)
  {
    messages.error(error.what());
    return BadInput;
  }
}

/// Returns why the text is no address of another machine; empty if it is one.
std::string whyNoPeer(const std::string& text)
{
  try
  {
    parsePeer(text);
    return {};
  }
  catch (const std::invalid_argument& error)
  {
    return error.what();
  }
}

void addBusOptions(CLI::App& command, Arguments& arguments)
{
  CLI::Option* const domain =
      addTexts(command, "--domain", "Domain of ROS, from 0 to 232 (ROS_DOMAIN_ID, or 0)", "NUMBER",
               [&arguments](const std::string& text) { arguments.domain = parseDomain(text); })
          ->take_last();
  CLI::Option* const range =
      addTexts(command, "--range",
               "How far away other nodes may be: off, localhost (this machine), subnet,\n"
               "system-default (ROS_AUTOMATIC_DISCOVERY_RANGE, or localhost)",
               "RANGE", [&arguments](const std::string& text) { arguments.range = parseRange(text); })
          ->take_last();
  CLI::Option* const peer = command
                                .add_option("--peer", arguments.peers,
                                            "IPv4 address of another machine with nodes; several times for several.\n"
                                            "For the ranges localhost and subnet (ROS_STATIC_PEERS)")
                                ->type_name("ADDRESS")
                                ->check(whyNoPeer);
  CLI::Option* const distribution = addChoice<boost::optional<ros2::Distribution>>(
      command, "--ros-distro",
      "For whom the node is announced: humble, or jazzy, which is Iron and all\n"
      "later ones (default). none: only the topics are seen",
      "NAME", {{"humble", ros2::Distribution::Humble}, {"jazzy", ros2::Distribution::Jazzy}, {"none", boost::none}},
      arguments.bus.distribution);
  addTexts(command, "--rosbridge", "Reach the other nodes by rosbridge instead of DDS; without a port, it is\n9090",
           "ws://HOST:PORT",
           [&arguments](const std::string& text) { arguments.rosbridge = parseRosbridgeAddress(text); })
      ->take_last()
      ->excludes(domain)
      ->excludes(range)
      ->excludes(peer)
      ->excludes(distribution);
}

/// Reads the names of the joint that turns the head and of the one that nods.
///
/// \throws std::invalid_argument for another number of names, or names that are empty or long.
std::vector<std::string> parseJoints(const std::string& text)
{
  constexpr std::size_t longestName = 200;
  std::vector<std::string> names = CLI::detail::split(text, ',');
  const auto isName = [](const std::string& name) { return !name.empty() && name.size() <= longestName; };
  if (names.empty() || names.size() > 2 || !std::all_of(names.begin(), names.end(), isName))
    throw std::invalid_argument("expected the name of a joint, or two with ',' between them, found " +
                                recordings::quote(text));
  return names;
}

void addHeadOptions(CLI::App& command, recordings::RobotHead& head)
{
  CLI::Option* const joints =
      addTexts(command, "--head-joints",
               "Joints of /joint_states that turn the robot's head and let it nod. While\n"
               "the head moves, directions of faces count less",
               "YAW,PITCH", [&head](const std::string& text) { head.joints = parseJoints(text); })
          ->take_last();
  command
      .add_option("--head-base", head.base,
                  "Frame of the robot's body, such as base_link: the robot's head is the\n"
                  "camera in it. Instead of --head-joints")
      ->type_name("FRAME")
      ->take_last()
      ->excludes(joints);
}

/// Options for recordings that say nothing about messages of ROS are left out.
void addMessageOptions(CLI::App& command, ReadingArguments& reading)
{
  addReadingOptions(command, reading);
  for (const char* const name : {"--format", "--fps", "--person-from", "--skip-bad", "--frame"})
    command.remove_option(command.get_option(name));
}

}  // namespace

void addRosCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("ros", description);
  addBusOptions(command, *arguments);
  addChoice<RosTimes>(command, "--times",
                      "Time of a message. arrival: when it came in (default). source: when its\n"
                      "writer wrote it. The clocks of the machines must agree then",
                      "WHICH", {{"arrival", RosTimes::Arrival}, {"source", RosTimes::Source}},
                      arguments->node.source.times);
  command.add_flag("--use-sim-time", arguments->usesSimulatedTime,
                   "Take the time of a simulation, on /clock. Nothing is read before the first\ntime comes in");
  addNumber(
      command, "--hold", "Seconds that a message waits for earlier ones of other writers, with\n--times source (0.05)",
      "SECONDS", "a number from 0 to 10", [](double seconds) { return seconds >= 0. && seconds <= 10.; },
      [source = &arguments->node.source](double seconds) { source->hold = seconds; });
  addNumber(
      command, "--silence", "Seconds without a message about a face, after which nobody counts as\nseen (1)", "SECONDS",
      "a number from 0.1 to 3600", [](double seconds) { return seconds >= 0.1 && seconds <= 3600.; },
      [source = &arguments->node.source](double seconds) { source->silence = seconds; });
  addHeadOptions(command, arguments->node.source.head);
  command
      .add_option("--record", arguments->node.recording,
                  "Record what came in as JSON Lines; 'skeigiot replay' of the file gives\n"
                  "the same estimates")
      ->type_name("FILE");
  command
      .add_option("--jsonl", arguments->node.updates,
                  "Export each update as JSON Lines, as 'skeigiot replay' does. The file is\n"
                  "there at the end")
      ->type_name("FILE");
  CLI::Option* const watch =
      command.add_flag("--watch", arguments->watch, "Show the persons in a table, as 'skeigiot watch' does");
  CLI::Option* const serve =
      command
          .add_flag("--serve", arguments->serve, "Show the persons on a page in the browser, as 'skeigiot serve' does")
          ->excludes(watch);
  addListenOption(command, arguments->server)->needs(serve);
  addNoOpenOption(command, arguments->server)->needs(serve);
  command.add_flag("--force", arguments->node.force, "Replace existing files");
  addCycleOption(command, arguments->node.source.cycle);
  addMessageOptions(command, arguments->reading);
  addBoundaryOptions(command);
  addRosArguments(command, arguments->ros);
  command.footer(footer);
  command.callback([arguments, &command, &status] { status = run(command, *arguments); });
}

}  // namespace KV::tools
