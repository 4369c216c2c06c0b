#pragma once

#include <iostream>
#include <ostream>
#include <sstream>
#include <string>

namespace support
{

/// Keeps what is written to a stream while it lives, instead of letting it through.
class CapturedStream
{
public:
  explicit CapturedStream(std::ostream& stream) : _stream(stream), _former(stream.rdbuf(_text.rdbuf())) {}
  ~CapturedStream() { _stream.rdbuf(_former); }
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  /// Returns what was written so far.
  std::string text() const { return _text.str(); }

private:
  std::ostringstream _text;
  std::ostream& _stream;
  std::streambuf* _former;
};

/// Keeps what is written to std::cout while it lives.
struct CapturedStandardOutput : CapturedStream
{
  CapturedStandardOutput() : CapturedStream(std::cout) {}
};

/// Keeps what is written to std::cerr while it lives.
struct CapturedStandardError : CapturedStream
{
  CapturedStandardError() : CapturedStream(std::cerr) {}
};

}  // namespace support
