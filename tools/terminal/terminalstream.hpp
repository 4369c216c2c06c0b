#pragma once

#include <skeigiot/session/outputstream.hpp>

#include <ostream>
#include <streambuf>
#include <string>

namespace KV::tools
{

/// Passes text on to another buffer by shownPage(), so that no text from outside can steer the terminal.
///
/// An incomplete character at the end waits for the rest of it.
class TerminalBuffer : public std::streambuf
{
public:
  /// The target must outlive the buffer.
  explicit TerminalBuffer(std::streambuf& target) : _target(target) {}

protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override;

private:
  void _pass();

  std::streambuf& _target;
  std::string _waiting;
};

/// Standard output, which throws session::WriteError if it cannot be written; flush() at the end.
class StandardOutput : public std::ostream
{
public:
  StandardOutput();

private:
  session::OutputStream _output;
  TerminalBuffer _buffer;
};

/// While it lives, all text for std::cerr passes through a TerminalBuffer. Make at most one.
class ShownErrors
{
public:
  ShownErrors();
  ~ShownErrors();
  ShownErrors(const ShownErrors&) = delete;
  ShownErrors& operator=(const ShownErrors&) = delete;

private:
  std::streambuf* _before;
  TerminalBuffer _buffer;
};

}  // namespace KV::tools
