#pragma once

#include <boost/locale/utf.hpp>

#include <string_view>

namespace ko
{

/// Returns whether the text is well-formed UTF-8; the empty text is.
///
/// \par Complexity
///   Linear in the length of the text.
inline bool isUtf8(std::string_view text)
{
  namespace utf = boost::locale::utf;
  const char* next = text.data();
  const char* const end = next + text.size();
  while (next != end)
  {
    const utf::code_point point = utf::utf_traits<char>::decode(next, end);
    if (point == utf::illegal || point == utf::incomplete)
      return false;
  }
  return true;
}

}  // namespace ko
