#pragma once

#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp is not in the C++ header

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>

namespace replaytests
{

/// A folder of the test's own, removed with its content.
class TemporaryFolder
{
public:
  TemporaryFolder()
  {
    std::string pattern = (std::filesystem::temp_directory_path() / "skeigiot-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
      throw std::runtime_error("cannot make a folder for the test");
    _path = pattern;
  }
  ~TemporaryFolder() { std::filesystem::remove_all(_path); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string path(const std::string& name) const { return (_path / name).string(); }

  /// Writes a file, and returns its path.
  std::string write(const std::string& name, const std::string& content) const
  {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

  std::string read(const std::string& name) const
  {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// Returns the names of all files in it.
  std::set<std::string> names() const
  {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(_path))
      names.insert(entry.path().filename().string());
    return names;
  }

private:
  std::filesystem::path _path;
};

}  // namespace replaytests
