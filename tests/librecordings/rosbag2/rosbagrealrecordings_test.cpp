#include "csv/csvrows.hpp"
#include "librecordings/support.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <string>

// Bags of other people's robots, and tables of their contents beside them.

namespace
{
using namespace support;

struct BagCase
{
  const char* name;
  std::vector<const char*> faces;  // by the numbers of the persons
};

class RealBag : public ::testing::TestWithParam<BagCase>
{
protected:
  static std::string path(const std::string& end)
  {
    return std::string(SKEIGIOT_REAL_RECORDINGS) + "/ros4hri/" + GetParam().name + end;
  }

  /// The rows of the table about one face.
  static std::vector<std::map<std::string, double>> rowsOf(const std::string& face)
  {
    KV::recordings::CsvRows rows(KV::recordings::InputFile(path(".faces.csv.gz")));
    rows.next();
    const std::vector<std::string> header(rows.fields().begin(), rows.fields().end());
    std::vector<std::map<std::string, double>> found;
    while (rows.next())
    {
      if (rows.fields()[1] != face)
        continue;
      found.emplace_back();
      for (std::size_t i = 0; i < header.size(); ++i)
        if (header[i] != "face_id" && header[i] != "person_id")
          found.back()[header[i]] = std::stod(std::string(rows.fields()[i]));
    }
    return found;
  }

  static std::vector<KV::recordings::Step> stepsOf(std::int32_t person, bool lineOfSight)
  {
    KV::recordings::ReadingOptions options;
    using Kind = KV::recordings::LookAt::Kind;
    options.lookAt.kind = lineOfSight ? Kind::Camera : Kind::Axis;
    const Contents contents = contentsOf(path(".db3.gz"), "", options);
    EXPECT_EQ("", contents.fatal);
    EXPECT_TRUE(contents.badLines.empty());
    std::vector<KV::recordings::Step> steps;
    for (const auto& entry : contents.entries)
      if (entry.person == person && entry.seen)
        steps.push_back(entry);
    return steps;
  }

  void SetUp() override
  {
    if (!std::filesystem::exists(path(".db3.gz")))
      GTEST_SKIP() << "the recording " << path(".db3.gz") << " is not at hand";
  }
};

constexpr double rounding = 0.0051;       // [deg] the table has two decimals
constexpr double metreRounding = 5.1e-5;  // [m] and of distances four

TEST_P(RealBag, ReportsTheAnglesAndDistancesOfItsTable)
{
  std::int32_t person = 0;
  for (const char* const face : GetParam().faces)
  {
    const auto rows = rowsOf(face);
    const auto steps = stepsOf(person++, false);
    ASSERT_EQ(rows.size(), steps.size()) << face;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
      const auto& observation = steps[i].observation;
      ASSERT_NEAR(rows[i].at("distance_m"), observation.distance->value, metreRounding) << face << " " << i;
      ASSERT_NEAR(rows[i].at("head_yaw_deg"), observation.headPosture->value.yaw(), rounding) << face << " " << i;
      ASSERT_NEAR(rows[i].at("head_pitch_deg"), observation.headPosture->value.pitch(), rounding) << face << " " << i;
    }
  }
}

// The table has its azimuth in the plane of the camera's x and z, we have it on the cone about x: at the edge of an
// image that is a degree.
TEST_P(RealBag, CountsAnglesFromTheLineOfSightAsItsTable)
{
  constexpr double otherAzimuth = 1.;
  std::int32_t person = 0;
  for (const char* const face : GetParam().faces)
  {
    const auto rows = rowsOf(face);
    const auto steps = stepsOf(person++, true);
    ASSERT_EQ(rows.size(), steps.size()) << face;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
      const auto& head = steps[i].observation.headPosture->value;
      ASSERT_NEAR(rows[i].at("rel_head_yaw_deg"), head.yaw(), otherAzimuth) << face << " " << i;
      ASSERT_NEAR(rows[i].at("rel_head_pitch_deg"), head.pitch(), rounding) << face << " " << i;
    }
  }
}

TEST_P(RealBag, HasTheGazeOfItsFaces)
{
  for (std::size_t person = 0; person < GetParam().faces.size(); ++person)
    for (const auto& entry : stepsOf(static_cast<std::int32_t>(person), true))
      if (entry.observation.gaze)
      {
        ASSERT_NEAR(-entry.observation.headPosture->value.yaw(), entry.observation.gaze->value.yaw, 1e-3f);
        ASSERT_NEAR(entry.observation.headPosture->value.pitch(), entry.observation.gaze->value.pitch, 1e-3f);
      }
}

INSTANTIATE_TEST_SUITE_P(OfARobot, RealBag,
                         ::testing::Values(BagCase{"1p_AA_dis_1", {"23ed9"}}, BagCase{"1p_AA_eng_1", {"959e0"}},
                                           BagCase{"2p_AA_FV_eng_1", {"e285f", "61564"}},
                                           BagCase{"bag_1_engaged", {"f00000"}},
                                           BagCase{"bag_2_disengaged", {"f00000", "f00001"}}),
                         [](const auto& tested) { return "Bag" + std::string(tested.param.name); });

}  // namespace
