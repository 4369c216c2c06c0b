#include "labels/labeltext.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::size_t longestText = std::size_t{512} << 20U;  // [bytes]
constexpr double latestTime = 4e9;                            // [s]
constexpr std::string_view blanks = " \t\r\n";

constexpr std::uint32_t replacement = 0xFFFD;  // stands for half of a surrogate pair

void appendUtf8(std::string& text, std::uint32_t code)
{
  const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (code < 0x80)
    return append(code);
  if (code < 0x800)
    append(0xC0 | (code >> 6U));
  else
  {
    if (code < 0x10000)
      append(0xE0 | (code >> 12U));
    else
    {
      append(0xF0 | (code >> 18U));
      append(0x80 | ((code >> 12U) & 0x3FU));
    }
    append(0x80 | ((code >> 6U) & 0x3FU));
  }
  append(0x80 | (code & 0x3FU));
}

/// The units of UTF-16 behind the byte order mark.
class Utf16
{
public:
  Utf16(std::string_view bytes, bool bigEndian) : _bytes(bytes), _bigEndian(bigEndian) {}

  bool atEnd() const { return _next + 1 >= _bytes.size(); }

  std::uint32_t nextCode()
  {
    const std::uint32_t first = _unit();
    const bool isPair = first >= 0xD800 && first < 0xDC00;
    if (!isPair)
      return first >= 0xDC00 && first < 0xE000 ? replacement : first;
    if (atEnd())
      return replacement;
    const std::size_t before = _next;
    const std::uint32_t second = _unit();
    if (second >= 0xDC00 && second < 0xE000)
      return 0x10000 + ((first - 0xD800) << 10U) + (second - 0xDC00);
    _next = before;
    return replacement;
  }

private:
  std::uint32_t _unit()
  {
    const auto first = static_cast<unsigned char>(_bytes[_next]);
    const auto second = static_cast<unsigned char>(_bytes[_next + 1]);
    _next += 2;
    return _bigEndian ? std::uint32_t{first} << 8U | second : std::uint32_t{second} << 8U | first;
  }

  std::string_view _bytes;
  bool _bigEndian;
  std::size_t _next = 2;
};

std::string decoded(std::string bytes)
{
  const std::string_view mark = std::string_view(bytes).substr(0, 2);
  const bool bigEndian = mark == "\xFE\xFF";
  if (!bigEndian && mark != "\xFF\xFE")
    return bytes;
  std::string text;
  text.reserve(bytes.size());
  for (Utf16 units(bytes, bigEndian); !units.atEnd();)
    appendUtf8(text, units.nextCode());
  return text;
}

}  // namespace

std::string labelText(const std::string& path)
{
  InputFile file(path);
  std::string text;
  std::string_view block;
  while (file.readBlock(block))
  {
    if (text.size() + block.size() > longestText)
      throw Error({path, 0, {}},
                  "is larger than " + std::to_string(longestText >> 20U) + " MiB: this is no file of labels");
    text += block;
  }
  return decoded(std::move(text));
}

std::string_view trimmedLabel(std::string_view text)
{
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos)
    return {};
  return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

std::optional<double> labelNumber(std::string_view text)
{
  std::string_view digits = trimmedLabel(text);
  if (!digits.empty() && digits.front() == '+')
    digits.remove_prefix(1);
  double value = 0.;
  const char* const end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, value);
  if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value))
    return {};
  return value;
}

double labelNumber(std::string_view text, const Error::Place& place)
{
  const std::optional<double> value = labelNumber(text);
  if (!value)
    throw Error(place, "expected a number, found " + quote(text));
  return *value;
}

double labelTime(std::string_view text, const Error::Place& place)
{
  const double seconds = labelNumber(text, place);
  if (std::abs(seconds) > latestTime)
    throw Error(place, "expected seconds since the start of the recording, found " + quote(text));
  return seconds;
}

std::size_t lineAt(std::string_view text, std::size_t offset)
{
  const std::string_view before = text.substr(0, std::min(offset, text.size()));
  return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

}  // namespace KV::recordings
