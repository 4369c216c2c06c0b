#include "export/ownoutput.hpp"

#include "export/summarycolumns.hpp"

#include <skeigiot/session/exportfields.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <vector>

namespace KV::session
{

namespace
{

using Names = std::set<std::string>;

/// A table that this library writes: its possible fields, and those that identify it.
struct OwnTable
{
  Names fields;
  Names needed;
};

// Add new tables, and new fields of one, here: a test checks every output against this list.
const std::vector<OwnTable>& ownTables()
{
  static const std::vector<OwnTable> tables = [] {
    Names exported;
    forEachExportedField({}, Snapshot(), [&exported](const char* name, const auto&) { exported.insert(name); });
    const Names agreement = {"quantity", "first", "second",      "person", "at",  "delay",
                             "measure",  "class", "other_class", "value",  "low", "high"};
    const std::vector<std::string> columns = summaryColumns();
    const Names summary(columns.begin(), columns.end());
    return std::vector<OwnTable>{{exported, {"recording", "person", "time", "clock"}},
                                 {summary, {"recording", "file", "person", "scope", "verdict"}},
                                 {agreement, {"quantity", "first", "second", "measure"}}};
  }();
  return tables;
}

bool isOwnTable(const Names& names)
{
  const auto contains = [](const Names& all, const Names& some) {
    return std::includes(all.begin(), all.end(), some.begin(), some.end());
  };
  const std::vector<OwnTable>& tables = ownTables();
  return std::any_of(tables.begin(), tables.end(), [&](const OwnTable& table) {
    return contains(table.fields, names) && contains(names, table.needed);
  });
}

Names columnsOf(std::string_view header)
{
  Names names;
  while (true)
  {
    const std::size_t end = std::min(header.find(','), header.size());
    names.emplace(header.substr(0, end));
    if (end == header.size())
      return names;
    header.remove_prefix(end + 1);
  }
}

Names membersOf(std::string_view line)
{
  Names names;
  const auto object = nlohmann::json::parse(line.begin(), line.end(), nullptr, false);
  if (object.is_object())
    for (const auto& member : object.items())
      names.insert(member.key());
  return names;
}

bool isOwnPage(const std::string& head)
{
  return head.rfind("<!doctype html>", 0) == 0 &&
         head.find(R"(<meta name="generator" content="skeigiot">)") != std::string::npos;
}

}  // namespace

bool isOwnOutput(const std::string& head)
{
  const std::string_view line = std::string_view(head).substr(0, head.find('\n'));
  return head.empty() || isOwnPage(head) || isOwnTable(columnsOf(line)) || isOwnTable(membersOf(line));
}

}  // namespace KV::session
