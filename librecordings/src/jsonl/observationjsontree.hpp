#pragma once

#include <skeigiot/recordings/observationjson.hpp>

#include <string_view>

namespace KV::recordings
{

/// \file
/// The two ways to read a line, for tests that compare them. Plain lines, nearly all, are read without a tree; all
/// others with a tree, whose parser has the messages.

/// Reads as stepFromJson() does, but always with a tree.
Step stepFromJsonTree(std::string_view text);

/// Reads as streamLineFromJson() does, but always with a tree.
StreamLine streamLineFromJsonTree(std::string_view text, boost::optional<ko::SystemClock::time_point> arrival);

/// Returns whether the step is read without a tree.
bool isPlainStep(std::string_view text);

}  // namespace KV::recordings
