#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace KV::tools
{

/// Cuts input, piece by piece, into lines, in bounded memory.
class LineInput
{
public:
  /// The result of taking one line.
  enum class Line
  {
    Complete,
    TooLong,    ///< it was longer than allowed, and is dropped
    NotYetHere  ///< more input must come first
  };

  /// Makes an input for lines of that many bytes at most.
  explicit LineInput(std::size_t longestLine) : _longestLine(longestLine) {}

  /// Reads once from the descriptor, waiting for input if necessary; returns false at the end of the input.
  ///
  /// An interrupted read counts as an empty one.
  ///
  /// \throws std::system_error if it cannot be read.
  bool readFrom(int fileDescriptor);

  /// Adds a piece of input.
  void add(std::string_view piece);

  /// Ends the input: a rest without a line end is a line, too.
  void end();

  /// Takes the next line, without its line end (LF or CR LF); the view is valid until the next call.
  Line take(std::string_view& line);

private:
  std::size_t _longestLine;
  std::string _text;       // input that is not forgotten yet
  std::size_t _begin = 0;  // of the input that was not taken yet
  std::size_t _searched = 0;
  bool _skipping = false;  // skipping the rest of a line that was too long
  bool _ended = false;
};

}  // namespace KV::tools
