#include "faults/command/smallrecording.hpp"
#include "faults/repeatedfailure.hpp"

#include "study/database.hpp"
#include "study/resultschema.hpp"
#include "study/sessionrows.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/studyresults.hpp>

#include <ko/log.hpp>

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

namespace
{

using KV::session::Database;
using KV::session::SessionRows;
using KV::session::StudyResults;
using replaytests::TemporaryFolder;

class ResultsWithoutMemory : public ::testing::Test
{
protected:
  ResultsWithoutMemory()
  {
    Database database(results, Database::Mode::Write);
    KV::session::makeResultTables(database);
  }

  void playInto(SessionRows& rows, const std::string& name) const
  {
    KV::session::NotedSession noted;
    noted.status = "complete";
    noted.inputs = {{"recording", "a path that is long enough to need memory.jsonl", {}, "jsonl", {}}};
    noted.outcome = KV::session::Player({}).play([this] { return KV::recordings::openRecording(recording, "", {}); },
                                                 {&rows.begin()});
    KV::session::StudySession session;
    session.name = name;
    session.participant = "a participant with a long name";
    session.factors = {{"condition", "friendly"}};
    rows.write(session, noted);
  }

  /// Returns the tables as CSV, by their names.
  std::map<std::string, std::string> tables() const
  {
    std::map<std::string, std::string> all;
    const StudyResults opened({results});
    for (const std::string& table : StudyResults::tables())
    {
      std::ostringstream stream;
      stream.exceptions(std::ios::badbit);  // else the stream would hide the shortage
      opened.writeCsv(table, stream);
      all[table] = stream.str();
    }
    return all;
  }

  const TemporaryFolder folder;
  const std::string recording = folder.write("recording", faults::recordingOf(5));
  const std::string results = folder.path("results.sqlite");
};

TEST_F(ResultsWithoutMemory, HaveASessionWholeOrAsItWas)
{
  {
    SessionRows rows(results, true, true);
    playInto(rows, "first");
  }
  const std::map<std::string, std::string> before = tables();
  {
    SessionRows rows(results, true, true);
    playInto(rows, "second");
  }
  const std::map<std::string, std::string> whole = tables();
  ASSERT_NE(before.at("updates"), whole.at("updates"));

  const std::size_t thrown = faults::failRepeatedly(
      [this] {
        Database database(results, Database::Mode::Write);
        KV::session::removeSession(database, "second");
        return 0;
      },
      [this](int) {
        SessionRows rows(results, true, true);
        playInto(rows, "second");
      },
      [&](int, bool threw) {
        // a log handler that was removed without memory is freed when the handlers change next
        ko::log::removeHandler(ko::log::addHandler([](const ko::log::Record&) {}));
        const std::map<std::string, std::string> now = tables();
        EXPECT_TRUE(now == whole || (threw && now == before));
      });
  EXPECT_GT(thrown, 50U);
  EXPECT_EQ(whole, tables());
  EXPECT_EQ((std::set<std::string>{"recording", "results.sqlite"}), folder.names());
}

TEST_F(ResultsWithoutMemory, AreExportedWholeOrNotAtAll)
{
  {
    SessionRows rows(results, true, true);
    playInto(rows, "first session with a name that is long");
  }
  const std::map<std::string, std::string> whole = tables();
  using Tables = std::map<std::string, std::string>;
  const std::size_t thrown =
      faults::failRepeatedly([] { return Tables(); }, [this](Tables& read) { read = tables(); },
                             [&whole](const Tables& read, bool threw) { EXPECT_TRUE(threw || read == whole); });
  EXPECT_GT(thrown, 50U);
}

}  // namespace
