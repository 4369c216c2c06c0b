#include "terminal/shown.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace KV::tools
{

namespace
{

struct Range
{
  char32_t first;
  char32_t last;
};

/// Characters of Unicode 15 of the categories Cc, Cf, Zl and Zp, and those without width that programs may ignore;
/// except the selectors that choose the look of the character before them.
constexpr std::array<Range, 26> hidden = {
    {{0x0, 0x1f},        {0x7f, 0x9f},       {0xad, 0xad},       {0x34f, 0x34f},     {0x600, 0x605},
     {0x61c, 0x61c},     {0x6dd, 0x6dd},     {0x70f, 0x70f},     {0x890, 0x891},     {0x8e2, 0x8e2},
     {0x115f, 0x1160},   {0x17b4, 0x17b5},   {0x180b, 0x180f},   {0x200b, 0x200f},   {0x2028, 0x202e},
     {0x2060, 0x206f},   {0x3164, 0x3164},   {0xfeff, 0xfeff},   {0xffa0, 0xffa0},   {0xfff0, 0xfffb},
     {0x110bd, 0x110bd}, {0x110cd, 0x110cd}, {0x13430, 0x1343f}, {0x1bca0, 0x1bca3}, {0x1d173, 0x1d17a},
     {0xe0000, 0xe0fff}}};

bool isHidden(char32_t character)
{
  const auto* const range = std::lower_bound(hidden.begin(), hidden.end(), character,
                                             [](const Range& one, char32_t value) { return one.last < value; });
  return range != hidden.end() && range->first <= character;
}

unsigned byteAt(std::string_view text, std::size_t index)
{
  return static_cast<unsigned char>(text[index]);
}

/// Reads the first character of a text that is not empty; returns it with its number of bytes, 0 if they are not
/// UTF-8.
std::pair<char32_t, std::size_t> firstCharacter(std::string_view text)
{
  struct Form
  {
    unsigned mask;
    unsigned mark;
    char32_t least;
  };
  static constexpr std::array<Form, 4> forms = {
      {{0x80U, 0x00U, 0x0}, {0xe0U, 0xc0U, 0x80}, {0xf0U, 0xe0U, 0x800}, {0xf8U, 0xf0U, 0x10000}}};
  const unsigned first = byteAt(text, 0);
  for (std::size_t form = 0; form < forms.size(); ++form)
  {
    if ((first & forms.at(form).mask) != forms.at(form).mark)
      continue;
    const std::size_t length = form + 1;
    char32_t character = first & ~forms.at(form).mask;
    if (text.size() < length)
      return {0, 0};
    for (std::size_t i = 1; i < length; ++i)
    {
      if ((byteAt(text, i) & 0xc0U) != 0x80U)
        return {0, 0};
      character = (character << 6U) | (byteAt(text, i) & 0x3fU);
    }
    const bool isSurrogate = character >= 0xd800 && character <= 0xdfff;
    return character < forms.at(form).least || character > 0x10ffff || isSurrogate ? std::pair<char32_t, std::size_t>{}
                                                                                   : std::pair{character, length};
  }
  return {0, 0};
}

void appendHex(std::string& text, const char* format, unsigned number)
{
  std::array<char, 16> escape{};
  std::snprintf(escape.data(), escape.size(), format, number);
  text += escape.data();
}

void appendEscape(std::string& text, char32_t character)
{
  switch (character)
  {
    case '\n':
      text += "\\n";
      return;
    case '\r':
      text += "\\r";
      return;
    case '\t':
      text += "\\t";
      return;
    default:
      break;
  }
  constexpr char32_t plane = 0x10000;
  if (character < plane)
    return appendHex(text, "\\u%04x", static_cast<unsigned>(character));
  appendHex(text, "\\u%04x", static_cast<unsigned>(0xd800 + ((character - plane) >> 10U)));
  appendHex(text, "\\u%04x", static_cast<unsigned>(0xdc00 + ((character - plane) & 0x3ffU)));
}

/// Removes the first character of the text, and appends it in its safe form.
void take(std::string_view& text, std::string& shown)
{
  const auto [character, length] = firstCharacter(text);
  if (length == 0)
    appendHex(shown, "\\x%02x", byteAt(text, 0));
  else if (isHidden(character))
    appendEscape(shown, character);
  else
    shown += text.substr(0, length);
  text.remove_prefix(std::max<std::size_t>(length, 1));
}

/// The number of bytes at the beginning that are plain, and need no further check.
std::size_t plainLength(std::string_view text)
{
  const auto isPlain = [](char character) { return character >= ' ' && character < '\x7f'; };
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isPlain) - text.begin());
}

/// The length of a line end, or of a mark of Style or ProgressLine, at the beginning; 0 without one.
std::size_t markLength(std::string_view page)
{
  constexpr std::string_view erasesLine = "\r\033[K";
  if (page.front() == '\n')
    return 1;
  if (page.substr(0, erasesLine.size()) == erasesLine)
    return erasesLine.size();
  const std::size_t end = page.find('m');
  if (page.substr(0, 2) != "\033[" || end == std::string_view::npos)
    return 0;
  const std::string_view number = page.substr(2, end - 2);
  const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
  const bool setsWeight = number.size() == 1 && number.front() >= '0' && number.front() <= '4';
  const bool setsColor =
      number.size() == 2 && (number.front() == '3' || number.front() == '9') && isDigit(number.back());
  return setsWeight || setsColor ? end + 1 : 0;
}

}  // namespace

std::string shown(std::string_view text)
{
  std::string result;
  while (!text.empty())
  {
    const std::size_t plain = plainLength(text);
    result += text.substr(0, plain);
    text.remove_prefix(plain);
    if (!text.empty())
      take(text, result);
  }
  return result;
}

std::string shownPage(std::string_view page)
{
  std::string result;
  while (!page.empty())
  {
    const std::size_t plain = plainLength(page);
    const std::size_t mark = plain == 0 ? markLength(page) : 0;
    if (plain + mark > 0)
    {
      result += page.substr(0, plain + mark);
      page.remove_prefix(plain + mark);
    }
    else
      take(page, result);
  }
  return result;
}

std::string shownMessage(std::string_view text)
{
  std::string result;
  for (;;)
  {
    const std::size_t end = text.find('\n');
    result += shown(text.substr(0, end));
    if (end == std::string_view::npos)
      return result;
    text.remove_prefix(end + 1);
    result += text.empty() || text.front() == ' ' ? "\n" : "\n  ";
  }
}

}  // namespace KV::tools
