#include "camera/facemodel.hpp"

#include <skeigiot/recordings/error.hpp>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace KV::tools
{

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t mebibyte = std::size_t{1} << 20U;
constexpr std::size_t mostMebibytes = 64;  // the model of MediaPipe has 4
constexpr std::size_t largest = mostMebibytes * mebibyte;

constexpr std::string_view beginOfZip = "PK\x03\x04";

[[noreturn]] void refuse(const std::string& path, const std::string& message)
{
  throw recordings::Error({path, 0, {}}, message);
}

}  // namespace

FaceModel readFaceModel(const std::string& path)
{
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status))
    refuse(path, "cannot be opened: " + error.message());
  if (!fs::is_regular_file(status))
    refuse(path, "is no regular file, which a model must be");
  std::ifstream file(path, std::ios::binary);
  if (!file)
    refuse(path, std::string("cannot be opened: ") + std::strerror(errno));
  const std::uintmax_t size = fs::file_size(path, error);
  if (!error && size > largest)
    refuse(path, "has more than " + std::to_string(mostMebibytes) + " MiB, which no model of faces has");
  std::string content(error ? 0 : static_cast<std::size_t>(size), '\0');
  file.read(content.data(), static_cast<std::streamsize>(content.size()));
  if (error || !file)
    refuse(path, "cannot be read");
  if (content.compare(0, beginOfZip.size(), beginOfZip) != 0)
    refuse(path, "is no model: a file such as face_landmarker.task begins as a ZIP archive does");
  return {fs::path(path).filename().string(), std::move(content)};
}

}  // namespace KV::tools
