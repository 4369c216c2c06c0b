#pragma once

#include <cstdint>
#include <string>

namespace KV::tools
{

/// Returns "Person 3", or "anna (person 3)" if the recording gives the person a name, as a terminal may show it.
std::string personHeading(std::int32_t person, const std::string& name);

}  // namespace KV::tools
