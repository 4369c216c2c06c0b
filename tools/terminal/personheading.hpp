#pragma once

#include <cstdint>
#include <string>

namespace KV::tools
{

/// Returns "Person 3", or "anna (person 3)" if the recording has a name of the person, made safe for a terminal.
std::string personHeading(std::int32_t person, const std::string& name);

}  // namespace KV::tools
