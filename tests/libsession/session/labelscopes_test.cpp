#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/signallimits.hpp>
#include <skeigiot/session/labelscopes.hpp>

#include <gmock/gmock.h>

#include <cstddef>
#include <string>
#include <vector>

namespace
{

using KV::recordings::Error;
using KV::recordings::Labels;
using KV::session::parseLabelScopes;
using KV::session::ScopeSpan;
using replaytests::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ScopesOfLabels : public ::testing::Test
{
protected:
  void add(double from, double to, const std::string& label, const std::string& tier = "",
           const std::string& person = "")
  {
    labels.spans.push_back({from, to, label, person, "coder", tier});
  }

  std::vector<std::string> scopes(const std::string& tier = "", double offset = 0.)
  {
    std::vector<std::string> words;
    for (const ScopeSpan& span : KV::session::scopesOf(labels, {"a.eaf", tier}, offset, warnings))
      words.push_back(span.name + "=" + std::to_string(span.from.count() / 1'000'000) + ".." +
                      std::to_string(span.to->count() / 1'000'000));
    return words;
  }

  std::string errorOf(const std::string& tier = "", double offset = 0.)
  {
    return support::textThrownBy<Error>([&] { scopes(tier, offset); });
  }

  Labels labels;
  std::vector<std::string> warnings;
};

TEST_F(ScopesOfLabels, HaveTheNameAndTheSpanOfALabel)
{
  add(0., 1.5, "greeting");
  add(2., 2.001, "greeting");
  EXPECT_THAT(scopes(), ElementsAre("greeting=0..1500", "greeting=2000..2001"));
  EXPECT_THAT(warnings, IsEmpty());
}

TEST_F(ScopesOfLabels, BeginWithTheTierIfThereAreSeveral)
{
  add(0., 1., "a", "task", "anna");
  add(1., 2., "b", "gesture", "anna");
  add(2., 3., "", "task", "ben");
  EXPECT_THAT(scopes(), ElementsAre("task: a=0..1000", "gesture: b=1000..2000", "task: (no text)=2000..3000"));
  EXPECT_THAT(scopes("task"), ElementsAre("a=0..1000", "(no text)=2000..3000"));
}

TEST_F(ScopesOfLabels, BeginWithThePersonIfThereAreSeveralAndNoTiers)
{
  add(0., 1., "a", "", "anna");
  add(1., 2., "b", "", "ben");
  add(1., 2., "c");
  EXPECT_THAT(scopes(), ElementsAre("anna: a=0..1000", "ben: b=1000..2000", "c=1000..2000"));
}

TEST_F(ScopesOfLabels, MayBeOfOnePerson)
{
  add(0., 1., "a", "session 1", "anna");
  add(1., 2., "b", "session 1", "ben");
  EXPECT_THAT(scopes("ben"), ElementsAre("b=1000..2000"));
}

TEST_F(ScopesOfLabels, AreMovedAndCutAtTheStart)
{
  add(0., 1., "gone");
  add(0., 1.5, "cut");
  add(2., 3., "moved");
  EXPECT_THAT(scopes("", -1.), ElementsAre("cut=0..500", "moved=1000..2000"));
  EXPECT_THAT(warnings, ElementsAre("1 label before the start of the recording left out"));
}

TEST_F(ScopesOfLabels, NeedADuration)
{
  add(0., 1., "span");
  add(1., 1., "point");
  add(2., 2., "point");
  EXPECT_THAT(scopes(), ElementsAre("span=0..1000"));
  EXPECT_THAT(warnings, ElementsAre("2 labels without duration left out: a scope needs a span"));
}

TEST_F(ScopesOfLabels, AreRefusedWithoutAny)
{
  EXPECT_EQ("a.eaf: has no label with a duration in the recording, so no scope", errorOf());
  add(1., 1., "point");
  EXPECT_EQ("a.eaf: has no label with a duration in the recording, so no scope", errorOf());
  add(1., 2., "span");
  EXPECT_EQ("a.eaf: has no label with a duration in the recording, so no scope", errorOf("", -2.));
}

TEST_F(ScopesOfLabels, AreRefusedForATierThatIsNotThere)
{
  EXPECT_EQ("a.eaf: has no label of tier 'task'; it has no tiers", errorOf("task"));
  add(0., 1., "a", "gesture", "anna");
  EXPECT_EQ("a.eaf: has no label of tier 'task'; it has 'anna', 'gesture'", errorOf("task"));
  for (int i = 0; i < 10; ++i)
    add(0., 1., "a", "t" + std::to_string(i));
  EXPECT_THAT(errorOf("task"), HasSubstr("'t5', ..."));
}

TEST_F(ScopesOfLabels, AreLimited)
{
  const std::size_t most = KV::recordings::limits::mostScopesOfLabels;
  for (std::size_t i = 0; i < most; ++i)
    add(static_cast<double>(i), static_cast<double>(i) + 0.5, "a");
  EXPECT_EQ(most, scopes().size());
  add(0., 1., "a");
  EXPECT_EQ("a.eaf: has 10001 labels with a duration, expected 10000 at most: name one of its tiers", errorOf());
}

TEST_F(ScopesOfLabels, AreLimitedAtOneTime)
{
  const std::size_t most = KV::recordings::limits::mostLabelsAtOnce;
  for (std::size_t i = 0; i < most; ++i)
    add(0., 2., "a");
  EXPECT_EQ(most, scopes().size());
  add(2.001, 3., "after them");
  EXPECT_EQ(most + 1, scopes().size());
  add(2., 3., "both ends are in a scope");
  EXPECT_EQ("a.eaf: has 1001 labels at one time, expected 1000 at most: name one of its tiers", errorOf());
}

TEST_F(ScopesOfLabels, TakeTheLatestTimes)
{
  add(0., 4e9, "a");
  EXPECT_THAT(scopes("", 4e9), ElementsAre("a=4000000000000..8000000000000"));
}

TEST(FileOfScopes, MayHaveATierAndColons)
{
  const TemporaryFolder folder;
  folder.write("a.eaf", "");
  folder.write("b:c.eaf", "");
  EXPECT_EQ(folder.path("a.eaf"), parseLabelScopes(folder.path("a.eaf")).path);
  EXPECT_EQ("", parseLabelScopes(folder.path("a.eaf")).tier);
  EXPECT_EQ(folder.path("a.eaf"), parseLabelScopes(folder.path("a.eaf:zone: anna")).path);
  EXPECT_EQ("zone: anna", parseLabelScopes(folder.path("a.eaf:zone: anna")).tier);
  EXPECT_EQ(folder.path("b:c.eaf"), parseLabelScopes(folder.path("b:c.eaf:task")).path);
  EXPECT_EQ("task", parseLabelScopes(folder.path("b:c.eaf:task")).tier);
  EXPECT_EQ(folder.path("b:c.eaf"), parseLabelScopes(folder.path("b:c.eaf")).path);
  EXPECT_EQ("", parseLabelScopes(folder.path("b:c.eaf")).tier);
  EXPECT_EQ("missing.eaf:task", parseLabelScopes("missing.eaf:task").path);
}

}  // namespace
