#include "libsession/entries.hpp"

#include <skeigiot/session/inspection.hpp>

#include <gmock/gmock.h>

#include <limits>

namespace
{

using namespace replaytests;
using KV::session::Inspection;

TEST(Inspection, OfNothingIsEmpty)
{
  const Inspection inspection;
  EXPECT_EQ(0U, inspection.steps());
  EXPECT_EQ(KV::session::Duration(0), inspection.length());
  EXPECT_DOUBLE_EQ(0., inspection.timesPerSecond());
}

TEST(Inspection, CountsTimesASecondWhateverTheNumberOfPersons)
{
  Inspection inspection;
  for (int i = 0; i <= 20; ++i)
  {
    inspection.add(seenAt(0.1 * i, 1));
    inspection.add(seenAt(0.1 * i, 2));
  }
  EXPECT_EQ(42U, inspection.steps());
  EXPECT_EQ(inNanoseconds(2.), inspection.length());
  EXPECT_NEAR(10., inspection.timesPerSecond(), 1e-6) << "times are whole nanoseconds";
  EXPECT_EQ(0U, inspection.gaps().count);
}

TEST(Inspection, ReportsGapsAndLeavesThemOutOfTheRate)
{
  Inspection inspection;
  for (const double time : {0., 0.5, 1., 3.5, 4., 5., 5.5})
    inspection.add(seenAt(time, 1));
  EXPECT_EQ(2U, inspection.gaps().count) << "one of exactly a second is one";
  EXPECT_EQ(inNanoseconds(2.5), inspection.gaps().longest);
  EXPECT_EQ(inNanoseconds(1.), inspection.gaps().at);
  EXPECT_DOUBLE_EQ(2., inspection.timesPerSecond());
}

TEST(Inspection, ReportsWhenEachPersonWasThere)
{
  Inspection inspection;
  inspection.add(seenAt(0., 1));
  inspection.add(seenAt(0.5, 7));
  inspection.add(notSeenAt(1., 7));
  inspection.add(seenAt(1.5, 1));
  ASSERT_EQ(2U, inspection.persons().size());
  const KV::session::PersonSpan& span = inspection.persons().at(7);
  EXPECT_EQ(1U, span.seen);
  EXPECT_EQ(1U, span.notSeen);
  EXPECT_EQ(start + inNanoseconds(0.5), span.first);
  EXPECT_EQ(start + inNanoseconds(1.), span.last);
}

TEST(Inspection, ReportsTheRangeOfEachNumber)
{
  Inspection inspection;
  for (const float yaw : {-20.f, 5.f, std::numeric_limits<float>::quiet_NaN()})
  {
    KV::recordings::Step entry = entryAt(0.);
    entry.person = 1;
    entry.observation.headPosture.emplace(entry.time, KV::HeadPosture(yaw, 1.f, 2.f));
    inspection.add(entry);
  }
  const KV::session::NumberRange& yaw = inspection.numbers().at("headPosture.yaw");
  EXPECT_EQ(2U, yaw.count) << "what is no number does not count";
  EXPECT_DOUBLE_EQ(-20., yaw.least);
  EXPECT_DOUBLE_EQ(5., yaw.greatest);
  EXPECT_DOUBLE_EQ(-7.5, yaw.mean());
  EXPECT_EQ(3U, inspection.numbers().at("headPosture.roll").count);
}

TEST(Inspection, LeavesOutScoresThatWereNotMeasured)
{
  Inspection inspection;
  KV::recordings::Step entry = seenAt(0., 1, 0.25f);
  entry.observation.touchEmotion.emplace(entry.time, -1);
  entry.ambianceActivity = 0.5f;
  inspection.add(entry);
  EXPECT_DOUBLE_EQ(0.25, inspection.numbers().at("expressions.joy").greatest);
  EXPECT_EQ(0U, inspection.numbers().count("expressions.anger"));
  EXPECT_DOUBLE_EQ(-1., inspection.numbers().at("touchEmotion").least);
  EXPECT_DOUBLE_EQ(0.5, inspection.numbers().at("ambiance.activity").mean());
}

TEST(Inspection, CountsScopes)
{
  Inspection inspection;
  KV::recordings::Step entry = entryAt(0.);
  entry.scopeStarts = {{"greeting", -1}, {"talk", 5}, {"talk", 5}};
  inspection.add(entry);
  EXPECT_EQ((std::map<std::string, std::size_t>{{"greeting", 1}, {"talk", 2}}), inspection.scopes());
}

TEST(TrustInARecording, NamesWhatIsSeenAndHowStrongAndWhereHeadsPoint)
{
  Inspection inspection;
  inspection.add(seenAt(0., 1, 0.25f));
  inspection.add(seenAt(0.5, 1, 0.75f));
  inspection.add(notSeenAt(1., 1));
  inspection.add(seenAt(1.5, 1, 0.5f));
  EXPECT_EQ("seen in 75 % of steps; at most joy 0.75; head 0 / 0 degrees right / up on average",
            KV::session::trustIn(inspection));
}

TEST(TrustInARecording, SaysWhatFollowsFromWhatIsMissing)
{
  Inspection inspection;
  auto step = entryAt(0.);
  step.person = 1;
  inspection.add(step);
  EXPECT_EQ(
      "seen in 100 % of steps; no expressions: valence stays unknown, neither head posture nor gaze: attention stays "
      "unknown",
      KV::session::trustIn(inspection));
  step.observation.lookingAtRobot.emplace(step.time, true);
  inspection.add(step);
  EXPECT_THAT(KV::session::trustIn(inspection), ::testing::EndsWith("attention stays unknown"))
      << "the estimate does not read it";
  step.observation.contextEmotion.emplace(step.time, KV::ContextEmotion(1, 5.f));
  inspection.add(step);
  EXPECT_EQ(
      "seen in 100 % of steps; no expressions: the face does not move valence, neither head posture nor gaze: "
      "attention stays unknown",
      KV::session::trustIn(inspection));
}

TEST(TrustInARecording, KnowsAllReadingsThatMoveValenceBesidesTheFace)
{
  const auto trustWith = [](const auto& reading, const auto& value) {
    auto step = entryAt(0.);
    step.person = 1;
    (step.observation.*reading).emplace(step.time, value);
    Inspection inspection;
    inspection.add(step);
    return KV::session::trustIn(inspection);
  };
  const ::testing::Matcher<std::string> moves = ::testing::HasSubstr("the face does not move valence");
  using Observation = KV::PersonObservation;
  const KV::ValueConfidence<float> one(1.f, 1.f);
  EXPECT_THAT(trustWith(&Observation::voiceEmotion, KV::VoiceEmotion(one, one, one, one, one, one)), moves);
  EXPECT_THAT(trustWith(&Observation::asrEmotion, 1.f), moves);
  EXPECT_THAT(trustWith(&Observation::touchEmotion, 1), moves);
  EXPECT_THAT(trustWith(&Observation::contextEmotion, KV::ContextEmotion(1, 5.f)), moves);
}

TEST(TrustInARecording, WithoutPersonsIsNone)
{
  EXPECT_EQ("no persons", KV::session::trustIn(Inspection()));
}

TEST(TrustInARecording, MissesNoExpressionsWhereSmileAndSpeakingStandInForThem)
{
  auto step = entryAt(0.);
  step.person = 1;
  step.observation.headPosture.emplace(step.time, KV::HeadPosture(0.f, 0.f, 0.f));
  step.observation.smile.emplace(step.time, KV::Smile(0.5f, 1.f));
  Inspection smiling;
  smiling.add(step);
  EXPECT_THAT(KV::session::trustIn(smiling), ::testing::HasSubstr("no expressions: valence stays unknown"));
  step.observation.speaking.emplace(step.time, true);
  Inspection speaking;
  speaking.add(step);
  EXPECT_EQ("seen in 100 % of steps; head 0 / 0 degrees right / up on average", KV::session::trustIn(speaking));
}

}  // namespace
