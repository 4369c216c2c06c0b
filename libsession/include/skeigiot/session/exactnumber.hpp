#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/duration.hpp>

#include <string>

namespace KV::session
{

/// Appends the shortest decimal text that reads back as the same number; "nan", "inf" and "-inf" if it is not finite.
SKEIGIOT_API void appendExact(std::string& text, float number);

/// As above, in double precision.
SKEIGIOT_API void appendExact(std::string& text, double number);

/// Appends the number in decimal digits.
SKEIGIOT_API void appendExact(std::string& text, int number);

/// Appends the duration in seconds, to the nanosecond and without zeros at the end.
SKEIGIOT_API void appendExactSeconds(std::string& text, Duration duration);

}  // namespace KV::session
