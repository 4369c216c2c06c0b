#include "report/reportlabels.hpp"

#include "report/base64.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

namespace
{

using namespace KV::session;
using KV::recordings::Labels;
using KV::recordings::LabelTrack;
using Json = nlohmann::ordered_json;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

class LabelsOnAReport : public ::testing::Test
{
protected:
  Json json() const { return reportLabels({labels}, {3, 4}, options); }

  /// Returns the labels that are drawn for person 3.
  Json ofThree() const
  {
    const Json all = json();
    for (const Json& one : all["persons"])
      if (one["person"] == 3)
        return one;
    return {};
  }

  Labels labels;
  AgreementOptions options;
};

TEST_F(LabelsOnAReport, AreRibbonsOfStatesForEachCoder)
{
  labels.spans = {{1., 2.5, "positive", "3", "anna", ""},
                  {0., 1., "negative", "3", "anna", ""},
                  {0., 4., "neutral", "3", "ben", ""},
                  {0., 4., "engaged", "4", "ben", ""}};
  const Json ribbons = ofThree()["ribbons"];
  ASSERT_EQ(2U, ribbons.size());
  EXPECT_EQ("anna", ribbons[0]["coder"]);
  EXPECT_EQ("pleasure", ribbons[0]["quantity"]);
  EXPECT_EQ((std::vector<std::string>{"negative", "positive"}), ribbons[0]["texts"]);
  EXPECT_EQ(base64(std::vector<double>{0., 1.}), ribbons[0]["from"]);
  EXPECT_EQ(base64(std::vector<double>{1., 2.5}), ribbons[0]["to"]);
  EXPECT_EQ("ben", ribbons[1]["coder"]);
  EXPECT_EQ((std::vector<std::string>{"neutral"}), ribbons[1]["texts"]);
}

TEST_F(LabelsOnAReport, AreMovedByTheirOffset)
{
  labels.spans = {{1., 2., "positive", "3", "anna", ""}, {1., 2., "waving", "3", "anna", "hands"}};
  options.offset = 0.5;
  const Json three = ofThree();
  ASSERT_EQ(2U, three["ribbons"].size());
  for (const Json& ribbon : three["ribbons"])
  {
    EXPECT_EQ(base64(std::vector<double>{1.5}), ribbon["from"]);
    EXPECT_EQ(base64(std::vector<double>{2.5}), ribbon["to"]);
  }
}

TEST_F(LabelsOnAReport, SayWhereACoderContradictsThemselves)
{
  labels.spans = {{0., 2., "positive", "3", "anna", ""}, {1., 3., "negative", "3", "anna", ""}};
  EXPECT_EQ((std::vector<std::string>{"positive", "contradiction", "negative"}), ofThree()["ribbons"][0]["texts"]);
}

TEST_F(LabelsOnAReport, WithoutAStateAreShownAsTheyAre)
{
  labels.spans = {{5., 6., "scratches", "3", "anna", "hands"},
                  {1., 2., "waving", "3", "anna", "hands"},
                  {1., 1., "nods", "3", "anna", "head"}};
  const Json ribbons = ofThree()["ribbons"];
  ASSERT_EQ(2U, ribbons.size());
  EXPECT_EQ("", ribbons[0]["quantity"]);
  EXPECT_EQ("hands", ribbons[0]["tier"]);
  EXPECT_EQ((std::vector<std::string>{"waving", "scratches"}), ribbons[0]["texts"]);
  EXPECT_EQ("head", ribbons[1]["tier"]);
  EXPECT_TRUE(json()["warnings"].empty());
}

TEST_F(LabelsOnAReport, AreLinesOfValuesThatEndWhereThereAreNone)
{
  labels.tracks = {{"valence", "3", "anna", "", {{0., 0.5}, {1., -0.5}, {10., 0.25}, {11., 0.25}}}};
  const Json lines = ofThree()["lines"];
  ASSERT_EQ(1U, lines.size());
  EXPECT_EQ("anna", lines[0]["coder"]);
  EXPECT_EQ("valence", lines[0]["quantity"]);
  EXPECT_EQ(base64(std::vector<double>{0., 1., 2., 2., 10., 11., 12.}), lines[0]["time"]);
  // The value at 1 s is held for one interval, then no value is known until 10 s.
  EXPECT_EQ(base64(std::vector<float>{0.5f, -0.5f, -0.5f, notANumber, 0.25f, 0.25f, 0.25f}), lines[0]["value"]);
}

TEST_F(LabelsOnAReport, OfOtherPersonsAreLeftOutAndWarnedOf)
{
  labels.spans = {{1., 2., "positive", "9", "anna", ""}};
  const Json all = json();
  EXPECT_TRUE(all["persons"].empty());
  ASSERT_EQ(1U, all["warnings"].size());
  EXPECT_EQ("labels of persons who are not in the recording left out: '9' (1)", all["warnings"][0]);
}

}  // namespace
