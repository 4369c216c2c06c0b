#include "study/database.hpp"

#include "studyfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace
{

using namespace replaytests;
using KV::recordings::Error;
using KV::session::Database;
using KV::session::Statement;
using KV::session::Transaction;
using support::textThrownBy;
using Mode = Database::Mode;

const char* const endless = "WITH RECURSIVE r(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM r) SELECT count(*) FROM r";

class StudyDatabase : public ::testing::Test
{
protected:
  StudyFolder folder;
  const std::string path = folder.path("results.sqlite");
};

TEST_F(StudyDatabase, KeepsValuesOfEachKind)
{
  Database database(path, Mode::Write);
  database.run("CREATE TABLE t (a, b, c, d, e)");
  Statement(database, "INSERT INTO t VALUES (?, ?, ?, ?, ?)")
      .bind(std::numeric_limits<std::int64_t>::min(), 0.1, std::string("a\0b", 3), nullptr, std::nan(""))
      .run();
  Statement rows(database, "SELECT a, b, c, d, e FROM t");
  ASSERT_TRUE(rows.step());
  EXPECT_EQ(5, rows.columns());
  EXPECT_EQ("b", rows.nameOf(1));
  EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), rows.whole(0));
  EXPECT_EQ(0.1, rows.number(1));
  EXPECT_EQ(std::string("a\0b", 3), rows.text(2));
  EXPECT_TRUE(rows.isNull(3));
  EXPECT_EQ(0, rows.whole(3));
  EXPECT_EQ(0., rows.number(3));
  EXPECT_EQ("", rows.text(3));
  EXPECT_TRUE(rows.isNull(4)) << "what is not a number is missing";
  EXPECT_FALSE(rows.step());
}

TEST_F(StudyDatabase, KeepsAnEmptyTextApartFromAMissingOne)
{
  Database database(path, Mode::Write);
  EXPECT_EQ(0, database.whole("SELECT '' IS NULL"));
  Statement value(database, "SELECT ? IS NULL, typeof(?1)");
  value.bind(std::string_view());
  ASSERT_TRUE(value.step());
  EXPECT_EQ(0, value.whole(0));
  EXPECT_EQ("text", value.text(1));
}

TEST_F(StudyDatabase, ReturnsTheFirstColumnOfTheFirstRow)
{
  Database database("", Mode::Memory);
  EXPECT_EQ(7, database.whole("SELECT 7, 8 UNION ALL SELECT 9, 10"));
  EXPECT_EQ(0, database.whole("SELECT 7 WHERE 0")) << "no row at all";
}

TEST_F(StudyDatabase, RefusesWhatIsNoDatabase)
{
  const std::string gone = folder.path("gone.sqlite");
  EXPECT_EQ(gone + ": cannot be opened: unable to open database file",
            textThrownBy<Error>([&] { Database(gone, Mode::Read); }));
  folder.add("notes.txt", std::string(4096, 'a'));
  EXPECT_EQ(folder.path("notes.txt") + ": is no result file, or is damaged: file is not a database",
            textThrownBy<Error>([this] {
              Database(folder.path("notes.txt"), Mode::Read).whole("SELECT count(*) FROM sqlite_master");
            }));
}

TEST_F(StudyDatabase, SaysWhichStatementFails)
{
  Database database(path, Mode::Write);
  EXPECT_EQ(path + ": no such table: t",
            textThrownBy<std::runtime_error>([&] { Statement(database, "SELECT * FROM t"); }));
  EXPECT_EQ(path + ": near \"NONSENSE\": syntax error",
            textThrownBy<std::runtime_error>([&] { database.run("NONSENSE"); }));
  database.run("CREATE TABLE t (a PRIMARY KEY); INSERT INTO t VALUES (1)");
  Statement insertion(database, "INSERT INTO t VALUES (1)");
  EXPECT_EQ(path + ": UNIQUE constraint failed: t.a", textThrownBy<std::runtime_error>([&] { insertion.run(); }));
}

TEST_F(StudyDatabase, DoesNotWriteToAFileThatIsRead)
{
  Database(path, Mode::Write).run("CREATE TABLE t (a)");
  Database database(path, Mode::Read);
  EXPECT_EQ(path + ": attempt to write a readonly database",
            textThrownBy<std::runtime_error>([&] { database.run("INSERT INTO t VALUES (1)"); }));
}

TEST_F(StudyDatabase, RunsNoViewAndNoTriggerOfAFile)
{
  Database database(path, Mode::Write);
  database.run(
      "CREATE TABLE t (a); CREATE TABLE u (a); CREATE VIEW v AS SELECT 1;"
      "CREATE TRIGGER g AFTER INSERT ON t BEGIN INSERT INTO u VALUES (1); END; INSERT INTO t VALUES (1)");
  EXPECT_EQ(0, database.whole("SELECT count(*) FROM u"));
  EXPECT_EQ(path + ": access to view \"v\" prohibited",
            textThrownBy<std::runtime_error>([&] { database.whole("SELECT * FROM v"); }));
}

TEST_F(StudyDatabase, LimitsTextsOfAFileThatIsRead)
{
  {
    Database database(path, Mode::Write);
    database.run("CREATE TABLE t (a); INSERT INTO t VALUES (zeroblob(16777217)), (zeroblob(16777215))");
    EXPECT_EQ(16777217, database.whole("SELECT length(a) FROM t")) << "a file of this program has no limits";
  }
  Database database(path, Mode::Read);
  EXPECT_EQ(path + ": has a text of more than 16 MiB, so it is no result file",
            textThrownBy<Error>([&] { database.whole("SELECT a || '' FROM t"); }));
}

TEST_F(StudyDatabase, LimitsTheStepsOfAFileThatIsRead)
{
  Database(path, Mode::Write).run("CREATE TABLE t (a)");
  Database database(path, Mode::Read);
  EXPECT_EQ(path + ": takes more steps to read than a file of its size can need: it is damaged",
            textThrownBy<Error>([&] { database.whole(endless); }));
  EXPECT_EQ(0, database.whole("SELECT count(*) FROM t")) << "the steps of each statement are counted anew";
}

TEST_F(StudyDatabase, CanBeInterrupted)
{
  struct Interruption : std::runtime_error
  {
    using std::runtime_error::runtime_error;
  };
  Database database(path, Mode::Write);
  const KV::recordings::InterruptionCheck check([] { throw Interruption("enough"); });
  EXPECT_EQ("enough", textThrownBy<Interruption>([&] { database.whole(endless); }));
}

TEST_F(StudyDatabase, RollsATransactionBackUnlessItIsCommitted)
{
  Database database(path, Mode::Write);
  database.run("CREATE TABLE t (a)");
  {
    const Transaction forgotten(database);
    database.run("INSERT INTO t VALUES (1)");
  }
  EXPECT_EQ(0, database.whole("SELECT count(*) FROM t"));
  {
    Transaction transaction(database);
    database.run("INSERT INTO t VALUES (1)");
    transaction.commit();
  }
  EXPECT_EQ(1, database.whole("SELECT count(*) FROM t"));
  {
    const Transaction ended(database);
    database.run("COMMIT");
  }
  EXPECT_EQ(1, database.whole("SELECT count(*) FROM t")) << "there is nothing left to roll back";
}

}  // namespace
