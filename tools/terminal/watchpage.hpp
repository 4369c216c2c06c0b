#pragma once

#include <skeigiot/session/persontable.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::tools
{

/// How a piece of text is shown.
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

/// What there is to say of the input.
struct InputStatus
{
  std::size_t lines = 0;
  std::size_t refused = 0;
  std::string lastError;  ///< of the last line that was refused; empty if none was
  bool ended = false;
};

/// Returns the page that shows all persons, for a terminal of that size; there are `height` lines at most, and none is
/// wider than `width` columns.
std::vector<PageLine> watchPage(const session::PersonTable& table, const InputStatus& status, session::TimePoint now,
                                std::size_t width, std::size_t height);

}  // namespace KV::tools
