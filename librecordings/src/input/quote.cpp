#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <cstddef>

namespace KV::recordings
{
namespace
{
constexpr std::size_t longestQuote = 40;

bool isControl(char character)
{
  const auto code = static_cast<unsigned char>(character);
  return code < 0x20 || code == 0x7f;
}

// UTF-8 continues a character with bytes 10xxxxxx.
bool continuesCharacter(char character)
{
  return (static_cast<unsigned char>(character) & 0xc0U) == 0x80U;
}

std::size_t endOfQuote(std::string_view text)
{
  std::size_t end = longestQuote;
  while (end > 0 && continuesCharacter(text[end]))
    --end;
  return end;
}

}  // namespace

std::string quote(std::string_view text)
{
  std::string shown = shortened(text);
  std::replace_if(shown.begin(), shown.end(), isControl, '?');
  return "'" + shown + "'";
}

std::string shortened(std::string_view text)
{
  return text.size() > longestQuote ? std::string(text.substr(0, endOfQuote(text))) + "..." : std::string(text);
}

}  // namespace KV::recordings
