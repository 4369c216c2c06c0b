#pragma once

#include <cstddef>
#include <string_view>

namespace KV::recordings
{

/// \file
/// The fields of a row without quotes. A row may have thousands of them, so splitting takes most of the time of reading
/// a row: sixteen characters are compared at a time where the processor can.

/// The result of scanning a line: the number of its commas, and whether it has a quote.
struct LineScan
{
  std::size_t commas;
  bool hasQuote;
};

/// Counts the commas of the line, and looks for a quote. If there is a quote, the count may be too low.
LineScan scanLine(std::string_view line);

/// Writes the fields between the commas to `fields`, each without the blanks and tabs around it.
///
/// \pre There is room for one field more than the line has commas.
void splitAtCommas(std::string_view line, std::string_view* fields);

/// \name The same, character by character, for processors without SSE2
/// @{
LineScan scanLineByCharacter(std::string_view line);
void splitAtCommasByCharacter(std::string_view line, std::string_view* fields);
/// @}

/// Returns the text without the blanks and tabs around it.
std::string_view withoutBlanks(std::string_view text);

/// As above, only at the begin.
void skipBlanks(std::string_view& text);

}  // namespace KV::recordings
