#pragma once

#include <cstddef>
#include <string>

namespace KV::recordings
{

/// Returns the number with the noun for it, such as "1 segment" or "2 segments".
inline std::string countedText(std::size_t count, const std::string& one, const std::string& several)
{
  return std::to_string(count) + " " + (count == 1 ? one : several);
}

}  // namespace KV::recordings
