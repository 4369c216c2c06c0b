#include "tidy/tidytable.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <array>

namespace KV::recordings
{
namespace
{
constexpr std::array<const char*, tidyColumnCount> names = {"time", "person", "reading", "value",   "confidence",
                                                            "yaw",  "pitch",  "roll",    "valence", "lifetime",
                                                            "x",    "y",      "samples"};

}  // namespace

const char* nameOf(TidyColumn column)
{
  return names.at(static_cast<std::size_t>(column));
}

std::optional<TidyColumn> tidyColumnNamed(std::string_view name)
{
  const auto* const found = std::find(names.begin(), names.end(), name);
  if (found == names.end())
    return {};
  return static_cast<TidyColumn>(found - names.begin());
}

bool isEmptyField(std::string_view field)
{
  constexpr std::array<std::string_view, 7> empty = {"", "NaN", "nan", "NA", "<NA>", "None", "null"};
  return std::find(empty.begin(), empty.end(), field) != empty.end();
}

void TidyTable::refuse(TidyColumn column, const std::string& message) const
{
  throw BadLine(placeOf(column), message);
}

void TidyTable::refuseValue(TidyColumn column, const std::string& expected) const
{
  refuse(column, "expected " + expected + ", found " + quote(text(column)));
}

}  // namespace KV::recordings
