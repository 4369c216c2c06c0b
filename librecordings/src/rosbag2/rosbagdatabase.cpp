#include "rosbag2/rosbagdatabase.hpp"

#include "input/unpackedfile.hpp"
#include "rosbag2/querywatch.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <new>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace KV::recordings
{
namespace
{
// SQLite builds no larger value than this: a message of the greatest length, and the other columns of its row.
constexpr int largestValue = limits::largestMessage + (1 << 16);

// A path as part of an address.
std::string escaped(const std::string& path)
{
  static const char* const digits = "0123456789abcdef";
  std::string text;
  for (const char character : path)
  {
    const auto code = static_cast<unsigned char>(character);
    if (character == '?' || character == '#' || character == '%')
      text += {'%', digits[code >> 4U], digits[code & 15U]};
    else
      text += character;
  }
  return text;
}

std::uintmax_t sizeOf(const std::string& path)
{
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

// The last changes may still be in a journal beside the file.
std::uintmax_t sizeOfJournal(const std::string& path)
{
  return sizeOf(path + "-wal");
}

bool hasJournal(const std::string& path)
{
  return sizeOfJournal(path) > 0;
}

void throwIfOutOfMemory(int status)
{
  if (status == SQLITE_NOMEM)
    throw std::bad_alloc();
}

void configure(sqlite3* database)
{
  sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  sqlite3_limit(database, SQLITE_LIMIT_LENGTH, largestValue);
  sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
  sqlite3_limit(database, SQLITE_LIMIT_WORKER_THREADS, 0);
  // A damaged cell is detected when its page is read; pages are read into SQLite's own memory, so that a file that
  // becomes shorter causes an error and no signal.
  throwIfOutOfMemory(
      sqlite3_exec(database, "PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0", nullptr, nullptr, nullptr));
}

std::string listOf(const std::vector<std::int64_t>& keys)
{
  std::string text;
  for (const std::int64_t key : keys)
    text += (text.empty() ? "" : ",") + std::to_string(key);
  return "(" + text + ")";
}

}  // namespace

void RosbagDatabase::CloseDatabase::operator()(sqlite3* database) const
{
  sqlite3_close_v2(database);
}

void RosbagDatabase::CloseStatement::operator()(sqlite3_stmt* statement) const
{
  sqlite3_finalize(statement);
}

/// The messages of some topics.
class RosbagDatabase::Selection : public BagMessages
{
public:
  Selection(const RosbagDatabase& database, const std::vector<std::int64_t>& topics);

  bool next(BagMessage& message) override;

private:
  void _readData(BagMessage& message);

  const RosbagDatabase& _of;
  Statement _order;           // number, topic and time of each
  Statement _data;            // of the message with a number
  std::uintmax_t _rows = 0;   // that were read
  std::uintmax_t _bytes = 0;  // [bytes] of their data
};

RosbagDatabase::RosbagDatabase(const std::string& path, std::unique_ptr<const UnpackedFile> unpacked)
  : BagFile(path, std::move(unpacked))
{
  const std::string& file = _contents();
  _open(file);
  for (const char* const table : {"topics", "messages"})
    _expectTable(table);
  _refuseOtherThanTables();
  for (const char* const table : {"topics", "messages"})
    _refuseGeneratedColumns(table);
  _expectWholePages(file);
  _readTopics();
  _readSpan();
}

RosbagDatabase::~RosbagDatabase() = default;

// A file that no program writes is opened as immutable, and then without any other file. The changes in a journal are
// read only in exclusive mode: SQLite then reads it alone, without a lock or an index in a third file.
void RosbagDatabase::_open(const std::string& file)
{
  const bool withJournal = hasJournal(file);
  const std::string address = "file:" + escaped(std::filesystem::absolute(file).string()) + "?mode=ro" +
                              (withJournal ? "&vfs=unix-none" : "&immutable=1");
  sqlite3* database = nullptr;
  const int status = sqlite3_open_v2(address.c_str(), &database,
                                     SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
  _database.reset(database);
  throwIfOutOfMemory(status);
  if (status != SQLITE_OK)
    _fail(std::string("cannot be opened: ") + sqlite3_errstr(status));
  _size = sizeOf(file) + sizeOfJournal(file);
  _watch = std::make_unique<QueryWatch>(*database, _size);
  if (withJournal)
    throwIfOutOfMemory(sqlite3_exec(database, "PRAGMA locking_mode = EXCLUSIVE", nullptr, nullptr, nullptr));
  configure(database);
}

// A view or a virtual table would be a program, not a recording.
void RosbagDatabase::_expectTable(const std::string& name)
{
  const auto statement =
      _prepare("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND rootpage > 0 AND name = '" + name + "'");
  _step(*statement);
  if (sqlite3_column_int(statement.get(), 0) != 1)
    _fail("has no table '" + name + "': this is no bag");
}

void RosbagDatabase::_refuseOtherThanTables()
{
  const auto statement = _prepare(
      "SELECT type, name FROM sqlite_master "
      "WHERE type NOT IN ('table', 'index') OR (type = 'table' AND rootpage <= 0)");
  if (!_step(*statement))
    return;
  const std::string type = _textOf(*statement, 0);
  const std::string kind = type == "view" || type == "trigger" ? type : "virtual table";
  _fail("has the " + kind + " " + quote(_textOf(*statement, 1)) + ": a bag has tables and indices only");
}

void RosbagDatabase::_refuseGeneratedColumns(const std::string& table)
{
  constexpr int name = 1;
  constexpr int hidden = 6;
  const auto statement = _prepare("PRAGMA table_xinfo('" + table + "')");
  while (_step(*statement))
    if (sqlite3_column_int(statement.get(), hidden) != 0)
      _fail("the column " + quote(_textOf(*statement, name)) + " of the table '" + table +
            "' is generated: a bag has stored columns only");
}

// SQLite refuses a file that lacks pages, but reads zeros for a missing part of the last page.
void RosbagDatabase::_expectWholePages(const std::string& file)
{
  if (hasJournal(file))
    return;
  const auto statement = _prepare("PRAGMA page_size");
  _step(*statement);
  const auto pageSize = static_cast<std::uintmax_t>(sqlite3_column_int64(statement.get(), 0));
  if (pageSize != 0 && std::filesystem::file_size(file) % pageSize != 0)
    _fail("ends too early: the file was cut");
}

void RosbagDatabase::_readTopics()
{
  const auto statement = _prepare("SELECT id, name, type, serialization_format FROM topics NOT INDEXED");
  std::size_t count = 0;
  std::uintmax_t bytes = 0;
  while (_step(*statement))
  {
    if (sqlite3_column_type(statement.get(), 0) != SQLITE_INTEGER)
      _fail("a topic has no whole number as its key");
    if (++count > limits::mostTopics)
      _failForTopics();
    BagTopic topic{_textOf(*statement, 1), _textOf(*statement, 2), _textOf(*statement, 3)};
    bytes += topic.name.size() + topic.type.size() + topic.format.size();
    if (bytes > _size)
      _fail("the names of its topics are longer than the file: the database is damaged");
    _addTopic(sqlite3_column_int64(statement.get(), 0), std::move(topic));
  }
}

void RosbagDatabase::_readSpan()
{
  const auto first = _outermostTime("ASC");
  const auto last = _outermostTime("DESC");
  if (first && last)
    _setSpan({*first, *last});
}

std::optional<std::int64_t> RosbagDatabase::_outermostTime(const std::string& order)
{
  _watch->allowAnotherPass();
  const auto statement = _prepare(
      "SELECT timestamp FROM messages WHERE typeof(timestamp) = 'integer' "
      "ORDER BY timestamp " +
      order + " LIMIT 1");
  if (!_step(*statement))
    return {};
  return sqlite3_column_int64(statement.get(), 0);
}

std::unique_ptr<BagMessages> RosbagDatabase::messagesOf(const std::vector<std::int64_t>& topics)
{
  return std::make_unique<Selection>(*this, topics);
}

RosbagDatabase::Statement RosbagDatabase::_prepare(const std::string& sql) const
{
  sqlite3_stmt* statement = nullptr;
  const int status = sqlite3_prepare_v2(_database.get(), sql.c_str(), -1, &statement, nullptr);
  throwIfOutOfMemory(status);
  if (status == SQLITE_INTERRUPT)
    _refuseEndless();
  if (status != SQLITE_OK)
    _fail("cannot be read as a bag: " + std::string(sqlite3_errmsg(_database.get())));
  return Statement(statement);
}

// Advances to the next row; false at the end.
bool RosbagDatabase::_step(sqlite3_stmt& statement) const
{
  const int status = sqlite3_step(&statement);
  if (status == SQLITE_ROW)
    return true;
  if (status == SQLITE_DONE)
    return false;
  throwIfOutOfMemory(status);
  if (status == SQLITE_INTERRUPT)
    _refuseEndless();
  _fail("the database is damaged or was cut: " + std::string(sqlite3_errmsg(_database.get())));
}

std::string RosbagDatabase::_textOf(sqlite3_stmt& statement, int column) const
{
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(&statement, column));
  const int count = sqlite3_column_bytes(&statement, column);
  return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(count));
}

// A message is found by its times in the table itself: an index may be wrong. Types and lengths are in the head of a
// row, so SQLite need not read a value of another type, or one that is too long.
RosbagDatabase::Selection::Selection(const RosbagDatabase& database, const std::vector<std::int64_t>& topics)
  : _of(database)
{
  _of._watch->allowAnotherPass();
  _order = _of._prepare(
      "SELECT rowid, topic_id, CASE typeof(timestamp) WHEN 'integer' THEN timestamp END AS time "
      "FROM messages NOT INDEXED "
      "WHERE CASE typeof(topic_id) WHEN 'integer' THEN topic_id END IN " +
      listOf(topics) + " ORDER BY time NULLS LAST, rowid");
  _data = _of._prepare("SELECT length(data), CASE WHEN length(data) <= " + std::to_string(limits::largestMessage) +
                       " THEN data END FROM messages NOT INDEXED WHERE rowid = ? AND typeof(data) = 'blob'");
}

bool RosbagDatabase::Selection::next(BagMessage& message)
{
  InterruptionCheck::ask();
  sqlite3_stmt& order = *_order;
  if (!_of._step(order))
    return false;
  if (++_rows > _of._size / limits::leastBytesOfMessage)
    _of._fail("lists more messages than a file of its size can hold: the database is damaged");
  message.number = sqlite3_column_int64(&order, 0);
  message.topic = sqlite3_column_int64(&order, 1);
  message.time = sqlite3_column_int64(&order, 2);
  if (sqlite3_column_type(&order, 2) != SQLITE_INTEGER || message.time < 0)
    _of.refuseTime(message);
  _readData(message);
  return true;
}

void RosbagDatabase::Selection::_readData(BagMessage& message)
{
  sqlite3_stmt& data = *_data;
  sqlite3_reset(&data);
  sqlite3_bind_int64(&data, 1, message.number);
  if (!_of._step(data))
    _of.refuse(message, "its data are no bytes");
  const std::int64_t length = sqlite3_column_int64(&data, 0);
  if (length > limits::largestMessage)
    _of.refuseLength(message, static_cast<std::uint64_t>(length));
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(&data, 1));
  const int count = sqlite3_column_bytes(&data, 1);
  _bytes += static_cast<std::uintmax_t>(count);
  if (_bytes > _of._size)
    _of._fail("its messages are longer than the file: the database is damaged");
  message.data.assign(bytes, bytes + count);
}

void RosbagDatabase::_refuseEndless() const
{
  _watch->rethrow();
  _fail("takes more steps to read than a file of its size can need: the database is damaged");
}

}  // namespace KV::recordings
