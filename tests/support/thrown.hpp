#pragma once

#include <exception>
#include <string>
#include <typeinfo>

namespace support
{

/// Runs `action` and returns the text of the exception that it throws; for another type than exactly `Exception`, and
/// for no exception, the text says so.
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
