#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace KV::tools
{

/// Cuts what comes in, piece by piece, into lines, in bounded memory.
class LineInput
{
public:
  /// What becomes of one line.
  enum class Line
  {
    Complete,
    TooLong,    ///< it was longer than allowed, and is gone
    NotYetHere  ///< more must come in first
  };

  /// Makes an input for lines of that many bytes at most.
  explicit LineInput(std::size_t longestLine) : _longestLine(longestLine) {}

  /// Reads once from the descriptor, which waits if nothing is there; returns false at the end of the input.
  ///
  /// An interrupted read counts as one of nothing.
  ///
  /// \throws std::system_error if it cannot be read.
  bool readFrom(int fileDescriptor);

  /// Takes in a piece.
  void add(std::string_view piece);

  /// Ends the input: what is left without a line end is a line, too.
  void end();

  /// Takes the next line, without its line end (LF or CR LF); the view is valid until the next call.
  Line take(std::string_view& line);

private:
  std::size_t _longestLine;
  std::string _text;       // what came in and is not forgotten yet
  std::size_t _begin = 0;  // of what was not taken yet
  std::size_t _searched = 0;
  bool _skipping = false;  // the rest of a line that was too long
  bool _ended = false;
};

}  // namespace KV::tools
