#pragma once

#include <sstream>
#include <string>

namespace binding
{

/// Returns the text of the object's output operator.
template <typename T>
std::string written(const T& object)
{
  std::ostringstream stream;
  stream << object;
  return stream.str();
}

}  // namespace binding
