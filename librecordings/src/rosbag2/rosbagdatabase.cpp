#include "rosbag2/rosbagdatabase.hpp"

#include "input/unpackedfile.hpp"

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::size_t mostTopics = 10000;
constexpr int largestMessage = 1 << 20;  // [bytes] those that are read have a few hundred
constexpr int mostDifferent = 10000;

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

// What was written last may still be in a journal beside the file.
bool hasJournal(const std::string& path)
{
  std::error_code ignored;
  const auto size = std::filesystem::file_size(path + "-wal", ignored);
  return !ignored && size > 0;
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

RosbagDatabase::RosbagDatabase(const std::string& path) : _path(path)
{
  if (UnpackedFile::isNeededFor(path))
  {
    _unpacked = std::make_unique<const UnpackedFile>(path);
    _open(_unpacked->path());
  }
  else
    _open(path);
  _expectTable("topics");
  _expectTable("messages");
  _expectWholePages(_unpacked ? _unpacked->path() : path);
  _readTopics();
  _readSpan();
}

RosbagDatabase::~RosbagDatabase() = default;
RosbagDatabase::RosbagDatabase(RosbagDatabase&& other) noexcept = default;
RosbagDatabase& RosbagDatabase::operator=(RosbagDatabase&& other) noexcept = default;

void RosbagDatabase::_open(const std::string& file)
{
  const std::string address = "file:" + escaped(std::filesystem::absolute(file).string()) +
                              (hasJournal(file) ? "?mode=ro" : "?mode=ro&immutable=1");
  sqlite3* database = nullptr;
  const int status = sqlite3_open_v2(address.c_str(), &database,
                                     SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
  _database.reset(database);
  if (status != SQLITE_OK)
    throw Error({_path, 0, {}}, std::string("cannot be opened: ") + sqlite3_errstr(status));
  sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

// A view or a virtual table would be somebody's program, not a recording.
void RosbagDatabase::_expectTable(const std::string& name)
{
  const auto statement =
      _prepare("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND rootpage > 0 AND name = '" + name + "'");
  _step(*statement);
  if (sqlite3_column_int(statement.get(), 0) != 1)
    _fail("has no table '" + name + "': this is no bag");
}

// SQLite refuses a file that lacks pages, but takes what is missing of the last one for zeros.
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
  const auto statement = _prepare("SELECT id, name, type, serialization_format FROM topics");
  while (_step(*statement))
  {
    if (sqlite3_column_type(statement.get(), 0) != SQLITE_INTEGER)
      _fail("a topic has no whole number as its key");
    if (_topics.size() == mostTopics)
      _fail("has more than " + std::to_string(mostTopics) + " topics");
    _topics[sqlite3_column_int64(statement.get(), 0)] = {_textOf(*statement, 1), _textOf(*statement, 2),
                                                         _textOf(*statement, 3)};
  }
}

void RosbagDatabase::_readSpan()
{
  const auto statement = _prepare("SELECT min(timestamp), max(timestamp) FROM messages");
  if (_step(*statement) && sqlite3_column_type(statement.get(), 0) == SQLITE_INTEGER &&
      sqlite3_column_type(statement.get(), 1) == SQLITE_INTEGER)
    _span = {sqlite3_column_int64(statement.get(), 0), sqlite3_column_int64(statement.get(), 1)};
}

void RosbagDatabase::select(const std::vector<std::int64_t>& topics)
{
  _messages = _prepare("SELECT id, topic_id, timestamp, data FROM messages WHERE topic_id IN " + listOf(topics) +
                       " ORDER BY timestamp, id");
}

bool RosbagDatabase::next(BagMessage& message)
{
  if (!_step(*_messages))
    return false;
  _readMessage(*_messages, message);
  return true;
}

void RosbagDatabase::forEachDifferent(const std::vector<std::int64_t>& topics,
                                      const std::function<void(BagMessage&)>& take)
{
  const auto statement =
      _prepare("SELECT min(id), topic_id, min(timestamp), data FROM messages WHERE topic_id IN " + listOf(topics) +
               " GROUP BY topic_id, data ORDER BY 3, 1 LIMIT " + std::to_string(mostDifferent));
  BagMessage message;
  while (_step(*statement))
  {
    _readMessage(*statement, message);
    take(message);
  }
}

void RosbagDatabase::refuse(const BagMessage& message, const std::string& what) const
{
  throw BadLine({_path, 0, _nameOf(message)}, "message " + std::to_string(message.number) + ": " + what);
}

RosbagDatabase::Statement RosbagDatabase::_prepare(const std::string& sql) const
{
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(_database.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
    _fail("cannot be read as a bag: " + std::string(sqlite3_errmsg(_database.get())));
  return Statement(statement);
}

// Moves on to the next row; false at the end.
bool RosbagDatabase::_step(sqlite3_stmt& statement) const
{
  const int status = sqlite3_step(&statement);
  if (status == SQLITE_ROW)
    return true;
  if (status == SQLITE_DONE)
    return false;
  _fail("the database is damaged or was cut: " + std::string(sqlite3_errmsg(_database.get())));
}

std::string RosbagDatabase::_textOf(sqlite3_stmt& statement, int column) const
{
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(&statement, column));
  const int count = sqlite3_column_bytes(&statement, column);
  return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(count));
}

void RosbagDatabase::_readMessage(sqlite3_stmt& statement, BagMessage& message) const
{
  message.number = sqlite3_column_int64(&statement, 0);
  message.topic = sqlite3_column_int64(&statement, 1);
  message.time = sqlite3_column_int64(&statement, 2);
  if (sqlite3_column_type(&statement, 2) != SQLITE_INTEGER || message.time < 0)
    refuse(message, "its time is no count of nanoseconds");
  if (sqlite3_column_type(&statement, 3) != SQLITE_BLOB)
    refuse(message, "its data are no bytes");
  const int count = sqlite3_column_bytes(&statement, 3);
  if (count > largestMessage)
    refuse(message, "has " + std::to_string(count) + " bytes, too many for its type");
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(&statement, 3));
  message.data.assign(bytes, bytes + count);
}

std::string RosbagDatabase::_nameOf(const BagMessage& message) const
{
  const auto topic = _topics.find(message.topic);
  return topic == _topics.end() ? "" : topic->second.name;
}

void RosbagDatabase::_fail(const std::string& what) const
{
  throw Error({_path, 0, {}}, what);
}

}  // namespace KV::recordings
