#include "libsession/analysis/actedforces.hpp"

#include <skeigiot/session/combinedforces.hpp>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

using explaintests::acted;
using KV::session::ActedForce;
using KV::session::combined;
using KV::session::CombinedForce;

TEST(CombinedForces, DoTogetherWhatTheirForcesDidOneByOne)
{
  constexpr std::mt19937::result_type seed = 5;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> target(-1.f, 1.f);
  std::uniform_real_distribution<float> weight(0.f, 1.f);
  for (int round = 0; round < 100; ++round)
  {
    std::vector<ActedForce> forces{acted("Touch emotion", KV::ValenceQuantity, target(random), weight(random), 0.25f)};
    for (int i = 0; i < round % 7; ++i)
      forces.push_back(
          acted("Touch emotion", KV::ValenceQuantity, target(random), weight(random), forces.back().after));

    const std::vector<CombinedForce> rows = combined(forces);
    ASSERT_EQ(1u, rows.size());
    const ActedForce& row = rows[0].force;
    EXPECT_EQ(forces.size(), rows[0].count);
    EXPECT_EQ(0.25f, row.before);
    EXPECT_EQ(forces.back().after, row.after);
    EXPECT_NEAR(row.after, row.before + row.weight * (row.target - row.before), 1e-5f)
        << "single precision, seven operations";
  }
}

TEST(CombinedForces, LookPastForcesOnOtherQuantities)
{
  const std::vector<CombinedForce> rows =
      combined({acted("Touch emotion", KV::ValenceQuantity, 1.f, 0.5f, 0.f),
                acted("Touch emotion", KV::UnsmoothedValenceQuantity, 1.f, 0.5f, 0.f),
                acted("Touch emotion", KV::ValenceQuantity, 1.f, 0.5f, 0.5f),
                acted("Touch emotion", KV::UnsmoothedValenceQuantity, 1.f, 0.5f, 0.5f)});
  ASSERT_EQ(2u, rows.size());
  EXPECT_EQ(KV::ValenceQuantity, rows[0].force.quantity);
  EXPECT_EQ(2u, rows[0].count);
  EXPECT_EQ(0.75f, rows[0].force.weight);
  EXPECT_EQ(1.f, rows[0].force.target);
  EXPECT_EQ(KV::UnsmoothedValenceQuantity, rows[1].force.quantity);
  EXPECT_EQ(2u, rows[1].count);
}

TEST(CombinedForces, StayApartWhereAnotherSourceComesBetween)
{
  const std::vector<CombinedForce> rows = combined({acted("Smile", KV::ValenceQuantity, 1.f, 0.5f, 0.f),
                                                    acted("Body Language", KV::ValenceQuantity, 0.f, 0.5f, 0.5f),
                                                    acted("Smile", KV::ValenceQuantity, 1.f, 0.5f, 0.25f)});
  ASSERT_EQ(3u, rows.size());
  EXPECT_EQ("Smile", rows[2].force.source);
  EXPECT_EQ(1u, rows[2].count);
}

TEST(CombinedForces, OfNoWeightHaveTheTargetOfTheLast)
{
  const std::vector<CombinedForce> rows = combined({acted("Voice emotion", KV::ValenceQuantity, -1.f, 0.f, 0.5f),
                                                    acted("Voice emotion", KV::ValenceQuantity, 1.f, 0.f, 0.5f)});
  ASSERT_EQ(1u, rows.size());
  EXPECT_EQ(0.f, rows[0].force.weight);
  EXPECT_EQ(1.f, rows[0].force.target);
}

}  // namespace
