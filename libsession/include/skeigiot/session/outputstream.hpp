#pragma once

#include <skeigiot/api.hpp>

#include <array>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace KV::session
{

/// Something could not be written.
class SKEIGIOT_API WriteError : public std::runtime_error
{
public:
  /// Makes an error that reads "<target>: <what the system says of errorNumber>".
  WriteError(const std::string& target, int errorNumber);

  /// Returns whether the reader of a pipe went away, which is no fault.
  bool pipeClosed() const;

private:
  int _errorNumber;
};

/// Writes to a file descriptor, and throws WriteError where that fails instead of only going bad.
class SKEIGIOT_API OutputStream : public std::ostream
{
public:
  /// Makes a stream that does not own the descriptor; `target` is what errors call it.
  ///
  /// Text that is not flushed at the end is lost: flush() before.
  OutputStream(int fileDescriptor, const std::string& target);

private:
  class Buffer : public std::streambuf
  {
  public:
    Buffer(int fileDescriptor, std::string target);

  protected:
    int_type overflow(int_type character) override;
    int sync() override;

  private:
    int _fileDescriptor;
    std::string _target;
    std::array<char, 1 << 16> _bytes{};
  };

  Buffer _buffer;
};

}  // namespace KV::session
