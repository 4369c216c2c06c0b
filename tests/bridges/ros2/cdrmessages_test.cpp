#include "cdrmessages.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace
{

using KV::ros2::CdrBytes;

std::string hexOf(const CdrBytes& bytes)
{
  const std::string digits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes)
  {
    const auto number = static_cast<unsigned char>(byte);
    text += digits[number >> 4U];
    text += digits[number & 0xfU];
  }
  return text;
}

constexpr std::int64_t stamp = 1'700'000'000'000'000'002;  // 0x6553f100 s, 2 ns

TEST(CdrMessages, OfAnEngagementAreTheHeaderAndTheLevel)
{
  EXPECT_EQ(
      "00010000"
      "00f15365"
      "02000000"
      "01000000"
      "00"
      "03",
      hexOf(cdrOf(KV::ros2::EngagementMessage{stamp, 3})));
}

TEST(CdrMessages, OfAnExpressionAreAligned)
{
  EXPECT_EQ(
      "00010000"
      "00f15365"
      "02000000"
      "01000000"
      "00"
      "000000"
      "04000000"
      "73616400"
      "000080bf"
      "00000000"
      "0000003f",
      hexOf(cdrOf(KV::ros2::ExpressionMessage{stamp, "sad", -1.f, 0.f, 0.5f})));
}

TEST(CdrMessages, OfAGazeEndWithTheRobotWhichHasNoName)
{
  EXPECT_EQ(
      "00010000"
      "00f15365"
      "02000000"
      "01000000"
      "00"
      "000000"
      "03000000"
      "703100"
      "00"
      "01000000"
      "00",
      hexOf(cdrOf(KV::ros2::GazeMessage{stamp, "p1", ""})));
}

TEST(CdrMessages, OfDiagnosticsHaveOneStatusAndItsValues)
{
  EXPECT_EQ(
      "00010000"
      "00f15365"
      "02000000"
      "01000000"
      "00"
      "000000"
      "01000000"
      "01"
      "000000"
      "02000000"
      "6e00"
      "0000"
      "02000000"
      "6d00"
      "0000"
      "01000000"
      "00"
      "000000"
      "01000000"
      "02000000"
      "6b00"
      "0000"
      "02000000"
      "7600",
      hexOf(cdrOf(KV::ros2::DiagnosticMessage{stamp, 1, "n", "m", {{"k", "v"}}})));
}

TEST(CdrMessages, OfATextEndWithANul)
{
  EXPECT_EQ(
      "00010000"
      "03000000"
      "686900",
      hexOf(cdrOf(KV::ros2::TextMessage{"hi"})));
}

TEST(CdrMessages, OfTheNodeHaveLongerIdsUpToHumble)
{
  KV::ros2::NodeMessage node;
  node.name = "n";
  node.writers.resize(2);
  const std::size_t jazzy = cdrOf(node, KV::ros2::Distribution::Jazzy).size();
  const std::size_t humble = cdrOf(node, KV::ros2::Distribution::Humble).size();
  EXPECT_EQ(4U + 16 + 4 + 8 + 8 + 4 + 4 + 2 * 16, jazzy);
  EXPECT_EQ(jazzy + 3 * 8, humble);
}

}  // namespace
