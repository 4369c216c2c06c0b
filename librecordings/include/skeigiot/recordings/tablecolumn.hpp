#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// One column of a table in memory: numbers, where NaN is missing, or texts, where the empty text is missing.
struct SKEIGIOT_API TableColumn
{
  std::string name;                 ///< such as "time", "person" or "gaze.yaw"
  const double* numbers = nullptr;  ///< one for each row; the caller keeps them alive; null: texts
  std::vector<std::string> texts;   ///< as many as the table has rows, where there are no numbers
};

}  // namespace KV::recordings
