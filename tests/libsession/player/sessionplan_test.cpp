#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/session/sessionplan.hpp>

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace
{

using namespace replaytests;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Duration = ko::SystemClock::duration;

const char* const tidy = "time,reading,value\n0,smile,1\n";

class SessionPlanTest : public ::testing::Test
{
protected:
  /// Returns the names of the sessions, without the folder of the test.
  std::vector<std::string> planned() const
  {
    std::vector<std::string> names;
    for (const KV::session::SessionInputs& session : KV::session::planSessions(arguments).sessions)
    {
      std::string name = session.name();
      for (std::size_t at = name.find(folder.path("")); at != std::string::npos; at = name.find(folder.path("")))
        name.erase(at, folder.path("").size());
      names.push_back(name);
    }
    return names;
  }

  std::string refusal() const
  {
    try
    {
      KV::session::planSessions(arguments);
    }
    catch (const std::invalid_argument& error)
    {
      return error.what();
    }
    catch (const KV::recordings::Error& error)
    {
      return error.what();
    }
    return "nothing was refused";
  }

  TemporaryFolder folder;
  KV::session::SessionArguments arguments;
};

TEST_F(SessionPlanTest, TakesFilesNamedTogetherForInputsOfOneSession)
{
  arguments.paths = {"face.csv", "voice.csv"};
  EXPECT_THAT(planned(), ElementsAre("face.csv + voice.csv"));
}

TEST_F(SessionPlanTest, OpensOneInputAsItIsAndSeveralAsOneRecording)
{
  const std::string path = folder.write("a.csv", tidy);
  KV::session::SessionInputs session;
  session.inputs = {{path, {}}};
  const KV::recordings::Reader* opened = nullptr;
  const auto open = [&opened](const std::string& name) {
    auto reader = KV::recordings::openRecording(name, "", {});
    opened = reader.get();
    return reader;
  };
  const auto one = KV::session::openSession(session, open);
  EXPECT_EQ(opened, one.get());
  session.inputs.push_back({folder.write("b.csv", tidy), {}});
  const auto two = KV::session::openSession(session, open);
  EXPECT_NE(opened, two.get());
}

TEST_F(SessionPlanTest, GivesEachFileASessionOfItsOwnOnRequest)
{
  arguments.paths = {"face.csv", "voice.csv", "face.csv"};
  arguments.separately = true;
  EXPECT_THAT(planned(), ElementsAre("face.csv", "voice.csv", "face.csv"));
}

TEST_F(SessionPlanTest, MovesTheInputsThatHaveAnOffset)
{
  arguments.paths = {"face.csv", "voice.csv"};
  KV::session::parseOffset("voice.csv=-0.25", arguments.offsets);
  const auto inputs = KV::session::planSessions(arguments).sessions.front().inputs;
  EXPECT_EQ(Duration(0), inputs[0].offset);
  EXPECT_EQ(Duration(-250'000'000), inputs[1].offset);
}

TEST_F(SessionPlanTest, GivesEachRecordingOfAFolderASessionInTheOrderOfTheirNames)
{
  for (const char* name : {"b.csv", "c.csv", "a.csv"})
    folder.write(name, tidy);
  arguments.paths = {folder.path(".")};
  EXPECT_THAT(planned(), ElementsAre("./a.csv", "./b.csv", "./c.csv"));
}

TEST_F(SessionPlanTest, NamesFilesBelowTheFolderForExports)
{
  folder.write("a.csv", tidy);
  const auto file = [this] { return KV::session::planSessions(arguments).sessions.front().exportedAs(3).file; };
  arguments.paths = {folder.path("")};
  EXPECT_EQ("a.csv", file());
  EXPECT_EQ(3, KV::session::planSessions(arguments).sessions.front().exportedAs(3).number);
  arguments.paths = {folder.path("a.csv")};
  EXPECT_EQ(folder.path("a.csv"), file());
  arguments.paths = {"face.csv", "voice.csv"};
  EXPECT_EQ("face.csv + voice.csv", file());
  arguments.paths = {folder.path("."), folder.path(".")};
  EXPECT_EQ(folder.path("./a.csv"), file()) << "of two folders, the paths tell which";
}

TEST_F(SessionPlanTest, PassesOverWhatIsNoRecordingAndSaysSo)
{
  folder.write("a.csv", tidy);
  folder.write("labels.txt", "engaged\n");
  folder.write(".hidden", "secret\n");
  std::filesystem::create_directory(folder.path("deeper"));
  arguments.paths = {folder.path(".")};
  EXPECT_THAT(planned(), ElementsAre("./a.csv"));
  EXPECT_THAT(KV::session::planSessions(arguments).notes,
              ElementsAre(folder.path(".") + ": skipped 1 file of unknown format: labels.txt"));
}

TEST_F(SessionPlanTest, PassesOverALinkThatLeadsToItselfAndSaysSo)
{
  folder.write("a.csv", tidy);
  std::filesystem::create_symlink("loop", folder.path("loop"));
  std::filesystem::create_symlink("nowhere", folder.path("dangling"));
  arguments.paths = {folder.path(".")};
  EXPECT_THAT(planned(), ElementsAre("./a.csv"));
  EXPECT_THAT(
      KV::session::planSessions(arguments).notes,
      ElementsAre(folder.path("./loop") + ": skipped, since it cannot be read: Too many levels of symbolic links"));
}

TEST_F(SessionPlanTest, PassesOverAFolderThatNobodyMayReadAndSaysSo)
{
  folder.write("a.csv", tidy);
  std::filesystem::create_directory(folder.path("closed"));
  std::filesystem::permissions(folder.path("closed"), std::filesystem::perms::none);
  if (access(folder.path("closed/file").c_str(), F_OK) != 0 && errno != EACCES)
    GTEST_SKIP() << "root may read everything";
  arguments.paths = {folder.path(".")};
  EXPECT_THAT(planned(), ElementsAre("./a.csv"));
  EXPECT_THAT(KV::session::planSessions(arguments).notes,
              ElementsAre(folder.path("./closed") + ": skipped, since it cannot be read: Permission denied"));
}

TEST_F(SessionPlanTest, TakesEveryFileOfAFolderWhoseFormatIsGiven)
{
  folder.write("a.csv", tidy);
  folder.write("odd", "Zeit;Lesung\n");
  arguments.paths = {folder.path(".")};
  arguments.format = "tidy";
  EXPECT_THAT(planned(), ElementsAre("./a.csv", "./odd"));
  EXPECT_THAT(KV::session::planSessions(arguments).notes, IsEmpty());
}

TEST_F(SessionPlanTest, TakesABagForOneRecording)
{
  std::filesystem::create_directory(folder.path("bag"));
  folder.write("bag/metadata.yaml", "rosbag2_bagfile_information:\n");
  arguments.paths = {folder.path("bag")};
  EXPECT_THAT(planned(), ElementsAre("bag"));
  arguments.paths = {folder.path(".")};
  arguments.format = "tidy";
  EXPECT_THAT(planned(), ElementsAre("./bag"));
}

TEST_F(SessionPlanTest, RefusesAFolderWithoutARecording)
{
  folder.write("labels.txt", "engaged\n");
  arguments.paths = {folder.path(".")};
  EXPECT_EQ(folder.path(".") + ": there is no recording in this folder", refusal());
}

TEST_F(SessionPlanTest, RefusesFilesBesideFoldersUnlessTheyAreSeparate)
{
  folder.write("a.csv", tidy);
  arguments.paths = {folder.path("."), "b.csv"};
  EXPECT_EQ("files named together are one session, but each recording of a folder is a session of its own", refusal());
  arguments.separately = true;
  EXPECT_THAT(planned(), ElementsAre("./a.csv", "b.csv"));
}

TEST_F(SessionPlanTest, RefusesOffsetsOfWhatIsNoInput)
{
  arguments.paths = {"face.csv", "voice.csv"};
  arguments.offsets["touch.csv"] = Duration(1);
  EXPECT_EQ("there is no input 'touch.csv'", refusal());
}

TEST_F(SessionPlanTest, RefusesOffsetsWhereThereIsNothingToMoveAgainst)
{
  const std::string expected = "an offset needs another input in the same session";
  arguments.offsets["face.csv"] = Duration(1);
  arguments.paths = {"face.csv"};
  EXPECT_EQ(expected, refusal());
  arguments.paths = {"face.csv", "voice.csv"};
  arguments.separately = true;
  EXPECT_EQ(expected, refusal());
}

TEST_F(SessionPlanTest, RefusesAnInputTwiceInOneSession)
{
  arguments.paths = {"face.csv", "face.csv"};
  EXPECT_EQ("one input is named twice", refusal());
}

TEST_F(SessionPlanTest, RefusesMoreInputsThanASessionTakes)
{
  for (std::size_t i = 0; i < KV::session::SessionInputs::most; ++i)
    arguments.paths.push_back(std::to_string(i));
  EXPECT_EQ(1U, KV::session::planSessions(arguments).sessions.size());
  arguments.paths.emplace_back("one more");
  EXPECT_EQ("65 files named together are inputs of one session, which takes 64 at most", refusal());
  arguments.separately = true;
  EXPECT_EQ(65U, KV::session::planSessions(arguments).sessions.size());
}

struct OffsetCase
{
  const char* name;
  const char* text;
  const char* path;
  std::int64_t nanoseconds;
};

class Offset : public ::testing::TestWithParam<OffsetCase>
{};

TEST_P(Offset, HasAFileAndSeconds)
{
  std::map<std::string, Duration> offsets;
  KV::session::parseOffset(GetParam().text, offsets);
  EXPECT_EQ((std::map<std::string, Duration>{{GetParam().path, Duration(GetParam().nanoseconds)}}), offsets);
}

INSTANTIATE_TEST_SUITE_P(Texts, Offset,
                         ::testing::Values(OffsetCase{"Fraction", "voice.csv=0.25", "voice.csv", 250'000'000},
                                           OffsetCase{"Negative", "voice.csv=-2", "voice.csv", -2'000'000'000},
                                           OffsetCase{"Plus", "voice.csv=+2", "voice.csv", 2'000'000'000},
                                           OffsetCase{"EqualsInPath", "a=b.csv=1", "a=b.csv", 1'000'000'000}),
                         support::RowName());

class BadOffset : public ::testing::TestWithParam<const char*>
{};

TEST_P(BadOffset, IsRefused)
{
  std::map<std::string, Duration> offsets;
  EXPECT_THROW(KV::session::parseOffset(GetParam(), offsets), std::invalid_argument);
  EXPECT_THAT(offsets, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Texts, BadOffset,
                         ::testing::Values("", "voice.csv", "=1", "voice.csv=", "voice.csv=soon", "voice.csv=1s",
                                           "voice.csv=nan", "voice.csv=1e300"));

TEST(Offsets, AreGivenOnceForEachFile)
{
  std::map<std::string, Duration> offsets;
  KV::session::parseOffset("a=1", offsets);
  EXPECT_THROW(KV::session::parseOffset("a=2", offsets), std::invalid_argument);
}

}  // namespace
