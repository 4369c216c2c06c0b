#include "study/studyfiles.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/recordings/signallimits.hpp>

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

namespace KV::session
{

namespace
{

namespace fs = std::filesystem;

/// Which folder of which device this is: links to it have the same identity.
using Identity = std::pair<dev_t, ino_t>;

Identity identityOf(const fs::path& folder)
{
  struct stat status
  {};
  return ::stat(folder.c_str(), &status) == 0 ? Identity(status.st_dev, status.st_ino) : Identity();
}

/// The folders from the folder of a study down to the present one.
class Descent
{
public:
  explicit Descent(const fs::path& folder) : _folders{identityOf(folder)} {}

  /// Notes a folder in the one at this depth; returns whether it is one of those above, which would have no end.
  bool leadsBack(const fs::path& folder, int depth)
  {
    _folders.resize(static_cast<std::size_t>(depth) + 1);
    const Identity identity = identityOf(folder);
    const bool isAbove = std::find(_folders.begin(), _folders.end(), identity) != _folders.end();
    _folders.push_back(identity);
    return isAbove;
  }

private:
  std::vector<Identity> _folders;
};

}  // namespace

std::vector<std::string> studyFilesIn(const std::string& folder)
{
  std::error_code error;
  std::vector<std::string> files;
  Descent descent(folder);
  std::size_t count = 0;
  std::string present = folder;  // an error is about what was entered last
  fs::recursive_directory_iterator entry(folder, fs::directory_options::follow_directory_symlink, error);
  for (const fs::recursive_directory_iterator end; !error && entry != end; entry.increment(error))
  {
    recordings::InterruptionCheck::ask();
    if (++count > recordings::limits::mostEntriesOfStudy)
      throw recordings::Error({folder, 0, {}}, "has more than " +
                                                   std::to_string(recordings::limits::mostEntriesOfStudy) +
                                                   " files and folders, too many for a study");
    present = entry->path().string();
    const fs::path& path = entry->path();
    std::error_code ofEntry;
    const bool isHidden = path.filename().string().front() == '.';
    const bool isFolder = entry->is_directory(ofEntry);
    const bool isBag = isFolder && fs::exists(path / "metadata.yaml", ofEntry);
    constexpr int deepest = 32;
    if (isHidden || isBag || !isFolder || descent.leadsBack(path, entry.depth()) || entry.depth() >= deepest)
      entry.disable_recursion_pending();
    const bool isResult = path.extension() == ".sqlite" || path.extension() == ".sqlite-journal";
    if (!isHidden && !isResult && (isBag || (!isFolder && entry->is_regular_file(ofEntry))))
      files.push_back(path.lexically_relative(folder).generic_string());
  }
  if (error)
    throw recordings::Error({present, 0, {}}, "cannot be read: " + error.message());
  std::sort(files.begin(), files.end());
  return files;
}

std::string nameOfFolder(const std::string& folder)
{
  const fs::path path = fs::absolute(folder).lexically_normal();
  return path.has_filename() ? path.filename().string() : path.parent_path().filename().string();
}

bool isNamedAsLabels(const std::string& path)
{
  const std::string extension = fs::path(path).extension().string();
  return extension == ".eaf" || extension == ".TextGrid";
}

}  // namespace KV::session
