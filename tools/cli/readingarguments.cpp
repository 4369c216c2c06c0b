#include "cli/readingarguments.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/standardinput.hpp"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace KV::tools
{

std::function<std::unique_ptr<recordings::Reader>(const std::string& path)> openerOf(const ReadingArguments& arguments)
{
  return [&arguments](const std::string& path) {
    if (isStandardInput(path))
      return recordings::openRecording(standardInput(), nameOf(path), arguments.format, arguments.options);
    return recordings::openRecording(path, arguments.format, arguments.options);
  };
}

void addReadingOptions(CLI::App& command, ReadingArguments& arguments)
{
  const std::string group = "How the recording is read";
  recordings::ReadingOptions& reading = arguments.options;
  reading.rateName = "--fps";
  reading.mappingName = "--mapping";

  std::string help = "Format of the recording (default: detected):";
  std::vector<std::pair<std::string, std::string>> formats;
  for (const recordings::Format& format : recordings::recordingFormats())
  {
    help += "\n" + format.name + ": " + format.description;
    formats.emplace_back(format.name, format.name);
  }
  addChoice(command, "--format", help, "NAME", formats, arguments.format)->group(group);
  addNumber(command, "--fps", "Frames per second, instead of the time stamps of the file", "HZ", "a number above 0",
            isPositive, [&reading](double hz) { reading.framesPerSecond = hz; })
      ->group(group);
  command.add_flag("--mirrored", reading.mirrored, "The video is a mirror image: exchange left and right")
      ->group(group);
  addParsed<recordings::LookAt>(command, "--look-at",
                                "Where a person looks who looks at the robot. camera: at the camera\n"
                                "(default, except for bags). RIGHT,DOWN,FORWARD: at a point, in metres\n"
                                "from the camera. axis: parallel to the axis of the camera (default for\n"
                                "bags, moved by up to 5 degrees towards the usual direction of the\n"
                                "head). learned: in the usual direction of the head",
                                "POINT", recordings::parseLookAt, reading.lookAt)
      ->group(group);
  addChoice<recordings::LookAt>(
      command, "--frame", "Older name of --look-at: line-of-sight means camera, camera means axis", "FRAME",
      {{"line-of-sight", {recordings::LookAt::Kind::Camera, {}}}, {"camera", {recordings::LookAt::Kind::Axis, {}}}},
      reading.lookAt)
      ->group(group)
      ->excludes("--look-at");
  addParsed<recordings::Rest>(command, "--rest",
                              "Face at rest, which is subtracted from each face: learned during the\n"
                              "recording (default), none, or the median of a span in seconds such as\n"
                              "2..7.5",
                              "REST", recordings::parseRest, reading.rest)
      ->group(group);
  addNumber(command, "--camera-height",
            "Height of the camera above the floor; without it, head heights are\n"
            "unknown",
            "METRES", "a number", isFinite,
            [&reading](double metres) { reading.cameraHeight = static_cast<float>(metres); })
      ->group(group);
  addNumber(command, "--min-confidence", "Confidence below which a face counts as not seen (0.7)", "SHARE",
            "a number from 0 to 1", isShare,
            [&reading](double share) { reading.minimalConfidence = static_cast<float>(share); })
      ->group(group);
  addNumber(command, "--au-full-scale", "Intensity of an action unit that counts as full (3)", "INTENSITY",
            "a number above 0", isPositive,
            [&reading](double intensity) { reading.actionUnitFullScale = static_cast<float>(intensity); })
      ->group(group);
  command
      .add_option(
          "--mapping", reading.mapping,
          "JSON file that replaces the built-in tables, which convert action\nunits, blendshapes and emotions to "
          "readings")
      ->type_name("FILE")
      ->group(group);
  command
      .add_option("--person-from", reading.personColumn,
                  "Column of a CSV file with the number or the name of the person; names\nget numbers in the order in "
                  "which they appear")
      ->type_name("COLUMN")
      ->group(group);
  command.add_flag("--skip-bad", arguments.skipBad, "Skip and count lines that cannot be used")->group(group);
}

}  // namespace KV::tools
