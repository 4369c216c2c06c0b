#include "commands/reportfile.hpp"

#include "cli/messages.hpp"
#include "cli/standardinput.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace KV::tools
{

namespace
{

namespace fs = std::filesystem;

/// Returns the size of a file, or of all files in a folder, such as a bag; nothing of a pipe.
boost::optional<std::uint64_t> sizeOf(const std::string& path)
{
  std::error_code error;
  if (fs::is_regular_file(path, error))
  {
    const std::uintmax_t size = fs::file_size(path, error);
    return boost::make_optional(!error, static_cast<std::uint64_t>(size));
  }
  if (!fs::is_directory(path, error))
    return boost::none;
  std::uint64_t size = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(path, error))
    size += entry.is_regular_file(error) ? entry.file_size(error) : 0;
  return size;
}

/// Returns the name of the format; empty if it cannot be detected a second time, as of a pipe.
std::string formatOf(const std::string& path, const std::string& given)
{
  if (!given.empty() || !sizeOf(path))
    return given;
  try
  {
    return recordings::formatNameOf(path);
  }
  catch (const recordings::Error&)
  {
    return {};
  }
}

/// Returns the lines of the messages.
std::vector<std::string> linesOf(const std::vector<std::string>& messages)
{
  std::vector<std::string> lines;
  for (const std::string& message : messages)
  {
    std::istringstream stream(message);
    stream.exceptions(std::ios::badbit);  // else a lack of memory would cut the text
    for (std::string line; std::getline(stream, line);)
      lines.push_back(line);
  }
  return lines;
}

}  // namespace

std::string dateOfMaking()
{
  std::time_t now = std::time(nullptr);
  if (const char* const fixed = std::getenv("SOURCE_DATE_EPOCH"))
    now = static_cast<std::time_t>(std::strtoll(fixed, nullptr, 10));
  std::tm parts = {};
  std::array<char, 64> text{};
  if (gmtime_r(&now, &parts) == nullptr || std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M UTC", &parts) == 0)
    return {};
  return text.data();
}

void ReportFile::commit(const session::SessionInputs& session, const std::vector<std::string>& messages,
                        const std::string& format, const std::vector<std::string>& givenOptions)
{
  session::ReportOrigin origin;
  for (const session::SessionInputs::Input& input : session.inputs)
    origin.files.push_back({nameOf(input.path), sizeOf(input.path), formatOf(input.path, format)});
  origin.options = givenOptions;
  origin.notes = linesOf(messages);
  origin.version = SKEIGIOT_VERSION;
  origin.made = dateOfMaking();
  _report.write(_file.stream(), origin);
  _file.commit();
}

}  // namespace KV::tools
