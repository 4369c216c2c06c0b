#include <skeigiot/session/studyplan.hpp>

#include "studyfolder.hpp"

#include <skeigiot/recordings/error.hpp>

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace session = KV::session;
using Values = std::map<std::string, std::string>;

const std::string face =
    "frame,face_id,timestamp,confidence,success,AU06_r,AU12_r\n1,1,0.0,0.95,1,1,1\n2,1,0.1,0.95,1,1,1\n";
const std::string voice = "time,person,reading,value\n1,1,speaking,true\n";

std::vector<std::string> faultsOf(const session::StudySession& session)
{
  std::vector<std::string> texts;
  for (const session::StudyProblem& fault : session.faults)
  {
    EXPECT_EQ(session.name, fault.session);
    texts.push_back(session::problemName(fault.kind) + std::string(": ") + fault.text);
  }
  return texts;
}

class StudyPlan : public ::testing::Test
{
protected:
  void add(const std::string& name, const std::string& text) const { folder.add(name, text); }

  session::StudyPlan planOf(const std::string& text) const { return session::planStudy(folder.study(text)); }

  StudyFolder folder;
  const std::string files = "[[files]]\npattern = \"{participant}/{condition}/face.csv\"\n";
};

TEST_F(StudyPlan, ListsSessionsInTheOrderOfTheirNames)
{
  add("p02/hello/face.csv", face);
  add("p01/hello/face.csv", face);
  add("p01/hello/voice.csv", voice);
  add(".hidden/hello/face.csv", face);
  const session::StudyPlan plan =
      planOf(files +
             "[[files]]\npattern = \"{participant}/{condition}/voice.csv\"\noffset = 0.5\noptional = true\n"
             "[[scopes]]\nname = \"a\"\nsession = \"p02/hello\"\n");
  ASSERT_EQ(2U, plan.sessions.size());
  EXPECT_EQ("p01/hello", plan.sessions[0].name);
  EXPECT_EQ("p01", plan.sessions[0].participant);
  EXPECT_EQ("hello", plan.sessions[0].condition);
  ASSERT_EQ(2U, plan.sessions[0].files.size());
  EXPECT_EQ("p01/hello/voice.csv", plan.sessions[0].files[1].path);
  EXPECT_EQ(500000000, plan.sessions[0].files[1].offset.count());
  EXPECT_THAT(plan.sessions[0].faults, IsEmpty());
  EXPECT_THAT(plan.sessions[0].scopes, IsEmpty());
  EXPECT_EQ(1U, plan.sessions[1].files.size());
  EXPECT_EQ(1U, plan.sessions[1].scopes.size());
  EXPECT_THAT(plan.sessions[1].faults, IsEmpty()) << "the voice is optional";
}

TEST_F(StudyPlan, GivesEachSessionTheLabelsThatPatternsFind)
{
  add("p01/hello/face.csv", face);
  add("p01/hello/anna.csv", "from,to,label\n0,1,positive\n");
  add("p02/hello/face.csv", face);
  const session::StudyPlan plan = planOf(files +
                                         "[[labels]]\npattern = \"{participant}/{condition}/anna.csv\"\noffset = "
                                         "0.25\ntier = \"affect\"\noptional = true\n");
  ASSERT_EQ(2U, plan.sessions.size());
  ASSERT_EQ(1U, plan.sessions[0].labels.size());
  EXPECT_EQ("p01/hello/anna.csv", plan.sessions[0].labels[0].path);
  EXPECT_EQ(250000000, plan.sessions[0].labels[0].offset.count());
  EXPECT_EQ("affect", plan.sessions[0].labels[0].tier);
  EXPECT_THAT(plan.sessions[1].labels, IsEmpty());
}

TEST_F(StudyPlan, NotesWhatIsMissingOrDoubled)
{
  add("p01/hello/face1.csv", face);
  add("p01/hello/face2.csv", face);
  add("p02/hello/voice.csv", voice);
  const session::StudyPlan plan = planOf(
      "[[files]]\npattern = \"{participant}/{condition}/face*.csv\"\n"
      "[[files]]\npattern = \"{participant}/{condition}/voice.csv\"\n");
  ASSERT_EQ(2U, plan.sessions.size());
  EXPECT_THAT(faultsOf(plan.sessions[0]),
              ElementsAre("doubled: several files match {participant}/{condition}/face*.csv: p01/hello/face1.csv, "
                          "p01/hello/face2.csv",
                          "missing: no file matches {participant}/{condition}/voice.csv"));
  EXPECT_THAT(faultsOf(plan.sessions[1]), ElementsAre("missing: no file matches {participant}/{condition}/face*.csv"));
}

TEST_F(StudyPlan, RefusesASessionOfTooManyFiles)
{
  std::string names;
  for (int i = 0; i < 65; ++i)
  {
    const std::string name = "extra/" + std::to_string(i) + ".csv";
    add(name, face);
    names += (names.empty() ? "\"" : ", \"") + name + "\"";
  }
  const session::StudyPlan plan = planOf(files + "[[sessions]]\nname = \"extra\"\nfiles = [" + names + "]\n");
  ASSERT_EQ(1U, plan.sessions.size());
  EXPECT_THAT(faultsOf(plan.sessions[0]), ElementsAre("too many files: has 65 files; a session takes 64 at most"));
}

TEST_F(StudyPlan, PrefersAPersonOfOneSessionToOneOfAll)
{
  add("p01/hello/face.csv", face);
  add("p02/hello/face.csv", face);
  const session::StudyPlan plan = planOf(files +
                                         "[[persons]]\nnumber = 1\nrole = \"child\"\n"
                                         "[[persons]]\nnumber = 1\nrole = \"parent\"\nsession = \"p02/hello\"\n");
  ASSERT_EQ(2U, plan.sessions.size());
  ASSERT_EQ(1U, plan.sessions[0].persons.size());
  EXPECT_EQ("child", plan.sessions[0].persons.front().role);
  EXPECT_EQ("parent", plan.sessions[1].persons.front().role);
}

TEST_F(StudyPlan, RefusesScopesAndPersonsOfASessionThatDoesNotExist)
{
  add("p01/hello/face.csv", face);
  for (const auto& [table, line] : {std::pair("scopes]]\nname = \"a\"", 5), std::pair("persons]]\nnumber = 1", 5)})
  {
    try
    {
      planOf(files + "[[" + table + "\nsession = \"p02/hello\"\n");
      ADD_FAILURE() << table;
    }
    catch (const KV::recordings::Error& error)
    {
      EXPECT_THAT(error.what(), HasSubstr("study.toml:" + std::to_string(line)));
      EXPECT_THAT(error.what(), HasSubstr(std::string(table).substr(0, std::string(table).find(']')) +
                                          ".session: there is no session 'p02/hello'"));
    }
  }
}

TEST_F(StudyPlan, TakesSessionsByName)
{
  add("p01/hello/face.csv", face);
  add("extra/one.csv", face);
  const session::StudyPlan plan =
      planOf(files +
             "[[sessions]]\nname = \"p01/hello\"\nleft-out = \"the camera fell\"\n"
             "[[sessions]]\nname = \"extra\"\nparticipant = \"p09\"\nfiles = [\"extra/one.csv\", \"extra/two.csv\"]\n");
  ASSERT_EQ(2U, plan.sessions.size());
  EXPECT_EQ("extra", plan.sessions[0].name);
  EXPECT_EQ("p09", plan.sessions[0].participant);
  EXPECT_THAT(faultsOf(plan.sessions[0]), ElementsAre("missing: extra/two.csv does not exist"));
  EXPECT_EQ("the camera fell", plan.sessions[1].leftOut);
  EXPECT_THAT(plan.unused, IsEmpty());
}

TEST_F(StudyPlan, RefusesASessionThatDoesNotExist)
{
  add("p01/hello/face.csv", face);
  try
  {
    planOf(files + "[[sessions]]\nname = \"p1/hello\"\n");
    FAIL() << "there is no such session";
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_THAT(error.what(), HasSubstr("study.toml:5: sessions.name: no pattern finds a session 'p1/hello'"));
  }
}

TEST_F(StudyPlan, RefusesPatternsWithOtherPlaceholders)
{
  try
  {
    planOf(files + "[[files]]\npattern = \"{participant}/voice.csv\"\n");
    FAIL() << "the placeholders differ";
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_THAT(error.what(),
                HasSubstr("study.toml:5: pattern: expected the same placeholders as in the first pattern"));
  }
}

TEST_F(StudyPlan, NotesFilesThatNoPatternMatches)
{
  add("p01/hello/face.csv", face);
  add("p01/face.csv", face);
  add("readme.md", "about");
  EXPECT_THAT(planOf(files).unused, ElementsAre("p01/face.csv"));
}

TEST_F(StudyPlan, FollowsLinksExceptToFoldersThatHoldThem)
{
  add("data/hello/face.csv", face);
  std::filesystem::create_directory_symlink(folder.path("data"), folder.path("p01"));
  std::filesystem::create_directory_symlink(folder.path(""), folder.path("data/hello/back"));
  const session::StudyPlan plan = planOf("[[files]]\npattern = \"{participant}/{condition}/face.csv\"\n");
  ASSERT_EQ(2U, plan.sessions.size());
  EXPECT_EQ("data/hello", plan.sessions[0].name);
  EXPECT_EQ("p01/hello", plan.sessions[1].name);
  EXPECT_THAT(plan.unused, IsEmpty());
}

TEST_F(StudyPlan, KeepsOtherPlaceholdersAsFactors)
{
  add("p01/day2/face.csv", face);
  const session::StudyPlan plan = planOf("[[files]]\npattern = \"{participant}/{day}/face.csv\"\n");
  ASSERT_EQ(1U, plan.sessions.size());
  EXPECT_EQ((Values{{"day", "day2"}}), plan.sessions[0].factors);
  EXPECT_EQ("", plan.sessions[0].condition);
}

TEST_F(StudyPlan, IsOneSessionWithoutPlaceholders)
{
  add("face.csv", face);
  const session::StudyPlan plan = planOf("[[files]]\npattern = \"face.csv\"\n");
  ASSERT_EQ(1U, plan.sessions.size());
  EXPECT_EQ("session", plan.sessions[0].name);
  EXPECT_EQ("", plan.sessions[0].participant);
}

TEST(StudyProblem, HasANameForEachKind)
{
  using Kind = session::StudyProblem::Kind;
  std::vector<std::string> names;
  for (const Kind kind : {Kind::Missing, Kind::Doubled, Kind::TooMany, Kind::TooShort, Kind::Unsynchronised,
                          Kind::Unreadable, Kind::Unused})
    names.emplace_back(session::problemName(kind));
  EXPECT_THAT(names, ElementsAre("missing", "doubled", "too many files", "too short", "not synchronised", "unreadable",
                                 "not used"));
}

TEST(StudyShard, IsOneOfTheParts)
{
  const session::StudyShard shard = session::parseShard("3/16");
  EXPECT_EQ(3U, shard.number);
  EXPECT_EQ(16U, shard.count);
  for (const char* const text : {"", "3", "3/", "/3", "0/3", "4/3", "a/3", "1/3x", "1/1000001", "-1/3"})
    EXPECT_THROW(session::parseShard(text), std::invalid_argument) << text;
}

TEST(StudyShard, HasEachSessionOnce)
{
  for (int i = 0; i < 100; ++i)
  {
    int count = 0;
    for (std::size_t number = 1; number <= 7; ++number)
      count += session::StudyShard{number, 7}.has("p" + std::to_string(i)) ? 1 : 0;
    EXPECT_EQ(1, count);
  }
}

TEST(StudyShard, IsThatOfTheSha256)
{
  // SHA-256 of "p01/hello" begins with these 8 bytes.
  const std::uint64_t hash = 0x8ac3f4825427d3cd;
  for (std::size_t number = 1; number <= 16; ++number)
    EXPECT_EQ(hash % 16 == number - 1, (session::StudyShard{number, 16}.has("p01/hello")));
}

}  // namespace
