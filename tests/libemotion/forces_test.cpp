#include "support/heldmutex.hpp"

#include "forces.hpp"

#include "clamp.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

const std::vector<float> weightsOfAllKinds{0.f,   0.f,      -0.f,      0.0065f,      0.0065f, 0.0065f,
                                           0.65f, 1.f,      -1.f,      0.123456789f, 1e-42f,  1e-42f,
                                           1e38f, infinity, -infinity, nan,          nan,     -nan};

std::uint32_t bitsOf(float number)
{
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

/// The percent of a weight as the text of a force alone has it.
std::string percentOf(float weight)
{
  KV::DiagnosticText text;
  text << 100.f * weight;
  return text.text();
}

std::string textOf(const KV::WrittenWeight& weight)
{
  KV::DiagnosticText text;
  text.append(KV::sixDigitsSize, [&](char* place) { return weight.copyTo(place); });
  return text.text();
}

/// So many pulls; the weights of all kinds follow each other again and again.
KV::Pulls pullsOfAllKinds(std::size_t count)
{
  KV::Pulls pulls;
  for (std::size_t i = 0; i < count; ++i)
    pulls.push_back({i % 3 == 0 ? -1.f : 1.f, weightsOfAllKinds[i % weightsOfAllKinds.size()]});
  return pulls;
}

TEST(WrittenWeights, AreTheTextsOfAllWeightsInTheirOrder)
{
  const KV::Pulls pulls = pullsOfAllKinds(KV::WrittenWeights::most);
  KV::WrittenWeights written;
  for (std::size_t count = 1; count <= pulls.size(); ++count)
    for (std::size_t first = 0; first + count <= pulls.size(); ++first)
    {
      written.write(pulls.data() + first, count);
      for (std::size_t i = 0; i < count; ++i)
        ASSERT_EQ(percentOf(pulls[first + i].weight), textOf(written[i])) << first << " + " << i << " of " << count;
    }
}

/// Two quantities in another range each, and their mutex.
struct Quantities
{
  float valence = 0.25f;
  float confidence = 0.75f;
  boost::mutex mutex;

  void pull(const KV::Pulls& pulls)
  {
    KV::applyForces("valence", pulls, "here", mutex, valencePulled(), confidencePulled());
  }

  KV::Pulled<KV::clampValence> valencePulled() { return {KV::ValenceQuantity, valence}; }
  KV::Pulled<KV::clampConfidence> confidencePulled() { return {KV::ValenceConfidenceQuantity, confidence}; }
};

TEST(ApplyForces, MovesEachQuantityByEachForceInTurn)
{
  constexpr std::uint32_t seed = 4711;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> target(-2.f, 2.f);
  std::uniform_real_distribution<float> weight(-0.1f, 1.1f);
  for (std::size_t count = 0; count < 3 * KV::WrittenWeights::most; ++count)
  {
    KV::Pulls pulls;
    for (std::size_t i = 0; i < count; ++i)
    {
      const float to = target(random);
      pulls.push_back({to, weight(random)});
    }
    Quantities together;
    together.pull(pulls);
    Quantities inTurn;
    for (const KV::Pull& pull : pulls)
    {
      inTurn.valencePulled().move(pull.target, pull.weight);
      inTurn.confidencePulled().move(pull.target, pull.weight);
    }
    ASSERT_EQ(bitsOf(inTurn.valence), bitsOf(together.valence)) << count;
    ASSERT_EQ(bitsOf(inTurn.confidence), bitsOf(together.confidence)) << count;
  }
}

TEST(ApplyForces, WaitsForTheMutexAndLeavesItFree)
{
  Quantities quantities;
  const KV::Pulls pulls = pullsOfAllKinds(KV::WrittenWeights::most + 1);
  EXPECT_TRUE(support::waitsFor(quantities.mutex, [&] { quantities.pull(pulls); }));
  EXPECT_TRUE(support::isFree(quantities.mutex));
}

TEST(ApplyForces, MovesNothingWhileSomebodyElseHasTheMutex)
{
  Quantities quantities;
  const float before = quantities.valence;
  const KV::Pulls pulls{{1.f, 0.5f}};
  float meanwhile = before + 1.f;
  support::waitsFor(
      quantities.mutex, [&] { quantities.pull(pulls); }, [&] { meanwhile = quantities.valence; });
  EXPECT_EQ(before, meanwhile);
  EXPECT_LT(before, quantities.valence);
}

}  // namespace
