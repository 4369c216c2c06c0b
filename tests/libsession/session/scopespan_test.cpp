#include "libsession/entries.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/session/scopespan.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using KV::session::parseScopeSpan;
using replaytests::inNanoseconds;

TEST(ScopeSpan, HasANameAndTwoTimes)
{
  const KV::session::ScopeSpan span = parseScopeSpan("greeting=1.5..12");
  EXPECT_EQ("greeting", span.name);
  EXPECT_EQ(inNanoseconds(1.5), span.from);
  EXPECT_EQ(inNanoseconds(12.), span.to.value());
}

TEST(ScopeSpan, BeginsWithTheRecordingIfItsBeginningIsLeftOut)
{
  const KV::session::ScopeSpan span = parseScopeSpan("a=..2");
  EXPECT_EQ(inNanoseconds(0.), span.from);
  EXPECT_EQ(inNanoseconds(2.), span.to.value());
}

TEST(ScopeSpan, HasNoEndIfThatIsLeftOut)
{
  EXPECT_FALSE(parseScopeSpan("a=2..").to);
  EXPECT_FALSE(parseScopeSpan("a=..").to);
}

TEST(ScopeSpan, MayHaveAnEqualsSignInItsName)
{
  EXPECT_EQ("a=b", parseScopeSpan("a=b=0..1").name);
}

TEST(ScopeSpan, MayBeASingleMoment)
{
  const KV::session::ScopeSpan span = parseScopeSpan("a=2..2");
  EXPECT_EQ(span.from, span.to.value());
}

struct RefusedCase
{
  const char* name;
  const char* text;
  const char* why;
};

class RefusedScopeSpan : public ::testing::TestWithParam<RefusedCase>
{};

TEST_P(RefusedScopeSpan, SaysWhatIsWrong)
{
  EXPECT_EQ(std::string("'") + GetParam().text + "' is not NAME=FROM..TO: " + GetParam().why,
            support::textThrownBy<std::invalid_argument>([] { parseScopeSpan(GetParam().text); }));
}

INSTANTIATE_TEST_SUITE_P(Texts, RefusedScopeSpan,
                         ::testing::Values(RefusedCase{"WithoutEquals", "greeting", "'=' is missing"},
                                           RefusedCase{"WithoutName", "=0..1", "the name is missing"},
                                           RefusedCase{"WithoutDots", "a=3", "'..' is missing"},
                                           RefusedCase{"WithAWord", "a=now..3", "'now' is no time in seconds"},
                                           RefusedCase{"WithAUnit", "a=0..3s", "'3s' is no time in seconds"},
                                           RefusedCase{"NegativeTime", "a=-1..3", "'-1' is no time in seconds"},
                                           RefusedCase{"Nan", "a=nan..3", "'nan' is no time in seconds"},
                                           RefusedCase{"Infinite", "a=0..inf", "'inf' is no time in seconds"},
                                           RefusedCase{"BeyondTheClock", "a=0..1e10", "'1e10' is too far away"},
                                           RefusedCase{"Backwards", "a=3..2", "it ends before it begins"}),
                         support::RowName());

}  // namespace
