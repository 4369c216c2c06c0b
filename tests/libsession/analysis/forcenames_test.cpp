#include <skeigiot/session/forcenames.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace
{

using namespace KV::session;
using ::testing::ElementsAre;

TEST(QuantityNames, AreOneForEachQuantity)
{
  std::vector<std::string> names;
  for (const KV::Quantity quantity :
       {KV::ValenceQuantity, KV::UnsmoothedValenceQuantity, KV::ValenceConfidenceQuantity,
        KV::UnsmoothedValenceConfidenceQuantity, KV::AttentionQuantity, KV::AttentionConfidenceQuantity})
    names.push_back(quantityName(quantity));
  EXPECT_THAT(names, ElementsAre("valence", "unsmoothed valence", "valence confidence", "unsmoothed valence confidence",
                                 "attention", "attention confidence"));
  EXPECT_EQ("unknown", quantityName(static_cast<KV::Quantity>(99)));
}

TEST(EvidenceNames, AreOneForEachKindOfEvidence)
{
  std::vector<std::string> names;
  for (const KV::ZoneEvidence evidence :
       {KV::NoAttentionEvidence, KV::HeadTurnedAwayEvidence, KV::AttentionEvidence, KV::HeadEvidence, KV::GazeEvidence})
    names.push_back(evidenceName(evidence));
  EXPECT_THAT(names, ElementsAre("no head or gaze", "head turned away", "attention", "head", "gaze"));
  EXPECT_EQ("unknown", evidenceName(static_cast<KV::ZoneEvidence>(99)));
}

}  // namespace
