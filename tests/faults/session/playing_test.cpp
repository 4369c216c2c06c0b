#include "faults/command/smallrecording.hpp"
#include "faults/repeatedfailure.hpp"

#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/exportformat.hpp>
#include <skeigiot/session/exports.hpp>
#include <skeigiot/session/labelexport.hpp>
#include <skeigiot/session/liverecording.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/recordingfile.hpp>
#include <skeigiot/session/summary.hpp>

#include <ko/log.hpp>

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::session::Exports;
using KV::session::Outcome;
using KV::session::OutputCheck;
using KV::session::SessionObserver;
using replaytests::TemporaryFolder;

using Names = std::set<std::string>;

/// A log handler that was removed without memory is only marked, and freed when the handlers change next.
void freeRemovedHandlers()
{
  ko::log::removeHandler(ko::log::addHandler([](const ko::log::Record&) {}));
}

/// As faults::failRepeatedly(), for operations that play a session, which listens to the log.
template <typename Make, typename Operate, typename Check>
std::size_t failRepeatedly(Make make, Operate operate, Check check)
{
  return faults::failRepeatedly(make, operate, [&check](auto& result, bool threw) {
    freeRemovedHandlers();
    check(result, threw);
  });
}

/// A recording in which a person with a name is missed for a while, with a line that cannot be used.
std::string recordingWithABadLine()
{
  return faults::recordingOf(12) +
         R"({"time":1577836801300000000,"person":5,"name":"Zoë of the house over there","observation":{}})"
         "\n{\"time\":1577836801400000000,\"person\":5,\"seen\":false}\n{\"time\":1,\"unknown\":[1,{\"a\":2}]}\n" +
         R"({"time":1577836801500000000,"ambiance":{"movements":2}})"
         "\n";
}

class PlayingWithoutMemory : public ::testing::Test
{
protected:
  Outcome play(const std::vector<SessionObserver*>& observers) const
  {
    KV::session::PlayerOptions options;
    options.skipBad = true;
    options.scopes = {{"whole recording", KV::session::Duration(0), boost::none},
                      {"the first half of the second", KV::session::Duration(0), KV::session::Duration(500000000)}};
    return KV::session::Player(options).play([this] { return KV::recordings::openRecording(recording, "", {}); },
                                             observers);
  }

  const TemporaryFolder folder;
  const std::string recording = folder.write("recording", recordingWithABadLine());
};

TEST_F(PlayingWithoutMemory, GivesTheWholeSessionOrThrows)
{
  const Outcome whole = play({});
  ASSERT_FALSE(whole.error);
  ASSERT_EQ(1U, whole.badLines);
  const std::size_t thrown = failRepeatedly([] { return std::optional<Outcome>(); },
                                            [this](std::optional<Outcome>& outcome) { outcome = play({}); },
                                            [&whole](const std::optional<Outcome>& outcome, bool threw) {
                                              ASSERT_EQ(threw, !outcome.has_value());
                                              if (threw)
                                                return;
                                              EXPECT_FALSE(outcome->error);
                                              EXPECT_EQ(whole.badLines, outcome->badLines);
                                              EXPECT_EQ(whole.firstBadLine, outcome->firstBadLine);
                                              EXPECT_EQ(whole.length, outcome->length);
                                              EXPECT_EQ(whole.description, outcome->description);
                                              EXPECT_EQ(whole.warningLines(), outcome->warningLines());
                                              EXPECT_EQ(whole.libraryWarnings, outcome->libraryWarnings);
                                            });
  EXPECT_GT(thrown, 100U);
}

struct ExportCase
{
  std::string name;
  std::string format;
};

class ExportingWithoutMemory : public PlayingWithoutMemory, public ::testing::WithParamInterface<ExportCase>
{
protected:
  KV::session::ExportFormat format() const
  {
    return KV::session::isLabelExport(GetParam().format) ? KV::session::labelExport(GetParam().format, "")
                                                         : KV::session::exportFormat(GetParam().format);
  }

  void writeExport(bool isSpilled) const
  {
    OutputCheck check(true);
    Exports exports;
    exports.add(format(), folder.path("export"), check);
    if (isSpilled)
    {
      const auto spilled = exports.spill({1, "recording"});
      play(spilled->observers());
      spilled->endSession("");
      exports.append(*spilled);
    }
    else
    {
      exports.beginSession({1, "recording"});
      play(exports.observers());
      exports.endSession("");
    }
    exports.commit();
  }
};

TEST_P(ExportingWithoutMemory, LeavesTheOldFileOrTheWholeNewOneAndNoOther)
{
  for (const bool isSpilled : {false, true})
  {
    writeExport(isSpilled);
    const std::string whole = folder.read("export");
    ASSERT_NE("", whole);
    const std::size_t thrown = failRepeatedly(
        [this] {
          folder.write("export", "old");
          return 0;
        },
        [&](int) { writeExport(isSpilled); },
        [&](int, bool threw) {
          const std::string content = folder.read("export");
          EXPECT_TRUE(content == whole || (threw && content == "old")) << content;
          EXPECT_EQ((Names{"export", "recording"}), folder.names());
        });
    EXPECT_GT(thrown, 100U);
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ExportingWithoutMemory,
                         ::testing::Values(ExportCase{"Csv", "csv"}, ExportCase{"JsonLines", "jsonl"},
                                           ExportCase{"Summary", "summary"}, ExportCase{"Recording", "recording"},
                                           ExportCase{"Elan", "eaf"}, ExportCase{"Audacity", "audacity"}),
                         support::RowName());

/// The table of cases has every format.
TEST(ExportFormatsWithoutMemory, AreAllTried)
{
  const Names tried{"csv", "jsonl", "summary", "recording", "eaf", "audacity"};
  for (const KV::session::ExportFormat& format : KV::session::exportFormats())
    EXPECT_EQ(1U, tried.count(format.name)) << format.name;
}

/// Returns the whole lines of a text.
std::string wholeLines(const std::string& text)
{
  return text.substr(0, text.rfind('\n') + 1);
}

TEST_F(PlayingWithoutMemory, RecordsLiveStepsAsWholeLines)
{
  {
    KV::session::RecordingFile file(folder.path("record"), true);
    play({&file});
  }
  const std::string whole = folder.read("record");
  ASSERT_NE("", whole);
  failRepeatedly([] { return 0; },
                 [this](int) {
                   KV::session::RecordingFile file(folder.path("record"), true);
                   play({&file});
                 },
                 [&](int, bool threw) {
                   const std::string content = folder.read("record");
                   EXPECT_EQ(whole.substr(0, content.size()), content);
                   EXPECT_EQ(wholeLines(content), content);
                   EXPECT_TRUE(threw || content == whole);
                 });
}

/// The text of the error needs memory as well.
TEST_F(PlayingWithoutMemory, ClosesARecordingWhoseLastStepsCannotBeWritten)
{
  const auto reader = KV::recordings::openRecording(recording, "", {});
  const KV::recordings::Step step = *reader->next();
  const std::size_t thrown = failRepeatedly(
      [&step] {
        auto file = std::make_unique<KV::session::RecordingFile>("/dev/full", true);
        file->stepBegins(step);
        return file;
      },
      [](std::unique_ptr<KV::session::RecordingFile>& file) { file.reset(); },
      [](std::unique_ptr<KV::session::RecordingFile>& file, bool) { EXPECT_EQ(nullptr, file); });
  EXPECT_EQ(0U, thrown);
}

TEST_F(PlayingWithoutMemory, KeepsALiveRecordingAsWholeLines)
{
  const auto record = [this](std::string& text) {
    KV::session::LiveRecording recorded(folder.path(""));
    play({&recorded});
    const auto stream = recorded.part().open();
    stream->exceptions(std::ios::badbit);
    text.assign(std::istreambuf_iterator<char>(*stream), {});
  };
  std::string whole;
  record(whole);
  ASSERT_NE("", whole);
  failRepeatedly([] { return std::string(); }, record,
                 [&](const std::string& text, bool threw) { EXPECT_TRUE(threw || text == whole); });
  EXPECT_EQ((Names{"recording"}), folder.names());
}

}  // namespace
