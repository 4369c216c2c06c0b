#pragma once

#include <array>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace tools
{

/// Something could not be written.
class WriteError : public std::runtime_error
{
public:
  /// Makes an error that reads "<target>: <what the system says of errorNumber>".
  WriteError(const std::string& target, int errorNumber);

  /// Tells whether the reader of a pipe went away, which is no fault.
  bool pipeClosed() const;

private:
  int _errorNumber;
};

/// Writes to a file descriptor, and throws WriteError where that fails instead of only going bad.
class OutputStream : public std::ostream
{
public:
  /// Makes a stream that does not own the descriptor; `target` is what errors call it.
  ///
  /// What is left unflushed at the end is lost: flush() before.
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

}  // namespace tools
