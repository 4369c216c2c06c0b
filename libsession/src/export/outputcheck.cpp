#include <skeigiot/session/outputcheck.hpp>

#include "export/ownoutput.hpp"

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <ios>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace KV::session
{

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t headSize = std::size_t{64} << 10U;  // [bytes]

/// The system's information about a file; nothing if the file does not exist.
///
/// \param dash the file with the name "-"
boost::optional<struct stat> statusOf(const std::string& path, int dash)
{
  struct stat status = {};
  const int result = path == "-" ? ::fstat(dash, &status) : ::stat(path.c_str(), &status);
  return boost::make_optional(result == 0, status);
}

std::string identityOf(const struct stat& status)
{
  return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

/// Follows links, so that a link remains and its target is replaced; a new file is not a link.
std::string withoutLinks(const std::string& path)
{
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(path, error);
  return error ? path : resolved.string();
}

bool looksLikeOwnOutput(const std::string& path)
{
  std::ifstream file(path, std::ios::binary);
  std::string head(headSize, '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  if (file.bad() || !file.is_open())
    return false;
  head.resize(static_cast<std::size_t>(file.gcount()));
  return isOwnOutput(head);
}

std::string nameOf(const std::string& target)
{
  return target == "-" ? "standard output" : target;
}

}  // namespace

OutputCheck::OutputCheck(bool force) : _force(force) {}

void OutputCheck::protect(const std::string& input)
{
  const auto status = statusOf(input, STDIN_FILENO);
  if (status && S_ISREG(status->st_mode))
    _inputs.emplace(identityOf(*status), input);
  if (!status || !S_ISDIR(status->st_mode))
    return;
  std::error_code error;
  for (fs::directory_iterator entry(input, error), end; !error && entry != end; entry.increment(error))
    if (entry->is_regular_file(error))
      protect(entry->path().string());
}

void OutputCheck::protect(const SessionInputs& session)
{
  for (const SessionInputs::Input& input : session.inputs)
    protect(input.path);
}

std::string OutputCheck::admit(const std::string& target)
{
  const auto status = statusOf(target, STDOUT_FILENO);
  const bool isRegular = status && S_ISREG(status->st_mode);
  const bool isDevice = status && S_ISCHR(status->st_mode);  // several outputs may go to /dev/null
  std::string path = target == "-" ? target : withoutLinks(target);
  const std::string identity = status && !isDevice ? identityOf(*status) : path;

  const auto input = _inputs.find(identity);
  if (input != _inputs.end())
    throw OutputRefused(OutputFault::IsInput, nameOf(target) + ": is the input " + input->second +
                                                  ", which would be overwritten; write to another file");
  const auto [other, isNew] = _outputs.emplace(identity, target);
  if (!isNew)
    throw OutputRefused(OutputFault::NamedTwice,
                        nameOf(target) + ": is written twice" +
                            (other->second == target ? "" : ", also as " + nameOf(other->second)) +
                            "; give each output a file of its own");
  if (isRegular && target != "-" && !_force && !looksLikeOwnOutput(path))
    throw OutputRefused(OutputFault::NotOurs, target + ": exists, and is no export of skeigiot; write to another file");
  return path;
}

}  // namespace KV::session
