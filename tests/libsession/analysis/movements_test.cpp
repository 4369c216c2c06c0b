#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/movements.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace
{

using KV::session::Movements;
using KV::session::SourceMovement;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> sourcesOf(const std::vector<SourceMovement>& movements)
{
  std::vector<std::string> sources;
  std::transform(movements.begin(), movements.end(), std::back_inserter(sources),
                 [](const SourceMovement& movement) { return movement.source; });
  return sources;
}

TEST(Movements, SumUpTheStepsOfASourceWhicheverWayTheyWent)
{
  Movements movements;
  movements.add("Touch emotion", KV::ValenceQuantity, 1.f, 0.25f, 0.75f);
  movements.add("Touch emotion", KV::ValenceQuantity, -1.f, 0.75f, 0.5f);

  const std::vector<SourceMovement> valence = movements.of(KV::ValenceQuantity);
  ASSERT_EQ(1u, valence.size());
  EXPECT_EQ(2u, valence[0].forces);
  EXPECT_EQ(0.75, valence[0].distance());
  EXPECT_EQ(0.25, valence[0].net());
}

TEST(Movements, KeepQuantitiesApart)
{
  Movements movements;
  movements.add("No observation", KV::ValenceQuantity, 0.f, 0.5f, 0.25f);
  movements.add("No observation", KV::ValenceConfidenceQuantity, 0.f, 0.5f, 0.f);

  EXPECT_EQ(0.25, KV::session::totalDistance(movements.of(KV::ValenceQuantity)));
  EXPECT_EQ(0.5, KV::session::totalDistance(movements.of(KV::ValenceConfidenceQuantity)));
  EXPECT_THAT(movements.of(KV::AttentionQuantity), IsEmpty());
}

TEST(Movements, NameTheGreatestFirstAndEqualOnesAsTheyCame)
{
  Movements movements;
  movements.add("second", KV::ValenceQuantity, 1.f, 0.f, 0.25f);
  movements.add("third", KV::ValenceQuantity, -1.f, 0.25f, 0.f);
  movements.add("first", KV::ValenceQuantity, 1.f, 0.f, 0.5f);

  EXPECT_THAT(sourcesOf(movements.of(KV::ValenceQuantity)), ElementsAre("first", "second", "third"));
}

TEST(Movements, AddUpToTheSameInPartsAsAtOnce)
{
  Movements early;
  early.add("Smile", KV::ValenceQuantity, 0.5f, 0.f, 0.25f);
  Movements late;
  late.add("Smile", KV::ValenceQuantity, -0.5f, 0.25f, 0.125f);
  late.add("Voice emotion", KV::ValenceQuantity, 1.f, 0.125f, 1.f);
  early.add(late);

  const std::vector<SourceMovement> valence = early.of(KV::ValenceQuantity);
  ASSERT_THAT(sourcesOf(valence), ElementsAre("Voice emotion", "Smile"));
  EXPECT_EQ(2u, valence[1].forces);
  EXPECT_EQ(0.375, valence[1].distance());
  EXPECT_EQ(-0.5f, valence[1].leastTarget);
  EXPECT_EQ(0.5f, valence[1].greatestTarget);
}

TEST(SourceDescription, TellsTheMoodThatASourcePulledTo)
{
  const auto described = [](const std::string& source, float least, float greatest) {
    SourceMovement movement;
    movement.source = source;
    movement.leastTarget = least;
    movement.greatestTarget = greatest;
    return describeSource(movement);
  };
  EXPECT_EQ("face characteristics (negative)", described("Face characteristics", -1.f, -1.f));
  EXPECT_EQ("touch (positive)", described("Touch emotion", 1.f, 1.f));
  EXPECT_EQ("context (neutral)", described("Context emotion", 0.f, 0.f));
  EXPECT_EQ("voice (mixed)", described("Voice emotion", -1.f, 1.f));
  EXPECT_EQ("not being visible", described("Not visible", 0.f, 0.f)) << "rest is no mood";
  EXPECT_EQ("A source of tomorrow", described("A source of tomorrow", 1.f, 1.f));
}

TEST(Shares, AddUpToAllWhateverTheyAreRoundedTo)
{
  constexpr std::mt19937::result_type seed = 11;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> distance(0., 1.);
  for (std::size_t count = 1; count < 40; ++count)
  {
    std::vector<SourceMovement> movements(count);
    for (SourceMovement& movement : movements)
      movement.up = distance(random);
    const double total = totalDistance(movements);
    const std::vector<int> shares = sharesInTenthsOfPercent(movements);
    EXPECT_EQ(1000, std::accumulate(shares.begin(), shares.end(), 0));
    for (std::size_t i = 0; i < count; ++i)
      EXPECT_NEAR(1000. * movements[i].distance() / total, shares[i], 1.) << "each is rounded up or down";
  }
}

TEST(Shares, AreNoneWhereNothingMoved)
{
  EXPECT_THAT(sharesInTenthsOfPercent(std::vector<SourceMovement>(2)), ElementsAre(0, 0));
}

}  // namespace
