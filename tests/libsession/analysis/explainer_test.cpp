#include "libsession/entries.hpp"

#include <skeigiot/session/explainer.hpp>
#include <skeigiot/session/session.hpp>

#include <gtest/gtest.h>

#include <vector>

namespace
{

using namespace replaytests;
using KV::session::Explainer;
using KV::session::Explanation;
using KV::session::Session;

class ExplainerTest : public ::testing::Test
{
protected:
  std::vector<Explanation> explanations;
  Explainer explainer{1, [this](const Explanation& explanation) { explanations.push_back(explanation); }};
};

TEST_F(ExplainerTest, HandsOnEachUpdateOfThePersonWithTheForcesOfThatUpdate)
{
  Session session({}, {&explainer});
  session.play(seenAt(0., 1));
  session.play(seenAt(0.1, 2));
  session.play(notSeenAt(0.2, 1));

  ASSERT_EQ(2u, explanations.size());
  EXPECT_EQ(0.f, explanations[0].before.valence.value) << "nothing was known before";
  EXPECT_GT(explanations[0].forces.size(), 6u);
  ASSERT_EQ(1u, explanations[0].zoneChanges.size());
  EXPECT_EQ(ko::human::AttentionState::LookingAtRobot, explanations[0].zoneChanges[0].to);

  EXPECT_EQ(explanations[0].after.valence.value, explanations[1].before.valence.value);
  ASSERT_EQ(6u, explanations[1].forces.size()) << "those of the other person, or of the update before, are in it";
  for (const KV::session::ActedForce& force : explanations[1].forces)
    EXPECT_EQ("Not visible", force.source);
  EXPECT_TRUE(explanations[1].zoneChanges.empty());
}

TEST_F(ExplainerTest, HandsOnTheUpdatesOfEverybodyEachWithTheStateBeforeIt)
{
  Explainer everybody(boost::none, [this](const Explanation& explanation) { explanations.push_back(explanation); });
  Session session({}, {&everybody});
  session.play(seenAt(0., 1));
  session.play(seenAt(0., 2, 0.5f));
  session.play(notSeenAt(0.2, 1));

  ASSERT_EQ(3u, explanations.size());
  EXPECT_EQ(2, explanations[1].after.person);
  EXPECT_EQ(0.f, explanations[1].before.valence.confidence);
  EXPECT_EQ(explanations[0].after.valence.value, explanations[2].before.valence.value);
}

TEST_F(ExplainerTest, NotesWhenEverybodyWasUpdated)
{
  Session session({}, {&explainer});
  session.play(seenAt(0., 1));
  session.play(seenAt(0.5, 7));
  session.play(seenAt(1., 7));

  const auto& persons = explainer.persons();
  ASSERT_EQ(2u, persons.size());
  EXPECT_EQ(inNanoseconds(0.5), persons.at(7).first);
  EXPECT_EQ(inNanoseconds(1.), persons.at(7).last);
  EXPECT_EQ(inNanoseconds(0.), persons.at(1).last);
}

/// Passes on updates, and does not watch forces.
class UpdatesOnly : public KV::session::SessionObserver
{
public:
  explicit UpdatesOnly(KV::session::SessionObserver& target) : _target(target) {}

  void personUpdated(const KV::session::Snapshot& snapshot) override { _target.personUpdated(snapshot); }

private:
  KV::session::SessionObserver& _target;
};

TEST_F(ExplainerTest, SeesNoForcesInASessionThatDoesNotWatchThem)
{
  UpdatesOnly updates(explainer);
  Session session({}, {&updates});
  session.play(seenAt(0., 1));

  ASSERT_EQ(1u, explanations.size());
  EXPECT_TRUE(explanations[0].forces.empty());
  EXPECT_TRUE(explanations[0].zoneChanges.empty());
}

TEST_F(ExplainerTest, SeesNothingMoreWhenItsSessionIsOver)
{
  KV::Person person(1);
  {
    Session session({}, {&explainer});
    session.play(seenAt(0., 1));
  }
  person.decreaseSinceNotSeen();
  UpdatesOnly updates(explainer);
  Session session({}, {&updates});
  session.play(seenAt(1., 1));

  EXPECT_TRUE(explanations.back().forces.empty());
}

}  // namespace
