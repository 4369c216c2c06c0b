#include "terminal/terminalstream.hpp"

#include "terminal/shown.hpp"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <string_view>

#include <unistd.h>

namespace KV::tools
{

namespace
{

constexpr std::size_t mostWaiting = 1 << 16;

/// Returns whether the text is the beginning of a mark of Style or ProgressLine, without its end.
bool beginsMark(std::string_view text)
{
  constexpr std::string_view erasesLine = "\r\033[K";
  if (text.size() < erasesLine.size() && erasesLine.substr(0, text.size()) == text)
    return true;
  const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
  constexpr std::string_view setsLook = "\033[";
  const std::string_view number = text.substr(std::min(text.size(), setsLook.size()));
  return setsLook.substr(0, text.size()) == text.substr(0, setsLook.size()) && number.size() <= 2 &&
         std::all_of(number.begin(), number.end(), isDigit);
}

/// Returns whether the text, of a few bytes, is the beginning of a character, without its end.
bool beginsCharacter(std::string_view text)
{
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t length = first >= 0xf0U ? 4 : first >= 0xe0U ? 3 : first >= 0xc0U ? 2 : 1;
  return text.size() < length;
}

/// The number of bytes at the end that wait for the following ones.
std::size_t incompleteLength(std::string_view text)
{
  constexpr std::size_t longest = 4;
  for (std::size_t length = std::min(text.size(), longest); length > 0; --length)
  {
    const std::string_view end = text.substr(text.size() - length);
    if (beginsMark(end) || beginsCharacter(end))
      return length;
  }
  return 0;
}

}  // namespace

TerminalBuffer::int_type TerminalBuffer::overflow(int_type character)
{
  if (!traits_type::eq_int_type(character, traits_type::eof()))
    _waiting += traits_type::to_char_type(character);
  if (_waiting.size() > mostWaiting)
    _pass();
  return traits_type::not_eof(character);
}

std::streamsize TerminalBuffer::xsputn(const char* text, std::streamsize count)
{
  _waiting.append(text, static_cast<std::size_t>(count));
  if (_waiting.size() > mostWaiting)
    _pass();
  return count;
}

int TerminalBuffer::sync()
{
  _pass();
  return _target.pubsync();
}

void TerminalBuffer::_pass()
{
  const std::size_t complete = _waiting.size() - incompleteLength(_waiting);
  const std::string page = shownPage(std::string_view(_waiting).substr(0, complete));
  _waiting.erase(0, complete);
  _target.sputn(page.data(), static_cast<std::streamsize>(page.size()));
}

StandardOutput::StandardOutput()
  : std::ostream(nullptr), _output(STDOUT_FILENO, "standard output"), _buffer(*_output.rdbuf())
{
  rdbuf(&_buffer);
  exceptions(std::ios::badbit);  // so that an exception of the output passes through the stream unchanged
}

ShownErrors::ShownErrors() : _before(std::cerr.rdbuf()), _buffer(*_before)
{
  std::cerr.rdbuf(&_buffer);
}

ShownErrors::~ShownErrors()
{
  std::cerr.rdbuf(_before);
}

}  // namespace KV::tools
