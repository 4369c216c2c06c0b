#include "jsonl/flatjson.hpp"

#include <ko/utf8.hpp>

namespace KV::recordings
{
namespace
{
bool isDigit(char character)
{
  return character >= '0' && character <= '9';
}

bool isSpace(char character)
{
  return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

}  // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): parts are written before they are read
FlatJson::FlatJson(std::string_view text) : _next(text.data()), _end(text.data() + text.size())
{
  _skipSpace();
  _readValue({"", 0}, 0);
  _skipSpace();
  if (_next != _end)
    throw NotPlain();
}

void FlatJson::_skipSpace()
{
  while (_next != _end && isSpace(*_next))
    ++_next;
}

/// At the end of the text, a character with which nothing begins.
char FlatJson::_peek() const
{
  return _next != _end ? *_next : '\0';
}

bool FlatJson::_take(char character)
{
  if (_peek() != character)
    return false;
  ++_next;
  return true;
}

void FlatJson::_expect(char character)
{
  if (!_take(character))
    throw NotPlain();
}

void FlatJson::_takeWord(std::string_view word)
{
  for (const char character : word)
    _expect(character);
}

void FlatJson::_readValue(Piece name, int depth)
{
  if (_count == mostParts || depth == deepest)
    throw NotPlain();
  Part& part = _parts[_count++];
  part.name = name;
  part.text = {"", 0};
  part.size = 0;
  switch (_peek())
  {
    case '{':
      part.kind = Kind::Object;
      part.size = _readMembers(depth + 1);
      break;
    case '[':
      part.kind = Kind::Array;
      part.size = _readElements(depth + 1);
      break;
    case '"':
      part.kind = Kind::Text;
      part.text = _readText();
      break;
    case 't':
      part.kind = Kind::True;
      _takeWord("true");
      break;
    case 'f':
      part.kind = Kind::False;
      _takeWord("false");
      break;
    default:
      part.text = _readNumber(part.kind);
  }
  part.end = _count;
}

std::uint32_t FlatJson::_readMembers(int depth)
{
  _expect('{');
  _skipSpace();
  if (_take('}'))
    return 0;
  std::uint32_t count = 0;
  do
  {
    _skipSpace();
    const Piece name = _readText();
    _skipSpace();
    _expect(':');
    _skipSpace();
    _readValue(name, depth);
    ++count;
    _skipSpace();
  } while (_take(','));
  _expect('}');
  return count;
}

std::uint32_t FlatJson::_readElements(int depth)
{
  _expect('[');
  _skipSpace();
  if (_take(']'))
    return 0;
  std::uint32_t count = 0;
  do
  {
    _skipSpace();
    _readValue({"", 0}, depth);
    ++count;
    _skipSpace();
  } while (_take(','));
  _expect(']');
  return count;
}

FlatJson::Piece FlatJson::_readText()
{
  _expect('"');
  const char* const begin = _next;
  bool isAscii = true;
  for (; _next != _end && *_next != '"'; ++_next)
  {
    const auto character = static_cast<unsigned char>(*_next);
    if (character < ' ' || character == '\\')
      throw NotPlain();
    isAscii = isAscii && character < 0x80U;
  }
  const Piece text{begin, static_cast<std::size_t>(_next - begin)};
  _expect('"');
  if (!isAscii && !ko::isUtf8(text.view()))
    throw NotPlain();
  return text;
}

FlatJson::Piece FlatJson::_readNumber(Kind& kind)
{
  const char* const begin = _next;
  kind = Kind::Whole;
  _take('-');
  if (!_take('0'))
    _readDigits();
  if (_take('.'))
  {
    kind = Kind::Fraction;
    _readDigits();
  }
  if (_take('e') || _take('E'))
  {
    kind = Kind::Fraction;
    if (!_take('+'))
      _take('-');
    _readDigits();
  }
  return {begin, static_cast<std::size_t>(_next - begin)};
}

/// At least one digit.
void FlatJson::_readDigits()
{
  if (!isDigit(_peek()))
    throw NotPlain();
  while (isDigit(_peek()))
    ++_next;
}

}  // namespace KV::recordings
