#include "ros/rosparameters.hpp"

#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::tools::RosParameter;

std::vector<RosParameter> read(const std::string& text, const std::string& node = "skeigiot")
{
  std::istringstream stream(text);
  return KV::tools::readRosParameters(stream, "robot.yaml", node);
}

std::string refusalOf(const std::string& text)
{
  try
  {
    read(text);
  }
  catch (const std::invalid_argument& error)
  {
    return error.what();
  }
  return "";
}

TEST(RosParameters, AreThoseOfTheNodeAndOfAllNodes)
{
  const std::vector<RosParameter> parameters = read(R"(# a comment
/**:
  ros__parameters:
    use_sim_time: false
camera:
  ros__parameters: {rate: 30, list: [[1], {a: 2}]}
skeigiot:
  ros__parameters:
    cycle: 20
    look_at: [0, 0.2, 0]
    boundary:
      positive: 0.3
/skeigiot:
  ros__parameters: {rest: "none"}
)");
  ASSERT_EQ(5U, parameters.size());
  EXPECT_EQ("use_sim_time", parameters[0].name);
  EXPECT_TRUE(parameters[0].isForAll);
  EXPECT_EQ("cycle", parameters[1].name);
  EXPECT_EQ("20", parameters[1].value);
  EXPECT_EQ("robot.yaml: line 9", parameters[1].place);
  EXPECT_FALSE(parameters[1].isForAll);
  EXPECT_EQ("look_at", parameters[2].name);
  EXPECT_EQ("0,0.2,0", parameters[2].value);
  EXPECT_EQ("boundary.positive", parameters[3].name);
  EXPECT_EQ("0.3", parameters[3].value);
  EXPECT_EQ("robot.yaml: line 12", parameters[3].place);
  EXPECT_EQ("rest", parameters[4].name);
  EXPECT_EQ("none", parameters[4].value);
}

TEST(RosParameters, AreFoundByEachFormOfTheNameOfTheNode)
{
  for (const std::string name : {"robot", "/robot", "/**/robot", "/**", "/*"})
  {
    const std::vector<RosParameter> parameters = read(name + ": {ros__parameters: {cycle: 20}}\n", "robot");
    ASSERT_EQ(1U, parameters.size()) << name;
    EXPECT_EQ(name == "/**" || name == "/*", parameters[0].isForAll) << name;
  }
  for (const std::string name : {"skeigiot", "/robot/", "//robot", "/home/robot", "**", "Robot"})
    EXPECT_THROW(read(name + ": {ros__parameters: {cycle: 20}}\n", "robot"), std::invalid_argument) << name;
}

TEST(RosParameters, OfAllDocumentsOfAFileAreRead)
{
  const std::string document = "skeigiot: {ros__parameters: {cycle: 20}}\n";
  const std::vector<RosParameter> parameters = read(document + "---\n" + document);
  ASSERT_EQ(2U, parameters.size());
  EXPECT_EQ("robot.yaml: line 3", parameters[1].place);
}

TEST(RosParameters, MayBeThereOnceForEachFormOfTheNameOfTheNode)
{
  const std::vector<RosParameter> parameters = read(R"(/**: {ros__parameters: {cycle: 10, hold: 1}}
skeigiot: {ros__parameters: {cycle: 20}}
/skeigiot: {ros__parameters: {cycle: 30, boundary: {positive: 0.1, negative: -0.1}, look_at: [1, 1, 1]}}
)");
  ASSERT_EQ(7U, parameters.size());
  EXPECT_EQ("10", parameters[0].value);
  EXPECT_EQ("20", parameters[2].value);
  EXPECT_EQ("30", parameters[3].value);
}

TEST(RosParameters, KeepEmptyTextsOfLists)
{
  const std::vector<RosParameter> parameters = read("skeigiot: {ros__parameters: {a: ['', ''], b: [], c: ''}}\n");
  ASSERT_EQ(3U, parameters.size());
  EXPECT_EQ(",", parameters[0].value);
  EXPECT_EQ("", parameters[1].value);
  EXPECT_EQ("", parameters[2].value);
}

TEST(RosParameters, MayBeNone)
{
  EXPECT_TRUE(read("skeigiot: {ros__parameters: }\n").empty());
}

struct RefusedFile
{
  const char* name;
  std::string text;
  std::string message;
};

class RosParametersRefuse : public ::testing::TestWithParam<RefusedFile>
{};

TEST_P(RosParametersRefuse, AFileByFileLineAndField)
{
  EXPECT_EQ("robot.yaml: " + GetParam().message, refusalOf(GetParam().text));
}

const std::string head = "skeigiot:\n  ros__parameters:\n";
const std::string noNode =
    "has no parameters of the node 'skeigiot': expected 'skeigiot:' or '/**:' with 'ros__parameters:' below it";

INSTANTIATE_TEST_SUITE_P(
    Each, RosParametersRefuse,
    ::testing::Values(
        RefusedFile{"OfAnotherNode", "camera:\n  ros__parameters:\n    rate: 3\n",
                    noNode + ", found 'camera' in line 1"},
        RefusedFile{"WithNothing", "\n", noNode}, RefusedFile{"WithTheNodeOnly", "skeigiot:\n", noNode},
        RefusedFile{"WithoutTheKey", "skeigiot:\n  cycle: 3\n", "line 2: skeigiot.cycle: expected 'ros__parameters'"},
        RefusedFile{"WithATextForTheNode", "skeigiot: 3\n",
                    "line 1: skeigiot: expected names with values below it, found '3'"},
        RefusedFile{"WithAText", "text\n", "line 1: expected names with values below it, found 'text'"},
        RefusedFile{"WithAListForTheNode", "skeigiot: [3]\n",
                    "line 1: skeigiot: expected names with values below it, found a list"},
        RefusedFile{"WithAListOfLists", head + "    look_at: [[1]]\n", "line 3: look_at: is a list of lists"},
        RefusedFile{"WithAListOfGroups", head + "    look_at: [{a: 1}]\n", "line 3: look_at: is a list of groups"},
        RefusedFile{"WithoutAValue", head + "    cycle:\n", "line 3: cycle: has no value"},
        RefusedFile{"WithALongName", head + "    " + std::string(1000, 'a') + ":\n",
                    "line 3: " + std::string(80, 'a') + "...: has no value"},
        RefusedFile{"WithoutAValueInAList", head + "    look_at: [0, ~]\n", "line 3: look_at: has no value"},
        RefusedFile{"WithoutAName", head + "    ~: 3\n", "line 3: a name is missing"},
        RefusedFile{"WithAParameterTwice", head + "    cycle: 20\n    hold: 1\n    cycle: 30\n",
                    "line 5: cycle: is given twice, for the first time in line 3"},
        RefusedFile{"WithAGroupTwice", head + "    boundary: {positive: 0.3}\n    boundary: {negative: -0.3}\n",
                    "line 4: boundary: is given twice, for the first time in line 3"},
        RefusedFile{"WithAParameterTwiceInAGroup", head + "    boundary:\n      positive: 0.3\n      positive: 0.3\n",
                    "line 5: boundary.positive: is given twice, for the first time in line 4"},
        RefusedFile{"WithAParameterInAGroupAndByItsFullName",
                    head + "    boundary: {positive: 0.3}\n    boundary.positive: 0.3\n",
                    "line 4: boundary.positive: is given twice, for the first time in line 3"},
        RefusedFile{"WithAListTwice", head + "    look_at: [0, 1, 2]\n    look_at: [3]\n",
                    "line 4: look_at: is given twice, for the first time in line 3"},
        RefusedFile{"WithAParameterTwiceInQuotes", head + "    cycle: 20\n    'cycle': 20\n",
                    "line 4: cycle: is given twice, for the first time in line 3"},
        RefusedFile{"WithTheNodeTwice", head + "    cycle: 20\n" + head + "    cycle: 20\n",
                    "line 4: skeigiot: is given twice, for the first time in line 1"},
        RefusedFile{"WithTheKeyTwice", head + "    cycle: 20\n  ros__parameters: {hold: 1}\n",
                    "line 4: skeigiot.ros__parameters: is given twice, for the first time in line 2"},
        RefusedFile{"WithAParameterOfAllNodesTwice", "/**:\n  ros__parameters:\n    cycle: 1\n    cycle: 2\n",
                    "line 4: cycle: is given twice, for the first time in line 3"},
        RefusedFile{"WithAParameterOfAnotherNodeTwice",
                    "camera:\n  ros__parameters:\n    rate: 1\n    rate: 2\n" + head + "    cycle: 20\n",
                    "line 4: rate: is given twice, for the first time in line 3"},
        RefusedFile{"WithAListAsAName", head + "    ? [a]\n    : 3\n",
                    "line 3: expected a name, found a list or a group"},
        RefusedFile{"WithTwoAnchorsThatGrow", head + "    a: [1, 1]\n    b: &b [2, 2]\n    c: [*b, *b]\n",
                    "line 4: b: anchors and aliases are not read"},
        RefusedFile{"WithAnAnchor", head + "    a: &x 1\n    b: *x\n", "line 3: a: anchors and aliases are not read"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(RosParameters, OfAFileThatIsNoYamlAreRefusedByLine)
{
  EXPECT_EQ(0U, refusalOf(head + "    a: [1\n").find("robot.yaml: line ")) << refusalOf(head + "    a: [1\n");
}

TEST(RosParameters, OfADeepFileAreRefused)
{
  constexpr std::size_t levels = 100'000;
  for (const std::string& deep : {std::string(levels, '['), "camera: " + std::string(levels, '['),
                                  "camera: " + std::string(levels, '{'), std::string(levels, '-')})
    EXPECT_EQ(0U, refusalOf(deep).find("robot.yaml: ")) << deep.substr(0, 10);
}

TEST(RosParameters, OfALongFileAreRefused)
{
  constexpr std::size_t tooLong = (std::size_t{1} << 20U) + 1;
  EXPECT_EQ("robot.yaml: has more than 1048576 bytes", refusalOf(std::string(tooLong, '#')));
}

TEST(RosParameters, OfAFileThatIsNotThereAreRefused)
{
  const replaytests::TemporaryFolder folder;
  const std::string file = folder.path("robot.yaml");
  const auto refusal = [](const std::string& path) -> std::string {
    try
    {
      KV::tools::readRosParameters(path, "skeigiot");
      return "";
    }
    catch (const std::invalid_argument& error)
    {
      return error.what();
    }
  };
  EXPECT_EQ(file + ": there is no such file", refusal(file));
  EXPECT_EQ(folder.path("") + ": cannot be read", refusal(folder.path("")));
  std::ofstream(file) << "";
  EXPECT_EQ(file + ": " + noNode, refusal(file));
  std::ofstream(file) << "/**: {ros__parameters: {cycle: 20}}";
  EXPECT_EQ("", refusal(file));
}

std::string refusalOfText(const std::string& text)
{
  try
  {
    KV::tools::parseRosParameter(text);
    return "";
  }
  catch (const std::invalid_argument& error)
  {
    return error.what();
  }
}

TEST(RosParameters, OfTheCommandLineHaveANameAndAValueInYaml)
{
  const auto valueOf = [](const std::string& text) {
    const std::vector<RosParameter> parameters = KV::tools::parseRosParameter(text);
    EXPECT_EQ(1U, parameters.size()) << text;
    EXPECT_EQ("--param", parameters.at(0).place);
    EXPECT_FALSE(parameters.at(0).isForAll);
    return parameters.at(0).name + " is " + parameters.at(0).value;
  };
  EXPECT_EQ("boundary.positive is 0.3", valueOf("boundary.positive:=0.3"));
  EXPECT_EQ("boundary.positive is 0.3", valueOf("boundary:={positive: 0.3}"));
  EXPECT_EQ("look_at is 0,0.2,0", valueOf("look_at:=[0, 0.2, 0]"));
  EXPECT_EQ("look_at is 0,0.2,0", valueOf("look_at:=0,0.2,0"));
  EXPECT_EQ("rest is none", valueOf("rest:='none'"));
  EXPECT_EQ("rest is a:=b", valueOf("rest:=a:=b"));
  EXPECT_EQ(2U, KV::tools::parseRosParameter("boundary:={positive: 0.3, negative: -0.3}").size());
}

TEST(RosParameters, OfTheCommandLineInAnotherFormAreRefused)
{
  EXPECT_EQ("expected NAME:=VALUE, found 'cycle=3'", refusalOfText("cycle=3"));
  EXPECT_EQ("expected NAME:=VALUE, found ':=3'", refusalOfText(":=3"));
  EXPECT_EQ("cycle: has no value", refusalOfText("cycle:="));
  EXPECT_EQ("cycle: has no value", refusalOfText("cycle:=~"));
  EXPECT_EQ("cycle: anchors and aliases are not read", refusalOfText("cycle:=&a 3"));
  EXPECT_EQ("cycle: is a list of lists", refusalOfText("cycle:=[[3]]"));
  EXPECT_EQ("boundary.positive: is given twice", refusalOfText("boundary:={positive: 0.3, positive: 0.3}"));
  EXPECT_EQ(0U, refusalOfText("cycle:=[3").find("cycle: "));
  EXPECT_EQ("cycle: is no YAML: illegal EOF in scalar", refusalOfText("cycle:='3"));
}

}  // namespace
