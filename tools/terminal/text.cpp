#include "terminal/text.hpp"

#include "terminal/shown.hpp"

#include <algorithm>
#include <sstream>

namespace KV::tools
{

namespace
{

std::string blanksUpTo(std::size_t width, const std::string& text)
{
  const std::size_t taken = displayWidth(text);
  return std::string(width > taken ? width - taken : 0, ' ');
}

}  // namespace

std::string wrapped(const std::string& text, std::size_t width, std::size_t indentation)
{
  std::istringstream words(text);
  words.exceptions(std::ios::badbit);  // else a lack of memory would cut the text
  std::string result;
  std::string line;
  for (std::string word; words >> word;)
  {
    word = shown(word);
    const bool first = line.empty();
    if (!first && displayWidth(line) + 1 + displayWidth(word) > width)
    {
      result += line + "\n";
      line = std::string(indentation, ' ') + word;
    }
    else
      line += (first ? "" : " ") + word;
  }
  return result + line;
}

std::size_t displayWidth(const std::string& text)
{
  const auto startsCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

std::string padRight(const std::string& text, std::size_t width)
{
  return text + blanksUpTo(width, text);
}

std::string padLeft(const std::string& text, std::size_t width)
{
  return blanksUpTo(width, text) + text;
}

}  // namespace KV::tools
