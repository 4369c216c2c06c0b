#include "support/exportedtable.hpp"

#include <regex>

namespace replaytests
{

std::string withoutFile(const std::string& csv)
{
  static const std::regex lastColumn(",[^,\n]*\n");
  return std::regex_replace(csv, lastColumn, "\n");
}

}  // namespace replaytests
