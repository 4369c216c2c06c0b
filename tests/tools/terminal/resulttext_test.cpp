#include "terminal/resulttext.hpp"

#include "libsession/entries.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

namespace
{

using namespace replaytests;
using KV::session::ScopeVerdict;
using KV::session::Summary;
using KV::tools::readingText;

const char* const scope = "all";

/// The result for persons with these verdicts, each after one update with that valence, and attention from 0.
class Result
{
public:
  Result& with(const std::string& word, KV::session::Snapshot snapshot)
  {
    snapshot.person = static_cast<std::int32_t>(_words.size()) + 1;
    _words[snapshot.person] = {word, 1};
    _summary.personUpdated(snapshot);
    return *this;
  }

  std::string text()
  {
    _summary.scopeJudged({"some scope", inNanoseconds(0.), inNanoseconds(1.), KV::session::ScopeEnd::Complete, {}});
    _summary.scopeJudged({scope, inNanoseconds(0.), inNanoseconds(1.), KV::session::ScopeEnd::Complete, _words});
    _summary.finish();
    return KV::tools::resultText(_summary, scope);
  }

private:
  Summary _summary;
  std::map<std::int32_t, ScopeVerdict::OfPerson> _words;
};

KV::session::Snapshot withoutValence(KV::session::Snapshot snapshot)
{
  snapshot.valence.confidence = 0.f;
  return snapshot;
}

KV::session::Snapshot withoutAttention(KV::session::Snapshot snapshot)
{
  snapshot.attention.confidence = 0.f;
  return snapshot;
}

TEST(ResultText, SaysHowAPersonFeltAndWhereTheyLooked)
{
  EXPECT_EQ("Person 1 was positive on the whole (valence +0.50) and looked at the robot 100 % of the time.",
            Result().with("positive", snapshotAt(0., 0.5f, 1.f)).text());
}

TEST(ResultText, CallsAPersonByTheirName)
{
  KV::session::Snapshot snapshot = snapshotAt(0., 0.5f, 1.f);
  snapshot.name = "anna\n";
  EXPECT_EQ("anna\\n (person 1) was positive on the whole (valence +0.50) and looked at the robot 100 % of the time.",
            Result().with("positive", snapshot).text());
  EXPECT_EQ("How anna\\n (person 1) felt is unknown; they looked at the robot 100 % of the time.",
            Result().with("unknown", withoutValence(snapshot)).text());
}

TEST(ResultText, SaysWhatIsUnknown)
{
  EXPECT_EQ("How person 1 felt is unknown; they looked at the robot 100 % of the time.",
            Result().with("unknown", withoutValence(snapshotAt(0., 0.5f, 1.f))).text());
  EXPECT_EQ("How person 1 felt is unknown; they looked at the robot 100 % of the time.",
            Result().with("unknown", snapshotAt(0., 0.5f, 1.f)).text())
      << "as the verdict says";
  EXPECT_EQ("How person 1 felt is unknown; they looked at the robot 100 % of the time.",
            Result().with("neutral", withoutValence(snapshotAt(0., 0.5f, 1.f))).text())
      << "a verdict on nothing counts as neutral";
  EXPECT_EQ("Person 1 was negative on the whole (valence -0.50); where they looked is unknown.",
            Result().with("negative", withoutAttention(snapshotAt(0., -0.5f))).text());
  EXPECT_EQ("How person 1 felt, and where they looked, is unknown.",
            Result().with("unknown", withoutAttention(withoutValence(snapshotAt(0.)))).text());
}

TEST(ResultText, HasASentenceForEachOfFewPersons)
{
  EXPECT_EQ(
      "Person 1 was positive on the whole (valence +0.50) and looked at the robot 100 % of the time. "
      "Person 2 was neutral on the whole (valence 0.00) and looked at the robot 0 % of the time.",
      Result().with("positive", snapshotAt(0., 0.5f, 1.f)).with("neutral", snapshotAt(0.)).text());
}

TEST(ResultText, CountsManyPersons)
{
  Result many;
  many.with("positive", snapshotAt(0., 0.5f, 1.f)).with("positive", snapshotAt(0., 0.5f, 1.f));
  many.with("negative", snapshotAt(0., -0.5f, 1.f)).with("neutral", snapshotAt(0.));
  EXPECT_EQ(
      "4 persons, on the whole: 2 positive, 1 neutral, 1 negative; they looked at the robot 75 % of the time on "
      "average.",
      many.text());
}

TEST(ResultText, CountsWhatIsKnownOfManyPersons)
{
  Result some;
  some.with("positive", snapshotAt(0., 0.5f, 1.f)).with("unknown", withoutAttention(withoutValence(snapshotAt(0.))));
  some.with("neutral", withoutValence(snapshotAt(0., 0.f, 1.f))).with("neutral", snapshotAt(0.));
  EXPECT_EQ(
      "4 persons, on the whole: 1 positive, 1 neutral, 2 unknown; those of whom it is known looked at the robot "
      "67 % of the time on average.",
      some.text());

  Result none;
  for (int i = 0; i < 4; ++i)
    none.with("unknown", withoutAttention(withoutValence(snapshotAt(0.))));
  EXPECT_EQ("4 persons, on the whole: 4 unknown; where they looked is unknown.", none.text());
}

TEST(ResultText, SaysThatNobodyWasSeen)
{
  EXPECT_EQ("Nobody was seen in this recording.", Result().text());
}

TEST(ReadingText, IsOneLineOfWhatTheReaderSays)
{
  EXPECT_EQ("Read as: OpenFace, 30 frames/s by the time stamps; 'skeigiot inspect' says more.",
            readingText({"OpenFace: angles in radians, pose_Rx down, not mirrored",
                         "30 frames/s by the time stamps, persons by face_id; missing: landmarks"}));
  EXPECT_EQ("Read as: One session of 2 inputs, merged by time; 'skeigiot inspect' says more.",
            readingText({"One session of 2 inputs, merged by time; readings of the others join the next step", "a: b",
                         "a: c", "d: e"}));
}

}  // namespace
