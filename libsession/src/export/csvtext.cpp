#include "export/csvtext.hpp"

namespace KV::session
{

void appendCsvText(std::string& line, std::string_view text)
{
  if (text.find_first_of(",\"\r\n") == std::string_view::npos)
  {
    line += text;
    return;
  }
  line += '"';
  for (const char character : text)
    line.append(character == '"' ? 2 : 1, character);
  line += '"';
}

}  // namespace KV::session
