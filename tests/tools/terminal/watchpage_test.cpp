#include "terminal/watchpage.hpp"
#include "libsession/entries.hpp"
#include "terminal/text.hpp"

#include <gtest/gtest.h>

namespace
{

using namespace replaytests;
using KV::session::PersonTable;
using KV::session::Snapshot;
using KV::tools::InputStatus;
using KV::tools::Look;

class WatchPageTest : public ::testing::Test
{
protected:
  void add(std::int32_t person, float valence, float attention, bool seen = true)
  {
    Snapshot snapshot = snapshotAt(0., valence, attention);
    snapshot.person = person;
    snapshot.seen = seen;
    snapshot.zone = ko::human::AttentionState::LookingDownRight;
    snapshot.pleasure = valence > 0.f ? KV::PleasurePositive : KV::PleasureNegative;
    table.personUpdated(snapshot);
  }

  std::vector<std::string> page(std::size_t width, std::size_t height) const
  {
    std::vector<std::string> lines;
    for (const auto& line : KV::tools::watchPage(table, status, start, width, height))
    {
      lines.emplace_back();
      for (const auto& span : line)
        lines.back() += span.text;
    }
    return lines;
  }

  PersonTable table;
  InputStatus status;
};

TEST_F(WatchPageTest, ShowsARowOfBarsAndSparklines)
{
  add(7, 0.5f, 0.75f);
  EXPECT_EQ(
      "     7  ······│███··· +0.50                              ▇  █████████···  0.75"
      "                              ▇  LookingDownRight  positive",
      page(200, 24).at(2));
}

TEST_F(WatchPageTest, ShowsShorterOnesOnANarrowTerminal)
{
  add(7, -1.f, 0.5f);
  EXPECT_EQ("     7  ███│··· -1.00          ▁  ███···  0.50          ▅  LookingDownRight  neg", page(80, 24).at(2));
}

TEST_F(WatchPageTest, HasTheHeadingAboveItsColumns)
{
  add(7, 0.5f, 0.75f);
  for (const std::size_t width : {100u, 200u})
  {
    const auto lines = page(width, 24);
    const auto columnOf = [](const std::string& line, const std::string& text) {
      return KV::tools::displayWidth(line.substr(0, line.find(text)));
    };
    EXPECT_EQ(columnOf(lines.at(2), "LookingDownRight"), columnOf(lines.at(1), "zone")) << width;
    EXPECT_EQ(columnOf(lines.at(2), "positive"), columnOf(lines.at(1), "why")) << width;
  }
}

TEST_F(WatchPageTest, FitsIntoEveryTerminal)
{
  for (std::int32_t person = 0; person < 9; ++person)
    add(person, 0.5f, 0.75f);
  status.refused = 1;
  status.lastError = std::string(300, 'x');
  for (std::size_t width = 0; width < 170; width += 3)
    for (std::size_t height = 0; height < 16; height += 3)
    {
      const auto lines = page(width, height);
      ASSERT_LE(lines.size(), height);
      for (const std::string& line : lines)
        ASSERT_LE(KV::tools::displayWidth(line), width) << line;
    }
}

TEST_F(WatchPageTest, TellsOfPersonsWhoDoNotFitOnIt)
{
  for (std::int32_t person = 0; person < 9; ++person)
    add(person, 0.5f, 0.75f);
  EXPECT_EQ("q quits", page(80, 13).back());
  EXPECT_EQ("q quits, 2 more persons below", page(80, 11).back());
}

TEST_F(WatchPageTest, TellsOfTheInput)
{
  add(1, 0.5f, 0.75f);
  status.lines = 12;
  EXPECT_EQ("skeigiot  1 person, 12 lines", page(80, 24).front());
  status.ended = true;
  EXPECT_EQ("skeigiot  1 person, 12 lines, the input has ended", page(80, 24).front());
}

TEST_F(WatchPageTest, TellsOfRefusedLines)
{
  EXPECT_EQ("", page(80, 24).at(2));
  status.refused = 2;
  status.lastError = "line 5: smile: is missing";
  EXPECT_EQ("2 lines refused, the last: line 5: smile: is missing", page(80, 24).at(2));
}

TEST_F(WatchPageTest, ColorsTheMoodOfThoseWhoAreThere)
{
  add(1, 0.5f, 0.5f);
  add(2, -0.5f, 0.5f);
  add(3, 0.5f, 0.5f, false);
  const auto lines = KV::tools::watchPage(table, status, start, 200, 24);
  EXPECT_EQ(Look::Good, lines.at(2).back().look);
  EXPECT_EQ(Look::Bad, lines.at(3).back().look);
  for (const auto& span : lines.at(4))
    EXPECT_NE(Look::Good, span.look);
}

}  // namespace
