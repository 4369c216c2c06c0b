#include "input/jsonpieces.hpp"

#include <skeigiot/recordings/quote.hpp>

namespace KV::recordings
{
namespace
{
bool isBlank(char character)
{
  return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

}  // namespace

bool JsonPieces::next(std::string& piece)
{
  if (!_findBegin())
    return false;
  _piece.clear();
  _depth = 0;
  _tooDeep = false;
  _parts = 0;
  _inString = false;
  _isEscaped = false;
  _pieceLine = _line;

  char character = 0;
  while (_peek(character))
  {
    // An object begins a line: the one before it is not closed.
    if (_atLineStart && character == '{' && _depth > 0)
      _refuse("the object is not complete");
    _consume();
    if (_takeIn(character))
    {
      if (_tooDeep)
        _refuse("is nested too deep");
      if (_parts > limits::mostPartsOfObject)
        _refuse("has more than " + std::to_string(limits::mostPartsOfObject) + " parts: this is no result for a frame");
      piece.swap(_piece);
      return true;
    }
  }
  _refuse("the object is not complete: the file may be cut");
}

bool JsonPieces::_peek(char& character)
{
  while (_block.empty())
    if (!_file.readBlock(_block))
      return false;
  character = _block.front();
  return true;
}

void JsonPieces::_consume()
{
  const bool endsLine = _block.front() == '\n';
  _line += endsLine ? 1 : 0;
  _atLineStart = endsLine;
  _block.remove_prefix(1);
}

// Skips to the begin of the next object; false at the end.
bool JsonPieces::_findBegin()
{
  char character = 0;
  while (_peek(character))
  {
    if (character == '{')
    {
      _anySeen = true;
      return true;
    }
    const bool beginsArray = character == '[' && !_anySeen;
    const bool belongsToArray = _inArray && (character == ',' || character == ']');
    if (!isBlank(character) && !beginsArray && !belongsToArray)
      _skipLine();
    _inArray = _inArray || beginsArray;
    _anySeen = _anySeen || !isBlank(character);
    _consume();
  }
  return false;
}

void JsonPieces::_skipLine()
{
  constexpr std::size_t enough = 64;
  _pieceLine = _line;
  std::string text;
  char character = 0;
  while (_peek(character) && character != '\n')
  {
    if (text.size() < enough)
      text.push_back(character);
    _consume();
  }
  _anySeen = true;
  _refuse("expected a JSON object, found " + quote(text));
}

// Adds a character to the object; true if the object ends with it.
bool JsonPieces::_takeIn(char character)
{
  if (_piece.size() == longestPiece)
    throw Error({_file.path(), _pieceLine, {}}, "an object is longer than " + std::to_string(longestPiece >> 20U) +
                                                    " MiB: this is no result for a frame");
  _piece.push_back(character);
  if (_inString)
  {
    const bool ends = character == '"' && !_isEscaped;
    _isEscaped = character == '\\' && !_isEscaped;
    _inString = !ends && character != '\n';  // no string continues after the end of a line
    return false;
  }
  _parts += character == ',' || character == '{' || character == '[' ? 1 : 0;
  if (character == '"')
    _inString = true;
  else if (character == '{' || character == '[')
    _tooDeep = ++_depth > deepestNesting || _tooDeep;
  else if (character == '}' || character == ']')
    return --_depth == 0;
  return false;
}

void JsonPieces::_refuse(const std::string& message) const
{
  throw BadLine({_file.path(), _pieceLine, {}}, message);
}

}  // namespace KV::recordings
