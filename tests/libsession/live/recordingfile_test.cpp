#include "libsession/entries.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/outputstream.hpp>
#include <skeigiot/session/recordingfile.hpp>

#include <gtest/gtest.h>

#include <string>

namespace
{

using KV::session::RecordingFile;

KV::recordings::Step stepOf(std::int32_t person)
{
  KV::recordings::Step step;
  step.time = replaytests::start;
  step.person = person;
  step.observation.smile.emplace(step.time, KV::Smile(0.5f, 1.f));
  return step;
}

TEST(RecordingFile, HoldsWholeStepsAfterAFlush)
{
  const replaytests::TemporaryFolder folder;
  RecordingFile file(folder.path("record.jsonl"), false);
  file.stepBegins(stepOf(1));
  file.stepBegins(stepOf(2));
  file.flush();

  const auto reader = KV::recordings::openRecording(folder.path("record.jsonl"), "jsonl", {});
  EXPECT_EQ(1, *reader->next()->person);
  EXPECT_EQ(2, *reader->next()->person);
  EXPECT_FALSE(reader->next());
  EXPECT_EQ("", file.error());
}

TEST(RecordingFile, WritesTheStepsThatWaitAtItsEnd)
{
  const replaytests::TemporaryFolder folder;
  RecordingFile(folder.path("record.jsonl"), false).stepBegins(stepOf(1));
  const auto reader = KV::recordings::openRecording(folder.path("record.jsonl"), "jsonl", {});
  EXPECT_EQ(1, *reader->next()->person);
}

TEST(RecordingFile, ReplacesAFileOnlyIfAllowed)
{
  const replaytests::TemporaryFolder folder;
  const std::string path = folder.write("record.jsonl", "something\n");
  EXPECT_THROW(RecordingFile(path, false), KV::session::WriteError);
  EXPECT_EQ("something\n", folder.read("record.jsonl"));

  const RecordingFile file(path, true);
  EXPECT_EQ("", folder.read("record.jsonl"));
}

TEST(RecordingFile, TakesAnEmptyFile)
{
  const replaytests::TemporaryFolder folder;
  EXPECT_NO_THROW(RecordingFile(folder.write("record.jsonl", ""), false));
}

TEST(RecordingFile, CannotBeMadeInAFolderThatIsNotThere)
{
  const replaytests::TemporaryFolder folder;
  EXPECT_THROW(RecordingFile(folder.path("none/record.jsonl"), true), KV::session::WriteError);
}

TEST(RecordingFile, SaysWhyItEndsWhereTheDiskIsFull)
{
  RecordingFile file("/dev/full", true);
  file.stepBegins(stepOf(1));
  file.flush();
  EXPECT_EQ("/dev/full: No space left on device", file.error());
  file.stepBegins(stepOf(2));
  file.flush();
  EXPECT_EQ("/dev/full: No space left on device", file.error());
}

}  // namespace
