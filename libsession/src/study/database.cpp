#include "study/database.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <sqlite3.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace KV::session
{

namespace
{

namespace limits = recordings::limits;

constexpr int stepsBetween = 2000;      // a step takes less than 0.1 ms
constexpr int longestWait = 60 * 1000;  // [ms] for another process that writes

}  // namespace

void Statement::Finalize::operator()(sqlite3_stmt* statement) const
{
  sqlite3_finalize(statement);
}

Statement::Statement(Database& database, const std::string& sql) : _database(database)
{
  database._steps = 0;
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v2(database._handle, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  _statement.reset(statement);
  if (code != SQLITE_OK)
    database._fail(code);
}

void Statement::_begin()
{
  sqlite3_reset(_statement.get());
  _bound = 0;
}

void Statement::_addNull()
{
  sqlite3_bind_null(_statement.get(), ++_bound);
}

void Statement::_add(double value)
{
  if (std::isnan(value))
    _addNull();
  else
    sqlite3_bind_double(_statement.get(), ++_bound, value);
}

void Statement::_add(std::int64_t value)
{
  sqlite3_bind_int64(_statement.get(), ++_bound, value);
}

void Statement::_add(std::string_view value)
{
  if (sqlite3_bind_text64(_statement.get(), ++_bound, value.data() == nullptr ? "" : value.data(), value.size(),
                          SQLITE_TRANSIENT, SQLITE_UTF8) == SQLITE_NOMEM)
    throw std::bad_alloc();
}

bool Statement::step()
{
  const int code = sqlite3_step(_statement.get());
  if (code == SQLITE_ROW)
    return true;
  sqlite3_reset(_statement.get());
  if (code != SQLITE_DONE)
    _database._fail(code);
  return false;
}

std::int64_t Statement::whole(int column) const
{
  if (const int type = sqlite3_column_type(_statement.get(), column); type != SQLITE_INTEGER && type != SQLITE_NULL)
    _refuse(column, "a whole number");
  return sqlite3_column_int64(_statement.get(), column);
}

double Statement::number(int column) const
{
  const int type = sqlite3_column_type(_statement.get(), column);  // before SQLite converts the value
  const double value = sqlite3_column_double(_statement.get(), column);
  const bool isNumber = type == SQLITE_FLOAT || type == SQLITE_INTEGER || type == SQLITE_NULL;
  if (!isNumber || !(std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max())))
    _refuse(column, "a number from -3.4e38 to 3.4e38");
  return value;
}

void Statement::_refuse(int column, const std::string& expected) const
{
  throw recordings::Error({_database.path(), 0, nameOf(column)},
                          "expected " + expected + ", found " + recordings::quote(text(column)));
}

std::string Statement::text(int column) const
{
  const auto* const bytes = reinterpret_cast<const char*>(sqlite3_column_text(_statement.get(), column));
  if (bytes == nullptr && sqlite3_errcode(_database._handle) == SQLITE_NOMEM)
    throw std::bad_alloc();
  const auto count = static_cast<std::size_t>(sqlite3_column_bytes(_statement.get(), column));
  return bytes == nullptr ? std::string() : std::string(bytes, count);
}

bool Statement::isNull(int column) const
{
  return sqlite3_column_type(_statement.get(), column) == SQLITE_NULL;
}

int Statement::columns() const
{
  return sqlite3_column_count(_statement.get());
}

std::string Statement::nameOf(int column) const
{
  const char* const name = sqlite3_column_name(_statement.get(), column);
  if (name == nullptr)
    throw std::bad_alloc();
  return name;
}

Database::Database(const std::string& path) : _path(path) {}

// The other constructor has completed the object, so an exception closes the database.
Database::Database(const std::string& path, Mode mode) : Database(path)
{
  // A killed run leaves a transaction to roll back, which needs a connection that could write.
  const int flags = SQLITE_OPEN_READWRITE | (mode == Mode::Read ? 0 : SQLITE_OPEN_CREATE);
  const int code =
      sqlite3_open_v2(mode == Mode::Memory ? "" : path.c_str(), &_handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (code == SQLITE_NOMEM)
    throw std::bad_alloc();
  if (code != SQLITE_OK)
    throw recordings::Error({path, 0, {}}, std::string("cannot be opened: ") + sqlite3_errstr(code));
  sqlite3_busy_timeout(_handle, longestWait);
  sqlite3_db_config(_handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(_handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(_handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  sqlite3_progress_handler(_handle, stepsBetween, _ask, this);
  if (mode == Mode::Read)
    _distrust();
}

void Database::_distrust()
{
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(_path, error);
  _mostSteps = limits::mostStepsOfAnyBag + limits::mostStepsPerByte * (error ? 0 : size);
  sqlite3_db_config(_handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_limit(_handle, SQLITE_LIMIT_LENGTH, static_cast<int>(limits::longestLine));
  run("PRAGMA query_only = 1");
}

Database::~Database()
{
  sqlite3_close_v2(_handle);
}

void Database::run(const std::string& sql)
{
  const int code = sqlite3_exec(_handle, sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK)
    _fail(code);
}

std::int64_t Database::whole(const std::string& sql)
{
  Statement statement(*this, sql);
  return statement.step() ? statement.whole(0) : 0;
}

void Database::_fail(int code)
{
  if (_thrown)
    std::rethrow_exception(std::exchange(_thrown, nullptr));
  if (code == SQLITE_NOMEM)
    throw std::bad_alloc();
  if (code == SQLITE_NOTADB || code == SQLITE_CORRUPT)
    throw recordings::Error({_path, 0, {}},
                            std::string("is no result file, or is damaged: ") + sqlite3_errmsg(_handle));
  if (code == SQLITE_INTERRUPT)
    throw recordings::Error({_path, 0, {}}, "takes more steps to read than a file of its size can need: it is damaged");
  if (code == SQLITE_TOOBIG)
    throw recordings::Error({_path, 0, {}}, "has a text of more than 16 MiB, so it is no result file");
  if (code == SQLITE_BUSY)
    throw std::runtime_error(_path + ": another program is writing to it");
  throw std::runtime_error(_path + ": " + sqlite3_errmsg(_handle));
}

// SQLite is written in C: no exception may pass it.
int Database::_ask(void* database)
{
  try
  {
    recordings::InterruptionCheck::ask();
    Database& self = *static_cast<Database*>(database);
    self._steps += stepsBetween;
    return self._mostSteps != 0 && self._steps > self._mostSteps ? 1 : 0;
  }
  catch (...)
  {
    static_cast<Database*>(database)->_thrown = std::current_exception();
    return 1;
  }
}

Transaction::~Transaction()
{
  if (_isCommitted)
    return;
  try
  {
    _database.run("ROLLBACK");
  }
  catch (const std::exception&)
  {}  // the connection is closed, which rolls back
  catch (...)
  {}  // an interruption
}

}  // namespace KV::session
