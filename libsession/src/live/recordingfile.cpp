#include <skeigiot/session/recordingfile.hpp>

#include "live/recordedsteps.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>

namespace KV::session
{

namespace
{

/// An opened file, which is closed at the end.
class OpenedFile
{
public:
  OpenedFile(const std::string& path, bool replaces)
    : OpenedFile(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666))
  {
    struct stat status = {};
    if (_descriptor < 0 || ::fstat(_descriptor, &status) != 0)
      throw WriteError(path, errno);
    if (status.st_size > 0 && !replaces)
      throw WriteError(path, EEXIST);
    if (status.st_size > 0 && ::ftruncate(_descriptor, 0) != 0)
      throw WriteError(path, errno);
  }
  ~OpenedFile()
  {
    if (_descriptor >= 0)
      ::close(_descriptor);
  }
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  int descriptor() const { return _descriptor; }

private:
  /// With this constructor complete, the destructor closes the file if the other one throws.
  explicit OpenedFile(int descriptor) : _descriptor(descriptor) {}

  int _descriptor;
};

}  // namespace

struct RecordingFile::Record
{
  Record(const std::string& path, bool replaces) : file(path, replaces), steps(file.descriptor(), path) {}

  OpenedFile file;
  RecordedSteps steps;
};

RecordingFile::RecordingFile(const std::string& path, bool replaces) : _record(std::make_unique<Record>(path, replaces))
{}

RecordingFile::~RecordingFile()
{
  try
  {
    flush();
  }
  catch (const std::bad_alloc&)
  {}  // there is no memory for the text of error(), which nobody can read any more
}

void RecordingFile::stepBegins(const recordings::Step& step)
{
  _record->steps.write(step);
}

void RecordingFile::flush()
{
  _record->steps.flush();
}

const std::string& RecordingFile::error() const
{
  return _record->steps.error();
}

}  // namespace KV::session
