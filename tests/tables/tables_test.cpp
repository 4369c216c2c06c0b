/// The edge cases of the library as tables for all languages: each file in this folder is run by an operation of its
/// name, here and in the tests of the Python module.

#include "operations.hpp"

#include <ko/log.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace
{

using nlohmann::json;

struct Row
{
  std::string table;
  std::string name;
  json arguments;
  json results;
};

void PrintTo(const Row& row, std::ostream* stream)
{
  *stream << row.table << ": " << row.name;
}

/// Rounds the numbers of a table to single precision, as the library does.
json rounded(const json& value)
{
  if (value.is_number_float())
    return tables::numberOf(tables::numberFrom(value));
  if (!value.is_structured())
    return value;
  json result = value;
  for (json& element : result)
    element = rounded(element);
  return result;
}

void appendRows(const std::filesystem::path& file, std::vector<Row>& rows)
{
  std::ifstream stream(file);
  const json table = json::parse(stream);
  for (const json& row : table.at("rows"))
    rows.push_back({file.stem(), row.at("name"), row.at("arguments"), row.at("results")});
}

std::vector<Row> rowsOfAllTables()
{
  std::vector<Row> rows;
  for (const auto& file : std::filesystem::directory_iterator(SKEIGIOT_TABLES))
    if (file.path().extension() == ".json")
      appendRows(file.path(), rows);
  std::sort(rows.begin(), rows.end(), [](const Row& left, const Row& right) { return left.table < right.table; });
  return rows;
}

json answer(const Row& row)
{
  try
  {
    return tables::operations().at(row.table)(row.arguments);
  }
  catch (const std::exception& error)
  {
    return {{"error", error.what()}};
  }
}

class Table : public ::testing::TestWithParam<Row>
{
public:
  Table() : _handler(ko::log::addHandler([](const ko::log::Record&) {})) {}
  ~Table() override { ko::log::removeHandler(_handler); }

private:
  const ko::log::HandlerId _handler;  // refused values cause warnings
};

TEST_P(Table, AgreesWithTheLibrary)
{
  EXPECT_EQ(rounded(GetParam().results).dump(), answer(GetParam()).dump());
}

std::string nameOf(const ::testing::TestParamInfo<Row>& row)
{
  return row.param.table + row.param.name;
}

INSTANTIATE_TEST_SUITE_P(Of, Table, ::testing::ValuesIn(rowsOfAllTables()), nameOf);

TEST(Tables, AreThereForEveryOperationAndHaveNamedRows)
{
  std::set<std::string> found;
  std::set<std::string> names;
  for (const Row& row : rowsOfAllTables())
  {
    found.insert(row.table);
    EXPECT_TRUE(names.insert(row.table + row.name).second) << row.table << " has two rows " << row.name;
  }
  for (const auto& [name, operation] : tables::operations())
    EXPECT_EQ(1U, found.count(name)) << name;
  EXPECT_EQ(tables::operations().size(), found.size());
}

}  // namespace
