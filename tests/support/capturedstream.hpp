#pragma once

#include <iostream>
#include <ostream>
#include <sstream>
#include <string>

namespace support
{

/// Keeps the text written to a stream while it lives, instead of passing it on.
class CapturedStream
{
public:
  explicit CapturedStream(std::ostream& stream) : _stream(stream), _former(stream.rdbuf(_text.rdbuf())) {}
  ~CapturedStream() { _stream.rdbuf(_former); }
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  /// Returns the text so far.
  std::string text() const { return _text.str(); }

private:
  std::ostringstream _text;
  std::ostream& _stream;
  std::streambuf* _former;
};

/// Keeps the text written to std::cout while it lives.
struct CapturedStandardOutput : CapturedStream
{
  CapturedStandardOutput() : CapturedStream(std::cout) {}
};

/// Keeps the text written to std::cerr while it lives.
struct CapturedStandardError : CapturedStream
{
  CapturedStandardError() : CapturedStream(std::cerr) {}
};

}  // namespace support
