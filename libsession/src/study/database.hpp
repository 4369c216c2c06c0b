#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

struct sqlite3;
struct sqlite3_stmt;

namespace KV::session
{

class Database;

/// One statement, which may be executed many times.
class Statement
{
public:
  Statement(Database& database, const std::string& sql);

  /// Binds the values to the parameters from the first on; `nullptr` is NULL, and so is a number that is not one.
  template <typename... Values>
  Statement& bind(const Values&... values)
  {
    _begin();
    (add(values), ...);
    return *this;
  }

  /// Binds the next parameter.
  template <typename Value>
  void add(const Value& value)
  {
    if constexpr (std::is_same_v<Value, std::nullptr_t>)
      _addNull();
    else if constexpr (std::is_floating_point_v<Value>)
      _add(static_cast<double>(value));
    else if constexpr (std::is_integral_v<Value>)
      _add(static_cast<std::int64_t>(value));
    else
      _add(std::string_view(value));
  }

  /// Executes the statement; returns whether there is a row, or another one.
  bool step();

  /// Executes it to its end.
  void run()
  {
    while (step())
    {}
  }

  /// Return a number, 0 for NULL. A column of a file that somebody else wrote may hold anything.
  ///
  /// \throws recordings::Error with the name of the column if it holds something else, or a number that single
  /// precision
  ///   cannot have: sums of the others are finite.
  std::int64_t whole(int column) const;
  double number(int column) const;

  std::string text(int column) const;  ///< empty for NULL
  bool isNull(int column) const;
  int columns() const;
  std::string nameOf(int column) const;

private:
  [[noreturn]] void _refuse(int column, const std::string& expected) const;
  void _begin();
  void _addNull();
  void _add(double value);
  void _add(std::int64_t value);
  void _add(std::string_view value);

  struct Finalize
  {
    void operator()(sqlite3_stmt* statement) const;
  };

  Database& _database;
  std::unique_ptr<sqlite3_stmt, Finalize> _statement;
  int _bound = 0;
};

/// A database of SQLite. Long operations ask the InterruptionCheck of the thread.
///
/// Not synchronised: each thread has its own.
class Database
{
public:
  enum class Mode
  {
    Read,   ///< an existing file, perhaps from somebody else: there are limits for texts and steps
    Write,  ///< a file, which is made if it does not exist
    Memory  ///< a temporary one, on the disk where it is large
  };

  /// \throws recordings::Error if the file cannot be opened, or has no database.
  Database(const std::string& path, Mode mode);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /// Executes statements without results.
  void run(const std::string& sql);

  /// Returns the first column of the first row.
  std::int64_t whole(const std::string& sql);

  const std::string& path() const { return _path; }

private:
  friend class Statement;

  explicit Database(const std::string& path);

  /// \throws what the InterruptionCheck threw, or std::runtime_error with the file and the error.
  [[noreturn]] void _fail(int code);
  void _distrust();
  static int _ask(void* database);

  std::string _path;
  std::uintmax_t _mostSteps = 0;  // of a statement; 0: any number
  std::uintmax_t _steps = 0;      // of the present statement
  sqlite3* _handle = nullptr;
  std::exception_ptr _thrown;
};

/// A transaction: rolled back unless it is committed.
class Transaction
{
public:
  explicit Transaction(Database& database) : _database(database) { database.run("BEGIN IMMEDIATE"); }
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void commit()
  {
    _database.run("COMMIT");
    _isCommitted = true;
  }

private:
  Database& _database;
  bool _isCommitted = false;
};

}  // namespace KV::session
