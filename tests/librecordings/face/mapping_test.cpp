#include "face/mapping.hpp"
#include "librecordings/support.hpp"

#include <gmock/gmock.h>

#include <ostream>

namespace
{
using ::testing::ElementsAre;

class Mapping : public ::testing::Test
{
protected:
  KV::recordings::Mapping read(const std::string& json) const
  {
    return KV::recordings::readMapping(folder.write("m.json", json));
  }

  /// Returns the message after the name of the file; empty if there is no error.
  std::string errorOf(const std::string& json) const
  {
    try
    {
      read(json);
      return {};
    }
    catch (const KV::recordings::Error& error)
    {
      return std::string(error.what()).substr(folder.path("m.json").size() + 2);
    }
  }

  support::TemporaryFolder folder;
};

TEST_F(Mapping, ReplacesWhatItNamesAndNothingElse)
{
  const auto mapping = read(R"({"blendshapes": {"joy": {"sum": [{"of": ["mouthSmileLeft", "jawOpen"], "weight": 0.5}],
                                                        "limit": [{"of": ["jawOpen"]}]}}})");
  ASSERT_EQ(1u, mapping.blendshapes.joy.sum.size());
  EXPECT_FLOAT_EQ(0.5f, mapping.blendshapes.joy.sum.front().weight);
  EXPECT_THAT(mapping.blendshapes.joy.sum.front().of, ElementsAre("mouthSmileLeft", "jawOpen"));
  EXPECT_FLOAT_EQ(1.f, mapping.blendshapes.joy.limit.front().weight);
  EXPECT_THAT(mapping.blendshapes.smile.sum.front().of, ElementsAre("mouthSmileLeft", "mouthSmileRight"));
  EXPECT_THAT(mapping.actionUnits.joy.sum.front().of, ElementsAre("AU12"));
  EXPECT_FALSE(mapping.pyFeat.degrees);
}

TEST_F(Mapping, IsTheBuiltInOneWithoutAFile)
{
  EXPECT_THAT(KV::recordings::readMapping("").emotions.sorrow.sum.front().of, ElementsAre("sad"));
  EXPECT_FLOAT_EQ(30.f, KV::recordings::readMapping("").eyes.yaw);
}

TEST_F(Mapping, SetsHowScoresRest)
{
  const auto mapping = read(R"({"actionUnits": {"rest": {"AU04": {"typical": 0.25}, "AU17": {"most": 0.125}}}})");
  EXPECT_FLOAT_EQ(0.25f, mapping.actionUnits.rest.at("AU04").typical);
  EXPECT_FLOAT_EQ(0.5f, mapping.actionUnits.rest.at("AU04").most) << "as it was";
  EXPECT_FLOAT_EQ(0.f, mapping.actionUnits.rest.at("AU17").typical);
  EXPECT_FLOAT_EQ(0.125f, mapping.actionUnits.rest.at("AU17").most);
  EXPECT_FLOAT_EQ(0.35f, mapping.pyFeatActionUnits.rest.at("AU04").typical) << "py-feat's faces rest otherwise";
}

TEST_F(Mapping, TakesPyFeatsActionUnitsFromTheOthersWhereItDoesNotNameThem)
{
  const auto mapping = read(R"({"pyFeatActionUnits": {"sorrow": {"sum": [{"of": ["AU17"]}]}},
                                "actionUnits": {"joy": {"sum": [{"of": ["AU06"]}]}}})");
  EXPECT_THAT(mapping.pyFeatActionUnits.joy.sum.front().of, ElementsAre("AU06"));
  EXPECT_THAT(mapping.pyFeatActionUnits.sorrow.sum.front().of, ElementsAre("AU17"));
  EXPECT_THAT(mapping.actionUnits.sorrow.sum.front().of, ElementsAre("AU04"));
}

TEST_F(Mapping, ReadsTheTableOfArkitsShapes)
{
  const auto mapping = read(R"({"arkit": {"joy": {"sum": [{"of": ["jawOpen"]}]}}})");
  EXPECT_THAT(mapping.arkit.joy.sum.front().of, ElementsAre("jawOpen"));
  EXPECT_THAT(mapping.blendshapes.joy.sum.front().of, ElementsAre("mouthSmileLeft", "mouthSmileRight"));
}

TEST_F(Mapping, NeedsAFileThatIsThere)
{
  EXPECT_THROW(KV::recordings::readMapping(folder.path("none.json")), KV::recordings::Error);
}

struct BadMappingCase
{
  const char* name;
  const char* json;
  const char* message;
};

void PrintTo(const BadMappingCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class BadMapping : public Mapping, public ::testing::WithParamInterface<BadMappingCase>
{};

TEST_P(BadMapping, IsNamed)
{
  EXPECT_EQ(GetParam().message, errorOf(GetParam().json));
}

INSTANTIATE_TEST_SUITE_P(
    With, BadMapping,
    ::testing::Values(
        BadMappingCase{"AnUnknownTable", R"({"actionunits": {}})",
                       "actionunits: there is no such member; expected actionUnits, pyFeatActionUnits, "
                       "blendshapes, arkit, emotions, pyFeat, speakers, streams"},
        BadMappingCase{"NoObject", "[]",
                       "expected an object with members of actionUnits, pyFeatActionUnits, blendshapes, arkit, "
                       "emotions, pyFeat, speakers, streams, found '[]'"},
        BadMappingCase{"AnUnknownReading", R"({"emotions": {"happy": null}})",
                       "emotions.happy: there is no such member; expected smile, joy, sorrow, surprise, anger, "
                       "laughter, excitement, calm"},
        BadMappingCase{"AnUnknownScore", R"({"actionUnits": {"joy": {"sum": [{"of": ["AU06", "AU6"]}]}}})",
                       "actionUnits.joy.sum[0].of[1]: expected the name of an action unit, such as AU06, found "
                       "'\"AU6\"'"},
        BadMappingCase{"NoScore", R"({"blendshapes": {"joy": {"sum": [{"of": []}]}}})",
                       "blendshapes.joy.sum[0].of: expected a list of the name of a blendshape, such as jawOpen, found "
                       "'[]'"},
        BadMappingCase{"NoSum", R"({"blendshapes": {"joy": {"limit": []}}})",
                       "blendshapes.joy: expected null, or an object with a member sum that is not empty, found "
                       "'{\"limit\":[]}'"},
        BadMappingCase{"ATextAsWeight", R"({"blendshapes": {"joy": {"sum": [{"of": ["jawOpen"], "weight": "2"}]}}})",
                       "blendshapes.joy.sum[0].weight: expected a number of no more than a million, found '\"2\"'"},
        BadMappingCase{"ATermWithoutScores", R"({"emotions": {"joy": {"sum": [{"weight": 1}]}}})",
                       "emotions.joy.sum[0]: expected a term with a member of, found '{\"weight\":1}'"},
        BadMappingCase{
            "AnOffsetThatIsTooGreat",
            R"({"streams": [{"stream": "S", "channels": {"smile": {"channel": 1, "offset": 1.005e9}}}]})",
            "streams[0].channels.smile.offset: expected a number of no more than a billion, found '1005000000.0'"},
        BadMappingCase{"ARestThatIsNoShare", R"({"actionUnits": {"rest": {"AU04": {"typical": 1.5}}}})",
                       "actionUnits.rest.AU04.typical: expected a number from 0 to 1, found '1.5'"},
        BadMappingCase{"ARestOfAnUnknownScore", R"({"arkit": {"rest": {"browdown": {"typical": 0.1}}}})",
                       "arkit.rest.browdown: there is no such member; expected the name of a blendshape, such as "
                       "jawOpen"},
        BadMappingCase{"ARestOfEmotions", R"({"emotions": {"rest": {}}})",
                       "emotions.rest: there is no such member; expected smile, joy, sorrow, surprise, anger, "
                       "laughter, excitement, calm"},
        BadMappingCase{"NoListOfTerms", R"({"emotions": {"joy": {"sum": {"of": ["happy"]}}}})",
                       "emotions.joy.sum: expected a list of terms, found '{\"of\":[\"happy\"]}'"},
        BadMappingCase{
            "AnUnknownEmotion", R"({"emotions": {"joy": {"sum": [{"of": ["joy"]}]}}})",
            "emotions.joy.sum[0].of[0]: expected one of neutral, happy, sad, surprise, fear, disgust, anger, "
            "found '\"joy\"'"},
        BadMappingCase{
            "ARestThatIsNoObject", R"({"actionUnits": {"rest": 0.1}})",
            "actionUnits.rest: expected an object with a member for each score that does not rest at 0, found "
            "'0.1'"},
        BadMappingCase{"AnUnknownUnit", R"({"pyFeat": {"angles": "gon"}})",
                       "pyFeat.angles: expected \"degrees\" or \"radians\", found '\"gon\"'"},
        BadMappingCase{"AnUnknownEye", R"({"blendshapes": {"eyes": {"left": 3}}})",
                       "blendshapes.eyes.left: there is no such member; expected yaw, pitch"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Mapping, MustBeJson)
{
  EXPECT_THAT(errorOf("{\"emotions\": "), ::testing::StartsWith("expected a JSON object, but ")) << "names no line";
  EXPECT_EQ("is nested too deep: this is no mapping", errorOf(std::string(500000, '[') + std::string(500000, ']')));
  EXPECT_EQ("is larger than 1 MiB: this is no mapping", errorOf(std::string((std::size_t{1} << 20U) + 1, ' ')));
}

}  // namespace
