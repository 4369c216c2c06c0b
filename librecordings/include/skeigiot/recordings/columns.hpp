#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// The columns of a table, by their names, in their order.
struct SKEIGIOT_API Columns
{
  std::vector<std::string> used;     ///< those that are read
  std::vector<std::string> ignored;  ///< all others
};

}  // namespace KV::recordings
