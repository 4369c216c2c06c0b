#include <skeigiot/session/changes.hpp>
#include <skeigiot/session/forcenames.hpp>

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

using KV::session::Changes;
using KV::session::SourceChange;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> sourcesOf(const std::vector<SourceChange>& changes)
{
  std::vector<std::string> sources;
  std::transform(changes.begin(), changes.end(), std::back_inserter(sources),
                 [](const SourceChange& change) { return change.source; });
  return sources;
}

TEST(Changes, SumUpTheStepsOfASourceWhicheverWayTheyWent)
{
  Changes changes;
  changes.add("Touch emotion", KV::ValenceQuantity, 1.f, 0.25f, 0.75f);
  changes.add("Touch emotion", KV::ValenceQuantity, -1.f, 0.75f, 0.5f);

  const std::vector<SourceChange> valence = changes.of(KV::ValenceQuantity);
  ASSERT_EQ(1u, valence.size());
  EXPECT_EQ(2u, valence[0].forces);
  EXPECT_EQ(0.75, valence[0].distance());
  EXPECT_EQ(0.25, valence[0].net());
}

TEST(Changes, KeepQuantitiesApart)
{
  Changes changes;
  changes.add("No observation", KV::ValenceQuantity, 0.f, 0.5f, 0.25f);
  changes.add("No observation", KV::ValenceConfidenceQuantity, 0.f, 0.5f, 0.f);

  EXPECT_EQ(0.25, KV::session::totalDistance(changes.of(KV::ValenceQuantity)));
  EXPECT_EQ(0.5, KV::session::totalDistance(changes.of(KV::ValenceConfidenceQuantity)));
  EXPECT_THAT(changes.of(KV::AttentionQuantity), IsEmpty());
}

TEST(Changes, NameTheGreatestFirstAndEqualOnesAsTheyCame)
{
  Changes changes;
  changes.add("second", KV::ValenceQuantity, 1.f, 0.f, 0.25f);
  changes.add("third", KV::ValenceQuantity, -1.f, 0.25f, 0.f);
  changes.add("first", KV::ValenceQuantity, 1.f, 0.f, 0.5f);

  EXPECT_THAT(sourcesOf(changes.of(KV::ValenceQuantity)), ElementsAre("first", "second", "third"));
}

TEST(Changes, AddUpToTheSameInPartsAsAtOnce)
{
  Changes early;
  early.add("Smile", KV::ValenceQuantity, 0.5f, 0.f, 0.25f);
  Changes late;
  late.add("Smile", KV::ValenceQuantity, -0.5f, 0.25f, 0.125f);
  late.add("Voice emotion", KV::ValenceQuantity, 1.f, 0.125f, 1.f);
  early.add(late);

  const std::vector<SourceChange> valence = early.of(KV::ValenceQuantity);
  ASSERT_THAT(sourcesOf(valence), ElementsAre("Voice emotion", "Smile"));
  EXPECT_EQ(2u, valence[1].forces);
  EXPECT_EQ(0.375, valence[1].distance());
  EXPECT_EQ(-0.5f, valence[1].leastTarget);
  EXPECT_EQ(0.5f, valence[1].greatestTarget);
}

TEST(SourceDescription, ReportsTheMoodThatASourcePulledTo)
{
  const auto described = [](const std::string& source, float least, float greatest) {
    SourceChange change;
    change.source = source;
    change.leastTarget = least;
    change.greatestTarget = greatest;
    return describeSource(change);
  };
  EXPECT_EQ("facial expressions (negative)", described("Face characteristics", -1.f, -1.f));
  EXPECT_EQ("touch (positive)", described("Touch emotion", 1.f, 1.f));
  EXPECT_EQ("context (neutral)", described("Context emotion", 0.f, 0.f));
  EXPECT_EQ("voice (mixed)", described("Voice emotion", -1.f, 1.f));
  EXPECT_EQ("not being visible", described("Not visible", 0.f, 0.f)) << "rest is no mood";
  EXPECT_EQ("A source of tomorrow", described("A source of tomorrow", 1.f, 1.f));
}

TEST(SourceNames, AreThePlainWordsWithACapitalLetter)
{
  using KV::session::plainSource;
  using KV::session::sourceName;
  EXPECT_EQ("Words", sourceName("Asr emotion"));
  EXPECT_EQ("words", plainSource("Asr emotion"));
  EXPECT_EQ("Limits of the sensor and the robot's motion", sourceName("Okao and robot movement limits"));
  EXPECT_EQ("Not being visible", sourceName("Not visible"));
  EXPECT_EQ("a source of tomorrow", sourceName("a source of tomorrow")) << "that stays as it is";
  EXPECT_EQ("", sourceName(""));
}

TEST(Shares, AddUpToAllWhateverTheyAreRoundedTo)
{
  constexpr std::mt19937::result_type seed = 11;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> distance(0., 1.);
  for (std::size_t count = 1; count < 40; ++count)
  {
    std::vector<SourceChange> changes(count);
    for (SourceChange& change : changes)
      change.up = distance(random);
    const double total = totalDistance(changes);
    const std::vector<int> shares = sharesInTenthsOfPercent(changes);
    EXPECT_EQ(1000, std::accumulate(shares.begin(), shares.end(), 0));
    for (std::size_t i = 0; i < count; ++i)
      EXPECT_NEAR(1000. * changes[i].distance() / total, shares[i], 1.) << "each is rounded up or down";
  }
}

TEST(Shares, AreNoneWhereNothingMoved)
{
  EXPECT_THAT(sharesInTenthsOfPercent(std::vector<SourceChange>(2)), ElementsAre(0, 0));
}

}  // namespace
