#include <skeigiot/session/replacedfile.hpp>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KV::session
{

namespace
{

/// The permissions of the file that is replaced, or those that a new file gets.
mode_t permissionsFor(const std::string& target)
{
  struct stat status = {};
  if (::stat(target.c_str(), &status) == 0)
    return status.st_mode & 07777U;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666U & ~mask;
}

}  // namespace

ReplacedFile::ReplacedFile(const std::string& name, std::string path) : _name(name), _target(std::move(path)) {}

// The other constructor has completed the object, so that an exception removes the temporary file.
ReplacedFile::ReplacedFile(const std::string& target, OutputCheck& check) : ReplacedFile(target, check.admit(target))
{
  struct stat status = {};
  const bool exists = ::stat(_target.c_str(), &status) == 0;
  if (target == "-")
  {
    _name = "standard output";
    _fileDescriptor = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
  }
  else if (exists && !S_ISREG(status.st_mode))
    _fileDescriptor = ::open(_target.c_str(), O_WRONLY | O_CLOEXEC);
  else
    _openBeside();

  if (_fileDescriptor < 0)
    throw WriteError(_name, errno);
  _stream = std::make_unique<OutputStream>(_fileDescriptor, _name);
}

ReplacedFile::~ReplacedFile()
{
  if (_fileDescriptor >= 0)
    ::close(_fileDescriptor);
  if (!_temporary.empty())
    ::unlink(_temporary.c_str());
}

void ReplacedFile::commit()
{
  _stream->flush();
  if (_temporary.empty())
    return;
  if (::fchmod(_fileDescriptor, permissionsFor(_target)) != 0 || ::fsync(_fileDescriptor) != 0 ||
      std::rename(_temporary.c_str(), _target.c_str()) != 0)
    throw WriteError(_name, errno);
  _temporary.clear();
}

void ReplacedFile::_openBeside()
{
  // A short name of its own: the name of the target with an addition may be too long.
  std::string pattern = (std::filesystem::path(_target).parent_path() / ".skeigiot.XXXXXX").string();
  _fileDescriptor = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (_fileDescriptor >= 0)
    _temporary = std::move(pattern);
}

}  // namespace KV::session
