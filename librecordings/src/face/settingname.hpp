#pragma once

#include <string>

namespace KV::recordings
{

/// Returns the name of a setting as messages add it, " (name)"; empty if the user interface gave none.
inline std::string settingName(const std::string& name)
{
  return name.empty() ? std::string() : " (" + name + ")";
}

}  // namespace KV::recordings
