#include "libsession/entries.hpp"

#include <skeigiot/session/snapshot.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace
{

using namespace replaytests;
using KV::session::Snapshot;

TEST(Snapshot, KnowsAnEstimateWhoseConfidenceIsAboveZero)
{
  Snapshot snapshot = snapshotAt(0.);
  snapshot.valence.confidence = std::numeric_limits<float>::denorm_min();
  snapshot.attention.confidence = std::numeric_limits<float>::denorm_min();
  snapshot.ease.confidence = 0.5f;
  EXPECT_TRUE(snapshot.isValenceKnown());
  EXPECT_TRUE(snapshot.isAttentionKnown());
  EXPECT_TRUE(snapshot.isEaseKnown());
}

TEST(Snapshot, DoesNotKnowAnEstimateOfConfidenceZeroOrNaN)
{
  for (const float confidence : {0.f, std::numeric_limits<float>::quiet_NaN()})
  {
    Snapshot snapshot = snapshotAt(0.);
    snapshot.valence.confidence = confidence;
    snapshot.attention.confidence = confidence;
    snapshot.ease.confidence = confidence;
    EXPECT_FALSE(snapshot.isValenceKnown()) << confidence;
    EXPECT_FALSE(snapshot.isAttentionKnown()) << confidence;
    EXPECT_FALSE(snapshot.isEaseKnown()) << confidence;
  }
}

TEST(Snapshot, DoesNotKnowAValenceThatNeverHadEvidence)
{
  Snapshot snapshot = snapshotAt(0.);
  snapshot.hadValenceEvidence = false;
  EXPECT_FALSE(snapshot.isValenceKnown()) << "well seen points of the face alone give it a confidence";
  EXPECT_TRUE(snapshot.isAttentionKnown());
}

}  // namespace
