#include "face/mapping.hpp"
#include "librecordings/support.hpp"

#include <skeigiot/recordings/builtinmapping.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <string>

namespace
{
using KV::recordings::Mapping;
using KV::recordings::readMapping;
using nlohmann::json;

void expectEqual(const std::vector<KV::recordings::ScoreTerm>& expected,
                 const std::vector<KV::recordings::ScoreTerm>& actual)
{
  ASSERT_EQ(expected.size(), actual.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
  {
    EXPECT_EQ(expected[i].weight, actual[i].weight);
    EXPECT_EQ(expected[i].of, actual[i].of);
  }
}

void expectEqual(const KV::recordings::ScoreTable& expected, const KV::recordings::ScoreTable& actual)
{
  for (const auto& member : KV::recordings::scoreTableMembers())
  {
    SCOPED_TRACE(member.name);
    expectEqual((expected.*member.composition).sum, (actual.*member.composition).sum);
    expectEqual((expected.*member.composition).limit, (actual.*member.composition).limit);
  }
  ASSERT_EQ(expected.rest.size(), actual.rest.size());
  for (const auto& [name, score] : expected.rest)
  {
    SCOPED_TRACE(name);
    EXPECT_EQ(score.typical, actual.rest.at(name).typical);
    EXPECT_EQ(score.most, actual.rest.at(name).most);
  }
}

TEST(BuiltInMapping, ChangesNothingWhenItIsRead)
{
  const support::TemporaryFolder folder;
  const Mapping expected = readMapping({});
  const Mapping actual = readMapping(folder.write("m.json", KV::recordings::builtInMapping()));

  expectEqual(expected.actionUnits, actual.actionUnits);
  expectEqual(expected.pyFeatActionUnits, actual.pyFeatActionUnits);
  expectEqual(expected.blendshapes, actual.blendshapes);
  expectEqual(expected.arkit, actual.arkit);
  expectEqual(expected.emotions, actual.emotions);
  EXPECT_EQ(expected.eyes.yaw, actual.eyes.yaw);
  EXPECT_EQ(expected.eyes.pitch, actual.eyes.pitch);
  EXPECT_EQ(expected.pyFeat.degrees, actual.pyFeat.degrees);
  EXPECT_EQ(expected.pyFeat.pitchIsUp, actual.pyFeat.pitchIsUp);
  EXPECT_EQ(expected.pyFeat.gazeYawIsLeft, actual.pyFeat.gazeYawIsLeft);
  EXPECT_EQ(expected.pyFeat.gazePitchIsUp, actual.pyFeat.gazePitchIsUp);
}

TEST(BuiltInMapping, NamesEveryTableAndEveryReading)
{
  const json mapping = json::parse(KV::recordings::builtInMapping());
  EXPECT_EQ(6u, mapping.size());
  for (const char* table : {"actionUnits", "blendshapes", "arkit", "emotions"})
    for (const auto& member : KV::recordings::scoreTableMembers())
      EXPECT_TRUE(mapping.at(table).contains(member.name)) << table << ' ' << member.name;
}

TEST(BuiltInMapping, WritesNumbersAsInTheTables)
{
  EXPECT_NE(std::string::npos, KV::recordings::builtInMapping().find("\"weight\": -0.75")) << "not -0.7500000..";
  EXPECT_NE(std::string::npos, KV::recordings::builtInMapping().find("\"typical\": 0.15,")) << "not 0.1500000059";
}

// The numbers were measured on labelled faces: one that changes by mistake changes the estimate of every recording.
TEST(BuiltInMapping, HasTheNumbersThatWereMeasured)
{
  std::ifstream file(SKEIGIOT_SOURCE_DIR "/tests/librecordings/face/builtinmapping.json");
  EXPECT_EQ(json::array(), json::diff(json::parse(file), json::parse(KV::recordings::builtInMapping())));
}

}  // namespace
