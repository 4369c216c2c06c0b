#include "commands/serve.hpp"

#include "camera/cameraassets.hpp"
#include "camera/facemodel.hpp"
#include "cli/argumentparsing.hpp"
#include "cli/interruption.hpp"
#include "cli/livearguments.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/standardinput.hpp"
#include "commands/camerasource.hpp"
#include "commands/liveserver.hpp"
#include "commands/livesource.hpp"
#include "serve/advancingclock.hpp"
#include "terminal/terminal.hpp"

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace KV::tools
{

namespace
{

const char* const description = "Shows the persons live on a page in the browser";

const char* const footer =
    R"(Prints the address of a page, and opens it if there is a desktop. The page shows of each person the
valence and attention over the last minute with their confidences, the zone, pleasure, ease, readings and forces. It
also shows the ambiance of the room, verdicts on scopes, warnings, and the rate of the input. On the page you start and
stop scopes, move boundaries and put them back, and save the recording so far, as JSON Lines or as a report.

With --camera, the page finds the faces in front of the browser's camera, and sends numbers such as angles and scores.
With --video, it does so with a video, as fast as the machine can. With --model, a model of yours finds the faces.

Without a RECORDING, or with "-", it reads the same lines from standard input as 'skeigiot stream'. A RECORDING, of any
format, is played as if it came in now. The page stays when the input has ended; Ctrl-C ends it.

The page is for this machine alone, and for those who know its address, which contains a secret. With --listen others
can see it as well; what they see is not encrypted.

Examples:
  robot-perception | skeigiot serve
  skeigiot serve face.csv --speed 2
  robot-perception | skeigiot serve --listen 0.0.0.0:8080
  skeigiot serve --camera
  skeigiot serve --video interview.mp4
  skeigiot serve --camera --model face_landmarker.task)";

const char* const withoutCamera =
    "this command was built without the programs that find faces: install npm (on Debian: nodejs and npm), and "
    "build it again; they are installed in share/skeigiot/camera";

constexpr double usualRate = 15.;  // frames of a video that are looked at in a second

struct Arguments
{
  LiveArguments live;
  LiveServerOptions server;
  bool camera = false;
  std::string video;
  std::string model;  // file

  bool hasCamera() const { return camera || !video.empty(); }
};

std::unique_ptr<LiveSource> openSource(const Arguments& arguments, LiveServer& server,
                                       std::optional<ServedCamera>& served)
{
  if (!arguments.hasCamera())
    return openLiveSource(arguments.live, server.listeners(), AdvancingClock(wallClock));
  auto camera =
      std::make_unique<CameraSource>(arguments.live, server.listeners(), AdvancingClock(wallClock), arguments.video);
  served.emplace();
  served->folder = folderOfCameraAssets();
  served->video = arguments.video;
  if (!arguments.model.empty())
    served->model = std::make_shared<const FaceModel>(readFaceModel(arguments.model));
  served->rate = arguments.live.reading.options.framesPerSecond.value_or(usualRate);
  served->frame = [&server, source = camera.get()](const std::string& json) {
    return server.submit([source, json] { return source->takeFrame(json); });
  };
  return camera;
}

/// Serves until a signal ends it.
void serve(const Arguments& arguments, Messages& messages)
{
  LiveServer server(arguments.live.cycle);
  std::optional<ServedCamera> camera;
  const std::unique_ptr<LiveSource> source = openSource(arguments, server, camera);
  server.serve(*source, arguments.server, messages, camera);
}

/// \throws CLI::ValidationError for options that do not go together.
void checkOptions(const CLI::App& command, Arguments& arguments)
{
  std::vector<std::string>& paths = arguments.live.recording.paths;
  if (paths.size() == 1 && isStandardInput(paths.front()))
    paths.clear();
  if (paths.empty() && command.count("--speed") > 0)
    throw CLI::ValidationError("--speed", "lines of standard input come at their own speed: name a recording");
  if (!paths.empty() && command.count("--times") > 0)
    throw CLI::ValidationError("--times", "is for lines of standard input: a recording has times of its own");
  if (!arguments.hasCamera() && !arguments.model.empty())
    throw CLI::ValidationError("--model", "is for faces of a camera or a video: add --camera or --video");
  if (!arguments.hasCamera())
    return;
  const std::string option = arguments.camera ? "--camera" : "--video";
  if (arguments.camera && !arguments.video.empty())
    throw CLI::ValidationError("--camera", "is not for a video: leave out --camera or --video");
  if (!paths.empty())
    throw CLI::ValidationError(option, "takes no RECORDING");
  if (command.count("--times") > 0)
    throw CLI::ValidationError("--times", "is for lines of standard input");
}

ExitStatus run(Arguments& arguments)
{
  Messages messages(std::cerr, false);
  requireLivePage();
  if (arguments.hasCamera() && folderOfCameraAssets().empty())
  {
    messages.error(withoutCamera);
    return Failure;
  }
  if (!arguments.hasCamera() && arguments.live.recording.paths.empty() && isTerminal(STDIN_FILENO))
  {
    messages.error("expected observations on standard input, or a recording; try 'skeigiot serve --help'");
    return BadInput;
  }
  try
  {
    arguments.live.recording.format = arguments.live.reading.format;
    serve(arguments, messages);
  }
  catch (const Interrupted&)
  {}
  catch (const recordings::Error& error)
  {
    messages.error(messageOf(error));
    return BadInput;
  }
  return Success;
}

}  // namespace

void addServeCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  LiveArguments& live = arguments->live;
  CLI::App& command = *app.add_subcommand("serve", description);
  command
      .add_option("RECORDING", live.recording.paths,
                  "Inputs of one session to play; without them, or with \"-\", lines of standard input")
      ->type_name("");
  addNumber(
      command, "--speed", "How many times as fast as it was recorded a recording is played (1)", "FACTOR",
      "a number from 0.01 to 1000", [](double speed) { return speed >= 0.01 && speed <= 1000.; },
      [&live](double speed) { live.speed = speed; });
  addListenOption(command, arguments->server);
  command.add_flag("--camera", arguments->camera,
                   "Finds faces in the pictures of the browser's camera. No picture leaves\nthe browser");
  command
      .add_option("--video", arguments->video,
                  "Finds faces in a video that the browser can play, as --camera does;\n15 frames of a second, or as "
                  "many as --fps says")
      ->type_name("FILE")
      ->check(CLI::ExistingFile);
  command
      .add_option(
          "--model", arguments->model,
          "Finds the faces with this model, the face_landmarker.task of MediaPipe.\nSmile and expressions come from "
          "its blendshapes")
      ->type_name("FILE");
  addNoOpenOption(command, arguments->server);
  addOffsetOption(command, live.recording.offsets);
  addTimesOption(command, live.times);
  addCycleOption(command, live.cycle);
  addReadingOptions(command, live.reading);
  addBoundaryOptions(command);
  command.footer(footer);
  command.callback([arguments, &command, &status] {
    checkOptions(command, *arguments);
    status = run(*arguments);
  });
}

}  // namespace KV::tools
