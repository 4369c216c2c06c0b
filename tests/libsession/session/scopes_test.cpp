#include "libsession/entries.hpp"

#include <skeigiot/emotionrecorder.hpp>
#include <skeigiot/recordings/signallimits.hpp>
#include <skeigiot/session/scopes.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::session::ScopeEnd;
using KV::session::Scopes;
using KV::session::ScopeSpan;
using KV::session::ScopeVerdict;
using replaytests::inNanoseconds;

const KV::PersonState positive(1.f, 1.f, 0.f, 0.f);
const KV::PersonState negative(-1.f, 1.f, 0.f, 0.f);

KV::session::Snapshot updateOf(std::int32_t person, double seconds = 0., float valence = 0.f)
{
  KV::session::Snapshot snapshot;
  snapshot.person = person;
  snapshot.name = "p" + std::to_string(person);
  snapshot.sinceStart = inNanoseconds(seconds);
  snapshot.valence = {valence, 0.5f};
  return snapshot;
}

TEST(Scopes, SumUpTheUpdatesOfEachPersonInThem)
{
  Scopes scopes({{"span", inNanoseconds(1.), inNanoseconds(2.)}});
  std::vector<ScopeVerdict> verdicts;
  for (const double time : {0., 1., 1.5, 2., 2.5})
  {
    for (ScopeVerdict& verdict : scopes.advance(inNanoseconds(time)))
      verdicts.push_back(std::move(verdict));
    scopes.update(updateOf(3, time, time < 1. || time > 2. ? -1.f : 0.25f), positive);
  }
  ASSERT_EQ(1U, verdicts.size());
  const KV::session::PersonSummary summary = verdicts.front().of(3).summary;
  EXPECT_EQ("p3", summary.name());
  EXPECT_EQ(3U, summary.updates());
  EXPECT_EQ(inNanoseconds(1.), summary.from());
  EXPECT_EQ(inNanoseconds(2.), summary.to());
  EXPECT_DOUBLE_EQ(0.25, summary.valence());
  EXPECT_EQ(0U, verdicts.front().of(4).summary.updates());
}

TEST(Scopes, JudgeEachPersonByTheirOwnStates)
{
  Scopes scopes({});
  scopes.start("a", -1, inNanoseconds(0.));
  scopes.update(updateOf(1), positive);
  scopes.update(updateOf(2), negative);
  scopes.update(updateOf(2), negative);

  const ScopeVerdict verdict = scopes.stop("a", inNanoseconds(1.));

  EXPECT_EQ("positive", verdict.of(1).word);
  EXPECT_EQ(1U, verdict.of(1).updates);
  EXPECT_EQ("negative", verdict.of(2).word);
  EXPECT_EQ(2U, verdict.of(2).updates);
  EXPECT_EQ(ScopeEnd::Complete, verdict.end);
}

TEST(Scopes, SayWhenTheyBeganAndEnded)
{
  Scopes scopes({});
  scopes.start("a", -1, inNanoseconds(2.));
  const ScopeVerdict verdict = scopes.stop("a", inNanoseconds(5.));
  EXPECT_EQ(inNanoseconds(2.), verdict.from);
  EXPECT_EQ(inNanoseconds(5.), verdict.to);
}

TEST(Scopes, TakeAsManyUpdatesOfEachPersonAsTheyWereStartedFor)
{
  Scopes scopes({});
  scopes.start("a", 2, inNanoseconds(0.));
  for (int i = 0; i < 3; ++i)
    scopes.update(updateOf(1), negative);
  scopes.update(updateOf(2), positive);

  const ScopeVerdict verdict = scopes.stop("a", inNanoseconds(1.));

  EXPECT_EQ(2U, verdict.of(1).updates);
  EXPECT_EQ(1U, verdict.of(2).updates);
}

TEST(Scopes, StartedForNoUpdateTakeNone)
{
  Scopes scopes({});
  scopes.start("a", 0, inNanoseconds(0.));
  scopes.update(updateOf(1), negative);
  const ScopeVerdict verdict = scopes.stop("a", inNanoseconds(1.));
  EXPECT_EQ(0U, verdict.of(1).updates);
  EXPECT_EQ("neutral", verdict.of(1).word);
}

TEST(Scopes, StartedAgainForgetWhatTheyTookBefore)
{
  Scopes scopes({});
  scopes.start("a", -1, inNanoseconds(0.));
  scopes.update(updateOf(1), negative);
  scopes.start("a", -1, inNanoseconds(1.));
  scopes.update(updateOf(1), positive);
  const ScopeVerdict verdict = scopes.stop("a", inNanoseconds(2.));
  EXPECT_EQ("positive", verdict.of(1).word);
  EXPECT_EQ(inNanoseconds(1.), verdict.from);
}

TEST(Scopes, StoppedWithoutHavingBeenStartedAreAnError)
{
  Scopes scopes({});
  const ScopeVerdict verdict = scopes.stop("a", inNanoseconds(3.));
  EXPECT_EQ(ScopeEnd::NotOpen, verdict.end);
  EXPECT_EQ("error", verdict.of(1).word);
}

TEST(Scopes, StoppedTwiceAreAnErrorTheSecondTime)
{
  Scopes scopes({});
  scopes.start("a", -1, inNanoseconds(0.));
  scopes.stop("a", inNanoseconds(1.));
  EXPECT_EQ(ScopeEnd::NotOpen, scopes.stop("a", inNanoseconds(1.)).end);
}

TEST(Scopes, NeverStoppedAreJudgedAtTheEnd)
{
  Scopes scopes({});
  scopes.start("a", -1, inNanoseconds(0.));
  scopes.update(updateOf(1), positive);
  const std::vector<ScopeVerdict> verdicts = scopes.finish(inNanoseconds(9.));
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ(ScopeEnd::NotStopped, verdicts[0].end);
  EXPECT_EQ("positive", verdicts[0].of(1).word);
  EXPECT_EQ(inNanoseconds(9.), verdicts[0].to);
}

TEST(Scopes, OpenNoMoreThanTheyMay)
{
  Scopes scopes({});
  for (std::size_t i = 0; i < Scopes::mostOpen; ++i)
    EXPECT_TRUE(scopes.start(std::to_string(i), -1, inNanoseconds(0.)));
  EXPECT_FALSE(scopes.start("more", -1, inNanoseconds(0.)));
  EXPECT_FALSE(scopes.isOpen("more"));
  EXPECT_TRUE(scopes.start("7", -1, inNanoseconds(1.))) << "it starts anew";
  EXPECT_EQ(Scopes::mostOpen, scopes.openCount());
  scopes.stop("7", inNanoseconds(2.));
  EXPECT_TRUE(scopes.start("more", -1, inNanoseconds(2.)));
}

/// Opens all scopes, and updates persons until one more would be too many; returns how many were updated.
std::int32_t fillScopes(Scopes& scopes)
{
  for (std::size_t i = 0; i < Scopes::mostOpen; ++i)
    scopes.start(std::to_string(i), -1, inNanoseconds(0.));
  std::int32_t persons = 0;
  while (scopes.hasRoomFor(persons))
    scopes.update(updateOf(persons++), positive);
  return persons;
}

TEST(Scopes, LeaveOutPersonsBeyondTheLimit)
{
  Scopes scopes({});
  const std::int32_t persons = fillScopes(scopes);
  constexpr std::size_t most = KV::recordings::limits::mostPersonsInScopes;
  EXPECT_EQ(most / (Scopes::mostOpen - 1), static_cast<std::size_t>(persons)) << "one for each update comes on top";
  EXPECT_EQ("", scopes.takeOmittedUpdates());

  EXPECT_TRUE(scopes.hasRoomFor(0)) << "who is in the scopes already stays in them";
  scopes.update(updateOf(0), positive);
  EXPECT_EQ("", scopes.takeOmittedUpdates());
  scopes.update(updateOf(persons), positive);
  const std::string text = scopes.takeOmittedUpdates();
  EXPECT_EQ(0U, text.find("updates were left out of scopes ")) << text;
  EXPECT_NE(std::string::npos, text.find("too many persons together (100000 more than updates); the first was '"));
  EXPECT_EQ("", scopes.takeOmittedUpdates());
  EXPECT_EQ(2U, scopes.stop("0", inNanoseconds(1.)).of(0).updates);
}

TEST(Scopes, LeaveNobodyOutOfTheFirstSpan)
{
  Scopes scopes({{"whole recording", inNanoseconds(0.), boost::none}});
  scopes.advance(inNanoseconds(0.));
  const std::int32_t persons = fillScopes(scopes);
  for (std::int32_t more = 0; more < 1000; ++more)
    scopes.update(updateOf(persons + more), positive);
  const std::vector<ScopeVerdict> verdicts = scopes.finish(inNanoseconds(1.));
  EXPECT_EQ("whole recording", verdicts.front().name);
  EXPECT_EQ(static_cast<std::size_t>(persons + 1000), verdicts.front().persons.size());
  EXPECT_GT(static_cast<std::size_t>(persons + 2), verdicts.back().persons.size());
}

TEST(Scopes, ThatAreOverCountForTheLimitAsTheirVerdictsAreKept)
{
  Scopes scopes({});
  const std::int32_t persons = fillScopes(scopes);
  for (std::size_t i = 1; i < Scopes::mostOpen; ++i)
    scopes.stop(std::to_string(i), inNanoseconds(1.));
  EXPECT_TRUE(scopes.hasRoomFor(persons)) << "there is one scope, and each update makes room for one person";
  for (std::size_t i = 1; i < Scopes::mostOpen; ++i)
    scopes.start(std::to_string(i), -1, inNanoseconds(1.));
  EXPECT_FALSE(scopes.hasRoomFor(persons));
}

/// Updates a person once a second, from second 0 to `last`, and returns all verdicts on the scope.
std::vector<ScopeVerdict> judged(const ScopeSpan& span, int last)
{
  Scopes scopes({span});
  std::vector<ScopeVerdict> verdicts;
  for (int second = 0; second <= last; ++second)
  {
    for (const ScopeVerdict& verdict : scopes.advance(inNanoseconds(second)))
      verdicts.push_back(verdict);
    scopes.update(updateOf(1), positive);
  }
  for (const ScopeVerdict& verdict : scopes.finish(inNanoseconds(last)))
    verdicts.push_back(verdict);
  return verdicts;
}

TEST(ScopesOfASpan, TakeTheUpdatesAtBothOfItsEnds)
{
  const auto verdicts = judged({"a", inNanoseconds(2.), inNanoseconds(4.)}, 9);
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ(3U, verdicts[0].of(1).updates);
  EXPECT_EQ(ScopeEnd::Complete, verdicts[0].end);
}

TEST(ScopesOfASpan, LeaveOutUpdatesJustOutside)
{
  const auto verdicts = judged({"a", inNanoseconds(2.000000001), inNanoseconds(3.999999999)}, 9);
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ(1U, verdicts[0].of(1).updates);
}

TEST(ScopesOfASpan, AreCompleteIfTheRecordingEndsExactlyWithThem)
{
  const auto verdicts = judged({"a", inNanoseconds(2.), inNanoseconds(9.)}, 9);
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ(ScopeEnd::Complete, verdicts[0].end);
}

TEST(ScopesOfASpan, AreCutShortByTheEndOfTheRecording)
{
  const auto verdicts = judged({"a", inNanoseconds(8.), inNanoseconds(10.)}, 9);
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ(ScopeEnd::CutShort, verdicts[0].end);
  EXPECT_EQ(2U, verdicts[0].of(1).updates);
  EXPECT_EQ(inNanoseconds(9.), verdicts[0].to);
}

TEST(ScopesOfASpan, ReachToTheEndOfTheRecordingIfTheyHaveNoEnd)
{
  const auto verdicts = judged({"a", inNanoseconds(8.), boost::none}, 9);
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ(ScopeEnd::Complete, verdicts[0].end);
  EXPECT_EQ(inNanoseconds(9.), verdicts[0].to);
}

TEST(ScopesOfASpan, AreReportedIfTheyAreNeverReached)
{
  const auto verdicts = judged({"a", inNanoseconds(20.), inNanoseconds(30.)}, 9);
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ(ScopeEnd::NotReached, verdicts[0].end);
  EXPECT_EQ("-", verdicts[0].of(1).word);
}

TEST(ScopesOfASpan, BetweenTwoUpdatesAreEmptyAndNeutral)
{
  const auto verdicts = judged({"a", inNanoseconds(2.1), inNanoseconds(2.9)}, 9);
  ASSERT_EQ(1U, verdicts.size());
  EXPECT_EQ(ScopeEnd::Complete, verdicts[0].end);
  EXPECT_EQ(0U, verdicts[0].of(1).updates);
  EXPECT_EQ("neutral", verdicts[0].of(1).word);
}

TEST(ScopesOfASpan, DoNotMixWithOnesOfTheSameNameThatTheRecordingStarts)
{
  Scopes scopes({{"a", inNanoseconds(0.), boost::none}});
  scopes.advance(inNanoseconds(0.));
  EXPECT_EQ(ScopeEnd::NotOpen, scopes.stop("a", inNanoseconds(0.)).end);
}

TEST(ScopesOfSpans, HaveTheUpdatesWithinThemHoweverTheyOverlap)
{
  std::mt19937 random(20261122);
  for (int repetition = 0; repetition < 200; ++repetition)
  {
    SCOPED_TRACE(repetition);
    const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
    std::vector<ScopeSpan> spans;
    for (int i = below(6); i >= 0; --i)
    {
      const int from = below(20);
      spans.push_back({std::to_string(i), inNanoseconds(from), inNanoseconds(from + below(10))});
    }
    Scopes scopes(spans);
    std::vector<int> times;
    std::map<std::string, ScopeVerdict> verdicts;
    const auto keep = [&verdicts](const std::vector<ScopeVerdict>& some) {
      for (const ScopeVerdict& verdict : some)
        EXPECT_TRUE(verdicts.emplace(verdict.name, verdict).second) << "judged once";
    };
    for (int time = below(5); time < 25; time += below(4))
    {
      times.push_back(time);
      keep(scopes.advance(inNanoseconds(time)));
      scopes.update(updateOf(1, time), positive);
    }
    keep(scopes.finish(inNanoseconds(times.back())));
    ASSERT_EQ(spans.size(), verdicts.size());
    for (const ScopeSpan& span : spans)
    {
      const auto isWithin = [&span](int time) {
        return span.from <= inNanoseconds(time) && inNanoseconds(time) <= *span.to;
      };
      EXPECT_EQ(static_cast<std::size_t>(std::count_if(times.begin(), times.end(), isWithin)),
                verdicts.at(span.name).of(1).updates);
    }
  }
}

TEST(ScopeEnds, HaveNames)
{
  std::vector<std::string> names;
  for (const ScopeEnd end :
       {ScopeEnd::Complete, ScopeEnd::NotStopped, ScopeEnd::CutShort, ScopeEnd::NotReached, ScopeEnd::NotOpen})
    names.emplace_back(scopeEndName(end));
  EXPECT_EQ((std::vector<std::string>{"complete", "not stopped", "cut short", "not reached", "not open"}), names);
}

TEST(Scopes, JudgeAsTheRecorderDoes)
{
  constexpr std::mt19937::result_type seed = 5;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> valence(-0.6f, 0.6f);
  std::uniform_real_distribution<float> confidence(0.2f, 0.7f);
  std::uniform_int_distribution<int> limit(-1, 8);
  std::uniform_int_distribution<int> length(0, 12);
  std::set<std::string> words;

  for (int round = 0; round < 500; ++round)
  {
    KV::KVEmotionRecorder recorder;
    Scopes scopes({});
    const int samples = limit(random);
    recorder.startRecording("a", samples);
    scopes.start("a", samples, inNanoseconds(0.));
    for (int i = length(random); i > 0; --i)
    {
      const KV::PersonState state(valence(random), confidence(random), 0.f, 0.f);
      recorder.update_notMutexed(state);
      scopes.update(updateOf(7), state);
    }

    const auto recorded = recorder.stopRecording("a");
    const ScopeVerdict::OfPerson judgement = scopes.stop("a", inNanoseconds(1.)).of(7);
    ASSERT_EQ(recorded.first, judgement.word) << "round " << round;
    ASSERT_EQ(recorded.second.size(), judgement.updates) << "round " << round;
    words.insert(judgement.word);
  }
  EXPECT_EQ((std::set<std::string>{"negative", "neutral", "positive", "unknown"}), words);
}

}  // namespace
