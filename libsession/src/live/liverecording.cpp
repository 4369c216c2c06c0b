#include <skeigiot/session/liverecording.hpp>

#include "live/recordedsteps.hpp"

#include <fcntl.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkostemp is not in the C++ header
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <set>
#include <streambuf>
#include <utility>

namespace KV::session
{

namespace
{

std::string nameOf(const std::string& folder)
{
  return "temporary file in " + folder;
}

/// Gives each person a number in the recording that no other person has or had there.
class NumbersInRecording
{
public:
  std::int32_t of(std::int32_t person)
  {
    const auto known = _numbers.find(person);
    if (known != _numbers.end())
      return known->second;
    std::int32_t number = person;
    while (!_used.insert(number).second)
      number = _next++;
    _numbers[person] = number;
    return number;
  }

  void remove(std::int32_t person) { _numbers.erase(person); }

private:
  std::map<std::int32_t, std::int32_t> _numbers;  // of the persons who are there
  std::set<std::int32_t> _used;                   // at any time
  std::int32_t _next = 1001;                      // to try for somebody whose own number is used
};

}  // namespace

/// The file, which has a name only while it is made.
struct LiveRecording::Part::File
{
  explicit File(const std::string& folder) : name(nameOf(folder))
  {
    std::string path = folder + "/skeigiot-XXXXXX";
    descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0)
      throw WriteError(name, errno);
    ::unlink(path.c_str());
  }
  ~File() { ::close(descriptor); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  std::string name;
  int descriptor = -1;
};

namespace
{

/// Reads a part from its beginning to its end.
class PartBuffer : public std::streambuf
{
public:
  explicit PartBuffer(LiveRecording::Part part) : _part(std::move(part)) {}

protected:
  int_type underflow() override
  {
    const std::size_t count = _part.read(_next, _bytes.data(), _bytes.size());
    if (count == 0)
      return traits_type::eof();
    _next += count;
    setg(_bytes.data(), _bytes.data(), _bytes.data() + count);
    return traits_type::to_int_type(_bytes.front());
  }

private:
  LiveRecording::Part _part;
  std::size_t _next = 0;
  std::array<char, std::size_t{64} << 10U> _bytes{};
};

class PartStream : public std::istream
{
public:
  explicit PartStream(LiveRecording::Part part) : std::istream(nullptr), _buffer(std::move(part)) { rdbuf(&_buffer); }

private:
  PartBuffer _buffer;
};

}  // namespace

std::size_t LiveRecording::Part::read(std::size_t from, char* bytes, std::size_t count) const
{
  const std::size_t most = from < _size ? std::min(count, _size - from) : 0;
  ssize_t got = 0;
  do
    got = most == 0 ? 0 : ::pread(_file->descriptor, bytes, most, static_cast<off_t>(from));
  while (got < 0 && errno == EINTR);
  if (got < 0)
    throw WriteError(_file->name, errno);
  return static_cast<std::size_t>(got);
}

std::unique_ptr<std::istream> LiveRecording::Part::open() const
{
  return std::make_unique<PartStream>(*this);
}

struct LiveRecording::Record
{
  explicit Record(const std::string& folder)
    : file(std::make_shared<const Part::File>(folder)), steps(file->descriptor, file->name)
  {}

  std::shared_ptr<const Part::File> file;
  RecordedSteps steps;
  NumbersInRecording numbers;
  std::size_t size = 0;  // of the whole lines in the file, at the last part()
};

LiveRecording::LiveRecording(const std::string& folder) : _record(std::make_unique<Record>(folder)) {}

LiveRecording::~LiveRecording() = default;

void LiveRecording::stepBegins(const recordings::Step& step)
{
  const std::int32_t number = step.person ? _record->numbers.of(*step.person) : 0;
  if (!step.person || number == *step.person)
  {
    _record->steps.write(step);
    return;
  }
  recordings::Step renumbered = step;
  renumbered.person = number;
  _record->steps.write(renumbered);
}

void LiveRecording::remove(std::int32_t person)
{
  _record->numbers.remove(person);
}

LiveRecording::Part LiveRecording::part()
{
  _record->steps.flush();
  if (_record->steps.error().empty())
  {
    const off_t end = ::lseek(_record->file->descriptor, 0, SEEK_CUR);
    _record->size = end < 0 ? _record->size : static_cast<std::size_t>(end);
  }
  Part part;
  part._file = _record->file;
  part._size = _record->size;
  return part;
}

const std::string& LiveRecording::error() const
{
  return _record->steps.error();
}

}  // namespace KV::session
