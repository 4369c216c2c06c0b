#pragma once

#include <skeigiot/session/outputstream.hpp>

#include <ostream>
#include <string>

namespace KV::tools
{

/// The output shown to people; once nobody reads it any more, nothing is written.
class Display
{
public:
  Display(std::ostream& stream, bool shows) : _stream(stream), _shows(shows) {}

  void show(const std::string& text)
  {
    if (!_shows || _closed)
      return;
    try
    {
      _stream << text << std::flush;
    }
    catch (const session::WriteError& error)
    {
      if (!error.pipeClosed())
        throw;
      _closed = true;
    }
  }

  bool shows() const { return _shows; }

  /// Returns whether the reader is gone, such as a closed pipe.
  bool closed() const { return _closed; }

private:
  std::ostream& _stream;
  bool _shows;
  bool _closed = false;
};

}  // namespace KV::tools
