#include "camera/cameraassets.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace
{

using KV::tools::cameraAsset;
using KV::tools::cameraAssets;
using KV::tools::folderOfCameraAssets;

void fill(const std::filesystem::path& folder)
{
  std::filesystem::create_directories(folder);
  for (const KV::tools::CameraAsset& asset : cameraAssets())
    std::ofstream(folder / asset.name) << asset.type;
}

TEST(CameraAssets, AreKnownByTheirNames)
{
  ASSERT_TRUE(cameraAsset("face_mesh_solution_simd_wasm_bin.wasm"));
  EXPECT_EQ("application/wasm", cameraAsset("face_mesh_solution_simd_wasm_bin.wasm")->type);
  EXPECT_EQ("text/javascript; charset=utf-8", cameraAsset("camera.js")->type);
  for (const char* const name : {"", ".", "..", "../skeigiot", "camera.js/", "CAMERA.JS", "passwd"})
    EXPECT_FALSE(cameraAsset(name)) << name;
}

TEST(CameraAssets, LieBesideTheCommandOrWhereTheyAreInstalled)
{
  const replaytests::TemporaryFolder folder;
  const std::filesystem::path root = folder.path("");
  EXPECT_EQ("", folderOfCameraAssets((root / "bin").string()));
  fill(root / "share/skeigiot/camera");
  std::filesystem::create_directories(root / "bin");
  EXPECT_EQ((root / "share/skeigiot/camera").string(), folderOfCameraAssets((root / "bin").string()));
  fill(root / "bin/camera");
  EXPECT_EQ((root / "bin/camera").string(), folderOfCameraAssets((root / "bin").string()));
}

TEST(CameraAssets, AreMissingIfOneIs)
{
  const replaytests::TemporaryFolder folder;
  const std::filesystem::path root = folder.path("");
  fill(root / "camera");
  std::filesystem::remove(root / "camera/face_mesh.js");
  EXPECT_EQ("", folderOfCameraAssets(root.string()));
}

TEST(CameraAssets, AreReadAsTheyAre)
{
  const replaytests::TemporaryFolder folder;
  const std::filesystem::path file = std::filesystem::path(folder.path("")) / "bytes";
  const std::string bytes("\0\n\xff", 3);
  std::ofstream(file, std::ios::binary) << bytes;
  EXPECT_EQ(bytes, KV::tools::contentOf(file.string()));
  EXPECT_THROW(KV::tools::contentOf(file.string() + "x"), std::runtime_error);
}

}  // namespace
