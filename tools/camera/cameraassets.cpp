#include "camera/cameraassets.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace KV::tools
{

namespace
{

namespace fs = std::filesystem;

constexpr std::string_view script = "text/javascript; charset=utf-8";
constexpr std::string_view wasm = "application/wasm";
constexpr std::string_view bytes = "application/octet-stream";
constexpr std::string_view json = "application/json";
constexpr std::string_view text = "text/plain; charset=utf-8";

bool hasAll(const fs::path& folder)
{
  const std::vector<CameraAsset>& all = cameraAssets();
  return std::all_of(all.begin(), all.end(), [&folder](const CameraAsset& asset) {
    std::error_code error;
    return fs::is_regular_file(folder / asset.name, error);
  });
}

}  // namespace

const std::vector<CameraAsset>& cameraAssets()
{
  static const std::vector<CameraAsset> assets = {{"camera.js", script},
                                                  {"LICENSES.txt", text},
                                                  // finds the faces
                                                  {"face_mesh.js", script},
                                                  {"face_mesh.binarypb", bytes},
                                                  {"face_mesh_solution_packed_assets.data", bytes},
                                                  {"face_mesh_solution_packed_assets_loader.js", script},
                                                  {"face_mesh_solution_simd_wasm_bin.js", script},
                                                  {"face_mesh_solution_simd_wasm_bin.wasm", wasm},
                                                  // classifies expressions
                                                  {"face_expression_model.bin", bytes},
                                                  {"face_expression_model-weights_manifest.json", json},
                                                  {"tfjs-backend-wasm-simd.wasm", wasm},
                                                  // finds the faces by a model of the user
                                                  {"tasks_vision.js", script},
                                                  {"vision_wasm_internal.js", script},
                                                  {"vision_wasm_internal.wasm", wasm}};
  return assets;
}

std::optional<CameraAsset> cameraAsset(std::string_view name)
{
  const std::vector<CameraAsset>& all = cameraAssets();
  const auto found =
      std::find_if(all.begin(), all.end(), [name](const CameraAsset& asset) { return asset.name == name; });
  return found == all.end() ? std::nullopt : std::optional(*found);
}

std::string folderOfCameraAssets()
{
  std::error_code error;
  const fs::path command = fs::read_symlink("/proc/self/exe", error);
  return error ? "" : folderOfCameraAssets(command.parent_path().string());
}

std::string folderOfCameraAssets(const std::string& folderOfCommand)
{
  for (const char* const place : {"camera", "../share/skeigiot/camera"})
    if (const fs::path folder = fs::path(folderOfCommand) / place; hasAll(folder))
      return folder.lexically_normal().string();
  return "";
}

std::string contentOf(const std::string& path)
{
  std::ifstream file(path, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file)
    throw std::runtime_error("cannot read " + path);
  return content;
}

}  // namespace KV::tools
