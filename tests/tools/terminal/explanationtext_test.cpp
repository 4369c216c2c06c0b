#include "terminal/explanationtext.hpp"
#include "libsession/analysis/actedforces.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace
{

using explaintests::acted;
using KV::session::Explanation;
using KV::session::SpanExplanation;
using KV::tools::explanationText;
using testing::HasSubstr;
using testing::Not;

Explanation touchedTwice()
{
  Explanation explanation;
  explanation.after.person = 3;
  explanation.after.sinceStart = KV::session::Duration(12'500'000'000);
  explanation.before.valence.confidence = 0.5f;
  explanation.before.attention.confidence = 0.5f;
  explanation.after.valence = {0.75f, 0.5f};
  explanation.after.attention.confidence = 0.5f;
  explanation.after.zone = ko::human::AttentionState::LookingAtRobot;
  for (const float before : {0.f, 0.5f})
  {
    explanation.forces.push_back(acted("Touch emotion", KV::ValenceQuantity, 1.f, 0.5f, before));
    explanation.forces.push_back(acted("Touch emotion", KV::UnsmoothedValenceQuantity, 1.f, 0.5f, before));
  }
  explanation.zoneChanges.emplace_back(KV::ZoneChange{ko::human::AttentionState::Unknown,
                                                      ko::human::AttentionState::LookingAtRobot, KV::GazeEvidence,
                                                      explanation.after.time});
  return explanation;
}

TEST(ExplanationText, ShowsRepeatedForcesAsOneRowAndZonesLikewise)
{
  EXPECT_EQ(
      "Person 3 at 0:12.5 (12.5 s)\n"
      "\n"
      "source    quantity  weight  target     from              to\n"
      "Touch ×2  valence   75.0 %  +1.000    0.000          +0.750\n"
      "Gaze      zone                      Unknown  LookingAtRobot\n"
      "\n"
      "valence rose from 0.00 to 0.75: touch (positive) pulled 100 %\n"
      "attention stayed at 0.00: nothing moved it\n"
      "the zone changed from Unknown to LookingAtRobot, decided by: gaze\n",
      explanationText(touchedTwice(), {}));
}

TEST(ExplanationText, ShowsEachForceIfThatIsWanted)
{
  KV::tools::ExplanationLayout layout;
  layout.showsEach = true;
  EXPECT_THAT(explanationText(touchedTwice(), layout),
              HasSubstr("source  quantity            weight  target     from              to\n"
                        "Touch   valence             50.0 %  +1.000    0.000          +0.500\n"
                        "Touch   unsmoothed valence  50.0 %  +1.000    0.000          +0.500\n"
                        "Touch   valence             50.0 %  +1.000   +0.500          +0.750\n"
                        "Touch   unsmoothed valence  50.0 %  +1.000   +0.500          +0.750\n"));
}

TEST(ExplanationText, ShowsTheUnsmoothedValenceWhereItWentAnotherWay)
{
  Explanation explanation;
  explanation.forces.push_back(acted("Smile", KV::ValenceQuantity, 1.f, 0.5f, 0.f));
  explanation.forces.push_back(acted("Smile", KV::UnsmoothedValenceQuantity, 1.f, 0.5f, 0.5f));
  EXPECT_THAT(explanationText(explanation, {}), HasSubstr("unsmoothed valence"));
}

TEST(ExplanationText, BreaksLongNamesOfSourcesWhereTheTableIsTooWide)
{
  Explanation explanation;
  explanation.forces = {acted("Okao and robot movement limits", KV::AttentionConfidenceQuantity, 1.f, 0.7f, 0.5f),
                        acted("Touch emotion", KV::ValenceQuantity, 1.f, 0.5f, 0.f)};
  EXPECT_THAT(explanationText(explanation, {}),
              HasSubstr("source                       quantity              weight  target   from      to\n"
                        "Limits of the sensor and     attention confidence  70.0 %   1.000  0.500   0.850\n"
                        "  the robot's motion\n"
                        "Touch                        valence               50.0 %  +1.000  0.000  +0.500\n"));
  KV::tools::ExplanationLayout wide;
  wide.width = 100;
  EXPECT_THAT(explanationText(explanation, wide),
              HasSubstr("\nLimits of the sensor and the robot's motion  attention confidence  70.0 %"));
}

TEST(ExplanationText, ReportsAPersonWhoWasNotSeen)
{
  Explanation explanation;
  explanation.after.seen = false;
  EXPECT_THAT(explanationText(explanation, {}), HasSubstr("Person 0 at 0:00.0 (0 s), not seen\n"));
}

TEST(ExplanationText, ShowsTheShareOfEachSourceOverASpan)
{
  SpanExplanation span;
  span.add(touchedTwice());
  Explanation later = touchedTwice();
  later.before = later.after;
  later.after.sinceStart = KV::session::Duration(13'000'000'000);
  later.after.valence.value = 0.5f;
  later.forces = {acted("Not visible", KV::ValenceQuantity, 0.5f, 1.f, 0.75f),
                  acted("Not visible", KV::UnsmoothedValenceQuantity, 0.5f, 1.f, 0.75f)};
  span.add(later);

  EXPECT_EQ(
      "Person 3 from 0:12.5 (12.5 s) to 0:13.0 (13 s), 2 updates\n"
      "\n"
      "quantity  source             forces   share  moved     net\n"
      "valence   Touch                   2  75.0 %  0.750  +0.750\n"
      "          Not being visible       1  25.0 %  0.250  -0.250\n"
      "\n"
      "valence rose from 0.00 to 0.50: touch (positive) pulled 75 %, not being visible\n"
      "  pulled 25 % the other way\n"
      "attention stayed at 0.00: nothing moved it\n",
      explanationText(span, {}));
  KV::tools::ExplanationLayout layout;
  layout.showsEach = true;
  EXPECT_THAT(explanationText(span, {}), Not(HasSubstr("unsmoothed")));
  EXPECT_THAT(explanationText(span, layout), HasSubstr("unsmoothed valence  Touch                   2  75.0 %"));
}

}  // namespace
