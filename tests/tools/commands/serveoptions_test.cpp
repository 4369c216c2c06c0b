#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>

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
        RefusedOptions{"NoVideo", {"--video", "/nowhere.mp4"}, "/nowhere.mp4"}),
    [](const auto& tested) { return std::string(tested.param.name); });

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
