#include <skeigiot/session/studyrun.hpp>

#include "study/filedigest.hpp"
#include "study/resultschema.hpp"
#include "studyfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/session/boundary.hpp>

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;
namespace session = KV::session;

const std::string head = "time,person,reading,value\n";
const std::string touches = head + "0,1,touchEmotion,1\n0.5,1,touchEmotion,1\n1,1,touchEmotion,1\n";
const std::string faces = "[[files]]\npattern = \"{participant}/{condition}/face.csv\"\n";

class StudyRun : public ::testing::Test
{
protected:
  /// Runs the study with this text.
  session::StudyOutcome run(const std::string& text, const session::StudyWork& work = {})
  {
    const session::Study study = folder.study(text);
    return session::runStudy(study, session::planStudy(study), target, work);
  }

  std::string rows(const std::string& query) const { return rowsOf(target.results, query); }

  /// Returns all rows of all tables, except the times of files.
  std::string everything() const
  {
    std::string text;
    for (const session::ResultTable& table : session::resultTables())
    {
      std::string columns;
      for (const session::ResultColumn& column : table.columns)
        if (column.name != "modified")
          columns += (columns.empty() ? "\"" : ", \"") + column.name + "\"";
      text += table.name + "\n" + rows("SELECT " + columns + " FROM " + table.name + " ORDER BY " + table.key);
    }
    return text;
  }

  StudyFolder folder;
  session::StudyTarget target{folder.path("results.sqlite"), "1.2.3", {}, false};
};

TEST_F(StudyRun, NotesEachSessionWithItsFilesAndFactors)
{
  folder.add("p01/hello/left/face.csv", touches);
  folder.add("p01/hello/left/coding.csv", "start,end,value\n0,0.5,positive\n");
  const session::StudyOutcome outcome =
      run("[[files]]\npattern = \"{participant}/{condition}/{seat}/face.csv\"\noffset = 0.25\n"
          "[[labels]]\npattern = \"{participant}/{condition}/{seat}/coding.csv\"\noffset = 0.5\n");
  EXPECT_EQ(1U, outcome.played);
  EXPECT_EQ(0U, outcome.unchanged + outcome.removed + outcome.leftOut);
  EXPECT_THAT(outcome.failed, IsEmpty());
  EXPECT_EQ("p01/hello/left|p01|hello|complete||1.0|0|1|0|0\n",
            rows("SELECT session, participant, condition, status, error, length, dated, persons, warnings, bad_lines "
                 "FROM sessions"));
  EXPECT_EQ("p01/hello/left|1|recording|p01/hello/left/face.csv|0.25|tidy|" + std::to_string(touches.size()) + "|" +
                session::hexSha256(touches) +
                "\n"
                "p01/hello/left|2|labels|p01/hello/left/coding.csv|0.5||31|" +
                session::hexSha256("start,end,value\n0,0.5,positive\n") + "\n",
            rows("SELECT session, number, kind, path, offset, format, bytes, sha256 FROM recordings ORDER BY number"));
  EXPECT_EQ("p01/hello/left|seat|left\n", rows("SELECT * FROM factors"));
  EXPECT_EQ("0\n", rows("SELECT count(*) FROM recordings WHERE modified < 1600000000000000000"))
      << "times of change in nanoseconds since 1970";
}

TEST_F(StudyRun, NotesTheStudyAndItsOptions)
{
  folder.add("p01/hello/face.csv", touches);
  folder.add("mine.json", "{}");
  run("name = \"greetings\"\n" + faces +
      "[results]\nforces = true\n[options]\nrest = \"none\"\nmapping = \"mine.json\"\n");
  EXPECT_EQ("name|greetings\nversion|1.2.3\n", rows("SELECT * FROM study ORDER BY name"));
  EXPECT_EQ(
      "forces|true\nmapping|mine.json\nmapping-sha256|" + session::hexSha256("{}") + "\nrest|none\nupdates|false\n",
      rows("SELECT * FROM options ORDER BY option"));
}

TEST_F(StudyRun, SummarisesEachPersonOverEachScope)
{
  folder.add("p01/hello/face.csv", touches + "1.5,2,touchEmotion,-1\n2,2,touchEmotion,-1\n");
  folder.add("p01/hello/coding.csv", "start,end,value\n0,0.5,positive\n");
  run(faces +
      "[[labels]]\npattern = \"{participant}/{condition}/coding.csv\"\n"
      "[[scopes]]\nname = \"greeting\"\nfrom = 0.5\nto = 1\n"
      "[[scopes]]\nname = \"rest\"\nfrom = 1\n"
      "[[persons]]\nnumber = 2\nrole = \"parent\"\nparticipant = \"a7\"\n");
  EXPECT_EQ("p01/hello|1||p01||3\np01/hello|2||a7|parent|2\n", rows("SELECT * FROM persons ORDER BY person"));
  EXPECT_EQ("1|whole recording\n1|greeting\n1|rest\n1|positive\n2|whole recording\n2|greeting\n2|rest\n2|positive\n",
            rows("SELECT person, scope FROM summaries ORDER BY person, CASE scope WHEN 'whole recording' THEN 0 "
                 "WHEN 'greeting' THEN 1 WHEN 'rest' THEN 2 ELSE 3 END"));
  EXPECT_EQ("1|0.0|2.0\n2|0.0|2.0\n",
            rows("SELECT person, start, stop FROM summaries WHERE scope = 'whole recording' ORDER BY person"));
  EXPECT_EQ("1|1\n2|0\n",
            rows("SELECT person, valence > 0 FROM summaries WHERE scope = 'whole recording' ORDER BY person"));
}

TEST_F(StudyRun, KnowsAPersonByTheNameInTheRecording)
{
  folder.add("p01/hello/face.jsonl",
             R"({"time":1577836800000000000,"person":1,"name":"anna","observation":{"touchEmotion":{"value":1}}})");
  run("[[files]]\npattern = \"{participant}/{condition}/face.jsonl\"\n" +
      std::string("[[persons]]\nname = \"anna\"\nrole = \"child\"\n"));
  EXPECT_EQ("1|anna|p01|child\n", rows("SELECT person, name, participant, role FROM persons"));
}

TEST_F(StudyRun, KeepsUpdatesAndForcesWhereTheStudyWantsThem)
{
  folder.add("p01/hello/face.csv", touches);
  run(faces);
  EXPECT_EQ("0|0\n", rows("SELECT (SELECT count(*) FROM updates), (SELECT count(*) FROM forces)"));
  target.anew = true;
  run(faces + "[results]\nupdates = true\nforces = true\n[options]\ncycle = \"recorded\"\n");
  EXPECT_EQ("1|1|0.0\n1|2|0.5\n1|3|1.0\n", rows("SELECT person, number, time FROM updates ORDER BY number"));
  EXPECT_EQ("1|1|touch\n2|2|touch\n3|3|touch\n",
            rows("SELECT number, count(*), source FROM forces WHERE quantity = 'valence' AND source = 'touch' GROUP BY "
                 "number, source ORDER BY number"))
      << "the memory has one touch more each time";
  EXPECT_EQ("0\n", rows("SELECT count(*) FROM forces WHERE time < 0 OR time > 1 OR session <> 'p01/hello'"));
  EXPECT_EQ(rows("SELECT valence FROM updates WHERE number = 3"),
            rows("SELECT after FROM forces WHERE number = 3 AND quantity = 'valence' ORDER BY force DESC LIMIT 1"))
      << "the last force of an update leaves what the update shows";
}

TEST_F(StudyRun, KeepsTheClockOfUpdatesOfRecordingsWithDates)
{
  folder.add("p01/hello/face.csv",
             "{\"time\":1577836800000000000,\"person\":1,\"observation\":{}}\n"
             "{\"time\":1577836800500000000,\"person\":1,\"observation\":{}}\n");
  folder.add("p02/hello/face.csv", touches);
  run(faces + "[results]\nupdates = true\n[options]\ncycle = \"recorded\"\n");
  EXPECT_EQ(
      "p01/hello|1|0.0|1577836800.0\np01/hello|2|0.5|1577836800.5\n"
      "p02/hello|1|0.0|-\np02/hello|2|0.5|-\np02/hello|3|1.0|-\n",
      rows("SELECT session, number, time, clock FROM updates ORDER BY session, number"));
}

TEST_F(StudyRun, KeepsWhatIsGoodBesideSessionsWithErrors)
{
  folder.add("p01/hello/face.csv", touches);
  folder.add("p02/hello/face.csv", head + "0,1,touchEmotion,1\n1,1,touchEmotion,1\n2,1,touchEmotion,wide\n");
  folder.add("p03/hello/face.csv", "nothing that is known\n");
  folder.add("p04/hello/face.csv", touches);
  folder.add("p05/hello/voice.csv", touches);
  folder.add("p06/hello/face.csv", touches);
  folder.add("p06/hello/coding.csv", "no labels\n");
  const session::StudyOutcome outcome =
      run(faces +
          "[[files]]\npattern = \"{participant}/{condition}/voice.csv\"\noptional = true\n"
          "[[labels]]\npattern = \"{participant}/{condition}/coding.csv\"\noptional = true\n"
          "[[sessions]]\nname = \"p04/hello\"\nleft-out = \"the camera fell\"\n");
  EXPECT_EQ(1U, outcome.played);
  EXPECT_EQ(1U, outcome.leftOut);
  EXPECT_EQ(
      "p01/hello|complete|1.0|0\np02/hello|cut short|1.0|0\np03/hello|failed|-|-\np04/hello|left out|-|-\n"
      "p05/hello|failed|-|-\np06/hello|failed|-|-\n",
      rows("SELECT session, status, length, dated FROM sessions ORDER BY session"));
  ASSERT_EQ(4U, outcome.failed.size());
  EXPECT_EQ("p02/hello", outcome.failed[0].first);
  EXPECT_THAT(outcome.failed[0].second, HasSubstr("p02/hello/face.csv:4: "));
  EXPECT_THAT(outcome.failed[1], Pair("p03/hello", HasSubstr("p03/hello/face.csv")));
  EXPECT_THAT(outcome.failed[2], Pair("p05/hello", "no file matches {participant}/{condition}/face.csv"));
  EXPECT_THAT(outcome.failed[3], Pair("p06/hello", HasSubstr("p06/hello/coding.csv")));
  for (const auto& [name, error] : outcome.failed)
  {
    EXPECT_THAT(error, ::testing::Not(HasSubstr(folder.path("")))) << "paths are those below the folder of the study";
    EXPECT_EQ(error + "\n", rows("SELECT error FROM sessions WHERE session = '" + name + "'"));
  }
  EXPECT_EQ("the camera fell\n", rows("SELECT error FROM sessions WHERE session = 'p04/hello'"));
  EXPECT_EQ("1\n", rows("SELECT count(*) FROM persons WHERE session = 'p02/hello'"))
      << "what was read before the error";
}

TEST_F(StudyRun, ListsWarningsAndNotesOfASession)
{
  folder.add("p01/hello/face.csv",
             head + "0,1,touchEmotion,1\n1,1,touchEmotion,wide\n2,1,touchEmotion,1\n3,1,distance,nan\n");
  folder.add("p01/hello/coding.csv", "start,end,value\n");
  run(faces + "[[labels]]\npattern = \"{participant}/{condition}/coding.csv\"\n[options]\nskip-bad = true\n");
  EXPECT_EQ("complete|1\n", rows("SELECT status, bad_lines FROM sessions"));
  EXPECT_EQ(rows("SELECT count(*) FROM warnings"), rows("SELECT warnings FROM sessions"));
  EXPECT_EQ("recording|p01/hello/coding.csv: has no label\n",
            rows("SELECT kind, text FROM warnings WHERE text LIKE '%coding%'"));
  EXPECT_EQ("1\n", rows("SELECT count(*) FROM warnings WHERE kind = 'bad lines' AND text LIKE '%face.csv:3: %'"));
  EXPECT_EQ("0\n", rows("SELECT count(*) FROM notes WHERE kind NOT IN ('read as', 'learned')"));
  EXPECT_NE("0\n", rows("SELECT count(*) FROM notes WHERE kind = 'read as'"));
}

TEST_F(StudyRun, ListsWarningsOfTheEstimate)
{
  folder.add("p01/hello/face.csv",
             "{\"time\":0,\"person\":1,\"observation\":{}}\n"
             "{\"time\":5000000000,\"person\":1,\"observation\":{\"voiceEmotion\":"
             "{\"time\":1000000000,\"joy\":{\"value\":1,\"confidence\":1}}}}\n");
  run(faces);
  EXPECT_EQ("p01/hello|1|library|kvmood.emotionalstate: Processing old observation from 4 s ago of Voice Emotion\n",
            rows("SELECT session, number, kind, text FROM warnings"));
  EXPECT_EQ("complete|1\n", rows("SELECT status, warnings FROM sessions"));
}

TEST_F(StudyRun, PlaysASessionOnceAsLongAsItsFilesAreTheSame)
{
  folder.add("p01/hello/face.csv", touches);
  folder.add("p02/hello/face.csv", touches);
  const std::string text = faces + "[[sessions]]\nname = \"p02/hello\"\nleft-out = \"too dark\"\n";
  run(text);
  const std::string before = everything();
  const session::StudyOutcome again = run(text);
  EXPECT_EQ(0U, again.played);
  EXPECT_EQ(1U, again.unchanged);
  EXPECT_EQ(1U, again.leftOut);
  EXPECT_EQ(before, everything());
}

TEST_F(StudyRun, NotesTheNewTimeOfAFileWithTheSameContents)
{
  folder.add("p01/hello/face.csv", touches);
  run(faces);
  const std::filesystem::path face = folder.path("p01/hello/face.csv");
  std::filesystem::last_write_time(face, std::filesystem::last_write_time(face) + std::chrono::seconds(5));
  const std::string before = rows("SELECT modified FROM recordings");
  EXPECT_EQ(1U, run(faces).unchanged);
  EXPECT_EQ(std::to_string(std::stoll(before) + 5000000000) + "\n", rows("SELECT modified FROM recordings"));
}

TEST_F(StudyRun, PlaysASessionAgainIfAnythingOfItChanged)
{
  const std::string labels = "[[labels]]\npattern = \"{participant}/{condition}/coding.csv\"\noptional = true\n";
  const std::string coding = "start,end,value\n0,0.5,positive\n";
  folder.add("p01/hello/face.csv", touches);
  folder.add("p01/hello/coding.csv", coding);
  run(faces + labels);
  const auto playsAgain = [this](const std::string& text) {
    const session::StudyOutcome outcome = run(text);
    return outcome.played == 1 && outcome.unchanged == 0 && run(text).unchanged == 1;
  };
  const auto later = [this](const std::string& name) {
    const std::filesystem::path path = folder.path(name);
    std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) + std::chrono::seconds(5));
  };

  folder.add("p01/hello/face.csv", head + "0,1,touchEmotion,1\n0.5,1,touchEmotion,1\n1,1,touchEmotion,-1\n");
  later("p01/hello/face.csv");
  EXPECT_TRUE(playsAgain(faces + labels)) << "other contents of the same size";
  folder.add("p01/hello/face.csv", touches + "1.5,1,touchEmotion,1\n");
  EXPECT_TRUE(playsAgain(faces + labels)) << "another size";
  folder.add("p01/hello/coding.csv", "start,end,value\n0,0.5,negative\n");
  later("p01/hello/coding.csv");
  EXPECT_TRUE(playsAgain(faces + labels)) << "other labels";
  EXPECT_TRUE(playsAgain(faces + labels + "[[scopes]]\nname = \"a\"\nfrom = 0\nto = 1\n")) << "another scope";
  EXPECT_TRUE(playsAgain(faces + labels + "[[scopes]]\nname = \"a\"\nfrom = 0\n")) << "a scope without an end";
  EXPECT_TRUE(playsAgain(faces + labels + "[[persons]]\nnumber = 1\nrole = \"child\"\n")) << "another role";
  EXPECT_TRUE(playsAgain(faces + labels + "[[persons]]\nname = \"anna\"\nrole = \"child\"\n")) << "another person";
  EXPECT_TRUE(playsAgain(faces + "offset = 0.5\n" + labels)) << "another offset";
  folder.remove("p01/hello/coding.csv");
  EXPECT_TRUE(playsAgain(faces + labels)) << "labels that are gone";
}

TEST_F(StudyRun, PlaysASessionWithAnErrorAgain)
{
  folder.add("p01/hello/face.csv", "nothing that is known\n");
  EXPECT_EQ(1U, run(faces).failed.size());
  EXPECT_EQ(1U, run(faces).failed.size());
  folder.add("p01/hello/face.csv", touches);
  const session::StudyOutcome mended = run(faces);
  EXPECT_EQ(1U, mended.played);
  EXPECT_THAT(mended.failed, IsEmpty());
}

TEST_F(StudyRun, SaysOfASessionThatWasCutShortThatItWasEachTime)
{
  folder.add("p01/hello/face.csv", head + "0,1,touchEmotion,1\n1,1,touchEmotion,wide\n");
  EXPECT_EQ(1U, run(faces).failed.size());
  const session::StudyOutcome again = run(faces);
  EXPECT_EQ(1U, again.unchanged) << "it would be cut short at the same line";
  EXPECT_EQ(1U, again.failed.size());
}

TEST_F(StudyRun, RemovesSessionsThatAreGone)
{
  folder.add("p01/hello/face.csv", touches);
  folder.add("p02/hello/face.csv", touches);
  run(faces);
  folder.remove("p02/hello/face.csv");
  EXPECT_EQ(1U, run(faces).removed);
  for (const session::ResultTable& table : session::resultTables())
    if (table.isOfSessions)
    {
      EXPECT_EQ("0\n", rows("SELECT count(*) FROM " + table.name + " WHERE session = 'p02/hello'")) << table.name;
    }
  EXPECT_EQ("p01/hello\n", rows("SELECT session FROM sessions"));
}

TEST_F(StudyRun, ForgetsOlderResultsIfItIsToRunAnew)
{
  folder.add("p01/hello/face.csv", touches);
  run(faces);
  target.version = "1.2.4";
  target.anew = true;
  EXPECT_EQ(1U, run(faces).played);
  EXPECT_EQ("1.2.4\n", rows("SELECT value FROM study WHERE name = 'version'"));
}

TEST_F(StudyRun, RefusesResultsThatWereMadeInAnotherWay)
{
  folder.add("p01/hello/face.csv", touches);
  run(faces);
  const std::string before = everything();
  const auto errorOf = [this](const std::string& text) {
    return support::textThrownBy<KV::recordings::Error>([&] { run(text); });
  };
  const std::string end = "; run the study anew, or write to another file";
  EXPECT_EQ(target.results + ": rest: these results were made without rest, but the others with rest = none" + end,
            errorOf(faces + "[options]\nrest = \"none\"\n"));
  EXPECT_EQ(target.results +
                ": updates: these results were made with updates = false, but the others with updates = true" + end,
            errorOf(faces + "[results]\nupdates = true\n"));
  target.version = "1.2.4";
  EXPECT_EQ(target.results +
                ": version: these results were made with version = 1.2.3, but the others with version = 1.2.4" + end,
            errorOf(faces));
  EXPECT_EQ(before, everything());
}

TEST_F(StudyRun, DoesNotTouchAFileOfSomebodyElse)
{
  folder.add("p01/hello/face.csv", touches);
  session::Database(target.results, session::Database::Mode::Write).run("CREATE TABLE theirs (a)");
  target.anew = true;
  EXPECT_EQ(target.results + ": is a database of another program, not a result file of a study",
            support::textThrownBy<KV::recordings::Error>([this] { run(faces); }));
  EXPECT_EQ("theirs\n", rows("SELECT name FROM sqlite_master"));
}

TEST_F(StudyRun, PlaysOnlyTheSessionsOfItsShard)
{
  const std::vector<std::string> names{"p01", "p02", "p03", "p04", "p05", "p06"};
  for (const std::string& name : names)
    folder.add(name + "/hello/face.csv", touches);
  target.shard = {1, 2};
  run(faces);
  std::string expected;
  for (const std::string& name : names)
    if (target.shard.has(name + "/hello"))
      expected += name + "/hello\n";
  EXPECT_EQ(expected, rows("SELECT session FROM sessions ORDER BY session"));
  target.shard = {2, 2};
  const session::StudyOutcome rest = run(faces);
  EXPECT_EQ(0U, rest.removed) << "the results of another shard stay";
  EXPECT_EQ("6\n", rows("SELECT count(*) FROM sessions"));
}

TEST_F(StudyRun, GivesTheSameResultsWithAnyNumberOfJobs)
{
  for (int i = 0; i < 9; ++i)
    folder.add("p" + std::to_string(i) + "/hello/face.csv", touches + std::to_string(i + 2) + ",1,touchEmotion,-1\n");
  const std::string text = faces + "[results]\nupdates = true\nforces = true\n";
  run(text);
  const std::string one = everything();
  target.anew = true;
  EXPECT_EQ(9U, run(text, {4, {}, {}}).played);
  EXPECT_EQ(one, everything());
}

TEST_F(StudyRun, SetsTheBoundariesOfTheStudyAndPutsTheOthersBack)
{
  const session::SavedBoundaries saved;
  folder.add("p01/hello/face.csv", touches);
  std::vector<float> before;
  for (const session::Boundary& boundary : session::boundaries())
    before.push_back(boundary.get());
  run(faces + "[options]\ncycle = \"recorded\"\n");
  const std::string usual = rows("SELECT verdict FROM summaries");
  target.anew = true;
  run(faces + "[options]\ncycle = \"recorded\"\nboundary-positive = 0.999\n");
  EXPECT_EQ("positive\n", usual);
  EXPECT_EQ("neutral\n", rows("SELECT verdict FROM summaries"));
  std::vector<float> after;
  for (const session::Boundary& boundary : session::boundaries())
    after.push_back(boundary.get());
  EXPECT_EQ(before, after);
}

TEST_F(StudyRun, RefusesABoundaryThatIsOutOfItsRange)
{
  folder.add("p01/hello/face.csv", touches);
  session::Study study = folder.study(faces);
  study.boundaries["boundary-positive"] = 7.f;
  EXPECT_THAT(support::textThrownBy<std::invalid_argument>(
                  [&] { session::runStudy(study, session::planStudy(study), target, {}); }),
              ::testing::StartsWith("boundary-positive: 7 does not lie "));
  EXPECT_FALSE(std::filesystem::exists(target.results));
}

TEST_F(StudyRun, PlaysTheFilesOfASessionAsOneRecording)
{
  folder.add("p01/hello/face.csv", touches);
  folder.add("p01/hello/voice.csv", head + "0.25,1,speaking,true\n2,2,speaking,true\n");
  run(faces +
      "[[files]]\npattern = \"{participant}/{condition}/voice.csv\"\noffset = 0.5\n"
      "[results]\nupdates = true\n[options]\ncycle = \"recorded\"\n");
  EXPECT_EQ("1|0.0\n1|0.5\n1|0.75\n1|1.0\n2|2.5\n", rows("SELECT person, time FROM updates WHERE seen ORDER BY time"));
}

TEST_F(StudyRun, NotesTheRoomAndWhatWasLearned)
{
  std::string calm = "frame,face_id,timestamp,confidence,success,AU04_r,AU12_r\n";
  for (int i = 0; i < 900; ++i)
    calm += std::to_string(i) + ",0," + std::to_string(i * 0.1) + ",0.95,1," + (i % 7 == 0 ? "1.1" : "1") + ",0.1\n";
  folder.add("p01/hello/face.csv", calm);
  folder.add("p02/hello/face.csv",
             "{\"time\":1577836800000000000,\"ambiance\":{\"activity\":0.5}}\n"
             "{\"time\":1577836800500000000,\"person\":1,\"observation\":{}}\n");
  run(faces);
  EXPECT_NE("0\n", rows("SELECT count(*) FROM notes WHERE session = 'p01/hello' AND kind = 'learned'"));
  EXPECT_EQ("1\n", rows("SELECT agitation > 0 FROM summaries WHERE session = 'p02/hello'"));
}

TEST_F(StudyRun, KeepsTheSessionsThatWereDoneBeforeItWasInterrupted)
{
  for (const char* const name : {"p01", "p02", "p03"})
    folder.add(std::string(name) + "/hello/face.csv", touches);
  struct Interruption : std::runtime_error
  {
    using std::runtime_error::runtime_error;
  };
  session::StudyWork work;
  work.check = [this] {
    if (std::filesystem::exists(target.results) && rows("SELECT count(*) FROM sqlite_master") != "0\n" &&
        rows("SELECT count(*) FROM sessions") == "1\n")
      throw Interruption("enough");
  };
  EXPECT_THROW(run(faces, work), Interruption);
  EXPECT_EQ("p01/hello|complete\n", rows("SELECT session, status FROM sessions"));
  const session::StudyOutcome rest = run(faces);
  EXPECT_EQ(1U, rest.unchanged);
  EXPECT_EQ(2U, rest.played);
}

TEST_F(StudyRun, SaysHowFarItIsWhileItWorks)
{
  folder.add("p01/hello/face.csv", touches);
  const std::thread::id caller = std::this_thread::get_id();
  std::promise<void> said;
  std::shared_future<void> isSaid = said.get_future().share();
  std::size_t calls = 0;
  session::StudyWork work;
  work.check = [&] {
    if (std::this_thread::get_id() != caller)
      isSaid.wait();
  };
  work.progress = [&](std::size_t done, std::size_t all, double share) {
    EXPECT_EQ(0U, done);
    EXPECT_EQ(1U, all);
    EXPECT_EQ(0., share);
    if (++calls == 1)
      said.set_value();
  };
  EXPECT_EQ(1U, run(faces, work).played);
  EXPECT_LE(1U, calls);
}

}  // namespace
