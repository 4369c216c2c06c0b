#include <skeigiot/session/studyresults.hpp>

#include "export/csvtext.hpp"
#include "study/resultschema.hpp"
#include "study/resultsreader.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/session/exactnumber.hpp>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace KV::session
{

namespace
{

std::unique_ptr<Database> openResults(const std::string& path)
{
  std::error_code error;
  if (!std::filesystem::exists(path, error))
    throw recordings::Error({path, 0, {}}, "there is no such file");
  auto database = std::make_unique<Database>(path, Database::Mode::Read);
  if (!isResultFile(*database))
    throw recordings::Error({path, 0, {}}, "is empty, not a result file of a study");
  return database;
}

/// Copies rows of a table from one connection to another, for one session or for all.
void copyRows(Database& from, Database& into, const ResultTable& table)
{
  Statement rows(from, "SELECT * FROM main." + table.name);
  Statement insertion(into, insertionInto(table, "main." + table.name));
  while (rows.step())
  {
    insertion.bind();
    int i = 0;
    for (const ResultColumn& column : table.columns)
    {
      if (rows.isNull(i))
        insertion.add(nullptr);
      else if (column.type == "TEXT")
        insertion.add(rows.text(i));
      else if (column.type == "INTEGER")
        insertion.add(rows.whole(i));
      else
        insertion.add(rows.number(i));
      ++i;
    }
    insertion.run();
  }
}

/// Two files may have the same session only where nobody can see it: so they must not have any.
void refuseSameSession(Database& from, Database& into)
{
  Statement known(into, "SELECT count(*) FROM main.sessions WHERE session = ?");
  Statement sessions(from, "SELECT session FROM main.sessions");
  while (sessions.step())
  {
    known.bind(sessions.text(0));
    if (known.step() && known.whole(0) > 0)
      throw recordings::Error({from.path(), 0, {}},
                              "has the session " + recordings::quote(sessions.text(0)) +
                                  ", which another result file has, too: name files of different shards only");
  }
}

void copyAll(Database& from, Database& into, bool isFirst)
{
  Transaction transaction(into);
  for (const ResultTable& table : resultTables())
    if (isFirst || table.isOfSessions)
      copyRows(from, into, table);
  transaction.commit();
}

void appendValue(std::string& line, const Statement& rows, int column, const std::string& type)
{
  if (rows.isNull(column))
    return;
  if (type == "TEXT")
    appendCsvText(line, rows.text(column));
  else if (type == "INTEGER")
    line += std::to_string(rows.whole(column));
  else if (type == "FLOAT")
    appendExact(line, static_cast<float>(rows.number(column)));
  else
    appendExact(line, rows.number(column));
}

}  // namespace

struct StudyResults::Private
{
  std::unique_ptr<Database> database;
};

StudyResults::StudyResults(const std::vector<std::string>& paths) : _p(std::make_unique<Private>())
{
  if (paths.empty())
    throw std::invalid_argument("expected a result file");
  if (paths.size() == 1)
  {
    _p->database = openResults(paths.front());
    return;
  }
  _p->database = std::make_unique<Database>("", Database::Mode::Memory);
  Database& all = *_p->database;
  makeResultTables(all);
  bool isFirst = true;
  for (const std::string& path : paths)
  {
    const std::unique_ptr<Database> one = openResults(path);
    if (!isFirst)
    {
      compareMaking(all, *one);
      refuseSameSession(*one, all);
    }
    copyAll(*one, all, isFirst);
    isFirst = false;
  }
}

StudyResults::~StudyResults() = default;

Database& ResultsReader::database(const StudyResults& results)
{
  return *results._p->database;
}

const std::vector<std::string>& StudyResults::tables()
{
  static const std::vector<std::string> names = [] {
    std::vector<std::string> list;
    for (const ResultTable& table : resultTables())
      list.push_back(table.name);
    return list;
  }();
  return names;
}

void StudyResults::writeCsv(const std::string& name, std::ostream& stream) const
{
  const ResultTable& table = resultTable(name);
  std::string line;
  for (const ResultColumn& column : table.columns)
    line += (line.empty() ? "" : ",") + column.name;
  stream << line << '\n';
  Statement rows(*_p->database, "SELECT * FROM main." + table.name + " ORDER BY " + table.key);
  while (rows.step())
  {
    line.clear();
    int i = 0;
    for (const ResultColumn& column : table.columns)
    {
      line += i == 0 ? "" : ",";
      appendValue(line, rows, i++, column.type);
    }
    stream << line << '\n';
  }
}

}  // namespace KV::session
