#include "support/stateupdatetest.hpp"

#include <skeigiot/personstate.hpp>

#include <gtest/gtest.h>

namespace
{

class EvidenceOfValence : public support::StateUpdateTest
{
protected:
  KV::Expressions joyful() const
  {
    KV::Expressions expressions;
    expressions.joy = {1.f, 1.f};
    return expressions;
  }
};

TEST_F(EvidenceOfValence, IsMissingAtFirst)
{
  EXPECT_FALSE(KV::PersonState().hadValenceEvidence());
}

TEST_F(EvidenceOfValence, IsThereInAStateMadeOfNumbers)
{
  EXPECT_TRUE(KV::PersonState(0.f, 0.f, 0.f, 0.f).hadValenceEvidence());
}

TEST_F(EvidenceOfValence, IsNeitherBodyLanguageNorFacialPointsNorAGaze)
{
  observation.headPosture = fresh(KV::HeadPosture(0.f, 10.f, 0.f));
  observation.gaze = fresh(KV::Gaze(0.f, 0.f));
  observation.facialPoints = fresh(support::facialPoints(1.f));
  observation.distance = fresh(1.f);
  KV::PersonState unknown;
  memory.add(observation);
  unknown._update(observation, memory);
  EXPECT_GT(unknown.personValence().confidence, 0.f) << "so the confidence alone does not tell";
  EXPECT_FALSE(unknown.hadValenceEvidence());
}

TEST_F(EvidenceOfValence, IsAFaceThatFitsAMood)
{
  observation.expressions = fresh(joyful());
  update();
  EXPECT_TRUE(state.hadValenceEvidence);
}

TEST_F(EvidenceOfValence, IsNoFaceWhileThePersonSpeaksButASmile)
{
  observation.speaking = fresh(true);
  memory.add(observation);
  observation.expressions = fresh(joyful());
  update();
  EXPECT_FALSE(state.hadValenceEvidence);

  observation.smile = fresh(KV::Smile(1.f, 1.f));
  update();
  EXPECT_TRUE(state.hadValenceEvidence);
}

TEST_F(EvidenceOfValence, IsATouchAndStaysWhenTheTouchIsForgotten)
{
  observation.touchEmotion = fresh(1);
  memory.add(observation);
  update();
  EXPECT_TRUE(state.hadValenceEvidence);

  observation = KV::PersonObservation();
  clock.advance(support::hours(1));
  update();
  EXPECT_TRUE(state.hadValenceEvidence);
}

TEST_F(EvidenceOfValence, GoesAlongWithACloneOfTheRecord)
{
  EXPECT_FALSE(KV::PersonStatePrivate(state).hadValenceEvidence);
  state.hadValenceEvidence = true;
  EXPECT_TRUE(KV::PersonStatePrivate(state).hadValenceEvidence);
}

}  // namespace
