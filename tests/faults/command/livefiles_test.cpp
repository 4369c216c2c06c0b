#include "faultyprocess.hpp"
#include "smallrecording.hpp"

#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/liverecording.hpp>
#include <skeigiot/session/outputstream.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/recordingfile.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <set>
#include <string>

namespace
{

using faults::ProcessFault;
using faults::ProcessResult;
using replaytests::TemporaryFolder;

/// The files of live sessions, which grow while their session goes on.
class LiveFiles : public ::testing::Test
{
protected:
  /// Plays the recording to the observer.
  void play(KV::session::SessionObserver& observer) const
  {
    KV::session::Player({}).play([this] { return KV::recordings::openRecording(recording, "", {}); }, {&observer});
  }

  /// Records in a process of its own; the status is 3 if the recording says why it ended.
  ProcessResult record(const ProcessFault& fault) const
  {
    return faults::runInProcess(
        [this] {
          KV::session::RecordingFile file(folder.path("record"), true);
          play(file);
          file.flush();
          std::ofstream(folder.path("error")) << file.error();
          return file.error().empty() ? 0 : 3;
        },
        fault);
  }

  /// Returns the steps of the recording, and expects that at most its last line is not whole.
  std::size_t stepsOf(const std::string& path) const
  {
    const auto reader = KV::recordings::openRecording(path, "jsonl", {});
    std::size_t count = 0;
    try
    {
      while (reader->next())
        ++count;
    }
    catch (const KV::recordings::BadLine&)
    {
      EXPECT_FALSE(reader->next()) << "a line before the last is not whole";
    }
    return count;
  }

  static constexpr int steps = 1500;  // so that the recording takes several writes
  const TemporaryFolder folder;
  const std::string recording = folder.write("recording", faults::recordingOf(steps));
};

TEST_F(LiveFiles, HaveAllWholeLinesUpToTheEndOfAProcessThatIsKilled)
{
  ASSERT_EQ(0, record({}).status);
  const std::string whole = folder.read("record");
  ASSERT_EQ(static_cast<std::size_t>(steps), stepsOf(folder.path("record")));
  std::set<std::size_t> sizes;
  for (std::size_t call = 0; call < 100; ++call)
  {
    SCOPED_TRACE("killed before call " + std::to_string(call));
    folder.write("record", "");
    ProcessFault fault;
    fault.killedAtCall = call;
    const ProcessResult result = record(fault);
    const std::string content = folder.read("record");
    EXPECT_EQ(whole.substr(0, content.size()), content);
    const auto lines = static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
    EXPECT_EQ(lines, stepsOf(folder.path("record")));
    sizes.insert(content.size());
    if (result.status == 0)
      break;
    ASSERT_EQ(-SIGKILL, result.status);
  }
  EXPECT_GT(sizes.size(), 3U);
  EXPECT_EQ(1U, sizes.count(whole.size()));
}

TEST_F(LiveFiles, EndWhereTheDiskIsFullAndSayWhy)
{
  ASSERT_EQ(0, record({}).status);
  const std::string whole = folder.read("record");
  int complaints = 0;
  for (std::size_t call = 0; call < 100; ++call)
  {
    SCOPED_TRACE("no room from call " + std::to_string(call) + " on");
    folder.write("record", "");
    ProcessFault fault;
    fault.fullAtCall = call;
    const ProcessResult result = record(fault);
    const std::string content = folder.read("record");
    EXPECT_EQ(whole.substr(0, content.size()), content);
    if (!result.faulted)
      break;
    ++complaints;
    EXPECT_EQ(3, result.status);
    EXPECT_EQ(folder.path("record") + ": No space left on device", folder.read("error"));
    EXPECT_LT(content.size(), whole.size());
    EXPECT_LE(stepsOf(folder.path("record")), static_cast<std::size_t>(steps));
  }
  EXPECT_GT(complaints, 3);
}

TEST_F(LiveFiles, ThatThePageSavesHaveWhatFittedOnTheDisk)
{
  int complaints = 0;
  for (std::size_t call = 0; call < 100; ++call)
  {
    SCOPED_TRACE("no room from call " + std::to_string(call) + " on");
    ProcessFault fault;
    fault.fullAtCall = call;
    const ProcessResult result = faults::runInProcess(
        [this] {
          try
          {
            KV::session::LiveRecording recorded(folder.path("."));
            play(recorded);
            const auto stream = recorded.part().open();
            std::ofstream(folder.path("saved")) << stream->rdbuf();
            std::ofstream(folder.path("error")) << recorded.error();
            return recorded.error().empty() ? 0 : 3;
          }
          catch (const KV::session::WriteError& error)
          {
            std::ofstream(folder.path("error")) << error.what();
            return 4;
          }
        },
        fault);
    if (!result.faulted)
      break;
    ++complaints;
    EXPECT_EQ("temporary file in " + folder.path(".") + ": No space left on device", folder.read("error"));
    EXPECT_EQ(call == 0 ? 4 : 3, result.status);
    if (result.status == 3 && !folder.read("saved").empty())
    {
      EXPECT_LT(stepsOf(folder.path("saved")), static_cast<std::size_t>(steps));
    }
    const auto names = folder.names();
    for (const std::string& name : names)
      EXPECT_TRUE(name == "error" || name == "recording" || name == "saved") << name << " is left";
  }
  EXPECT_GT(complaints, 3);
}

}  // namespace
