#pragma once

#include <string>
#include <string_view>

namespace KV::tools
{

/// Returns a text from outside, such as a name or a path, made safe for a terminal: in one line, with escapes instead
/// of the characters that move the cursor, change colors, hide, or turn the direction of writing.
///
/// These are the control and format characters of Unicode, line and paragraph separators, and fillers without width.
/// Their escapes are those of JSON (`\n`, `\u001b`), so that a JSON text means the same before and after. Bytes that
/// are not UTF-8 become `\xff`.
std::string shown(std::string_view text);

/// Returns a page of text made safe for a terminal: as shown(), but line ends, and the marks of Style and ProgressLine,
/// stay.
std::string shownPage(std::string_view page);

/// Returns a message made safe for a terminal: as shown(), but line ends stay, and the lines after the first begin with
/// a blank, so that no line of it looks like another message.
std::string shownMessage(std::string_view text);

}  // namespace KV::tools
