#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/labels.hpp>

#include <gmock/gmock.h>

#include <cstddef>
#include <set>
#include <string>

// Labels of coders as scopes, and results as labels.

namespace
{

using namespace replaytests;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::StartsWith;

/// Someone who turns from a smile to anger after 5 s.
std::string moods()
{
  std::string text = "time,person,reading,value\n";
  for (int i = 0; i <= 100; ++i)
  {
    const std::string time = std::to_string(i / 10) + "." + std::to_string(i % 10);
    const std::string smile = i < 50 ? "1" : "0";
    const std::string anger = i < 50 ? "0" : "1";
    text.append(time).append(",anna,expressions.joy,").append(smile).append("\n");
    text.append(time).append(",anna,expressions.anger,").append(anger).append("\n");
  }
  return text;
}

class LabelsOfACommand : public ::testing::Test
{
protected:
  const TemporaryFolder folder;
  const std::string recording = folder.write("face.csv", moods());
  const std::string boris = folder.write("coder.tsv",
                                         "Observation id\tSubject\tBehavior\tBehavior type\tStart (s)\tStop (s)\n"
                                         "one\tanna\tgreeting\tSTATE\t0\t5\n"
                                         "one\tanna\tdispute\tSTATE\t6\t10\n"
                                         "one\tben\tpause\tSTATE\t5\t6\n"
                                         "one\tanna\tbeep\tPOINT\t3\tNA\n");
};

TEST_F(LabelsOfACommand, AreScopesOfAReplay)
{
  const CommandResult result =
      runCommand({"replay", recording, "--scopes", boris, "--summary", folder.path("summary")});
  EXPECT_EQ(0, result.status) << result.errors;
  EXPECT_EQ("warning: " + boris + ": 1 label without duration left out: a scope needs a span\n",
            result.errors.substr(result.errors.find("warning: ")));
  EXPECT_THAT(folder.read("summary"),
              AllOf(HasSubstr(",greeting,0,5,complete,"), HasSubstr(",dispute,6,10,"), HasSubstr(",pause,5,6,")));
}

TEST_F(LabelsOfACommand, AreScopesOfATierAndMove)
{
  const CommandResult result = runCommand({"replay", recording, "-q", "--scopes", boris + ":anna", "--scopes-offset",
                                           "0.5", "--summary", folder.path("summary")});
  EXPECT_EQ(0, result.status) << result.errors;
  EXPECT_THAT(folder.read("summary"), AllOf(HasSubstr(",greeting,0.5,5.5,complete,"),
                                            HasSubstr(",dispute,6.5,10,cut short,"), Not(HasSubstr("pause"))));
}

TEST_F(LabelsOfACommand, AreRefusedByNameIfNoTierFits)
{
  const CommandResult result = runCommand({"replay", recording, "--scopes", boris + ":gaze"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: " + boris + ": has no label of tier 'gaze'; it has 'anna', 'ben', 'one'\n", result.errors);
  const CommandResult missing = runCommand({"replay", recording, "--scopes", folder.path("missing.eaf:gaze")});
  EXPECT_EQ(2, missing.status);
  EXPECT_THAT(missing.errors, HasSubstr("missing.eaf:gaze: there is no such file"));
}

TEST_F(LabelsOfACommand, AreWrittenBesideThoseOfTheCoderAndReadAgain)
{
  const std::string output = folder.path("out.eaf");
  const CommandResult result =
      runCommand({"replay", recording, "-q", "--scopes", boris, "--beside", boris, "--eaf", output});
  EXPECT_EQ(0, result.status) << result.errors;
  const KV::recordings::Labels labels = KV::recordings::readLabels(output);
  std::set<std::string> tiers;
  std::set<std::string> texts;
  for (const KV::recordings::LabelSpan& span : labels.spans)
  {
    tiers.insert(span.tier + " of " + span.coder);
    texts.insert(span.label);
  }
  EXPECT_THAT(tiers, IsSupersetOf({"one of coder", "one (2) of coder", "pleasure: anna (person 0) of skeigiot",
                                   "valence: anna (person 0) of skeigiot", "verdict: anna (person 0) of skeigiot"}));
  EXPECT_THAT(texts, Contains(StartsWith("greeting: ")));
  EXPECT_EQ(1U, texts.count("beep"));
  EXPECT_EQ(1U, texts.count("positive"));
}

TEST_F(LabelsOfACommand, OfAReplayAgreeWithIt)
{
  const std::string output = folder.path("out.eaf");
  ASSERT_EQ(0, runCommand({"replay", recording, "-q", "--eaf", output}).status);
  const CommandResult result = runCommand(
      {"agree", recording, "--labels", output, "--tier", "pleasure: anna (person 0)", "--csv", folder.path("csv")});
  EXPECT_EQ(0, result.status) << result.errors;
  const std::string table = folder.read("csv");
  const std::string before = ",kappa,,,";
  const std::size_t kappa = table.find(before);
  ASSERT_NE(std::string::npos, kappa) << table;
  EXPECT_GT(std::stod(table.substr(kappa + before.size())), 0.95) << "labels are cut to milliseconds";
}

TEST_F(LabelsOfACommand, AreWrittenAsALabelTrack)
{
  const CommandResult result = runCommand({"replay", recording, "-q", "--scope", "all=0..", "--audacity", "-"});
  EXPECT_EQ(0, result.status) << result.errors;
  EXPECT_THAT(result.output, AllOf(HasSubstr("\tpleasure: anna (person 0): positive\n"),
                                   HasSubstr("0.000000\t10.000000\tverdict: anna (person 0): all: ")));
}

TEST_F(LabelsOfACommand, OfTheCoderNeedAnExportThatKeepsThem)
{
  const CommandResult result = runCommand({"replay", recording, "--beside", boris, "--csv", "-"});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, HasSubstr("--beside: needs --eaf or --audacity, whose file keeps these labels"));
  EXPECT_EQ(2, runCommand({"replay", recording, "--beside", folder.path("missing"), "--eaf", "-"}).status);
}

}  // namespace
