#include "librecordings/limitedchild.hpp"
#include "librecordings/rosbag2/bagwriter.hpp"
#include "librecordings/support.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// Bags that were made to do harm: each is refused with a message, in little memory, disk and time.

namespace
{
using namespace support;
using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t mebibyte = KV::recordings::limits::mebibyte;
constexpr std::size_t enoughMemory = 100 * mebibyte;  // of address space
constexpr std::size_t anyFile = 1024 * mebibyte;

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin)
{
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

struct Ended
{};

class HostileBags : public ::testing::Test
{
protected:
  BagWriter& bag()
  {
    if (!_bag)
      _bag.emplace(path(), 1700000000000000000);
    return *_bag;
  }

  /// A bag with one face, to which the test adds something.
  BagWriter& goodBag()
  {
    bag().add(0., "/tf", tfMessage({faceFrame("a", {0., 0., 2.})}));
    return bag();
  }

  std::string path() const { return folder.path("bag.db3"); }

  Contents read()
  {
    _bag.reset();
    return contentsOf(path(), "rosbag2");
  }

  /// Reads the bag in a process of its own with little memory; checks the end of its message.
  void expectRefusedInLittleMemory(const std::string& end)
  {
    _bag.reset();
    const auto isRefused = [&] {
      const std::string message = contentsOf(path(), "rosbag2").fatal;
      return message.size() >= end.size() && message.compare(message.size() - end.size(), end.size(), end) == 0;
    };
    EXPECT_EXIT(runLimited(enoughMemory, anyFile, isRefused), testing::ExitedWithCode(0), "");
    EXPECT_THAT(contentsOf(path(), "rosbag2").fatal, EndsWith(end));
  }

  std::string bytes() const
  {
    std::ifstream file(path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  TemporaryFolder folder;

private:
  std::optional<BagWriter> _bag;
};

TEST_F(HostileBags, AreRefusedIfAColumnIsGenerated)
{
  for (const std::string kind : {"VIRTUAL", "STORED"})
  {
    SCOPED_TRACE(kind);
    std::filesystem::remove(path());
    bag().topic("/tf", "tf2_msgs/msg/TFMessage");
    bag().run("DROP TABLE messages");
    // The writer of a file can choose the stored number, so it is small here.
    bag().run(
        "CREATE TABLE messages(id INTEGER PRIMARY KEY, topic_id INTEGER, timestamp INTEGER, x, data BLOB AS "
        "(zeroblob(" +
        std::string(kind == "VIRTUAL" ? "990000000" : "9") + ")) " + kind + ")");
    bag().run("INSERT INTO messages(topic_id, timestamp) VALUES (1, 1), (1, 2)");
    expectRefusedInLittleMemory(
        "the column 'data' of the table 'messages' is generated: a bag has stored columns only");
  }
}

TEST_F(HostileBags, AreRefusedIfTheyHoldPrograms)
{
  const std::vector<std::pair<std::string, std::string>> programs = {
      {"CREATE VIEW extra AS SELECT 1", "has the view 'extra': a bag has tables and indices only"},
      {"CREATE TRIGGER extra AFTER INSERT ON topics BEGIN DELETE FROM messages; END",
       "has the trigger 'extra': a bag has tables and indices only"},
      {"PRAGMA writable_schema = ON; INSERT INTO sqlite_master VALUES('table', 'extra', 'extra', 0, 'CREATE VIRTUAL "
       "TABLE "
       "extra USING nowhere()')",
       "has the virtual table 'extra': a bag has tables and indices only"},
  };
  for (const auto& [program, message] : programs)
  {
    SCOPED_TRACE(program);
    std::filesystem::remove(path());
    goodBag().run(program);
    EXPECT_EQ(path() + ": " + message, read().fatal);
  }
}

TEST_F(HostileBags, CannotBuildValuesBeyondTheLimitOfAMessage)
{
  goodBag().add(1., "/humans/persons/ada/face_id", stringMessage("a"));
  bag().run("INSERT INTO messages(topic_id, timestamp, data) VALUES(1, 1700000002000000000, zeroblob(150000000))");
  const auto isReadInLittleMemory = [this] {
    const Contents contents = contentsOf(path());
    return contents.fatal.empty() && contents.badLines.size() == 1 &&
           contents.badLines[0].find("has 150000000 bytes, too many for its type") != std::string::npos;
  };
  read();
  EXPECT_EXIT(runLimited(enoughMemory, anyFile, isReadInLittleMemory), testing::ExitedWithCode(0), "");
}

// Messages are not sorted or grouped by their contents, which would take temporary files of their size.
TEST_F(HostileBags, TakeNoTemporaryFilesForTheContentsOfMessages)
{
  goodBag();
  for (int i = 0; i < 40; ++i)
    bag().add(0.1 * i, "/humans/persons/ada/face_id", stringMessage(std::string(500000, 'a') + std::to_string(i)));
  read();
  const auto isRead = [this] { return contentsOf(path()).entries.size() == 1; };
  EXPECT_EXIT(runLimited(enoughMemory, mebibyte, isRead), testing::ExitedWithCode(0), "");
}

TEST_F(HostileBags, AreReadOverMuchThatBelongsToOtherTopics)
{
  goodBag().topic("/camera/image", "sensor_msgs/msg/Image");
  bag().run("INSERT INTO messages(topic_id, timestamp, data) VALUES(2, 1700000000000000000, zeroblob(5000000))");
  bag().add(1., "/tf", tfMessage({faceFrame("a", {0., 0., 2.})}));
  const Contents contents = read();
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.badLines, IsEmpty());
  EXPECT_EQ(2u, contents.entries.size());
}

TEST_F(HostileBags, WarnOfMoreMessagesAboutPersonsThanAreReadInAdvance)
{
  goodBag();
  for (int i = 0; i < 40; ++i)
    bag().add(0.1 * i, "/humans/persons/ada/face_id", stringMessage(std::string(500000, 'a') + std::to_string(i)));
  EXPECT_THAT(
      read().warnings,
      Contains(AllOf(HasSubstr("holds more than 10000 different messages on who has which face, or more than 16 MiB "
                               "of them"),
                     HasSubstr("counts as another person"))));
}

/// The pages of a database of SQLite, to be damaged.
class Pages
{
public:
  Pages(const std::string& path, std::string bytes)
    : _path(path), _bytes(std::move(bytes)), _size(static_cast<std::size_t>(_number(16, 2)))
  {}

  /// Returns the numbers of the pages that hold references to other pages of a table.
  std::vector<std::size_t> inner() const
  {
    std::vector<std::size_t> found;
    for (std::size_t page = 2; page * _size <= _bytes.size(); ++page)
      if (_bytes[_begin(page)] == 5)
        found.push_back(page);
    return found;
  }

  std::size_t firstChild(std::size_t page) const { return _number(_begin(page) + _number(_begin(page) + 12, 2), 4); }

  /// Lets all references of an inner page refer to one page.
  void referTo(std::size_t page, std::size_t child)
  {
    const std::size_t begin = _begin(page);
    _put(begin + 8, child);
    const std::size_t cells = _number(begin + 3, 2);
    for (std::size_t i = 0; i < cells; ++i)
      _put(begin + _number(begin + 12 + 2 * i, 2), child);
  }

  void write() const { std::ofstream(_path, std::ios::binary) << _bytes; }

private:
  std::size_t _begin(std::size_t page) const { return (page - 1) * _size; }

  std::size_t _number(std::size_t place, int count) const
  {
    std::size_t number = 0;
    for (int i = 0; i < count; ++i)
      number = number << 8U | static_cast<unsigned char>(_bytes[place + static_cast<std::size_t>(i)]);
    return number;
  }

  void _put(std::size_t place, std::size_t number)
  {
    for (std::size_t i = 0; i < 4; ++i)
      _bytes[place + i] = static_cast<char>(number >> (24U - 8U * i));
  }

  std::string _path;
  std::string _bytes;
  std::size_t _size;
};

class HostileTrees : public HostileBags
{
protected:
  /// A bag whose table has rows without end: each inner page refers with all its references to the next one, and the
  /// last to one page of messages. The first is the root, which refers to others.
  void writeEndlessBag()
  {
    goodBag();
    for (int i = 0; i < 2000; ++i)
      bag().add(0.01 * i, "/tf", tfMessage({faceFrame("a", {0., 0., 2.})}));
    bag().run("DROP INDEX timestamp_idx; PRAGMA page_size = 512; VACUUM");
    read();
    Pages pages(path(), bytes());
    const std::vector<std::size_t> inner = pages.inner();
    ASSERT_GE(inner.size(), 10u);
    std::set<std::size_t> seen;
    std::vector<std::size_t> chain;
    for (const std::size_t page : inner)
      if (chain.size() < 10)
        chain.push_back(page);
    std::size_t leaf = chain.back();
    while (std::find(inner.begin(), inner.end(), leaf) != inner.end())
      leaf = pages.firstChild(leaf);
    for (std::size_t i = 0; i < chain.size(); ++i)
      pages.referTo(chain[i], i + 1 < chain.size() ? chain[i + 1] : leaf);
    for (const std::size_t page : inner)
      if (std::find(chain.begin(), chain.end(), page) == chain.end())
        pages.referTo(page, chain.front());
    pages.write();
  }
};

TEST_F(HostileTrees, AreRefusedSoonIfTheirRowsHaveNoEnd)
{
  writeEndlessBag();
  const auto begin = Clock::now();
  const Contents contents = contentsOf(path());
  EXPECT_THAT(contents.fatal, EndsWith("the database is damaged"));
  EXPECT_LT(secondsSince(begin), 20.) << "a second or so on an idle machine";
}

TEST_F(HostileTrees, TakeLittleDisk)
{
  writeEndlessBag();
  const auto isRefused = [this] { return !contentsOf(path()).fatal.empty(); };
  EXPECT_EXIT(runLimited(enoughMemory, 64 * mebibyte, isRefused), testing::ExitedWithCode(0), "");
}

TEST_F(HostileTrees, CanBeInterrupted)
{
  writeEndlessBag();
  int asked = 0;
  const KV::recordings::InterruptionCheck check([&asked] {
    if (++asked == 50)
      throw Ended();
  });
  EXPECT_THROW(contentsOf(path()), Ended);
  EXPECT_EQ(50, asked);
}

TEST_F(HostileBags, AreNoPipes)
{
  ASSERT_EQ(0, mkfifo(path().c_str(), 0600));
  EXPECT_EQ(path() + ": is no regular file, which the files of a bag must be", contentsOf(path(), "rosbag2").fatal);
  folder.write("metadata.yaml", "");
  EXPECT_EQ(path() + ": is no regular file, which the files of a bag must be", contentsOf(folder.path()).fatal);
}

TEST_F(HostileBags, AreNotEmptyFiles)
{
  folder.write("bag.db3", "");
  EXPECT_EQ(path() + ": the file is empty", contentsOf(path(), "rosbag2").fatal);
}

TEST_F(HostileBags, AreUnpackedInProportionToTheirSizeOnly)
{
  const std::string packed = folder.writeCompressed("bag.db3.gz", std::string(100 * mebibyte, '\0'));
  const std::size_t most = (100 * std::filesystem::file_size(packed) + 64 * mebibyte) / mebibyte;
  ASSERT_LT(most, 100u);
  EXPECT_EQ(packed + ": unpacks to more than " + std::to_string(most) +
                " MiB, which is 100 times its size and 64 MiB: if you trust it, unpack it yourself",
            contentsOf(packed, "rosbag2").fatal);
}

TEST_F(HostileBags, CanBeInterruptedWhileTheyAreUnpacked)
{
  const std::string packed = folder.writeCompressed("bag.db3.gz", std::string(50 * mebibyte, '\0'));
  const KV::recordings::InterruptionCheck check([] { throw Ended(); });
  EXPECT_THROW(contentsOf(packed, "rosbag2"), Ended);
}

TEST_F(HostileBags, ReadTheJournalAndLeaveNothingBesideIt)
{
  goodBag().run("PRAGMA journal_mode = WAL");
  bag().add(1., "/tf", tfMessage({faceFrame("a", {0., 0., 2.})}));
  const TemporaryFolder copied;
  const auto copy = [&](const std::string& name) { std::filesystem::copy_file(folder.path(name), copied.path(name)); };
  copy("bag.db3");
  copy("bag.db3-wal");

  const Contents contents = contentsOf(copied.path("bag.db3"));

  EXPECT_EQ("", contents.fatal);
  EXPECT_EQ(2u, contents.entries.size()) << "the second one is in the journal";
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(copied.path()))
    files.insert(entry.path().filename().string());
  EXPECT_EQ((std::set<std::string>{"bag.db3", "bag.db3-wal"}), files);
}

TEST_F(HostileBags, AreRefusedIfTheLastPageIsNotWhole)
{
  goodBag();
  EXPECT_EQ("", read().fatal);
  std::ofstream(path(), std::ios::binary | std::ios::app) << "part of a page";
  EXPECT_EQ(path() + ": ends too early: the file was cut", read().fatal);
}

TEST_F(HostileBags, AreRefusedIfTheKeyOfATopicIsNoNumber)
{
  goodBag().run("DROP TABLE topics");
  bag().run("CREATE TABLE topics(id TEXT, name TEXT, type TEXT, serialization_format TEXT)");
  bag().run("INSERT INTO topics VALUES ('first', '/tf', 'tf2_msgs/msg/TFMessage', 'cdr')");
  EXPECT_EQ(path() + ": a topic has no whole number as its key", read().fatal);
}

TEST_F(HostileBags, AreRefusedIfTheyHaveTooManyTopics)
{
  constexpr std::size_t most = KV::recordings::limits::mostTopics;
  for (const std::size_t count : {most, most + 1})
  {
    std::filesystem::remove(path());
    goodBag().run("WITH RECURSIVE n(i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(count) +
                  ") INSERT INTO topics SELECT i, '/t' || i, 'x', 'cdr', '' FROM n");
    EXPECT_EQ(count > most ? path() + ": has more than 10000 topics" : "", read().fatal);
  }
}

}  // namespace
