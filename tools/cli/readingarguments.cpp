#include "cli/readingarguments.hpp"

#include "cli/argumentparsing.hpp"

#include <utility>
#include <vector>

namespace KV::tools
{

std::function<std::unique_ptr<recordings::Reader>(const std::string& path)> openerOf(const ReadingArguments& arguments)
{
  return [&arguments](const std::string& path) {
    return recordings::openRecording(path, arguments.format, arguments.options);
  };
}

void addReadingOptions(CLI::App& command, ReadingArguments& arguments)
{
  const std::string group = "How the recording is read";
  recordings::ReadingOptions& reading = arguments.options;

  std::string help = "Format of the recording, found out if not given:";
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
  addChoice<bool>(command, "--frame",
                  "What angles are relative to: the line-of-sight from face to camera\n"
                  "(default, where the file has a position), or the axis of the camera",
                  "FRAME", {{"line-of-sight", true}, {"camera", false}}, reading.lineOfSight)
      ->group(group);
  addNumber(command, "--camera-height",
            "Height of the camera above the floor; without it the heights of\n"
            "heads are unknown",
            "METRES", "a number", isFinite,
            [&reading](double metres) { reading.cameraHeight = static_cast<float>(metres); })
      ->group(group);
  addNumber(command, "--min-confidence", "Confidence below which a face counts as not seen (0.7)", "SHARE",
            "a number from 0 to 1", isShare,
            [&reading](double share) { reading.minimalConfidence = static_cast<float>(share); })
      ->group(group);
  addNumber(command, "--au-full-scale", "Intensity of an action unit that counts as full (5)", "INTENSITY",
            "a number above 0", isPositive,
            [&reading](double intensity) { reading.actionUnitFullScale = static_cast<float>(intensity); })
      ->group(group);
  command
      .add_option("--mapping", reading.mapping,
                  "JSON file that says how action units, blendshapes and emotions\nbecome readings, instead of the "
                  "built-in tables")
      ->type_name("FILE")
      ->group(group);
  command
      .add_option("--person-from", reading.personColumn,
                  "Column of a CSV file that names the person; names that are no\nnumbers are counted in the order in "
                  "which they appear")
      ->type_name("COLUMN")
      ->group(group);
  command.add_flag("--skip-bad", arguments.skipBad, "Go on behind lines that cannot be used, and count them")
      ->group(group);
}

}  // namespace KV::tools
