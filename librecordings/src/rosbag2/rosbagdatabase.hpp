#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace KV::recordings
{

class QueryWatch;
class UnpackedFile;

/// One topic of a bag.
struct BagTopic
{
  std::string name;
  std::string type;    ///< of its messages, as ROS writes it
  std::string format;  ///< of its messages: "cdr"
};

/// One message of a bag.
struct BagMessage
{
  std::int64_t number = 0;  ///< in its file
  std::int64_t topic = 0;   ///< its key among the topics of the file
  std::int64_t time = 0;    ///< [ns] since 1970, when it was received
  std::vector<char> data;
};

/// One file of a bag, which is a database of SQLite; it may be compressed by gzip.
///
/// Whatever is in the file, it is only read, and nothing is written beside it: it can neither call functions nor change
/// anything. Views, triggers, virtual tables and generated columns are refused. Messages are sorted by their times
/// without their contents, which are read one by one. What a query may take is limited, see inputlimits.hpp.
class RosbagDatabase
{
public:
  /// Opens the file. One that is compressed is unpacked into a temporary file, which is gone at the end.
  ///
  /// \throws Error if it cannot be read, or has not the tables of a bag.
  explicit RosbagDatabase(const std::string& path);
  ~RosbagDatabase();
  RosbagDatabase(RosbagDatabase&& other) noexcept;
  RosbagDatabase& operator=(RosbagDatabase&& other) noexcept;

  const std::string& path() const { return _path; }
  const std::map<std::int64_t, BagTopic>& topics() const { return _topics; }

  /// Times of the first and the last message, if there is any.
  struct Span
  {
    std::int64_t first;
    std::int64_t last;
  };
  const std::optional<Span>& span() const { return _span; }

  /// Starts to read the messages of these topics, in the order of their times.
  void select(const std::vector<std::int64_t>& topics);

  /// Reads the next of the selected messages; false at the end.
  ///
  /// \throws BadLine for a message that cannot be used; the next call goes on behind it.
  /// \throws Error if the file is damaged.
  bool next(BagMessage& message);

  /// Hands each different message of these topics once to `take`, in the order in which they came first. Returns false
  /// if there are more different ones than are kept to compare with: then the rest is left out.
  ///
  /// \throws as next().
  bool forEachDifferent(const std::vector<std::int64_t>& topics, const std::function<void(BagMessage&)>& take);

  /// Throws BadLine about this message.
  [[noreturn]] void refuse(const BagMessage& message, const std::string& what) const;

private:
  struct CloseDatabase
  {
    void operator()(sqlite3* database) const;
  };
  struct CloseStatement
  {
    void operator()(sqlite3_stmt* statement) const;
  };
  using Statement = std::unique_ptr<sqlite3_stmt, CloseStatement>;

  /// Messages in the order of their times.
  struct Selection
  {
    Statement order;           ///< number, topic and time of each
    Statement data;            ///< of the message with a number
    std::uintmax_t rows = 0;   ///< that were read
    std::uintmax_t bytes = 0;  ///< [bytes] of their data
  };

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
  Selection _selected(const std::vector<std::int64_t>& topics) const;
  bool _next(Selection& selection, BagMessage& message) const;
  void _readData(Selection& selection, BagMessage& message) const;
  std::string _nameOf(const BagMessage& message) const;
  [[noreturn]] void _refuseEndless() const;
  [[noreturn]] void _fail(const std::string& what) const;

  std::string _path;
  std::unique_ptr<const UnpackedFile> _unpacked;
  std::uintmax_t _size = 0;            // [bytes] of the file, unpacked
  std::unique_ptr<QueryWatch> _watch;  // before the database, which calls it
  std::unique_ptr<sqlite3, CloseDatabase> _database;
  std::map<std::int64_t, BagTopic> _topics;
  std::optional<Span> _span;
  Selection _messages;
};

}  // namespace KV::recordings
