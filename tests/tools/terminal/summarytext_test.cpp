#include "terminal/summarytext.hpp"

#include "libsession/entries.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace
{

using namespace replaytests;
using KV::session::Summary;
using KV::tools::ambianceText;
using KV::tools::Style;
using KV::tools::summaryText;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Summary, DescribesAPerson)
{
  Summary summary;
  summary.personUpdated(lookingUpAt(0.));
  summary.personUpdated(lookingUpAt(0.5));
  summary.personUpdated(lookingDownAt(1.));
  summary.finish();
  EXPECT_EQ(
      "  span       0:00.0 to 0:01.0, 3 updates, seen for 100 % of the time\n"
      "  valence    +0.33 on average, with confidence 1.00\n"
      "  attention   0.67 on average, with confidence 1.00\n"
      "  engaged    67 % of the time (attention from 0.60), strictly 67 % (from 0.90)\n"
      "  looking    up 67 %, down 33 %\n"
      "  pleasure   positive 67 %, negative 33 %\n",
      summaryText(summary, 0, 80, Style(false)));
}

TEST(Summary, ShowsNoMeanOfAnEstimateThatWasNeverKnown)
{
  KV::session::Snapshot unknown = snapshotAt(0.);
  unknown.valence.confidence = 0.f;
  unknown.attention.confidence = 0.f;
  Summary summary;
  summary.personUpdated(unknown);
  summary.finish();
  EXPECT_THAT(summaryText(summary, 0, 80, Style(false)),
              HasSubstr("  valence    unknown: no evidence in the recording\n"
                        "  attention  unknown: no evidence in the recording\n"
                        "  engaged    unknown: no evidence in the recording\n"));
}

struct VerdictCase
{
  const char* name;
  KV::session::ScopeVerdict verdict;
  const char* line;
};

class SummaryOfAVerdict : public ::testing::TestWithParam<VerdictCase>
{};

TEST_P(SummaryOfAVerdict, SaysHowItCameAbout)
{
  Summary summary;
  summary.personUpdated(snapshotAt(0.));
  summary.scopeJudged(GetParam().verdict);
  summary.finish();
  EXPECT_THAT(summaryText(summary, 0, 80, Style(false)),
              HasSubstr(std::string("  verdict    ") + GetParam().line + "\n"));
}

std::map<std::int32_t, KV::session::ScopeVerdict::OfPerson> positiveAfter(std::size_t updates)
{
  return {{0, {"positive", updates}}};
}

const KV::session::Duration two = inNanoseconds(2.);
const KV::session::Duration four = inNanoseconds(4.);

INSTANTIATE_TEST_SUITE_P(
    Ends, SummaryOfAVerdict,
    ::testing::Values(VerdictCase{"Complete",
                                  {"a", two, four, KV::session::ScopeEnd::Complete, positiveAfter(9)},
                                  "positive  'a' (0:02.0 to 0:04.0, 9 updates)"},
                      VerdictCase{"NotStopped",
                                  {"a", two, four, KV::session::ScopeEnd::NotStopped, positiveAfter(1)},
                                  "positive  'a' (0:02.0 to 0:04.0, 1 update, not stopped)"},
                      VerdictCase{"CutShort",
                                  {"a", two, four, KV::session::ScopeEnd::CutShort, positiveAfter(9)},
                                  "positive  'a' (0:02.0 to 0:04.0, 9 updates, cut short by the end)"},
                      VerdictCase{"NotReached",
                                  {"a", two, four, KV::session::ScopeEnd::NotReached, {}},
                                  "-         'a' (from 0:02.0: the recording ended before)"},
                      VerdictCase{"NotOpen",
                                  {"a", two, two, KV::session::ScopeEnd::NotOpen, {}},
                                  "error     'a' (at 0:02.0: stopped, but not started)"},
                      VerdictCase{"Empty",
                                  {"a", two, four, KV::session::ScopeEnd::Complete, {}},
                                  "neutral   'a' (0:02.0 to 0:04.0, 0 updates, which counts as neutral)"}),
    support::RowName());

TEST(Summary, ReportsScopesByTheirStartAndLongerOnesFirst)
{
  Summary summary;
  summary.personUpdated(snapshotAt(0.));
  summary.scopeJudged({"late", two, four, KV::session::ScopeEnd::Complete, positiveAfter(1)});
  summary.scopeJudged({"short", inNanoseconds(0.), two, KV::session::ScopeEnd::Complete, positiveAfter(1)});
  summary.scopeJudged({"long", inNanoseconds(0.), four, KV::session::ScopeEnd::Complete, positiveAfter(1)});
  summary.finish();
  const std::string text = summaryText(summary, 0, 80, Style(false));
  EXPECT_LT(text.find("'long'"), text.find("'short'"));
  EXPECT_LT(text.find("'short'"), text.find("'late'"));
}

TEST(Summary, LetsNoControlCharacterOfAScopeThrough)
{
  Summary summary;
  summary.personUpdated(snapshotAt(0.));
  summary.scopeJudged({"a\033[31m\n", two, four, KV::session::ScopeEnd::Complete, positiveAfter(1)});
  summary.finish();
  EXPECT_THAT(summaryText(summary, 0, 80, Style(false)), Not(HasSubstr("\033")));
}

TEST(Summary, SaysNothingOfAnAmbianceThatWasNotRecorded)
{
  EXPECT_EQ("", ambianceText(Summary().ambiance(), Style(false)));
}

TEST(Summary, DescribesTheAmbiance)
{
  Summary summary;
  summary.ambianceUpdated(0.1f, KV::AmbianceNotExcited);
  summary.ambianceUpdated(0.5f, KV::AmbianceExcited);
  EXPECT_EQ("Room\n  ambiance   agitation 0.30 on average and 0.50 at the end, excited in 50 % of 2 updates\n",
            ambianceText(summary.ambiance(), Style(false)));
}

}  // namespace
