#pragma once

#include <string>

namespace KV::tools
{

/// Returns the text as roff prints it: hyphens stay hyphens, and no part of it is read as a request.
std::string roffText(const std::string& text);

/// As above, in lines that are short enough to edit; their ends have no effect.
std::string roffFilled(const std::string& text);

std::string roffBold(const std::string& text);
std::string roffItalic(const std::string& text);

/// Turns plain paragraphs with blank lines between them into roff: filled text, except for lines that begin with a
/// blank, which stay unchanged.
std::string roffParagraphs(const std::string& text);

/// Lines that stay unchanged.
std::string roffVerbatim(const std::string& lines);

}  // namespace KV::tools
