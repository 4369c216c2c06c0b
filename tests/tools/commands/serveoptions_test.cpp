#include "camera/cameraassets.hpp"
#include "serve/livepage.hpp"
#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;

struct RefusedOptions
{
  const char* name;
  std::vector<std::string> arguments;
  std::string message;
};

class ServeRefuses : public ::testing::TestWithParam<RefusedOptions>
{};

TEST_P(ServeRefuses, OptionsThatDoNotGoTogether)
{
  std::vector<std::string> arguments = {"serve", "--no-open"};
  arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
  const CommandResult result = runCommand(arguments);
  EXPECT_NE(0, result.status);
  EXPECT_EQ("", result.output);
  EXPECT_THAT(result.errors, HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Each, ServeRefuses,
    ::testing::Values(
        RefusedOptions{"CameraAndVideo", {"--camera", "--video", "/dev/null"}, "leave out --camera or --video"},
        RefusedOptions{"CameraAndRecording", {"--camera", "x.csv"}, "--camera: takes no RECORDING"},
        RefusedOptions{"VideoAndRecording", {"--video", "/dev/null", "x.csv"}, "--video: takes no RECORDING"},
        RefusedOptions{"CameraAndTimes", {"--camera", "--times", "lines"}, "--times: is for lines of standard input"},
        RefusedOptions{"CameraAndSpeed", {"--camera", "--speed", "2"}, "--speed: "},
        RefusedOptions{"ModelWithoutFaces", {"--model", "/dev/null"}, "--model: is for faces of a camera or a video"},
        RefusedOptions{"ModelForARecording", {"x.csv", "--model", "/dev/null"}, "add --camera or --video"},
        RefusedOptions{"NoVideo", {"--video", "/nowhere.mp4"}, "/nowhere.mp4"}),
    [](const auto& tested) { return std::string(tested.param.name); });

// The model is read before the page is served, in a command that has files of the camera.
TEST(ServeWithAModel, RefusesAFileThatIsNoModel)
{
  if (KV::tools::livePage().empty())
    GTEST_SKIP() << "the command was built without the page";
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder.path("camera"));
  for (const KV::tools::CameraAsset& asset : KV::tools::cameraAssets())
    folder.write("camera/" + std::string(asset.name), "");
  const auto serve = [&](const std::string& model) {
    return runShell("cp \"$skeigiot\" \"$1\" && \"$1\" serve --no-open --camera --model \"$2\"",
                    {folder.path("skeigiot"), model});
  };

  const CommandResult missing = serve("/nowhere.task");
  EXPECT_EQ(2, missing.status);
  EXPECT_EQ("skeigiot: /nowhere.task: cannot be opened: No such file or directory\n", missing.errors);

  const CommandResult text = serve(folder.write("face.task", "no model"));
  EXPECT_EQ(2, text.status);
  EXPECT_EQ("", text.output);
  EXPECT_THAT(text.errors, HasSubstr("face.task: is no model: a file such as face_landmarker.task"));
}

// A command for which the files of the camera were not built.
TEST(ServeWithoutCamera, SaysWhatIsMissing)
{
  const TemporaryFolder folder;
  const CommandResult result =
      runShell("cp \"$skeigiot\" \"$1\" && \"$1\" serve --no-open --camera", {folder.path("skeigiot")});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.errors, HasSubstr("install npm (on Debian: nodejs and npm), and build it again"));
}

}  // namespace
