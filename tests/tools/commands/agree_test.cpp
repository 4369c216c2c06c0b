#include "support/command.hpp"
#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Json = nlohmann::json;
using Texts = std::vector<std::string>;

/// A person smiles from 5 s on, for 20 s in all, at 10 observations in each second.
std::string smileFrom5s()
{
  std::string text = "frame,face_id,timestamp,confidence,success";
  const std::vector<int> units{1, 2, 4, 5, 6, 7, 9, 10, 12, 14, 15, 17, 20, 23, 25, 26, 45};
  for (const int unit : units)
    text += std::string(unit < 10 ? ",AU0" : ",AU") + std::to_string(unit) + "_r";
  for (int i = 0; i < 200; ++i)
  {
    text += "\n" + std::to_string(i + 1) + ",1," + std::to_string(i / 10) + "." + std::to_string(i % 10) + ",0.95,1";
    for (const int unit : units)
      text += i >= 50 && (unit == 6 || unit == 12) ? ",5" : ",0";
  }
  return text + "\n";
}

class AgreeCommand : public ::testing::Test
{
protected:
  CommandResult agree(const Texts& options) const
  {
    Texts arguments{"agree", recording, "--labels", labels};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runCommand(arguments);
  }

  TemporaryFolder folder;
  const std::string recording = folder.write("face.csv", smileFrom5s());
  const std::string labels = folder.write("anna.csv", "start,end,value\n6,20,smiling\n");
  const Texts meaning{"--label", "smiling=positive", "--unlabelled", "neutral"};
};

TEST_F(AgreeCommand, ShowsMeasuresTableAndWhatWasLeftOut)
{
  const CommandResult result = agree(meaning);
  EXPECT_EQ("", result.errors);
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.output, StartsWith("pleasure: estimate and anna\n\nperson  measure "));
  EXPECT_THAT(result.output, HasSubstr("\n1       compared "));
  EXPECT_THAT(result.output, Not(HasSubstr("\nall "))) << "the only person is all";
  EXPECT_THAT(result.output, HasSubstr("\n        kappa "));
  EXPECT_THAT(result.output, HasSubstr("\nestimate \\ anna "));
  EXPECT_THAT(result.output, HasSubstr("\nleft out: "));
  EXPECT_THAT(result.output, HasSubstr("\nintervals of 95 %: 1000 resamples of 2 blocks of 10.0 s\n"));
}

TEST_F(AgreeCommand, HasTheSameContentsAsJson)
{
  Texts options = meaning;
  options.emplace_back("--json");
  const CommandResult result = agree(options);
  const Json json = Json::parse(result.output);
  ASSERT_EQ(2U, json["comparisons"].size());
  EXPECT_EQ("pleasure", json["comparisons"][0]["quantity"]);
  EXPECT_EQ(1, json["comparisons"][1]["person"]);
  EXPECT_GT(json["comparisons"][0]["undelayed"]["measures"][0]["value"].get<double>(), 0.5);
}

TEST_F(AgreeCommand, WritesCsvBesideTheTextOrInstead)
{
  Texts options = meaning;
  options.insert(options.end(), {"--csv", folder.path("all.csv")});
  EXPECT_THAT(agree(options).output, StartsWith("pleasure: "));
  const std::string csv = folder.read("all.csv");
  EXPECT_THAT(csv, StartsWith("quantity,first,second,person,at,delay,measure,class,other_class,value,low,high\n"));
  options.back() = "-";
  EXPECT_EQ(csv, agree(options).output);
  options.emplace_back("--json");
  EXPECT_EQ(2, agree(options).status);
}

TEST_F(AgreeCommand, ReadsSeveralCodersAndSaysHowTheyAgree)
{
  Texts options = meaning;
  options.insert(options.end(), {"--labels", folder.write("ben.txt", "7.0\t20.0\tsmiling\n")});
  const std::string output = agree(options).output;
  EXPECT_THAT(output, HasSubstr("pleasure: estimate and ben\n"));
  EXPECT_THAT(output, HasSubstr("pleasure: anna and ben\n"));
}

TEST_F(AgreeCommand, SaysWhichLabelsMeanNothing)
{
  const CommandResult result = agree({});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("", result.output);
  EXPECT_EQ("skeigiot: no label can be compared: labels without a state left out: 'smiling' (1)\n", result.errors);
}

TEST_F(AgreeCommand, RefusesWhatCannotBeRead)
{
  const std::string bad = folder.write("bad.csv", "start,end,value\n0,x,a\n");
  const CommandResult result = runCommand({"agree", recording, "--labels", bad});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: " + bad + ":2: end: expected a number, found 'x'\n", result.errors);
  EXPECT_EQ(2, runCommand({"agree", recording}).status);
  EXPECT_EQ(2, runCommand({"agree", folder.path("none.csv"), "--labels", labels}).status);
}

struct BadOption
{
  const char* name;
  Texts options;
  const char* message;
};
class AgreeOption : public AgreeCommand, public ::testing::WithParamInterface<BadOption>
{};

TEST_P(AgreeOption, IsRefused)
{
  const CommandResult result = agree(GetParam().options);
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    OfNoUse, AgreeOption,
    ::testing::Values(
        BadOption{"Label", {"--label", "smiling"}, "--label: expected LABEL=STATE, found 'smiling'"},
        BadOption{"State", {"--label", "smiling=happy"}, "expected a state, one of negative, neutral, positive"},
        BadOption{"Unlabelled", {"--unlabelled", "x"}, "--unlabelled: expected a state"},
        BadOption{"Scale", {"--scale", "1..1"}, "--scale: expected FROM..TO, two numbers that differ"},
        BadOption{"Person", {"--person", "anna"}, "--person: expected NAME=NUMBER or NUMBER"},
        BadOption{"Value", {"--value", "mood"}, "--value: expected one of valence, attention"},
        BadOption{"Delay", {"--max-delay", "-1"}, "--max-delay: expected a number from 0 to 60"}),
    support::RowName());

}  // namespace
