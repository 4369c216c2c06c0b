#pragma once

#include <skeigiot/api.hpp>

#include <cstdint>
#include <string>

namespace KV::recordings
{

/// The start of a scope: a named stretch of a recording that is judged when it ends.
struct SKEIGIOT_API ScopeStart
{
  std::string name;           ///< by which it is stopped; one of that name that is open starts anew
  std::int32_t samples = -1;  ///< how many updates of each person it takes; negative is without limit
};

}  // namespace KV::recordings
