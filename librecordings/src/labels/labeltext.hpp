#pragma once

#include <skeigiot/recordings/error.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace KV::recordings
{

/// Returns the contents of a file as UTF-8, unpacked, and without a byte order mark.
///
/// \throws Error if it cannot be read, or is longer than a file of labels can be.
std::string labelText(const std::string& path);

/// Returns the text without blanks and line breaks around it.
std::string_view trimmedLabel(std::string_view text);

/// Reads all of the text as a finite number; nothing if it is none.
std::optional<double> labelNumber(std::string_view text);

/// As above.
///
/// \throws Error at that place if it is none.
double labelNumber(std::string_view text, const Error::Place& place);

/// Reads it as seconds since the start of the recording.
///
/// \throws Error at that place if it is no number, or no time of a recording.
double labelTime(std::string_view text, const Error::Place& place);

/// Returns the number of the line, from 1, in which that offset of the text lies.
std::size_t lineAt(std::string_view text, std::size_t offset);

}  // namespace KV::recordings
