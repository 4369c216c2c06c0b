#pragma once

#include <string>

namespace KV::tools
{

/// When to use colours.
enum class ColorChoice
{
  Auto,  ///< on a terminal, unless NO_COLOR is set or TERM is "dumb"
  Always,
  Never
};

bool isTerminal(int fileDescriptor);

/// Returns how many columns the terminal has; `otherwise` if there is no terminal, or its width is unknown.
int terminalWidth(int fileDescriptor, int otherwise);

/// Decides whether the output to that stream is coloured.
bool useColors(ColorChoice choice, int fileDescriptor);

/// Marks text for a terminal, or leaves it unchanged.
///
/// Mark a text after it was padded to its width: the marks take no columns, but count as characters.
class Style
{
public:
  explicit Style(bool colors) : _colors(colors) {}

  std::string bold(const std::string& text) const { return _marked("1", text); }
  std::string dim(const std::string& text) const { return _marked("2", text); }
  std::string red(const std::string& text) const { return _marked("31", text); }
  std::string green(const std::string& text) const { return _marked("32", text); }
  std::string yellow(const std::string& text) const { return _marked("33", text); }
  std::string cyan(const std::string& text) const { return _marked("36", text); }

private:
  std::string _marked(const char* code, const std::string& text) const;

  bool _colors;
};

}  // namespace KV::tools
