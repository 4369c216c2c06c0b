#include "input/jsonvalue.hpp"

namespace KV::recordings
{

// "[json.exception...] why"
std::string withoutErrorCode(const std::string& parserMessage)
{
  const std::size_t end = parserMessage.find("] ");
  return parserMessage.substr(end == std::string::npos ? 0 : end + 2);
}

void refuseNul(std::string_view text)
{
  const std::size_t place = text.find('\0');
  if (place != std::string_view::npos)
    throw JsonError("", "expected JSON, found a NUL at column " + std::to_string(place + 1));
}

}  // namespace KV::recordings
