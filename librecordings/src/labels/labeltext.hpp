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

/// Reads the whole text as a finite number. Returns no value for any other text.
std::optional<double> labelNumber(std::string_view text);

/// Reads the whole text as a finite number.
///
/// \throws Error at that place for any other text.
double labelNumber(std::string_view text, const Error::Place& place);

/// Reads the whole text as seconds since the start of the recording.
///
/// \throws Error at that place for any other text, or if the time is outside the range of recordings.
double labelTime(std::string_view text, const Error::Place& place);

/// Returns the number of the line, from 1, in which that offset of the text lies.
std::size_t lineAt(std::string_view text, std::size_t offset);

}  // namespace KV::recordings
