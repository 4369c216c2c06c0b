#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace KV::tools
{

/// The look of a piece of text.
enum class Look
{
  Plain,
  Heading,
  Faint,
  Good,
  Bad
};

/// A piece of text in one look.
struct Span
{
  std::string text;
  Look look = Look::Plain;
};

using PageLine = std::vector<Span>;

/// Cuts the text, or the line, at that many columns.
std::string cut(const std::string& text, std::size_t width);
PageLine cut(const PageLine& line, std::size_t width);

/// Cuts the text at that many columns, or pads it with blanks at its end.
std::string fitted(const std::string& text, std::size_t width);

/// Returns how many columns the line takes.
std::size_t displayWidth(const PageLine& line);

}  // namespace KV::tools
