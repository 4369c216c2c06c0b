#include "labels/labeltext.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <boost/locale/utf.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <system_error>
#include <utility>

namespace KV::recordings
{
namespace
{
namespace utf = boost::locale::utf;

constexpr double latestTime = 4e9;  // [s]
constexpr std::string_view blanks = " \t\r\n";

constexpr utf::code_point replacement = 0xFFFD;  // replaces half of a surrogate pair

/// Returns the units of UTF-16 after the byte order mark.
std::u16string unitsOf(std::string_view bytes, bool bigEndian)
{
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
  {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    units += static_cast<char16_t>(bigEndian ? first * 256U + second : second * 256U + first);
  }
  return units;
}

std::string decoded(std::string bytes)
{
  const std::string_view mark = std::string_view(bytes).substr(0, 2);
  const bool bigEndian = mark == "\xFE\xFF";
  if (!bigEndian && mark != "\xFF\xFE")
    return bytes;
  std::string text;
  text.reserve(bytes.size());
  const std::u16string units = unitsOf(bytes, bigEndian);
  const char16_t* next = units.data();
  const char16_t* const end = next + units.size();
  while (next != end)
  {
    const char16_t* const first = next++;
    const char16_t* behind = first;
    utf::code_point code = utf::utf_traits<char16_t>::decode(behind, end);
    if (code == utf::illegal || code == utf::incomplete)
      code = replacement;
    else
      next = behind;
    utf::utf_traits<char>::encode(code, std::back_inserter(text));
  }
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
    if (text.size() + block.size() > limits::largestLabels)
      throw Error({path, 0, {}}, "is larger than " + std::to_string(limits::largestLabels / limits::mebibyte) +
                                     " MiB: this is not a file of labels");
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
