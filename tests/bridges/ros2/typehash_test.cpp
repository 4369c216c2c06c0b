#include "typehash.hpp"

#include "typedescriptions.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

struct HashCase
{
  const char* name;
  const char* type;
  const char* begin;
  const char* end;
};

class TypeHash : public ::testing::TestWithParam<HashCase>
{};

TEST_P(TypeHash, IsThatOfRos)
{
  const std::vector<std::string> hashes = KV::ros2::typeHashesOf(GetParam().type);
  ASSERT_FALSE(hashes.empty());
  const std::string begin = std::string("RIHS01_") + GetParam().begin;
  const std::string end = GetParam().end;

  EXPECT_EQ(begin, hashes.front().substr(0, begin.size()));
  EXPECT_EQ(end, hashes.front().substr(hashes.front().size() - end.size()));
  EXPECT_EQ(71U, hashes.front().size());
}

INSTANTIATE_TEST_SUITE_P(
    OfEachType, TypeHash,
    ::testing::Values(HashCase{"EngagementLevel", "hri_msgs/msg/EngagementLevel",
                               "275391f46d2e6cc0d21085f8e02dce6a8150baa57539ec99bd9f4e0321443788", ""},
                      HashCase{"Expression", "hri_msgs/msg/Expression",
                               "411b88e0604397d44775d8ec6a4bc69398fb0dfbfe864c33a40fa99ee85f1b00", ""},
                      HashCase{"IdsList", "hri_msgs/msg/IdsList",
                               "7e0812d1ac945c98fd3e393568d581ad0ab567f37b24eff633eab778c1bfe62d", ""},
                      HashCase{"IdsMatch", "hri_msgs/msg/IdsMatch",
                               "1c649d4a87ca2d4fe5f606395e83a863640e411c9192dfda6d399a68019966f0", ""},
                      HashCase{"Gaze", "hri_msgs/msg/Gaze",
                               "e8c46fafadbeca4367ca1987944b54863fcfc0175319002a76df5298570f4ab3", ""},
                      HashCase{"FacialLandmarks", "hri_msgs/msg/FacialLandmarks",
                               "f1d6b0ba159f4d6be1632e5dfc9cb79ce5e35da73888da2a4789bd9b35112a63", ""},
                      HashCase{"FacialActionUnits", "hri_msgs/msg/FacialActionUnits",
                               "43f431104624b6ff7f84350f1faa3747efc8a9330dee942b717a08830a267ed3", ""},
                      HashCase{"RegionOfInterest", "hri_msgs/msg/NormalizedRegionOfInterest2D",
                               "2e50c93f1ca166ee77af9a5424dc951ae4e452b740162a7f83c082d917dcaff5", ""},
                      HashCase{"LiveSpeech", "hri_msgs/msg/LiveSpeech",
                               "2cfdf359eed836b1d32ac2d62e1476f2048212e7ed79a17c0a594b04c33f8783", ""},
                      HashCase{"SoftBiometrics", "hri_msgs/msg/SoftBiometrics",
                               "b71b1b988b22c4a7f4f04b5395ae89a3168dff71ddd44bbf29ea84d4645fd69e", ""},
                      HashCase{"AudioFeatures", "hri_msgs/msg/AudioFeatures",
                               "46156ee863fb71fa7fe15f290d168ce7ffee7c1fc2494f709edd3a62fe98573e", ""},
                      HashCase{"Bool", "std_msgs/msg/Bool", "feb91e99", "d74528f6c9"},
                      HashCase{"String", "std_msgs/msg/String", "df668c74", "f6b1a18"},
                      HashCase{"Transforms", "tf2_msgs/msg/TFMessage", "e369d0f0", "85d020f087"}),
    [](const auto& hashCase) { return std::string(hashCase.param.name); });

TEST(TypeHash, IsOneForEachLayoutThatSpeechHad)
{
  std::vector<std::string> hashes = KV::ros2::typeHashesOf("hri_msgs/msg/LiveSpeech");
  EXPECT_EQ(4U, hashes.size());
  std::sort(hashes.begin(), hashes.end());
  EXPECT_EQ(hashes.end(), std::unique(hashes.begin(), hashes.end()));
}

TEST(TypeHash, IsNotThereForAnUnknownType)
{
  EXPECT_TRUE(KV::ros2::typeHashesOf("hri_msgs/msg/Kidnapping").empty());
  EXPECT_EQ("", KV::ros2::userDataOf("hri_msgs/msg/Kidnapping"));
}

TEST(TypeHash, OfAllKnownTypesCanBeComputed)
{
  for (const std::string& type : KV::ros2::knownTypes())
    EXPECT_FALSE(KV::ros2::typeHashesOf(type).empty()) << type;
}

TEST(UserData, HoldsTheHashOfTheNewestLayout)
{
  EXPECT_EQ("typehash=RIHS01_275391f46d2e6cc0d21085f8e02dce6a8150baa57539ec99bd9f4e0321443788;",
            KV::ros2::userDataOf("hri_msgs/msg/EngagementLevel"));
}

TEST(UserData, IsReadWhereTheHashIsAmongOtherThings)
{
  EXPECT_EQ("RIHS01_12", KV::ros2::hashIn("enclave=/;typehash=RIHS01_12;more=1;"));
  EXPECT_EQ("RIHS01_12", KV::ros2::hashIn("typehash=RIHS01_12"));
  EXPECT_EQ("", KV::ros2::hashIn("enclave=/;"));
  EXPECT_EQ("", KV::ros2::hashIn(""));
}

}  // namespace
