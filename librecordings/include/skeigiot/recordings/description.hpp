#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <utility>
#include <vector>

namespace KV::recordings
{

/// Returns the parts with ", " between them.
SKEIGIOT_API std::string listed(const std::vector<std::string>& parts);

/// Returns the number without trailing zeros.
SKEIGIOT_API std::string shortNumber(float value);

/// Says which of these parts of a recording are not there.
SKEIGIOT_API std::string describeMissing(const std::vector<std::pair<bool, const char*>>& parts);

}  // namespace KV::recordings
