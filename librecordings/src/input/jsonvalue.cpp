#include "input/jsonvalue.hpp"

namespace KV::recordings
{

// "[json.exception...] what"
std::string withoutErrorCode(const std::string& parserMessage)
{
  const std::size_t end = parserMessage.find("] ");
  return parserMessage.substr(end == std::string::npos ? 0 : end + 2);
}

}  // namespace KV::recordings
