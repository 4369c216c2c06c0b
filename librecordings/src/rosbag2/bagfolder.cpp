#include "rosbag2/bagfolder.hpp"

#include "input/filehead.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <dirent.h>

namespace KV::recordings
{
namespace
{
namespace fs = std::filesystem;

constexpr const char* metadataName = "metadata.yaml";
constexpr std::array<std::string_view, 2> containers = {".db3", ".mcap"};
constexpr std::array<std::string_view, 4> packings = {"", ".zstd", ".zst", ".gz"};

bool endsWith(std::string_view text, std::string_view end)
{
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// The compression in the name of a bag's file; nothing for another file.
std::optional<std::string_view> packingIn(std::string_view name)
{
  for (const std::string_view container : containers)
    for (const std::string_view packing : packings)
      if (endsWith(name, std::string(container) + std::string(packing)))
        return packing;
  return {};
}

std::string withoutPacking(const std::string& name)
{
  return name.substr(0, name.size() - packingIn(name).value_or("").size());
}

// Looks for the list of files where rosbag2 writes it, and keeps nothing else. Anchors and aliases are not names:
// rosbag2 does not write them.
class ListOfFiles : public YAML::EventHandler
{
public:
  std::vector<std::string> names;

  void OnDocumentStart(const YAML::Mark&) override {}
  void OnDocumentEnd() override {}
  void OnNull(const YAML::Mark&, YAML::anchor_t) override { _value({}); }
  void OnAlias(const YAML::Mark&, YAML::anchor_t) override { _value({}); }

  void OnScalar(const YAML::Mark&, const std::string&, YAML::anchor_t, const std::string& value) override
  {
    _value(value);
  }

  void OnSequenceStart(const YAML::Mark&, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override
  {
    _levels.push_back({false, false, {}});
  }
  void OnSequenceEnd() override { _end(); }

  void OnMapStart(const YAML::Mark&, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override
  {
    _levels.push_back({true, false, {}});
  }
  void OnMapEnd() override { _end(); }

private:
  struct Level
  {
    bool isMap;
    bool hasKey;  // the next value belongs to `key`
    std::string key;
  };

  void _value(const std::string& text)
  {
    if (_levels.empty())
      return;
    Level& level = _levels.back();
    if (level.isMap && !level.hasKey)
      level.key = text;
    else if (_isListOfFiles() && !text.empty())
      names.push_back(fs::path(text).filename().string());
    level.hasKey = level.isMap && !level.hasKey;
  }

  void _end()
  {
    _levels.pop_back();
    if (!_levels.empty() && _levels.back().isMap)
      _levels.back().hasKey = !_levels.back().hasKey;  // the end of a value, or of a key
  }

  bool _isListOfFiles() const
  {
    return _levels.size() == 3 && _levels[0].key == "rosbag2_bagfile_information" &&
           _levels[1].key == "relative_file_paths" && !_levels[2].isMap;
  }

  std::vector<Level> _levels;
};

// The names of bag files in a folder. The iterator of the standard library ends the process if there is no memory.
std::set<std::string> bagNamesIn(const std::string& folder)
{
  const std::unique_ptr<DIR, int (*)(DIR*)> opened(::opendir(folder.c_str()), ::closedir);
  if (opened == nullptr && errno == ENOMEM)
    throw std::bad_alloc();
  if (opened == nullptr)
    throw Error({folder, 0, {}}, std::string("cannot be read: ") + std::strerror(errno));
  std::set<std::string> names;
  errno = 0;
  while (const dirent* const entry = ::readdir(opened.get()))
  {
    if (packingIn(entry->d_name))
      names.insert(entry->d_name);
    errno = 0;
  }
  if (errno != 0)
    throw Error({folder, 0, {}}, std::string("cannot be read: ") + std::strerror(errno));
  return names;
}

// The names that metadata.yaml lists; empty, with a warning, if it cannot be read.
std::vector<std::string> listedFiles(const std::string& folder, std::vector<std::string>& warnings)
{
  const std::string path = (fs::path(folder) / metadataName).string();
  std::error_code error;
  if (!fs::is_regular_file(path, error))
    return {};
  try
  {
    return filesListedIn(headOfFile(path, limits::largestBagMetadata + 1));
  }
  catch (const Error& fault)
  {
    warnings.push_back(std::string(fault.what()) + "; so all files of the folder are read");
    return {};
  }
  catch (const std::runtime_error& fault)
  {
    warnings.push_back(path + ": cannot be read, so all files of the folder are read: " + fault.what());
    return {};
  }
}

// The file of the folder with this name, packed or not.
std::string found(const std::set<std::string>& names, const std::string& listed)
{
  if (names.count(listed) > 0)
    return listed;
  for (const std::string_view packing : packings)
    if (std::string name = withoutPacking(listed) + std::string(packing); names.count(name) > 0)
      return name;
  return {};
}

}  // namespace

bool isRosbagFolder(const std::string& path)
{
  std::error_code error;
  return fs::is_directory(path, error) && fs::exists(fs::path(path) / metadataName, error);
}

std::vector<std::string> filesListedIn(std::string_view metadata)
{
  if (metadata.size() > limits::largestBagMetadata)
  {
    static_assert(limits::largestBagMetadata == limits::mebibyte);
    throw std::runtime_error("is larger than 1 MiB");
  }
  std::istringstream text{std::string(metadata)};
  ListOfFiles list;
  try
  {
    YAML::Parser(text).HandleNextDocument(list);
  }
  catch (const YAML::Exception& error)
  {
    throw std::runtime_error("line " + std::to_string(error.mark.line + 1) + ": " + error.msg);
  }
  return list.names;
}

BagFiles filesOfBag(const std::string& path)
{
  std::error_code error;
  if (!fs::exists(path, error))
    throw Error({path, 0, {}}, "there is no such file");
  if (!fs::is_directory(path, error))
    return {{path}, {}};

  const std::set<std::string> names = bagNamesIn(path);
  if (names.empty())
    throw Error({path, 0, {}}, "the folder has no bag file (.mcap or .db3)");

  BagFiles files;
  std::set<std::string> taken;
  const std::vector<std::string> listed = listedFiles(path, files.warnings);
  for (const std::string& name : listed)
  {
    const std::string present = found(names, name);
    if (present.empty())
      files.warnings.push_back(path + ": " + quote(name) + " is listed in " + metadataName +
                               ", and is not in the folder: what it holds is missing");
    else if (taken.insert(present).second)
      files.paths.push_back((fs::path(path) / present).string());
  }
  for (const std::string& name : names)
    if (listed.empty())
      files.paths.push_back((fs::path(path) / name).string());
    else if (taken.count(name) == 0 && taken.count(withoutPacking(name)) == 0)
      files.warnings.push_back(path + ": " + quote(name) + " is not listed in " + metadataName + ", and is not read");
  if (files.paths.empty())
    throw Error({path, 0, {}}, std::string("none of the files that ") + metadataName + " lists is in the folder");
  return files;
}

}  // namespace KV::recordings
