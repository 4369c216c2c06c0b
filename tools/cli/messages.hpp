#pragma once

#include "terminal/shown.hpp"

#include <ostream>
#include <string>

namespace KV::tools
{

/// The messages of the command besides its output: errors, and notes that a quiet run leaves out. Texts may quote input
/// from outside.
class Messages
{
public:
  Messages(std::ostream& stream, bool quiet) : _stream(stream), _quiet(quiet) {}

  void error(const std::string& text) { _write(text); }

  void note(const std::string& text)
  {
    if (!_quiet)
      _write(text);
  }

private:
  void _write(const std::string& text) { _stream << "skeigiot: " << shownMessage(text) << std::endl; }

  std::ostream& _stream;
  bool _quiet;
};

}  // namespace KV::tools
