#include "commands/replayrun.hpp"
#include "libsession/entries.hpp"
#include "libsession/scriptedreader.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/session/outputstream.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Step = ScriptedReader::Step;
using Names = std::set<std::string>;

/// Replays scripted recordings, named "face.csv", "second.csv" and so on; a file without a script is missing.
class ReplayTest : public ::testing::Test
{
protected:
  /// Replays each script in a session of its own.
  KV::tools::ExitStatus replay()
  {
    for (const auto& [path, steps] : scripts)
      options.sessions.push_back({{{path, {}}}});
    return replayAsPlanned();
  }

  KV::tools::ExitStatus replayAsPlanned()
  {
    const KV::tools::ReplaySurroundings surroundings{
        [this](const std::string& path) { return open(path); }, output, 100, KV::tools::Style(false), errors, false};
    return KV::tools::replay(options, surroundings);
  }

  std::unique_ptr<KV::recordings::Reader> open(const std::string& path)
  {
    const std::vector<Step>& steps = scripts.at(path);
    if (steps.empty())
      throw KV::recordings::Error({path, 0, ""}, "cannot be opened");
    return std::make_unique<ScriptedReader>(steps, warnings);
  }

  static Step seen(double sinceStart, std::int32_t person = 0)
  {
    return ScriptedReader::entry(seenAt(sinceStart, person));
  }

  static std::size_t linesOf(const std::string& text)
  {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }

  TemporaryFolder folder;
  KV::tools::ReplayOptions options;
  std::map<std::string, std::vector<Step>> scripts;
  std::vector<std::string> warnings;
  std::ostringstream output;
  std::ostringstream errors;
};

TEST_F(ReplayTest, ShowsTheCausesOfEachRowOnRequest)
{
  scripts["face.csv"] = {seen(0.)};
  replay();
  const std::string plain = output.str();
  EXPECT_THAT(plain, Not(HasSubstr("facial expressions")));

  output.str("");
  options.sessions.clear();
  options.explain = true;
  replay();
  EXPECT_THAT(output.str(), HasSubstr("\n        valence: facial expressions +"));
  EXPECT_THAT(output.str(), HasSubstr("; attention: gaze and head +"));
  EXPECT_EQ(linesOf(plain) + 1, linesOf(output.str())) << "one row, and all else as before";
}

TEST_F(ReplayTest, BeginsWithTheResultAndALineOnHowItWasReadThenEachPersonWithASummary)
{
  scripts["face.csv"] = {seen(0., 2), seen(0.5, 7), seen(1., 2)};
  EXPECT_EQ(KV::tools::Success, replay());
  const std::string text = output.str();
  EXPECT_THAT(text, testing::ContainsRegex("face\\.csv\n(Person|How person) 2 [^\n]*"));
  EXPECT_THAT(text,
              HasSubstr("\nRead as: signs as scripted, rate as scripted; 'skeigiot inspect' says more.\n\nPerson 2\n"));
  EXPECT_THAT(text, HasSubstr("  span       0:00.0 to 0:01.0, 2 updates"));
  EXPECT_THAT(text, HasSubstr("\nPerson 7\n"));
  EXPECT_THAT(text, HasSubstr("'whole recording' (0:00.0 to 0:01.0, 1 update)"));
  EXPECT_THAT(text, HasSubstr("\nTrust\n  seen in 100 % of steps"));
  EXPECT_EQ("", errors.str());
}

TEST_F(ReplayTest, SaysIfNobodyWasSeen)
{
  scripts["face.csv"] = {ScriptedReader::entry(notSeenAt(0., 1))};
  EXPECT_EQ(KV::tools::Success, replay());
  EXPECT_THAT(output.str(), HasSubstr("Nobody was seen in this recording.\n"));
}

TEST_F(ReplayTest, ShowsWarningsOfTheReader)
{
  scripts["face.csv"] = {seen(0.)};
  warnings = {"the rate is odd"};
  replay();
  EXPECT_THAT(output.str(), HasSubstr("\nwarning: the rate is odd\n"));
}

TEST_F(ReplayTest, CountsWarningsBeyondTheFirstTen)
{
  scripts["face.csv"] = {seen(0.)};
  warnings.assign(25, "the rate is odd");
  replay();
  EXPECT_THAT(output.str(), HasSubstr("\nwarning: 15 more warnings\n"));
}

TEST_F(ReplayTest, ShowsTheAmbianceIfItWasRecorded)
{
  KV::recordings::Step entry = seenAt(0., 1);
  entry.ambianceActivity = 0.05f;
  scripts["face.csv"] = {ScriptedReader::entry(entry)};
  replay();
  EXPECT_THAT(output.str(), HasSubstr("\nRoom\n  ambiance   agitation 0.10"));
}

TEST_F(ReplayTest, JudgesTheScopesGivenAndTheWholeRecording)
{
  scripts["face.csv"] = {seen(0.), seen(1.), seen(2.)};
  options.scopes.push_back({"middle", inNanoseconds(1.), inNanoseconds(1.)});
  replay();
  EXPECT_THAT(output.str(), HasSubstr("'whole recording' (0:00.0 to 0:02.0, 3 updates)"));
  EXPECT_THAT(output.str(), HasSubstr("'middle' (0:01.0 to 0:01.0, 1 update)"));
}

TEST_F(ReplayTest, StartsAFreshSessionForEachRecording)
{
  scripts["face.csv"] = {seen(100.), seen(101.)};
  scripts["second.csv"] = {seen(0.)};
  EXPECT_EQ(KV::tools::Success, replay());
  EXPECT_THAT(output.str(), HasSubstr("\n\nsecond.csv\n"));
  EXPECT_THAT(output.str(), HasSubstr("  span       0:00.0 to 0:00.0, 1 update,"));
}

TEST_F(ReplayTest, NumbersTheRecordingsInAnExport)
{
  scripts["face.csv"] = {seen(0.)};
  scripts["second.csv"] = {seen(0.)};
  options.exports["csv"] = folder.path("export.csv");
  replay();
  const std::string csv = folder.read("export.csv");
  EXPECT_EQ(3U, linesOf(csv));
  EXPECT_THAT(csv, HasSubstr("\n1,0,0,"));
  EXPECT_THAT(csv, HasSubstr("\n2,0,0,"));
}

TEST_F(ReplayTest, ShowsAndExportsWhatCameBeforeABadLine)
{
  scripts["face.csv"] = {seen(0.), seen(1.), ScriptedReader::badLine(4), seen(2.)};
  options.exports["csv"] = folder.path("export.csv");
  options.exports["jsonl"] = folder.path("export.jsonl");
  EXPECT_EQ(KV::tools::BadInput, replay());
  EXPECT_EQ("skeigiot: face.csv:4: pose_Rx: expected a number, found 'abc'\n", errors.str());
  EXPECT_THAT(output.str(), HasSubstr("0:00.0 to 0:01.0, 2 updates"));
  EXPECT_EQ(3U, linesOf(folder.read("export.csv")));
  EXPECT_EQ(2U, linesOf(folder.read("export.jsonl")));
  EXPECT_EQ((Names{"export.csv", "export.jsonl"}), folder.names());
}

TEST_F(ReplayTest, GoesOnWithTheNextRecordingAfterABadOne)
{
  scripts["face.csv"] = {};
  scripts["second.csv"] = {seen(0.)};
  EXPECT_EQ(KV::tools::BadInput, replay());
  EXPECT_EQ("skeigiot: face.csv: cannot be opened\n", errors.str());
  EXPECT_THAT(output.str(), HasSubstr("Person 0"));
}

TEST_F(ReplayTest, LeavesAnOldExportInItsPlaceIfNoRecordingCouldBeOpened)
{
  folder.write("export.csv", "old");
  options.force = true;
  scripts["face.csv"] = {};
  options.exports["csv"] = folder.path("export.csv");
  EXPECT_EQ(KV::tools::BadInput, replay());
  EXPECT_EQ("old", folder.read("export.csv"));
  EXPECT_EQ((Names{"export.csv"}), folder.names());
}

TEST_F(ReplayTest, PassesOverBadLinesIfItMayAndCountsThem)
{
  scripts["face.csv"] = {ScriptedReader::badLine(2), seen(0.), ScriptedReader::badLine(4), seen(1.)};
  options.skipBad = true;
  EXPECT_EQ(KV::tools::Success, replay());
  EXPECT_EQ(
      "skeigiot: face.csv: skipped 2 bad lines, the first: "
      "face.csv:2: pose_Rx: expected a number, found 'abc'\n",
      errors.str());
  EXPECT_THAT(output.str(), HasSubstr("2 updates"));
}

TEST_F(ReplayTest, DoesNotPassOverDamage)
{
  scripts["face.csv"] = {seen(0.), ScriptedReader::damage(3), seen(1.)};
  options.skipBad = true;
  EXPECT_EQ(KV::tools::BadInput, replay());
  EXPECT_EQ("skeigiot: face.csv:3: damaged\n", errors.str());
  EXPECT_THAT(output.str(), HasSubstr("1 update,"));
}

TEST_F(ReplayTest, ReportsWarningsOfTheLibraryOnce)
{
  const auto withOldVoice = [](double sinceStart) {
    KV::recordings::Step entry = seenAt(sinceStart, 0);
    entry.observation.voiceEmotion.emplace(entry.time - seconds(5), KV::VoiceEmotion());
    return ScriptedReader::entry(entry);
  };
  scripts["face.csv"] = {withOldVoice(0.), withOldVoice(1.), withOldVoice(2.)};
  EXPECT_EQ(KV::tools::Success, replay());
  EXPECT_THAT(errors.str(), HasSubstr("skeigiot: face.csv: kvmood.emotionalstate: "));
  EXPECT_THAT(errors.str(), HasSubstr(" (and 2 more times)\n"));
  EXPECT_EQ(1U, linesOf(errors.str()));
}

TEST_F(ReplayTest, WritesNothingButErrorsIfItIsQuiet)
{
  scripts["face.csv"] = {ScriptedReader::badLine(2), seen(0.), ScriptedReader::damage(4)};
  warnings = {"the rate is odd"};
  options.skipBad = true;
  options.quiet = true;
  EXPECT_EQ(KV::tools::BadInput, replay());
  EXPECT_EQ("", output.str());
  EXPECT_EQ("skeigiot: face.csv:4: damaged\n", errors.str());
}

TEST_F(ReplayTest, WritesTheRecordingItself)
{
  scripts["face.csv"] = {seen(0.), seen(1.)};
  options.exports["recording"] = folder.path("own.jsonl");
  replay();
  const auto reader = KV::recordings::openRecording(folder.path("own.jsonl"), "jsonl", {});
  EXPECT_EQ(start, reader->next().value().time);
  EXPECT_EQ(start + seconds(1), reader->next().value().time);
  EXPECT_FALSE(reader->next());
}

// Several sessions at a time

class ParallelReplay : public ReplayTest
{
protected:
  /// Nine sessions of different lengths: one cannot be opened, some go bad, all have a warning of the library.
  void scriptSessions()
  {
    options.skipBad = false;
    for (int i = 0; i < 9; ++i)
    {
      std::vector<Step>& steps = scripts["session" + std::to_string(i)];
      for (int step = 0; i != 3 && step < 40 * (9 - i); ++step)
        steps.push_back(seen(0.1 * step, i));
      if (i == 5 || i == 6)
        steps.push_back(ScriptedReader::badLine(99));
      if (i == 3)
        continue;
      KV::recordings::Step entry = seenAt(100., i);
      entry.observation.voiceEmotion.emplace(entry.time - seconds(5), KV::VoiceEmotion());
      steps.insert(steps.begin(), ScriptedReader::entry(entryAt(0.)));
      steps.push_back(ScriptedReader::entry(entry));
    }
  }

  /// All output of a replay with that many jobs, standard output and standard error apart.
  std::vector<std::string> writtenWith(std::size_t jobs)
  {
    output.str("");
    errors.str("");
    options.jobs = jobs;
    options.sessions.clear();
    options.exports["csv"] = folder.path("export.csv");
    options.exports["jsonl"] = folder.path("export.jsonl");
    EXPECT_EQ(KV::tools::BadInput, replay());
    return {output.str(), errors.str(), folder.read("export.csv"), folder.read("export.jsonl")};
  }
};

TEST_F(ParallelReplay, WritesTheSameBytesWhateverTheNumberOfJobs)
{
  scriptSessions();
  const std::vector<std::string> expected = writtenWith(1);
  EXPECT_THAT(expected[1], HasSubstr("skeigiot: session3: cannot be opened\n"));
  EXPECT_THAT(expected[1], HasSubstr("skeigiot: session4: kvmood.emotionalstate: "));
  EXPECT_THAT(expected[2], HasSubstr("\n9,8,"));
  for (const std::size_t jobs : {2, 3, 8, 100})
    EXPECT_EQ(expected, writtenWith(jobs)) << jobs << " jobs";
  EXPECT_EQ((Names{"export.csv", "export.jsonl"}), folder.names());
}

TEST_F(ParallelReplay, LeavesAnOldExportInItsPlaceIfNoRecordingCouldBeOpened)
{
  folder.write("export.csv", "old");
  options.force = true;
  scripts["a"] = {};
  scripts["b"] = {};
  options.jobs = 2;
  options.exports["csv"] = folder.path("export.csv");
  EXPECT_EQ(KV::tools::BadInput, replay());
  EXPECT_EQ("old", folder.read("export.csv"));
  EXPECT_EQ("skeigiot: a: cannot be opened\nskeigiot: b: cannot be opened\n", errors.str());
}

// Several inputs of one session

TEST_F(ReplayTest, MergesTheInputsOfASession)
{
  scripts["face.csv"] = {seen(0., 1), seen(1., 1)};
  scripts["voice.csv"] = {seen(0.5, 2)};
  options.sessions = {{{{"face.csv", {}}, {"voice.csv", inNanoseconds(0.25)}}}};
  options.exports["recording"] = folder.path("own.jsonl");
  EXPECT_EQ(KV::tools::Success, replayAsPlanned());
  EXPECT_THAT(output.str(), StartsWith("face.csv + voice.csv\n"));
  EXPECT_THAT(output.str(), HasSubstr("\nRead as: One session of 2 inputs"));
  EXPECT_THAT(output.str(), HasSubstr("\nPerson 1\n"));
  EXPECT_THAT(output.str(), HasSubstr("\nPerson 2\n"));
  const auto reader = KV::recordings::openRecording(folder.path("own.jsonl"), "jsonl", {});
  EXPECT_EQ(start, reader->next().value().time);
  EXPECT_EQ(start + milliseconds(750), reader->next().value().time);
  EXPECT_EQ(start + seconds(1), reader->next().value().time);
}

TEST_F(ReplayTest, ReplaysNothingOfASessionOfWhichAnInputIsMissing)
{
  scripts["face.csv"] = {seen(0., 1)};
  scripts["voice.csv"] = {};
  options.sessions = {{{{"face.csv", {}}, {"voice.csv", {}}}}};
  EXPECT_EQ(KV::tools::BadInput, replayAsPlanned());
  EXPECT_EQ("skeigiot: voice.csv: cannot be opened\n", errors.str());
  EXPECT_THAT(output.str(), Not(HasSubstr("Person")));
}

/// An output whose reader has closed it.
class ClosedPipe : public std::streambuf
{
  int_type overflow(int_type) override { throw KV::session::WriteError("standard output", EPIPE); }
};

TEST_F(ReplayTest, ExportsToTheEndThoughNobodyReadsItsOutput)
{
  scripts["face.csv"] = {seen(0.), seen(1.)};
  scripts["second.csv"] = {seen(0.)};
  options.exports["csv"] = folder.path("export.csv");
  options.sessions = {{{{"face.csv", {}}}}, {{{"second.csv", {}}}}};
  ClosedPipe pipe;
  std::ostream closed(&pipe);
  closed.exceptions(std::ios::badbit);
  KV::tools::ReplaySurroundings surroundings{
      [this](const std::string& path) { return open(path); }, closed, 100, KV::tools::Style(false), errors, false};

  EXPECT_EQ(KV::tools::Failure, KV::tools::replay(options, surroundings));

  EXPECT_EQ("", errors.str());
  EXPECT_EQ(4U, linesOf(folder.read("export.csv")));
}

}  // namespace
