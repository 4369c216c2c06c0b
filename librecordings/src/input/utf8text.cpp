#include "input/utf8text.hpp"

#include <ko/utf8.hpp>

#include <algorithm>

namespace KV::recordings
{

std::string utf8Of(std::string_view text)
{
  std::string result(text);
  if (!ko::isUtf8(text))
    std::replace_if(
        result.begin(), result.end(), [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; }, '?');
  return result;
}

}  // namespace KV::recordings
