#include <skeigiot/recordings/table.hpp>

#include "tidy/longframe.hpp"
#include "tidy/tidyreader.hpp"
#include "tidy/wideframe.hpp"

#include <algorithm>

namespace KV::recordings
{
namespace
{
std::unique_ptr<TidyTable> readingsOf(const Table& table)
{
  const auto isReading = [](const TableColumn& column) { return column.name == nameOf(TidyColumn::Reading); };
  if (std::any_of(table.columns.begin(), table.columns.end(), isReading))
    return std::make_unique<LongFrame>(table);
  return std::make_unique<WideFrame>(table);
}

}  // namespace

std::unique_ptr<Reader> openTable(const Table& table)
{
  return std::make_unique<TidyReader>(readingsOf(table));
}

}  // namespace KV::recordings
