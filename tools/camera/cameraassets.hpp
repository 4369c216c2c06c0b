#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KV::tools
{

/// A file that the camera's part of the page loads.
struct CameraAsset
{
  std::string_view name;
  std::string_view type;  ///< as HTTP calls it
};

/// Returns all files that script/build-camera makes.
const std::vector<CameraAsset>& cameraAssets();

/// Returns the asset with this name; nothing if there is no such asset.
std::optional<CameraAsset> cameraAsset(std::string_view name);

/// Returns the folder of the assets: `camera` beside the command, as the build has it, or `../share/skeigiot/camera`,
/// as an installation has it. Empty if none of the two has all assets.
std::string folderOfCameraAssets();

/// As above, for a command in this folder.
std::string folderOfCameraAssets(const std::string& folderOfCommand);

/// Returns the content of the file.
///
/// \throws std::runtime_error if it cannot be read.
std::string contentOf(const std::string& path);

}  // namespace KV::tools
