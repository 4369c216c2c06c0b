#include <skeigiot/session/sentence.hpp>

#include <gtest/gtest.h>

namespace
{

using KV::session::describeChange;
using KV::session::SourceChange;

SourceChange change(const char* source, double up, double down, float target)
{
  return {source, KV::ValenceQuantity, 1, up, down, target, target};
}

TEST(ChangeSentence, ReportsWhoPulledAndWhoPulledTheOtherWay)
{
  EXPECT_EQ(
      "valence fell from 0.41 to 0.12: facial expressions (negative) pulled 65 %, touch (positive) pulled 35 % the "
      "other way",
      describeChange(KV::ValenceQuantity, 0.41f, 0.12f,
                     {change("Face characteristics", 0., 0.65, -1.f), change("Touch emotion", 0.35, 0., 1.f)}));
}

TEST(ChangeSentence, NamesThoseWhoMadeTheChangeBeforeThoseWhoOpposedIt)
{
  EXPECT_EQ(
      "attention rose from -0.10 to 0.10: smile (positive) pulled 40 %, not being visible pulled 60 % the other way",
      describeChange(KV::AttentionQuantity, -0.1f, 0.1f,
                     {change("Not visible", 0., 0.6, 0.f), change("Smile", 0.4, 0., 1.f)}));
}

TEST(ChangeSentence, ReportsTheWayOfEachPullWhereNothingChangedInTheEnd)
{
  EXPECT_EQ("valence stayed at 0.50: smile (positive) pulled 50 % up, body language (negative) pulled 50 % down",
            describeChange(KV::ValenceQuantity, 0.501f, 0.499f,
                           {change("Smile", 0.2, 0., 1.f), change("Body Language", 0., 0.2, -0.5f)}));
}

TEST(ChangeSentence, NamesThreeAndSumsUpTheOthers)
{
  EXPECT_EQ("valence rose from 0.00 to 1.00: a pulled 40 %, b pulled 30 %, c pulled 20 %, others pulled 10 %",
            describeChange(KV::ValenceQuantity, 0.f, 1.f,
                           {change("a", 0.4, 0., 1.f), change("b", 0.3, 0., 1.f), change("c", 0.2, 0., 1.f),
                            change("d", 0.05, 0., 1.f), change("e", 0.05, 0., 1.f)}));
}

TEST(ChangeSentence, DoesNotNameWhatHardlyMovedIt)
{
  EXPECT_EQ("valence rose from 0.00 to 1.00: a pulled >99 %",
            describeChange(KV::ValenceQuantity, 0.f, 1.f, {change("a", 1., 0., 1.f), change("b", 0.001, 0., 1.f)}));
}

TEST(ChangeSentence, SaysSoWhereNothingOrHardlyAnythingMovedIt)
{
  EXPECT_EQ("valence stayed at 1.00: nothing moved it",
            describeChange(KV::ValenceQuantity, 1.f, 1.f, {change("Smile", 0., 0., 1.f)}));
  EXPECT_EQ("valence stayed at 0.00: nothing moved it", describeChange(KV::ValenceQuantity, 0.f, 0.f, {}));
  EXPECT_EQ("valence stayed at 0.00: hardly anything moved it",
            describeChange(KV::ValenceQuantity, 0.001f, 0.f, {change("Not visible", 0., 0.001, 0.f)}));
}

}  // namespace
