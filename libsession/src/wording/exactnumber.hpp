#pragma once

#include "snapshot.hpp"

#include <string>

namespace tools
{

/// Appends the shortest decimal text that reads back as the same number; "nan", "inf" and "-inf" for what is none.
void appendExact(std::string& text, float number);

void appendExact(std::string& text, int number);

/// Appends the duration in seconds, to the nanosecond and without zeros at the end.
void appendExactSeconds(std::string& text, Duration duration);

}  // namespace tools
