#include <skeigiot/session/studyresults.hpp>

#include "support/thrown.hpp"
#include "writtenresults.hpp"

#include <skeigiot/recordings/error.hpp>

#include <gmock/gmock.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using KV::recordings::Error;
using KV::session::StudyResults;
using support::textThrownBy;
using ::testing::ElementsAre;

std::string csvOf(const StudyResults& results, const std::string& table)
{
  std::ostringstream csv;
  results.writeCsv(table, csv);
  return csv.str();
}

TEST(StudyResults, NameTheirTables)
{
  EXPECT_THAT(StudyResults::tables(), ElementsAre("sessions", "recordings", "persons", "summaries", "updates", "forces",
                                                  "warnings", "notes", "factors", "options", "study"));
}

TEST(StudyResults, WriteATableInTheOrderOfItsKey)
{
  const WrittenResults written;
  written.run(
      "INSERT INTO warnings VALUES ('p02', 1, 'library', 'a \"word\", and\nanother'), ('p01', 2, 'recording', ''), "
      "('p01', 1, 'recording', NULL)");
  EXPECT_EQ(
      "session,number,kind,text\n"
      "p01,1,recording,\n"
      "p01,2,recording,\n"
      "p02,1,library,\"a \"\"word\"\", and\nanother\"\n",
      csvOf(StudyResults({written.path()}), "warnings"));
}

TEST(StudyResults, WriteNumbersThatReadBackTheSame)
{
  const WrittenResults written;
  written.run("INSERT INTO forces VALUES ('p01', 1, 2, 3, 0.1, 'valence', 'smile', 0.10000000149011612, NULL, -1, 0)");
  EXPECT_EQ(
      "session,person,number,force,time,quantity,source,target,weight,before,after\n"
      "p01,1,2,3,0.1,valence,smile,0.1,,-1,0\n",
      csvOf(StudyResults({written.path()}), "forces"))
      << "those of single precision have its digits";
}

TEST(StudyResults, RefuseATableThatDoesNotExist)
{
  const WrittenResults written;
  EXPECT_EQ(
      "there is no table 'guesses'; expected one of sessions, recordings, persons, summaries, updates, forces, "
      "warnings, notes, factors, options, study",
      textThrownBy<std::invalid_argument>([&] { csvOf(StudyResults({written.path()}), "guesses"); }));
}

TEST(StudyResults, ReadSeveralFilesAsOne)
{
  const WrittenResults one;
  one.run("INSERT INTO options VALUES ('rest', 'none')");
  one.add("p02", "hello", "0.5");
  const WrittenResults other;
  other.run("INSERT INTO options VALUES ('rest', 'none')");
  other.add("p01", "hello", "NULL");
  const StudyResults both({one.path(), other.path()});
  EXPECT_EQ("option,value\nrest,none\n", csvOf(both, "options")) << "the same in both, and written once";
  EXPECT_EQ("session,person,name,participant,role,updates\np01/hello,1,,p01,,1\np02/hello,1,,p02,,1\n",
            csvOf(both, "persons"));
}

TEST(StudyResults, RefuseFilesThatCannotBeReadAsOne)
{
  const WrittenResults one;
  one.add("p01", "hello", "0.5");
  const WrittenResults same;
  same.add("p01", "hello", "0.5");
  EXPECT_EQ(same.path() +
                ": has the session 'p01/hello', which another result file has, too: name files of different "
                "shards only",
            textThrownBy<Error>([&] {
              StudyResults({one.path(), same.path()});
            }));
  const WrittenResults differing;
  differing.run("INSERT INTO options VALUES ('rest', 'none')");
  EXPECT_EQ(differing.path() + ": rest: these results were made with rest = none, but the others without rest",
            textThrownBy<Error>([&] {
              StudyResults({one.path(), differing.path()});
            }));
  EXPECT_EQ(one.path() + ": rest: these results were made without rest, but the others with rest = none",
            textThrownBy<Error>([&] {
              StudyResults({differing.path(), one.path()});
            }));
}

TEST(StudyResults, RefuseFilesThatAreNoResults)
{
  EXPECT_EQ("expected a result file", textThrownBy<std::invalid_argument>([] { StudyResults({}); }));
  const TemporaryFolder folder;
  EXPECT_EQ(folder.path("gone.sqlite") + ": there is no such file",
            textThrownBy<Error>([&] { StudyResults({folder.path("gone.sqlite")}); }));
  folder.write("empty.sqlite", "");
  EXPECT_EQ(folder.path("empty.sqlite") + ": is empty, not a result file of a study",
            textThrownBy<Error>([&] { StudyResults({folder.path("empty.sqlite")}); }));
}

struct Harm
{
  const char* name;
  const char* change;
  const char* error;
};

class HarmfulResults : public ::testing::TestWithParam<Harm>
{};

TEST_P(HarmfulResults, AreRefused)
{
  const WrittenResults written;
  written.run(GetParam().change);
  const WrittenResults good;
  const std::string error = written.path() + ": " + GetParam().error;
  EXPECT_EQ(error, textThrownBy<Error>([&] { StudyResults({written.path()}); }));
  EXPECT_EQ(error, textThrownBy<Error>([&] { StudyResults({good.path(), written.path()}); }));
}

const char* const otherColumns = "the table 'notes' has other columns than in a result file";

INSTANTIATE_TEST_SUITE_P(
    With, HarmfulResults,
    ::testing::Values(
        Harm{"AnotherProgram", "PRAGMA application_id = 7",
             "is a database of another program, not a result file of a study"},
        Harm{"AnotherLayout", "PRAGMA user_version = 99", "has layout 99 of result files; expected 1"},
        Harm{"AView", "DROP TABLE notes; CREATE VIEW notes AS SELECT 1",
             "has the view, trigger or virtual table 'notes': a result file has tables and indices only"},
        Harm{"ATrigger", "CREATE TRIGGER ring AFTER INSERT ON notes BEGIN DELETE FROM notes; END",
             "has the view, trigger or virtual table 'ring': a result file has tables and indices only"},
        Harm{"NoTable", "DROP TABLE notes", otherColumns},
        Harm{"AColumnLess", "ALTER TABLE notes DROP COLUMN text", otherColumns},
        Harm{"AColumnMore", "ALTER TABLE notes ADD COLUMN more TEXT", otherColumns},
        Harm{"AColumnOfAnotherName", "ALTER TABLE notes RENAME COLUMN text TO words", otherColumns},
        Harm{"AColumnOfAnotherType",
             "DROP TABLE notes; CREATE TABLE notes (session TEXT, number TEXT, kind TEXT, text TEXT)", otherColumns},
        Harm{"AComputedColumn",
             "DROP TABLE notes; CREATE TABLE notes (session TEXT, number INTEGER, kind TEXT, text TEXT AS ('a'))",
             otherColumns}),
    [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
