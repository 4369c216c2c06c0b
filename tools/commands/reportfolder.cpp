#include "commands/reportfolder.hpp"

#include <skeigiot/session/replacedfile.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace KV::tools
{

namespace
{

namespace fs = std::filesystem;

const char* const indexName = "index.html";

/// Returns a name for the page of the recording that is not used yet.
std::string freeNameFor(std::string file, std::set<std::string>& taken)
{
  std::replace(file.begin(), file.end(), '/', '_');
  std::string name = file + ".html";
  for (int i = 2; !taken.insert(name).second; ++i)
    name = file + "-" + std::to_string(i) + ".html";
  return name;
}

/// Escapes the characters that an address must not hold.
std::string addressOf(const std::string& name)
{
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string address;
  for (const char character : name)
  {
    const auto byte = static_cast<unsigned char>(character);
    if (std::isalnum(byte) != 0 || character == '.' || character == '-' || character == '_')
      address += character;
    else
      address.append({'%', digits[byte >> 4U], digits[byte & 15U]});
  }
  return address;
}

}  // namespace

ReportFolder::ReportFolder(const std::string& folder, const std::vector<session::SessionInputs>& sessions,
                           session::OutputCheck& check)
  : _index((fs::path(folder) / indexName).string())
{
  std::error_code error;
  fs::create_directories(folder, error);
  if (!fs::is_directory(folder))
    throw session::WriteError(folder, error ? error.value() : ENOTDIR);
  check.admit(_index);
  std::set<std::string> taken = {indexName};
  for (const session::SessionInputs& session : sessions)
  {
    _pages.push_back((fs::path(folder) / freeNameFor(session.exportedAs(1).file, taken)).string());
    check.admit(_pages.back());
  }
}

void ReportFolder::add(session::IndexedRecording recording, bool hasPage)
{
  if (hasPage)
    recording.page = addressOf(fs::path(_pages[_recordings.size()]).filename().string());
  _recordings.push_back(std::move(recording));
}

void ReportFolder::commit() const
{
  session::OutputCheck checked(true);  // the index was checked at the start
  session::ReplacedFile file(_index, checked);
  session::writeReportIndex(file.stream(), _recordings);
  file.commit();
}

}  // namespace KV::tools
