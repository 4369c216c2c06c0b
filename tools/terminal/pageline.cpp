#include "terminal/pageline.hpp"

#include "terminal/text.hpp"

#include <algorithm>

namespace KV::tools
{

std::string cut(const std::string& text, std::size_t width)
{
  const auto startsCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  std::size_t columns = 0;
  const auto end = std::find_if(text.begin(), text.end(), [&](char c) {
    columns += startsCharacter(c) ? 1 : 0;
    return columns > width;
  });
  return {text.begin(), end};
}

PageLine cut(const PageLine& line, std::size_t width)
{
  PageLine result;
  for (const Span& span : line)
  {
    const std::string text = cut(span.text, width);
    width -= displayWidth(text);
    result.push_back({text, span.look});
  }
  return result;
}

std::string fitted(const std::string& text, std::size_t width)
{
  return padRight(cut(text, width), width);
}

std::size_t displayWidth(const PageLine& line)
{
  std::size_t width = 0;
  for (const Span& span : line)
    width += displayWidth(span.text);
  return width;
}

}  // namespace KV::tools
