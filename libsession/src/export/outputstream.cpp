#include <skeigiot/session/outputstream.hpp>

#include <cerrno>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace KV::session
{

WriteError::WriteError(const std::string& target, int errorNumber)
  : std::runtime_error(target + ": " + std::generic_category().message(errorNumber)), _errorNumber(errorNumber)
{}

bool WriteError::pipeClosed() const
{
  return _errorNumber == EPIPE;
}

OutputStream::OutputStream(int fileDescriptor, const std::string& target)
  : std::ostream(nullptr), _buffer(fileDescriptor, target)
{
  rdbuf(&_buffer);
  exceptions(std::ios::badbit);  // so that an exception of the buffer passes through the stream unchanged
}

OutputStream::Buffer::Buffer(int fileDescriptor, std::string target)
  : _fileDescriptor(fileDescriptor), _target(std::move(target))
{
  setp(_bytes.begin(), _bytes.end());
}

OutputStream::Buffer::int_type OutputStream::Buffer::overflow(int_type character)
{
  sync();
  if (!traits_type::eq_int_type(character, traits_type::eof()))
    sputc(traits_type::to_char_type(character));
  return traits_type::not_eof(character);
}

int OutputStream::Buffer::sync()
{
  const char* next = pbase();
  const char* const end = pptr();
  setp(_bytes.begin(), _bytes.end());  // after a failed write, nothing more is written
  while (next != end)
  {
    const ssize_t written = ::write(_fileDescriptor, next, static_cast<std::size_t>(end - next));
    if (written > 0)
      next += written;
    else if (errno != EINTR)
      throw WriteError(_target, errno);
  }
  return 0;
}

}  // namespace KV::session
