#pragma once

#include "terminal/watchpage.hpp"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <vector>

namespace KV::tools
{

/// The terminal of the program's session, taken over for a page of text; given back as it was at the end.
///
/// Standard input and output are left alone. Make one at most.
class Screen
{
public:
  /// \throws std::runtime_error if there is no terminal that can show a page.
  explicit Screen(bool colors);
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  /// Returns the next key that was pressed. Takes in a new size of the terminal, which counts as a key.
  Key key();

  /// What to wait on for keys.
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
  void* _screen;  // SCREEN of curses, whose header claims many common names
  bool _colors;
};

}  // namespace KV::tools
