#pragma once

#include "study/database.hpp"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace KV::session
{

/// The layout of a result file; a new one has a higher number.
constexpr int resultSchemaVersion = 1;

/// The scope that each session has: from its start to its end.
inline const char* const wholeRecordingScope = "whole recording";

/// One column of a table.
struct ResultColumn
{
  std::string name;
  std::string type;  ///< TEXT, INTEGER, REAL, or FLOAT for numbers of single precision
};

/// One table.
struct ResultTable
{
  std::string name;
  std::vector<ResultColumn> columns;
  std::string key;           ///< columns of the primary key, separated by commas
  bool isOfSessions = true;  ///< its first column is the session
};

/// Returns all tables.
const std::vector<ResultTable>& resultTables();

/// Returns the table with this name.
///
/// \throws std::invalid_argument if no table has it.
const ResultTable& resultTable(const std::string& name);

/// Makes the tables in a new database, and marks it as a result file.
void makeResultTables(Database& database);

/// Checks that the database is a result file of this layout.
///
/// \return false if it is new and empty
/// \throws recordings::Error if it is something else.
bool isResultFile(Database& database);

/// Returns whether the results keep a column of updates or summaries: they name the recording and its error in the
/// session, and have a column of their own for the person.
bool isKept(std::string_view column);

/// Returns "INSERT INTO table VALUES(?, ...)" for all columns.
std::string insertionInto(const ResultTable& table, const std::string& name);

/// Returns the rows of a table with two columns of text, such as the options of a study.
std::map<std::string, std::string> pairsOf(Database& database, const std::string& table);

/// Refuses results that were made by another study, other options, or another version.
///
/// \throws recordings::Error that names the first difference.
void compareMaking(Database& one, Database& other);

}  // namespace KV::session
