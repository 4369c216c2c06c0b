#include <skeigiot/session/studycheck.hpp>

#include "studyfolder.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace session = KV::session;

const std::string head = "time,person,reading,value\n";
const std::string faces = "[[files]]\npattern = \"{participant}/{condition}/face.csv\"\n";
const std::string voices = "[[files]]\npattern = \"{participant}/{condition}/voice.csv\"\noptional = true\n";
const std::string codings = "[[labels]]\npattern = \"{participant}/{condition}/coding.csv\"\noptional = true\n";

/// Returns a recording from one second to another, with a person of its own.
std::string recording(double from, double to)
{
  static int person = 0;
  const std::string smile = "," + std::to_string(++person) + ",smile,1\n";
  return head + std::to_string(from) + smile + std::to_string(to) + smile;
}

/// Returns a recording whose times have dates.
std::string datedRecording()
{
  return R"({"time":1577836800000000000,"person":1,"observation":{"smile":{"value":1,"confidence":1}}})";
}

class StudyCheck : public ::testing::Test
{
protected:
  /// Returns "kind, session: text" of each problem.
  std::vector<std::string> problemsOf(const std::string& text, const session::StudyWork& work = {}) const
  {
    const session::Study study = folder.study(text);
    std::vector<std::string> lines;
    for (const session::StudyProblem& problem : session::checkStudy(study, session::planStudy(study), work))
      lines.push_back(std::string(session::problemName(problem.kind)) + ", " + problem.session + ": " + problem.text);
    return lines;
  }

  StudyFolder folder;
};

TEST_F(StudyCheck, FindsNothingInAGoodStudy)
{
  folder.add("p01/hello/face.csv", recording(0., 10.));
  folder.add("p01/hello/voice.csv", recording(1., 10.));
  folder.add("p01/hello/coding.csv", "start,end,value\n0,0.5,positive\n10,11,negative\n");
  EXPECT_THAT(problemsOf("minimum-length = 10\n" + faces + voices + codings), IsEmpty())
      << "each number is just the one that is allowed";
}

TEST_F(StudyCheck, FindsFilesThatCannotBeRead)
{
  folder.add("p01/hello/face.csv", head + "0,1,smile,1\n1,1,smile,wide\n");
  folder.add("p02/hello/face.csv", "nothing that is known\n");
  folder.add("p03/hello/face.csv", head);
  folder.add("p04/hello/face.csv", recording(0., 1.));
  folder.add("p04/hello/coding.csv", "no labels\n");
  const std::vector<std::string> problems = problemsOf(faces + codings);
  ASSERT_EQ(4U, problems.size());
  EXPECT_THAT(problems[0], HasSubstr("unreadable, p01/hello: p01/hello/face.csv:3: "));
  EXPECT_THAT(problems[1], HasSubstr("unreadable, p02/hello: p02/hello/face.csv"));
  EXPECT_EQ("unreadable, p03/hello: p03/hello/face.csv:1: there is no row below the header", problems[2]);
  EXPECT_THAT(problems[3], HasSubstr("unreadable, p04/hello: p04/hello/coding.csv: no format of labels fits"));
  for (const std::string& problem : problems)
    EXPECT_EQ(std::string::npos, problem.find('\n')) << problem;
}

TEST_F(StudyCheck, ContinuesBehindABadLineIfTheStudyDoes)
{
  folder.add("p01/hello/face.csv", head + "0,1,smile,1\n1,1,smile,wide\n2,1,smile,1\n");
  folder.add("p02/hello/face.csv", head + "1,1,smile,wide\n");
  EXPECT_THAT(problemsOf("minimum-length = 2\n" + faces + "[options]\nskip-bad = true\n"),
              ElementsAre("unreadable, p02/hello: p02/hello/face.csv: there is nothing in this recording"));
}

TEST_F(StudyCheck, ListsFaultsOfThePlanFirst)
{
  folder.add("p01/hello/voice.csv", "nothing that is known\n");
  const std::vector<std::string> problems = problemsOf(faces + voices + codings);
  ASSERT_EQ(2U, problems.size());
  EXPECT_EQ("missing, p01/hello: no file matches {participant}/{condition}/face.csv", problems[0]);
  EXPECT_THAT(problems[1], HasSubstr("unreadable, p01/hello: p01/hello/voice.csv"));
}

TEST_F(StudyCheck, DoesNotReadFilesThatDoNotExist)
{
  folder.add("p01/hello/face.csv", recording(0., 1.));
  EXPECT_THAT(
      problemsOf(faces + "[[sessions]]\nname = \"extra\"\nfiles = [\"gone.csv\"]\nlabels = [\"alsogone.csv\"]\n"),
      ElementsAre("missing, extra: gone.csv does not exist", "missing, extra: alsogone.csv does not exist"));
}

TEST_F(StudyCheck, PassesOverSessionsThatAreLeftOut)
{
  folder.add("p01/hello/face.csv", "nothing that is known\n");
  EXPECT_THAT(problemsOf(faces + "[[sessions]]\nname = \"p01/hello\"\nleft-out = \"the camera fell\"\n"), IsEmpty());
}

TEST_F(StudyCheck, FindsSessionsThatAreTooShort)
{
  folder.add("p01/hello/face.csv", recording(2., 11.987));
  EXPECT_THAT(problemsOf("minimum-length = 10\n" + faces),
              ElementsAre("too short, p01/hello: p01/hello/face.csv: is 9.99 s long; expected at least 10 s"));
}

TEST_F(StudyCheck, FindsFilesThatBeginFarApart)
{
  folder.add("p01/hello/face.csv", recording(0., 10.));
  folder.add("p01/hello/voice.csv", recording(1.5, 10.));
  folder.add("p02/hello/face.csv", recording(1.5, 10.));
  folder.add("p02/hello/voice.csv", recording(0., 10.));
  EXPECT_THAT(problemsOf(faces + voices),
              ElementsAre("not synchronised, p01/hello: p01/hello/voice.csv: begins 1.5 s after p01/hello/face.csv; "
                          "expected at most 1 s apart",
                          "not synchronised, p02/hello: p02/hello/voice.csv: begins -1.5 s after p02/hello/face.csv; "
                          "expected at most 1 s apart"));
  EXPECT_THAT(problemsOf("greatest-difference = 1.5\n" + faces + voices), IsEmpty());
}

TEST_F(StudyCheck, AddsTheOffsetOfAFile)
{
  folder.add("p01/hello/face.csv", recording(0., 10.));
  folder.add("p01/hello/voice.csv", recording(5., 10.));
  EXPECT_THAT(problemsOf(faces + voices + "offset = -4.5\n"), IsEmpty());
}

TEST_F(StudyCheck, FindsFilesThatDoNotOverlap)
{
  folder.add("p01/hello/face.csv", recording(0., 1.));
  folder.add("p01/hello/voice.csv", recording(1.5, 10.));
  folder.add("p02/hello/face.csv", recording(3., 4.));
  folder.add("p02/hello/voice.csv", recording(0., 2.5));
  EXPECT_THAT(problemsOf(faces + voices),
              ElementsAre("not synchronised, p01/hello: p01/hello/voice.csv: does not overlap p01/hello/face.csv: "
                          "begins 1.5 s after it",
                          "not synchronised, p02/hello: p02/hello/voice.csv: does not overlap p02/hello/face.csv: "
                          "begins -3 s after it"));
}

TEST_F(StudyCheck, FindsTimesWithDatesBesideTimesWithout)
{
  folder.add("p01/hello/face.csv", recording(0., 1.));
  folder.add("p01/hello/voice.csv", datedRecording());
  folder.add("p02/hello/face.csv", datedRecording() + "\n\n");
  folder.add("p02/hello/voice.csv", recording(0., 1.));
  EXPECT_THAT(problemsOf(faces + voices),
              ElementsAre("not synchronised, p01/hello: p01/hello/voice.csv: its times have dates, but those of "
                          "p01/hello/face.csv have none: set an offset",
                          "not synchronised, p02/hello: p02/hello/voice.csv: its times have no dates, but those of "
                          "p02/hello/face.csv have: set an offset"));
}

TEST_F(StudyCheck, ComparesNoTimesWithAFileThatCannotBeRead)
{
  folder.add("p01/hello/face.csv", "nothing that is known\n");
  folder.add("p01/hello/voice.csv", recording(100., 101.));
  folder.add("p01/hello/coding.csv", "start,end,value\n50,51,positive\n");
  folder.add("p02/hello/face.csv", recording(0., 10.));
  folder.add("p02/hello/voice.csv", head);
  EXPECT_EQ(2U, problemsOf(faces + voices + codings).size()) << "one for each unreadable file";
}

TEST_F(StudyCheck, FindsLabelsBehindTheEndOfTheRecording)
{
  folder.add("p01/hello/face.csv", recording(5., 15.));
  folder.add("p01/hello/coding.csv", "start,end,value\n9,12,positive\n10.5,11,negative\n20,21,neutral\n");
  EXPECT_THAT(problemsOf(faces + codings),
              ElementsAre("not synchronised, p01/hello: p01/hello/coding.csv: 2 labels after the end of the recording "
                          "at 10 s"));
}

TEST_F(StudyCheck, FindsFilesWithTheSameContents)
{
  const std::string same = recording(0., 10.);
  folder.add("p01/hello/face.csv", same);
  folder.add("p02/hello/face.csv", recording(0., 10.));
  folder.add("p02/hello/voice.csv", same);
  folder.add("p03/hello/face.csv", same);
  const std::vector<std::string> expected{
      "doubled, p02/hello: p02/hello/voice.csv: has the same contents as p01/hello/face.csv",
      "doubled, p03/hello: p03/hello/face.csv: has the same contents as p01/hello/face.csv"};
  EXPECT_EQ(expected, problemsOf(faces + voices));
  EXPECT_EQ(expected, problemsOf(faces + voices, {3, {}, {}})) << "with any number of jobs";
}

TEST_F(StudyCheck, ListsFilesThatNoPatternMatchesLast)
{
  folder.add("p01/hello/face.csv", recording(0., 1.));
  folder.add("notes.csv", "a,b\n");
  EXPECT_THAT(problemsOf("minimum-length = 2\n" + faces),
              ElementsAre("too short, p01/hello: p01/hello/face.csv: is 1 s long; expected at least 2 s",
                          "not used, : notes.csv: matches no pattern of the study file"));
}

}  // namespace
