#pragma once

#include <sstream>
#include <string>

namespace binding
{

/// Returns what the object's output operator writes.
template <typename T>
std::string written(const T& object)
{
  std::ostringstream stream;
  stream << object;
  return stream.str();
}

}  // namespace binding
