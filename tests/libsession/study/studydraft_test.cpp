#include <skeigiot/session/studyplan.hpp>

#include "studyfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/session/study.hpp>

#include <gmock/gmock.h>

#include <cstddef>
#include <initializer_list>
#include <string>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
namespace session = KV::session;

const std::string face =
    "frame,face_id,timestamp,confidence,success,AU06_r,AU12_r\n1,1,0.0,0.95,1,1,1\n2,1,0.1,0.95,1,1,1\n";
const std::string voice = "time,person,reading,value\n1,1,speaking,true\n";
const std::string phases = "0\t1\tgreeting\n";  // of Audacity
const std::string grid =
    "File type = \"ooTextFile\"\nObject class = "
    "\"TextGrid\"\n\n0\n4\n<exists>\n1\n\"IntervalTier\"\n\"phase\"\n0\n4\n1\n"
    "0\n4\n\"greeting\"\n";

/// A folder whose study is drafted.
class StudyDraft : public ::testing::Test
{
protected:
  void add(const std::string& text, std::initializer_list<const char*> names) const
  {
    for (const char* const name : names)
      folder.add(name, text);
  }

  std::string draft() const { return session::draftStudy(folder.path("")); }

  /// Returns what depends on the files: from the first pattern to the fields that are proposed.
  std::string patterns() const
  {
    const std::string text = draft();
    const std::size_t begin = text.find("\n\n[[") + 2;
    return text.substr(begin, text.find("\n# [[labels]] ") - begin);
  }

  std::string error() const
  {
    return support::textThrownBy<KV::recordings::Error>([this] { draft(); });
  }

  StudyFolder folder;
};

TEST_F(StudyDraft, IsAStudyFileWithComments)
{
  add(face, {"greetings/p01/hello.csv", "greetings/p02/hello.csv"});
  EXPECT_EQ(R"(# A study: which files make one session, and how they are read. Change what is not right, then run
# "skeigiot study check". Paths are relative to the folder of this file.

[study]
version = 1
name = "greetings"
minimum-length = 5          # seconds; a shorter session is a problem

[[files]]  # 2 files: openface
pattern = "{participant}/hello.csv"

# [[labels]]                # more files of labels; each label is a scope
# pattern = "{participant}/{condition}/coding.eaf"
# tier = "phases"           # only labels of this tier

# [[scopes]]                # a span that is judged in each session
# name = "greeting"
# from = 0                  # seconds since the start; "to" may be left out
# to = 12.5

# [[persons]]               # roles, where a recording has several persons
# number = 1
# role = "child"

# [[sessions]]              # changes of one session
# name = "p03/hello"
# left-out = "the camera fell"

[results]
updates = false             # true: keep each update of each person
forces = false              # true: keep each force

[options]                   # options of "skeigiot replay", by the same names
# fps = 30
# cycle = 10
)",
            session::draftStudy(folder.path("greetings")));
}

TEST_F(StudyDraft, HasLabelsBehindTheRecordings)
{
  add(phases, {"p01/coding.txt", "p02/coding.txt", "p03/coding.txt"});
  add(grid, {"p01/phases.TextGrid"});
  add(voice, {"p01/voice.csv", "p02/voice.csv", "p03/voice.csv"});
  add(face, {"p01/face.csv", "p02/face.csv", "p03/face.csv"});
  EXPECT_EQ(
      "[[files]]  # 3 files: openface\npattern = \"{participant}/face.csv\"\n"
      "\n[[files]]  # 3 files: tidy\npattern = \"{participant}/voice.csv\"\n"
      "\n[[labels]]  # 3 files: audacity\npattern = \"{participant}/coding.txt\"\n"
      "\n[[labels]]  # 1 file: praat\npattern = \"{participant}/phases.TextGrid\"\n"
      "optional = true  # 2 of 3 sessions: no such file\n",
      patterns());
}

TEST_F(StudyDraft, GivesEachSessionItsLabels)
{
  add(grid, {"p01/phases.TextGrid", "p02/phases.TextGrid"});
  add(face, {"p01/face.csv", "p02/face.csv"});
  folder.add("study.toml", draft());
  const session::Study study = session::readStudy(folder.path("study.toml"));
  const session::StudyPlan plan = session::planStudy(study);
  ASSERT_EQ(2U, plan.sessions.size());
  for (const session::StudySession& one : plan.sessions)
  {
    ASSERT_EQ(1U, one.labels.size()) << one.name;
    EXPECT_EQ(one.name + "/phases.TextGrid", one.labels.front().path);
  }
}

TEST_F(StudyDraft, HasThePatternOfFilesOfWhichSomeCannotBeRead)
{
  add("damaged", {"p01/face.csv", "p02/face.csv"});
  add(face, {"p03/face.csv"});
  EXPECT_EQ("[[files]]  # 3 files: openface\npattern = \"{participant}/face.csv\"\n", patterns());
}

TEST_F(StudyDraft, ReadsThreeFilesOfEachKind)
{
  add("damaged", {"p01/face.csv", "p02/face.csv", "p03/face.csv"});
  add(face, {"p04/face.csv"});
  EXPECT_EQ(folder.path("") + ": there is no recording in this folder", error());
}

TEST_F(StudyDraft, NamesAllFormatsOfAPattern)
{
  add(face, {"p01/data.csv"});
  add(voice, {"p02/data.csv"});
  EXPECT_EQ("[[files]]  # 2 files: openface, tidy\npattern = \"{participant}/data.csv\"\n", patterns());
}

TEST_F(StudyDraft, DoesNotUseFilesOfOtherParticipants)
{
  add(face, {"p01/face.csv", "p02/face.csv", "p03/face.csv"});
  add(voice, {"s1/voice.csv", "s2/voice.csv"});
  EXPECT_EQ(
      "[[files]]  # 3 files: openface\npattern = \"{participant}/face.csv\"\n"
      "\n# not used: \"s1/voice.csv\"\n# not used: \"s2/voice.csv\"\n",
      patterns());
}

TEST_F(StudyDraft, DoesNotUseFilesThatAreOfNoOneSession)
{
  add(face, {"p01/hello/face.csv", "p01/bye/face.csv", "p02/hello/face.csv", "p03/bye/face.csv"});
  add(voice, {"p01/voice.csv", "p02/voice.csv"});
  EXPECT_EQ(
      "[[files]]  # 4 files: openface\npattern = \"{participant}/{condition}/face.csv\"\n"
      "\n# not used: \"p01/voice.csv\"\n# not used: \"p02/voice.csv\"\n",
      patterns());
}

TEST_F(StudyDraft, GivesThePartWithTheMostValuesToTheParticipant)
{
  add(face, {"day1/hello/p01.csv", "day1/bye/p02.csv", "day2/play/p03.csv", "day2/hello/p04.csv"});
  EXPECT_EQ("[[files]]  # 4 files: openface\npattern = \"{part3}/{condition}/{participant}.csv\"\n", patterns());
}

TEST_F(StudyDraft, UsesAParticipantThatIsThereTwiceAsOne)
{
  add(face, {"p01/p01_face.csv", "p02/p02_face.csv"});
  EXPECT_EQ("[[files]]  # 2 files: openface\npattern = \"{participant}/{participant}_face.csv\"\n", patterns());
}

TEST_F(StudyDraft, TakesPartsOfNamesAsItTakesFolders)
{
  folder.add("hello/p01_face.csv", face);
  folder.add("hello/p02_face.csv", face);
  folder.add("hello/p03_face.csv", face);
  folder.add("bye/p01_face.csv", face);
  folder.add("bye/p01_voice.csv", voice);
  folder.add("bye/p02_voice.csv", voice);
  folder.add("notes.txt", "nothing");
  const std::string text = draft();
  EXPECT_THAT(text, HasSubstr("[[files]]  # 4 files: openface\npattern = \"{condition}/{participant}_face.csv\"\n# 1 "
                              "of 5 sessions: no such file\n"));
  EXPECT_THAT(
      text,
      HasSubstr("pattern = \"{condition}/{participant}_voice.csv\"\noptional = true  # 3 of 5 sessions: no such file"));
  EXPECT_THAT(text, HasSubstr("# not used: \"notes.txt\"\n"));
  folder.add("study.toml", text);
  EXPECT_EQ(5U, session::planStudy(session::readStudy(folder.path("study.toml"))).sessions.size());
}

TEST_F(StudyDraft, TakesFilesOfOneFolder)
{
  folder.add("anna.csv", face);
  folder.add("ben.csv", face);
  EXPECT_THAT(draft(), HasSubstr("pattern = \"{participant}.csv\"\n"));
}

TEST_F(StudyDraft, HasTheFaceFirst)
{
  const std::string libreface =
      ",frame_idx,frame_time_in_ms,aligned_frame_path,facial_expression,au_1,au_12,au_1_intensity,au_12_intensity\n"
      "0,0,0.0,a.png,Happiness,0,1,0.0,3.0\n1,1,100.0,b.png,Happiness,0,1,0.0,3.0\n";
  for (const std::string person : {"p01", "p02"})
  {
    folder.add(person + "/audio.csv", voice);
    folder.add(person + "/libreface.csv", libreface);
  }
  const std::string text = draft();
  EXPECT_LT(text.find("libreface.csv"), text.find("audio.csv")) << text;
}

TEST_F(StudyDraft, NamesTenFilesThatItDoesNotUseWhateverTheirNamesHold)
{
  folder.add("p01/hello/face.csv", face);
  folder.add("p02/hello/face.csv", face);
  for (int i = 10; i < 21; ++i)
    folder.add("notes" + std::to_string(i) + "_\"a\\b\".csv", "nothing that is known\n");
  folder.add("notes21_\x01.csv", "nothing that is known\n");
  const std::string text = draft();
  EXPECT_THAT(text, HasSubstr(R"(# not used: "notes10_\"a\\b\".csv")"));
  EXPECT_THAT(text, HasSubstr("# not used: 2 more\n"));
  EXPECT_THAT(text, HasSubstr(R"(# not used: "notes21_\u0001.csv")"));
  folder.add("study.toml", text);
  EXPECT_EQ(2U, session::planStudy(session::readStudy(folder.path("study.toml"))).sessions.size());
}

TEST_F(StudyDraft, DoesNotReadStudyFiles)
{
  add(face, {"p01/face.csv", "p02/face.csv"});
  add("[study]\n", {"study.toml", "p01/older.toml"});
  EXPECT_EQ("[[files]]  # 2 files: openface\npattern = \"{participant}/face.csv\"\n", patterns());
}

TEST_F(StudyDraft, NeedsARecording)
{
  add(phases, {"p01/phases.txt", "p02/phases.txt"});
  add("nothing", {"notes.md"});
  EXPECT_EQ(folder.path("") + ": there is no recording in this folder", error()) << "labels are none";
}

TEST_F(StudyDraft, NeedsAFolderThatExists)
{
  EXPECT_EQ(folder.path("nowhere") + ": cannot be read: No such file or directory",
            support::textThrownBy<KV::recordings::Error>([this] { session::draftStudy(folder.path("nowhere")); }));
}

}  // namespace
