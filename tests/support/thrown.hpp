#pragma once

#include <exception>
#include <string>
#include <typeinfo>

namespace support
{

/// Runs `action` and returns the text of the exception that it throws; another type than exactly `Exception`, and no
/// exception at all, is told in the text.
template <typename Exception, typename Action>
std::string textThrownBy(Action&& action)
{
  try
  {
    action();
  }
  catch (const std::exception& error)
  {
    return typeid(error) == typeid(Exception) ? std::string(error.what())
                                              : std::string("another exception: ") + typeid(error).name();
  }
  return "no exception";
}

}  // namespace support
