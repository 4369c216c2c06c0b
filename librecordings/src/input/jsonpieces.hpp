#pragma once

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace KV::recordings
{

/// Splits a file into its JSON objects: they follow each other, on a line each or not, or are in one array, which may
/// have any size.
class JsonPieces
{
public:
  static constexpr std::size_t longestPiece = limits::longestLine;  ///< [bytes]
  static constexpr int deepestNesting = limits::deepestJson;

  /// Takes an opened file.
  ///
  /// \throws Error if it cannot be read.
  explicit JsonPieces(InputFile input) : _file(std::move(input)) {}

  /// Reads the next object into `piece`; returns false at the end of the file.
  ///
  /// \throws BadLine if an object is not complete, nested too deep or has too many parts, or there is something else
  /// between objects; the next call goes on after it.
  /// \throws Error if the file cannot be read, or an object is too long.
  bool next(std::string& piece);

  /// Returns in which line the last object read begins, from 1.
  std::size_t lineNumber() const { return _pieceLine; }

  const InputFile& file() const { return _file; }

private:
  bool _peek(char& character);
  void _consume();
  bool _findBegin();
  void _skipLine();
  bool _takeIn(char character);
  [[noreturn]] void _refuse(const std::string& message) const;

  InputFile _file;
  std::string_view _block;  // what is not consumed yet
  std::size_t _line = 1;
  bool _atLineStart = true;
  bool _anySeen = false;
  bool _inArray = false;

  std::string _piece;
  std::size_t _pieceLine = 0;
  int _depth = 0;
  bool _tooDeep = false;
  std::size_t _parts = 0;  // of the object so far: at least its members, and elements of its arrays
  bool _inString = false;
  bool _isEscaped = false;
};

}  // namespace KV::recordings
