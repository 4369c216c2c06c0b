#include "libsession/entries.hpp"

#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/livesession.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace
{

using namespace replaytests;
using KV::recordings::MemberError;
using KV::session::LiveSession;
using KV::session::Snapshot;
using KV::session::StreamTimes;

struct Log : KV::session::SessionObserver
{
  void personUpdated(const Snapshot& snapshot) override { snapshots.push_back(snapshot); }
  std::vector<Snapshot> snapshots;
};

class LiveSessionTest : public ::testing::Test
{
protected:
  LiveSession session(StreamTimes times)
  {
    return LiveSession(times, [this] { return wallClock; }, {&log});
  }

  /// Returns the member that the line is refused for, "-" if it is taken.
  static std::string refusedFor(LiveSession& session, const std::string& line)
  {
    try
    {
      session.take(line);
    }
    catch (const MemberError& error)
    {
      return error.member();
    }
    return "-";
  }

  static std::string timed(double sinceStart, const std::string& rest)
  {
    return "{\"time\":" + std::to_string((start + inNanoseconds(sinceStart)).time_since_epoch().count()) + "," + rest +
           "}";
  }

  ko::SystemClock::time_point wallClock = start;
  Log log;
};

const std::string looksAtRobot =
    R"("person":1,"observation":{"gaze":{"yaw":0,"pitch":0},"headPosture":{"yaw":0,"pitch":0,"roll":0}})";

TEST_F(LiveSessionTest, ShowsTheTimeOfArrival)
{
  LiveSession live = session(StreamTimes::Arrival);
  live.take("{" + looksAtRobot + "}");
  EXPECT_EQ(start, live.now());
  wallClock += milliseconds(140);
  live.take("{" + looksAtRobot + "}");
  EXPECT_EQ(start + milliseconds(140), live.now());
  EXPECT_EQ(start + milliseconds(140), log.snapshots.back().time);
}

TEST_F(LiveSessionTest, DoesNotAdvanceWhenTheWallClockIsSetBack)
{
  LiveSession live = session(StreamTimes::Arrival);
  live.take("{" + looksAtRobot + "}");
  wallClock -= seconds(60);
  live.take("{" + looksAtRobot + "}");
  EXPECT_EQ(start, live.now());
}

TEST_F(LiveSessionTest, UpdatesWithEachLineWhileItsClockDoesNotAdvance)
{
  LiveSession live = session(StreamTimes::Arrival);
  live.take("{" + looksAtRobot + "}");
  wallClock -= seconds(60);
  for (int i = 0; i < 5; ++i, wallClock += milliseconds(20))
    live.take("{" + looksAtRobot + "}");
  EXPECT_EQ(6u, log.snapshots.size());
}

TEST_F(LiveSessionTest, UpdatesAtTheRateOfItsCycle)
{
  LiveSession live = session(StreamTimes::Arrival);
  for (int i = 0; i < 100; ++i, wallClock += milliseconds(20))
    live.take("{" + looksAtRobot + "}");
  EXPECT_EQ(20u, log.snapshots.size());
}

TEST_F(LiveSessionTest, TakesTheTimeOfALineForThatOfItsReadingsOnArrival)
{
  LiveSession late = session(StreamTimes::Arrival);
  late.take(timed(-2.5, looksAtRobot));
  EXPECT_EQ(start, late.now());
  const float old = log.snapshots.back().attention.confidence;

  LiveSession fresh = session(StreamTimes::Arrival);
  fresh.take("{" + looksAtRobot + "}");
  EXPECT_LT(old, log.snapshots.back().attention.confidence);
}

TEST_F(LiveSessionTest, RefusesTimesOfTheFuture)
{
  LiveSession live = session(StreamTimes::Arrival);
  EXPECT_EQ("-", refusedFor(live, timed(1., looksAtRobot)));
  EXPECT_EQ("time", refusedFor(live, timed(1.001, looksAtRobot)));
}

TEST_F(LiveSessionTest, TakesALineThatHasBeenReadAsItsText)
{
  const std::string text = timed(-2.5, looksAtRobot);
  LiveSession readsItself = session(StreamTimes::Arrival);
  readsItself.take(text);
  LiveSession live = session(StreamTimes::Arrival);
  live.take(KV::recordings::streamLineFromJson(text, boost::none));
  EXPECT_EQ(start, live.now());
  ASSERT_EQ(2u, log.snapshots.size());
  EXPECT_EQ(log.snapshots.front().attention.value, log.snapshots.back().attention.value);
  EXPECT_EQ(log.snapshots.front().attention.confidence, log.snapshots.back().attention.confidence);

  KV::recordings::StreamLine line;
  line.entry.time = start + milliseconds(1001);
  EXPECT_THROW(live.take(line), MemberError) << "more than a second ahead";
}

TEST_F(LiveSessionTest, TakesTheTimeOfALineThatHasBeenRead)
{
  LiveSession live = session(StreamTimes::Lines);
  KV::recordings::StreamLine line;
  line.entry.time = start + milliseconds(700);
  line.leaving = {4};
  EXPECT_EQ(std::vector<std::int32_t>{4}, live.take(line));
  EXPECT_EQ(start + milliseconds(700), live.now());
  line.entry.time = start;
  EXPECT_THROW(live.take(line), MemberError) << "time runs backwards";
}

TEST_F(LiveSessionTest, ShowsTheTimeOfTheLines)
{
  LiveSession live = session(StreamTimes::Lines);
  live.take(timed(5., looksAtRobot));
  EXPECT_EQ(start + seconds(5), live.now());
}

TEST_F(LiveSessionTest, NeedsTimesThatDoNotRunBackInTheLines)
{
  LiveSession live = session(StreamTimes::Lines);
  EXPECT_EQ("time", refusedFor(live, "{" + looksAtRobot + "}"));
  EXPECT_EQ("-", refusedFor(live, timed(5., looksAtRobot)));
  EXPECT_EQ("-", refusedFor(live, timed(5., looksAtRobot)));
  EXPECT_EQ("time", refusedFor(live, timed(4.999, looksAtRobot)));
  EXPECT_EQ(start + seconds(5), live.now());
}

TEST_F(LiveSessionTest, RefusesToOpenTooManyScopes)
{
  LiveSession live = session(StreamTimes::Arrival);
  for (std::size_t i = 0; i < KV::session::Scopes::mostOpen; ++i)
    EXPECT_EQ("-", refusedFor(live, R"({"start":[{"scope":")" + std::to_string(i) + R"("}]})"));
  EXPECT_EQ("start", refusedFor(live, R"({"start":[{"scope":"more"}],)" + looksAtRobot + "}"));
  EXPECT_TRUE(log.snapshots.empty()) << "the line changed nothing";
  EXPECT_EQ("-", refusedFor(live, R"({"stop":["7"]})"));
  EXPECT_EQ("-", refusedFor(live, R"({"start":[{"scope":"more"}]})"));
}

TEST_F(LiveSessionTest, RefusesPersonsWhoAreTooManyForTheScopes)
{
  LiveSession live = session(StreamTimes::Arrival);
  for (std::size_t i = 0; i < KV::session::Scopes::mostOpen; ++i)
    EXPECT_EQ("-", refusedFor(live, R"({"start":[{"scope":")" + std::to_string(i) + R"("}]})"));
  int person = 0;
  const auto lineOf = [](int number) { return R"({"person":)" + std::to_string(number) + "}"; };
  while (person < 2000 && refusedFor(live, lineOf(person)) == "-")
    ++person;
  EXPECT_GE(person, 1000);
  EXPECT_EQ("person", refusedFor(live, lineOf(person)));
  EXPECT_EQ("-", refusedFor(live, lineOf(0)));
  EXPECT_EQ("-", refusedFor(live, R"({"stop":["7","8"]})"));
}

TEST_F(LiveSessionTest, ForgetsWhoLeaves)
{
  LiveSession live = session(StreamTimes::Arrival);
  for (int i = 0; i < 10; ++i, wallClock += milliseconds(100))
    live.take("{" + looksAtRobot + "}");
  const float known = log.snapshots.back().attention.value;

  live.take(R"({"leave":[1,7]})");
  live.take(R"({"person":1,"seen":false})");
  EXPECT_EQ(10u, log.snapshots.size()) << "who has left does not age";
  live.take("{" + looksAtRobot + "}");
  EXPECT_LT(log.snapshots.back().attention.value, known) << "who comes back is somebody new";
}

TEST_F(LiveSessionTest, TakesNothingFromABlankLine)
{
  LiveSession live = session(StreamTimes::Lines);
  live.take("");
  live.take(" \t");
  EXPECT_TRUE(log.snapshots.empty());
}

class LiveBoundaries : public LiveSessionTest
{
protected:
  KV::session::SavedBoundaries saved;
  LiveSession live = session(StreamTimes::Arrival);
};

TEST_F(LiveBoundaries, AreSetByTheirNames)
{
  live.take(R"({"boundaries":{"positive":0.25,"negative":-0.3,"confidence":0.5,"lookingAtRobot":0.55,)"
            R"("strictlyLookingAtRobot":0.8,"excited":0.45}})");
  EXPECT_EQ(0.25f, KV::PersonState::getBinaryBoundaryPositive());
  EXPECT_EQ(-0.3f, KV::PersonState::getBinaryBoundaryNegative());
  EXPECT_EQ(0.5f, KV::PersonState::getBinaryBoundaryConfidence());
  EXPECT_EQ(0.55f, KV::PersonState::getBinaryBoundaryLookingAtRobot());
  EXPECT_EQ(0.8f, KV::PersonState::getBinaryBoundaryStrictlyLookingAtRobot());
  EXPECT_EQ(0.45f, KV::AmbianceState::getBinaryBoundaryExcited());
}

TEST_F(LiveBoundaries, StayIfOneOfThemIsRejected)
{
  EXPECT_EQ("boundaries.excited", refusedFor(live, R"({"boundaries":{"positive":0.25,"excited":1}})"));
  EXPECT_EQ(0.2f, KV::PersonState::getBinaryBoundaryPositive());
  EXPECT_EQ(0.4f, KV::AmbianceState::getBinaryBoundaryExcited());
}

TEST_F(LiveBoundaries, MustBeKnown)
{
  EXPECT_EQ("boundaries.engaged", refusedFor(live, R"({"boundaries":{"engaged":0.5}})"));
  EXPECT_EQ("boundaries.positive", refusedFor(live, R"({"boundaries":{"positive":"high"}})"));
  EXPECT_EQ("boundaries", refusedFor(live, R"({"boundaries":0.5})"));
}

TEST_F(LiveSessionTest, RefusesReadingsFromTheFuture)
{
  LiveSession live = session(StreamTimes::Arrival);
  const auto gazeAt = [](double sinceStart) {
    const auto time = (start + inNanoseconds(sinceStart)).time_since_epoch().count();
    return R"({"person":1,"observation":{"gaze":{"yaw":0,"pitch":0,"time":)" + std::to_string(time) + "}}}";
  };
  EXPECT_EQ("observation", refusedFor(live, gazeAt(1.001)));
  EXPECT_TRUE(log.snapshots.empty());
  EXPECT_EQ("-", refusedFor(live, gazeAt(1.)));
  EXPECT_EQ("-", refusedFor(live, gazeAt(-3600.)));
}

}  // namespace
