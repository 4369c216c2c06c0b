#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// One column of a table in memory: numbers, of which NaN is none, or texts, of which the empty one is none.
struct SKEIGIOT_API TableColumn
{
  std::string name;                 ///< such as "time", "person" or "gaze.yaw"
  const double* numbers = nullptr;  ///< one for each row; the caller keeps them alive; null: texts
  std::vector<std::string> texts;   ///< as many as the table has rows, where there are no numbers
};

}  // namespace KV::recordings
