#include "study/resultschema.hpp"

#include "export/summaryrow.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/session/exportfields.hpp>

#include <algorithm>
#include <stdexcept>
#include <type_traits>

namespace KV::session
{

namespace
{

constexpr std::int64_t applicationId = 0x736b6569;  // "skei", which the program file shows

template <typename Value>
const char* typeOf(const Value& /*value*/)
{
  if constexpr (std::is_same_v<Value, float>)
    return "FLOAT";
  else if constexpr (std::is_integral_v<Value>)
    return "INTEGER";
  else if constexpr (std::is_convertible_v<const Value&, std::string_view>)
    return "TEXT";
  else
    return "REAL";
}

ResultTable updates()
{
  ResultTable table{
      "updates", {{"session", "TEXT"}, {"person", "INTEGER"}, {"number", "INTEGER"}}, "session, person, number"};
  forEachExportedField({}, Snapshot(), [&table](const std::string& name, const auto& value) {
    if (isKept(name))
      table.columns.push_back({name, typeOf(value)});
  });
  return table;
}

std::string typeOfSummary(const std::string& name)
{
  for (const char* const text : {"name", "scope", "end", "verdict"})
    if (name == text)
      return "TEXT";
  return name == "updates" ? "INTEGER" : "REAL";
}

ResultTable summaries()
{
  ResultTable table{
      "summaries", {{"session", "TEXT"}, {"person", "INTEGER"}, {"number", "INTEGER"}}, "session, person, number"};
  const std::string none;
  forEachSummaryColumn({}, SummaryRow{nullptr, nullptr, 0, nullptr, none},
                       [&table](const std::string& name, const auto&...) {
                         if (isKept(name))
                           table.columns.push_back({name, typeOfSummary(name)});
                       });
  return table;
}

std::vector<ResultTable> allTables()
{
  const std::string text = "TEXT";
  const std::string whole = "INTEGER";
  return {{"sessions",
           {{"session", text},
            {"participant", text},
            {"condition", text},
            {"status", text},
            {"error", text},
            {"length", "REAL"},
            {"dated", whole},
            {"persons", whole},
            {"warnings", whole},
            {"bad_lines", whole},
            {"plan", text}},
           "session"},
          {"recordings",
           {{"session", text},
            {"number", whole},
            {"kind", text},
            {"path", text},
            {"offset", "REAL"},
            {"format", text},
            {"bytes", whole},
            {"modified", whole},
            {"sha256", text}},
           "session, number"},
          {"persons",
           {{"session", text},
            {"person", whole},
            {"name", text},
            {"participant", text},
            {"role", text},
            {"updates", whole}},
           "session, person"},
          summaries(),
          updates(),
          {"forces",
           {{"session", text},
            {"person", whole},
            {"number", whole},
            {"force", whole},
            {"time", "REAL"},
            {"quantity", text},
            {"source", text},
            {"target", "FLOAT"},
            {"weight", "FLOAT"},
            {"before", "FLOAT"},
            {"after", "FLOAT"}},
           "session, person, number, force"},
          {"warnings", {{"session", text}, {"number", whole}, {"kind", text}, {"text", text}}, "session, number"},
          {"notes", {{"session", text}, {"number", whole}, {"kind", text}, {"text", text}}, "session, number"},
          {"factors", {{"session", text}, {"name", text}, {"value", text}}, "session, name"},
          {"options", {{"option", text}, {"value", text}}, "option", false},
          {"study", {{"name", text}, {"value", text}}, "name", false}};
}

/// Refuses what would run code of the file, and tables that this program did not make.
void refuseOtherTables(Database& database)
{
  // Only what has pages of its own is a table or an index; the rest is computed.
  Statement computed(database, "SELECT name FROM main.sqlite_master WHERE ifnull(rootpage, 0) = 0");
  if (computed.step())
    throw recordings::Error({database.path(), 0, {}}, "has the view, trigger or virtual table " +
                                                          recordings::quote(computed.text(0)) +
                                                          ": a result file has tables and indices only");
  for (const ResultTable& table : resultTables())
  {
    Statement columns(database, "PRAGMA main.table_xinfo(" + table.name + ")");  // number, name, type, 3 others, hidden
    std::size_t count = 0;
    bool isSame = true;
    for (; columns.step(); ++count)
      isSame = isSame && count < table.columns.size() && columns.text(1) == table.columns[count].name &&
               columns.text(2) == table.columns[count].type && columns.whole(6) == 0;
    if (!isSame || count != table.columns.size())
      throw recordings::Error({database.path(), 0, {}}, "the table " + recordings::quote(table.name) +
                                                            " has other columns than in a result file");
  }
}

std::string valueText(const std::map<std::string, std::string>& pairs, const std::string& name)
{
  const auto found = pairs.find(name);
  return found == pairs.end() ? "without " + name : "with " + name + " = " + found->second;
}

}  // namespace

const std::vector<ResultTable>& resultTables()
{
  static const std::vector<ResultTable> tables = allTables();
  return tables;
}

const ResultTable& resultTable(const std::string& name)
{
  std::string names;
  for (const ResultTable& table : resultTables())
  {
    if (table.name == name)
      return table;
    names += (names.empty() ? "" : ", ") + table.name;
  }
  throw std::invalid_argument("there is no table " + recordings::quote(name) + "; expected one of " + names);
}

void makeResultTables(Database& database)
{
  for (const ResultTable& table : resultTables())
  {
    std::string columns;
    for (const ResultColumn& column : table.columns)
      columns += "\"" + column.name + "\" " + column.type + ", ";
    database.run("CREATE TABLE main." + table.name + " (" + columns + "PRIMARY KEY (" + table.key + ")) WITHOUT ROWID");
  }
  database.run("PRAGMA main.application_id = " + std::to_string(applicationId) +
               "; PRAGMA main.user_version = " + std::to_string(resultSchemaVersion));
}

bool isResultFile(Database& database)
{
  const std::int64_t application = database.whole("PRAGMA main.application_id");
  if (application == 0 && database.whole("SELECT count(*) FROM main.sqlite_master") == 0)
    return false;
  if (application != applicationId)
    throw recordings::Error({database.path(), 0, {}}, "is a database of another program, not a result file of a study");
  const std::int64_t version = database.whole("PRAGMA main.user_version");
  if (version != resultSchemaVersion)
    throw recordings::Error(
        {database.path(), 0, {}},
        "has layout " + std::to_string(version) + " of result files; expected " + std::to_string(resultSchemaVersion));
  refuseOtherTables(database);
  return true;
}

bool isKept(std::string_view column)
{
  return column != "recording" && column != "file" && column != "person" && column != "error";
}

std::string insertionInto(const ResultTable& table, const std::string& name)
{
  std::string values;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    values += i == 0 ? "?" : ",?";
  return "INSERT INTO " + name + " VALUES(" + values + ")";
}

std::map<std::string, std::string> pairsOf(Database& database, const std::string& table)
{
  std::map<std::string, std::string> pairs;
  Statement rows(database, "SELECT * FROM main." + table);
  while (rows.step())
    pairs[rows.text(0)] = rows.text(1);
  return pairs;
}

void compareMaking(Database& one, Database& other)
{
  for (const char* const table : {"study", "options"})
  {
    const auto mine = pairsOf(one, table);
    const auto others = pairsOf(other, table);
    auto all = mine;
    all.insert(others.begin(), others.end());
    for (const auto& [name, value] : all)
      if (valueText(mine, name) != valueText(others, name))
        throw recordings::Error({other.path(), 0, name}, "these results were made " + valueText(others, name) +
                                                             ", but the others " + valueText(mine, name));
  }
}

}  // namespace KV::session
