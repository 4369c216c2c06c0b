#pragma once

#include "rosbag2/bagfile.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace KV::recordings
{

class QueryWatch;

/// One file of a bag, which is a database of SQLite.
///
/// The file is only read, whatever it contains, and nothing is written beside it: it can neither call functions nor
/// change anything. Views, triggers, virtual tables and generated columns are refused. Messages are sorted by time
/// without their contents, which are read one by one. The memory and time of a query are limited, see inputlimits.hpp.
class RosbagDatabase : public BagFile
{
public:
  /// Opens the file.
  ///
  /// \param path      in messages
  /// \param unpacked  the contents, if the file is packed
  /// \throws Error if it cannot be read, or does not have the tables of a bag.
  RosbagDatabase(const std::string& path, std::unique_ptr<const UnpackedFile> unpacked);
  ~RosbagDatabase() override;

  std::unique_ptr<BagMessages> messagesOf(const std::vector<std::int64_t>& topics) override;

private:
  std::string _container() const override { return "SQLite"; }

  struct CloseDatabase
  {
    void operator()(sqlite3* database) const;
  };
  struct CloseStatement
  {
    void operator()(sqlite3_stmt* statement) const;
  };
  using Statement = std::unique_ptr<sqlite3_stmt, CloseStatement>;

  class Selection;

  void _open(const std::string& file);
  void _expectTable(const std::string& name);
  void _refuseOtherThanTables();
  void _refuseGeneratedColumns(const std::string& table);
  void _expectWholePages(const std::string& file);
  void _readTopics();
  void _readSpan();
  std::optional<std::int64_t> _outermostTime(const std::string& order);
  Statement _prepare(const std::string& sql) const;
  bool _step(sqlite3_stmt& statement) const;
  std::string _textOf(sqlite3_stmt& statement, int column) const;
  [[noreturn]] void _refuseEndless() const;

  std::uintmax_t _size = 0;            // [bytes] of the file, unpacked
  std::unique_ptr<QueryWatch> _watch;  // before the database, which calls it
  std::unique_ptr<sqlite3, CloseDatabase> _database;
};

}  // namespace KV::recordings
