#include "support/command.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace
{

using nlohmann::json;
using replaytests::CommandResult;
using replaytests::runCommand;

TEST(TypesCommand, ListsEveryRecordWithItsMembers)
{
  const CommandResult result = runCommand({"types"});

  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  EXPECT_EQ(0U, result.output.find("::KV::AmbianceState\n  agitationLevel  float\n  calmLevel       float\n\n"
                                   "KV::BodyLanguageEase\n  level       float\n  confidence  float\n\n"));
  EXPECT_NE(std::string::npos, result.output.find("\n\n::KV::Person\n"
                                                  "  personID     int32\n  personState  ::KV::PersonState\n"));
}

TEST(TypesCommand, ListsTheThirteenRecordsInTheOrderOfRegistration)
{
  const CommandResult result = runCommand({"types", "--json"});

  std::vector<std::string> names;
  for (const json& type : json::parse(result.output))
    names.push_back(type.at("className"));
  const std::vector<std::string> expected = {"::KV::AmbianceState",
                                             "KV::BodyLanguageEase",
                                             "::KV::BodyLanguageStatePrivate",
                                             "::KV::BodyLanguageState",
                                             "::KV::ValueConfidence<bool>",
                                             "::KV::ValueConfidence<float>",
                                             "::KV::ValueConfidence<unsigned int>",
                                             "::KV::Expressions",
                                             "::KV::Gaze",
                                             "::KV::Smile",
                                             "::KV::PersonStatePrivate",
                                             "::KV::PersonState",
                                             "::KV::Person"};
  EXPECT_EQ(expected, names);
}

TEST(TypesCommand, ShowsOneRecordWithTheMembersOfItsMembers)
{
  const CommandResult result = runCommand({"types", "KV::BodyLanguageState"});

  EXPECT_EQ(0, result.status);
  EXPECT_EQ("::KV::BodyLanguageState\n  ease  KV::BodyLanguageEase\n    level       float\n    confidence  float\n",
            result.output);
}

TEST(TypesCommand, ShowsOneRecordAsJson)
{
  const CommandResult result = runCommand({"types", "KV::BodyLanguageState", "--json"});

  const json ease = {
      {"name", "ease"},
      {"type", "KV::BodyLanguageEase"},
      {"members", {{{"name", "level"}, {"type", "float"}}, {{"name", "confidence"}, {"type", "float"}}}}};
  EXPECT_EQ(json::array({{{"className", "::KV::BodyLanguageState"}, {"members", {ease}}}}), json::parse(result.output));
}

TEST(TypesCommand, RefusesANameThatIsNotRegistered)
{
  const CommandResult result = runCommand({"types", "KV::Robot"});

  EXPECT_EQ(2, result.status);
  EXPECT_EQ("", result.output);
  EXPECT_EQ("skeigiot: no struct 'KV::Robot' is registered; try 'skeigiot types'\n", result.errors);
}

}  // namespace
