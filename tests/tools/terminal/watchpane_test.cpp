#include "terminal/watchpane.hpp"
#include "libsession/entries.hpp"

#include <skeigiot/session/persontable.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::PersonRow;
using KV::session::PersonTable;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

class WatchPaneTest : public ::testing::Test
{
protected:
  WatchPaneTest() { row.last = snapshotAt(0., 0.5f, 0.25f); }

  void act(const char* source, KV::Quantity quantity, float before, float after, float weight = 0.5f,
           float target = 1.f)
  {
    KV::Force force{};
    force.source = source;
    force.quantity = quantity;
    force.before = before;
    force.after = after;
    force.weight = weight;
    force.target = target;
    row.forces.emplace_back(force);
  }

  std::vector<std::string> pane(std::size_t width, std::size_t height, double later = 0.) const
  {
    std::vector<std::string> texts;
    for (const auto& line : KV::tools::watchPane(row, start + inNanoseconds(later), width, height))
    {
      texts.emplace_back();
      for (const auto& span : line)
        texts.back() += span.text;
      texts.back().erase(texts.back().find_last_not_of(' ') + 1);
    }
    return texts;
  }

  PersonRow row;
};

const std::string header = "forces of the last update on                        to   share    from  result";

TEST_F(WatchPaneTest, ShowsTheStrongestForceFirst)
{
  act("Smile", KV::ValenceQuantity, 0.f, 0.25f, 0.25f);
  act("Touch emotion", KV::AttentionQuantity, 0.9f, 0.1f, 0.9f, 0.f);
  EXPECT_THAT(
      pane(80, 10),
      ElementsAre("", "Person 0, updated 0:00.0 ago: neutral, never seen", header,
                  "touch                     attention               0.00    90 %    0.90    0.10",
                  "smile                     valence                +1.00    25 %    0.00   +0.25", "readings"));
}

TEST_F(WatchPaneTest, LeavesOutWhatCannotBeSeenAndWhatRepeats)
{
  act("Smile", KV::ValenceQuantity, 0.5f, 0.504f);
  act("Touch emotion", KV::UnsmoothedValenceQuantity, 0.f, 0.5f);
  act("Touch emotion", KV::UnsmoothedValenceConfidenceQuantity, 0.f, 0.5f);
  EXPECT_EQ("no visible change", pane(80, 10).at(3));
}

TEST_F(WatchPaneTest, CountsTheForcesForWhichThereIsNoRoom)
{
  for (int i = 0; i < 8; ++i)
    act(i % 2 == 0 ? "Smile" : "Touch emotion", KV::ValenceQuantity, 0.f, 0.1f * static_cast<float>(i + 1));
  const auto texts = pane(80, 7);
  EXPECT_THAT(texts, SizeIs(7));
  EXPECT_THAT(texts.at(3), HasSubstr("+0.80"));
  EXPECT_THAT(texts.at(4), HasSubstr("+0.70"));
  EXPECT_EQ("6 weaker forces", texts.at(5));
}

TEST_F(WatchPaneTest, ShowsReadingsWithTheirAges)
{
  row.readings = seenAt(0., 0, 0.8f).observation;
  row.readings.speaking.emplace(start - seconds(2), true);
  row.readings.distance.emplace(start, 1.25f);
  EXPECT_THAT(pane(80, 14, 0.1).at(4), "readings  distance 1.25 0:00.1  gaze yaw 0.00, pitch 0.00 0:00.1");
  const auto texts = pane(200, 14, 0.1);
  const std::size_t right = 82;
  EXPECT_EQ("newest readings, and how old they are", texts.at(2).substr(right));
  EXPECT_EQ("distance          1.25  0:00.1", texts.at(3).substr(right));
  EXPECT_EQ("gaze              yaw 0.00, pitch 0.00  0:00.1", texts.at(4).substr(right));
  EXPECT_EQ("smile             0.80 (1.00)  0:00.1", texts.at(5).substr(right));
  EXPECT_EQ("expressions       calm 0.20 (1.00), joy 0.80 (1.00)  0:00.1", texts.at(6).substr(right));
  EXPECT_EQ("headPosture       yaw 0.00, pitch 0.00, roll 0.00  0:00.1", texts.at(7).substr(right));
  EXPECT_EQ("speaking          yes  0:02.1", texts.at(8).substr(right));
}

TEST_F(WatchPaneTest, TakesNoMoreLinesThanThereAre)
{
  row.readings = seenAt(0., 0).observation;
  for (int i = 0; i < 8; ++i)
    act(i % 2 == 0 ? "Smile" : "Touch emotion", KV::ValenceQuantity, 0.f, 0.1f * static_cast<float>(i + 1));
  for (const std::size_t width : {0u, 1u, 20u, 80u, 149u, 150u, 300u})
    for (std::size_t height = 0; height < 20; ++height)
      EXPECT_LE(pane(width, height).size(), height);
}

}  // namespace
