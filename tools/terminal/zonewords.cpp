#include "terminal/zonewords.hpp"

#include <skeigiot/session/names.hpp>

#include <cctype>

namespace KV::tools
{

std::string zoneWords(ko::human::AttentionState zone)
{
  const std::string prefix = "Looking";
  const std::string name = session::zoneName(zone);
  if (name.rfind(prefix, 0) != 0)
    return "no zone";
  std::string words;
  for (const char letter : name.substr(prefix.size()))
  {
    const auto code = static_cast<unsigned char>(letter);
    if (std::isupper(code) != 0 && !words.empty())
      words += ' ';
    words += static_cast<char>(std::tolower(code));
  }
  return words == "at robot" ? "at the robot" : words;
}

}  // namespace KV::tools
