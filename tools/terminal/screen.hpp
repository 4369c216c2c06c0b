#pragma once

#include "terminal/watchpage.hpp"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <vector>

namespace KV::tools
{

/// The terminal of the program's session, used for a page of text; restored at the end.
///
/// Standard input and output are not used. Make at most one.
class Screen
{
public:
  /// \throws std::runtime_error if there is no terminal that can show a page.
  explicit Screen(bool colors);
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  /// Returns the next key that was pressed. A new size of the terminal is applied, and counts as a key.
  Key key();

  /// The descriptor to wait on for keys.
  int fileDescriptor() const;

  std::size_t width() const;
  std::size_t height() const;

  void show(const std::vector<PageLine>& page);

private:
  struct Close
  {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::unique_ptr<std::FILE, Close> _terminal;
  void* _screen;  // SCREEN of curses, whose header defines many common names
  bool _colors;
};

}  // namespace KV::tools
