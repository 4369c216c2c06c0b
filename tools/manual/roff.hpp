#pragma once

#include <string>

namespace KV::tools
{

/// Returns the text as roff prints it: hyphens stay hyphens, and nothing in it is taken for a request.
std::string roffText(const std::string& text);

/// As above, in lines that are not too long to edit; where they end makes no difference.
std::string roffFilled(const std::string& text);

std::string roffBold(const std::string& text);
std::string roffItalic(const std::string& text);

/// Turns plain paragraphs with blank lines between them into roff: filled text, except for lines that begin with a
/// blank, which stay as they are.
std::string roffParagraphs(const std::string& text);

/// Lines that stay as they are.
std::string roffVerbatim(const std::string& lines);

}  // namespace KV::tools
