#include <ko/human/attentionstate.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

namespace
{

using ko::human::AttentionState;

TEST(AttentionState, NumbersTheZonesAsTheVocabularyDoes)
{
  EXPECT_EQ(0, static_cast<int>(AttentionState::Unknown));
  EXPECT_EQ(1, static_cast<int>(AttentionState::LookingAtRobot));
  EXPECT_EQ(2, static_cast<int>(AttentionState::LookingUp));
  EXPECT_EQ(3, static_cast<int>(AttentionState::LookingDown));
  EXPECT_EQ(4, static_cast<int>(AttentionState::LookingLeft));
  EXPECT_EQ(5, static_cast<int>(AttentionState::LookingRight));
  EXPECT_EQ(6, static_cast<int>(AttentionState::LookingUpLeft));
  EXPECT_EQ(7, static_cast<int>(AttentionState::LookingUpRight));
  EXPECT_EQ(8, static_cast<int>(AttentionState::LookingDownLeft));
  EXPECT_EQ(9, static_cast<int>(AttentionState::LookingDownRight));
}

TEST(AttentionState, IsA32BitNumberThatIsNoZoneByDefault)
{
  EXPECT_TRUE((std::is_same_v<std::int32_t, std::underlying_type_t<AttentionState>>));
  EXPECT_EQ(AttentionState::Unknown, AttentionState{});
}

}  // namespace
