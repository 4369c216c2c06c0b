#pragma once

#include <locale>
#include <sstream>
#include <string>

namespace KV
{

/// A text that an operation composes while it works, and drops when it returns.
///
/// Force traces, update reports and memory reports are composed at each call and are deliberately never handed to the
/// log. Whoever wants to read one calls the overload that takes the text by reference.
class DiagnosticText
{
public:
  DiagnosticText() { _stream.imbue(std::locale::classic()); }

  template <typename T>
  DiagnosticText& operator<<(const T& item)
  {
    _stream << item;
    return *this;
  }

  std::string text() const { return _stream.str(); }

private:
  std::ostringstream _stream;
};

}  // namespace KV
