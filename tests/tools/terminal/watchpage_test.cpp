#include "terminal/watchpage.hpp"
#include "libsession/entries.hpp"
#include "terminal/text.hpp"

#include <skeigiot/session/persontable.hpp>

#include <gmock/gmock.h>

#include <algorithm>

namespace
{

using namespace replaytests;
using KV::session::PersonTable;
using KV::session::Snapshot;
using KV::tools::InputStatus;
using KV::tools::Key;
using KV::tools::Look;
using KV::tools::PageLine;
using KV::tools::WatchView;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

std::string textOf(const PageLine& line)
{
  std::string text;
  for (const auto& span : line)
    text += span.text;
  return text;
}

class WatchPageTest : public ::testing::Test
{
protected:
  WatchPageTest() { status.lines = 1; }

  void add(std::int32_t person, float valence, float attention, bool seen = true)
  {
    Snapshot snapshot = snapshotAt(0., valence, attention);
    snapshot.person = person;
    snapshot.seen = seen;
    snapshot.valence.confidence = 0.3f;
    snapshot.zone = ko::human::AttentionState::LookingDownRight;
    snapshot.pleasure = valence > 0.f ? KV::PleasurePositive : KV::PleasureNegative;
    table.personUpdated(snapshot);
  }

  std::vector<PageLine> lines(std::size_t width, std::size_t height)
  {
    return KV::tools::watchPage({table.rows(), status, start}, view, width, height);
  }

  std::vector<std::string> page(std::size_t width, std::size_t height)
  {
    std::vector<std::string> texts;
    for (const PageLine& line : lines(width, height))
      texts.push_back(textOf(line));
    return texts;
  }

  PersonTable table;
  InputStatus status;
  WatchView view;
};

TEST_F(WatchPageTest, ShowsARowOfBarsConfidencesAndHistories)
{
  add(7, 0.5f, 0.75f);
  EXPECT_EQ(
      "›     7  ······│███··· +0.50 0.30                              ▇  █████████··· 0.75 1.00"
      "                              ▇  LookingDownRight  positive",
      page(200, 24).at(2));
}

TEST_F(WatchPageTest, ShowsTheNameOfAPersonWithTheNumber)
{
  add(7, 0.5f, 0.75f);
  Snapshot named = snapshotAt(0., 0.5f, 0.75f);
  named.person = 12;
  named.name = "anna\x1b[2J of the long name";
  table.personUpdated(named);
  EXPECT_THAT(page(80, 24).at(1), StartsWith("             person  valence"));
  EXPECT_THAT(page(80, 24).at(2), StartsWith("›                 7  "));
  EXPECT_THAT(page(80, 24).at(3), StartsWith(" anna\\u001b[2J (12)  "));
}

TEST_F(WatchPageTest, ShowsShorterHistoriesOnANarrowerTerminal)
{
  add(7, -1.f, 0.5f);
  EXPECT_EQ("›     7  ███│··· -1.00 0.30          ▁  ███··· 0.50 1.00          ▅  LookingDownRight  negative",
            page(120, 24).at(2));
}

TEST_F(WatchPageTest, HasRoomForTheMoodOnEightyColumns)
{
  add(7, -1.f, 0.5f);
  EXPECT_EQ("›     7  ███│··· -1.00 0.30  ███··· 0.50 1.00  LookingDownRight  negative", page(80, 24).at(2));
}

TEST_F(WatchPageTest, SaysWhyInWholePartsWhereThereIsLittleRoom)
{
  KV::Force force{};
  force.source = "Touch emotion";
  force.quantity = KV::ValenceQuantity;
  force.after = 0.5f;
  table.forceActed(force);
  add(7, 0.5f, 0.75f);
  const auto why = [this](std::size_t width) {
    const std::string row = page(width, 24).at(2);
    return row.substr(row.find("posit"));
  };
  EXPECT_EQ("posit", why(70));
  EXPECT_EQ("positive", why(80));
  EXPECT_EQ("positive", why(95));
  EXPECT_EQ("positive, valence +0.50 by touch", why(97));
}

TEST_F(WatchPageTest, ShowsNoEstimateWithoutEvidence)
{
  Snapshot snapshot = snapshotAt(0.);
  snapshot.valence = {0.f, 0.f};
  snapshot.attention = {0.f, 0.f};
  snapshot.pleasure = KV::PleasureUnknown;
  table.personUpdated(snapshot);
  EXPECT_EQ("›     0  ···│···     - 0.00  ······    - 0.00  Unknown           mood unknown", page(80, 24).at(2));
}

TEST_F(WatchPageTest, HasTheHeadingAboveItsColumns)
{
  add(7, 0.5f, 0.75f);
  for (const std::size_t width : {80u, 112u, 200u})
  {
    const auto texts = page(width, 24);
    const auto columnOf = [](const std::string& line, const std::string& text) {
      return KV::tools::displayWidth(line.substr(0, line.find(text)));
    };
    EXPECT_EQ(columnOf(texts.at(2), "LookingDownRight"), columnOf(texts.at(1), "zone")) << width;
    EXPECT_EQ(columnOf(texts.at(2), "positive"), columnOf(texts.at(1), "why")) << width;
    EXPECT_EQ(columnOf(texts.at(2), "0.30"), columnOf(texts.at(1), "conf")) << width;
  }
}

TEST_F(WatchPageTest, FitsIntoEveryTerminal)
{
  for (std::int32_t person = 0; person < 9; ++person)
    add(person, 0.5f, 0.75f);
  KV::recordings::Step step = seenAt(0., 0);
  table.stepBegins(step);
  status.refused = 1;
  status.lastError = std::string(300, 'x');
  for (const bool helps : {false, true})
  {
    if (helps)
      view.press(Key::Help, table.rows());
    for (std::size_t width = 0; width < 200; width += 3)
      for (std::size_t height = 0; height < 30; height += 3)
      {
        const auto texts = page(width, height);
        ASSERT_LE(texts.size(), height);
        for (const std::string& text : texts)
          ASSERT_LE(KV::tools::displayWidth(text), width) << text;
      }
  }
}

TEST_F(WatchPageTest, ReportsPersonsWhoDoNotFitOnIt)
{
  for (std::int32_t person = 0; person < 9; ++person)
    add(person, 0.5f, 0.75f);
  EXPECT_EQ("q quits, ? helps", page(80, 13).back());
  EXPECT_EQ("q quits, ? helps, 2 more persons below", page(80, 11).back());
  view.press(Key::Last, table.rows());
  EXPECT_EQ("q quits, ? helps, 2 more persons above", page(80, 11).back());
  view.press(Key::Up, table.rows());
  EXPECT_EQ("q quits, ? helps, 4 more persons above, 1 more person below", page(80, 8).back());
}

TEST_F(WatchPageTest, ShowsTheRowsAroundTheChosenPerson)
{
  for (std::int32_t person = 0; person < 30; ++person)
    add(person, 0.5f, 0.75f);
  for (int i = 0; i < 20; ++i)
    view.press(Key::Down, table.rows());
  const auto texts = page(80, 24);
  const auto chosen =
      std::find_if(texts.begin(), texts.end(), [](const std::string& text) { return text.rfind("›", 0) == 0; });
  ASSERT_NE(texts.end(), chosen);
  EXPECT_THAT(*chosen, StartsWith("›    20  "));
}

TEST_F(WatchPageTest, HasAPaneWhereThereIsRoom)
{
  for (std::int32_t person = 0; person < 30; ++person)
    add(person, 0.5f, 0.75f);
  const auto hasPane = [this](std::size_t height) {
    const auto texts = page(80, height);
    return std::any_of(texts.begin(), texts.end(),
                       [](const std::string& text) { return text.rfind("forces of the last update", 0) == 0; });
  };
  EXPECT_TRUE(hasPane(24));
  EXPECT_TRUE(hasPane(14));
  EXPECT_FALSE(hasPane(13));
  const auto withPane = page(80, 24).back();
  view.press(Key::Pane, table.rows());
  EXPECT_FALSE(hasPane(24));
  EXPECT_NE(withPane, page(80, 24).back()) << "there is room for more rows";
}

TEST_F(WatchPageTest, ShowsWhatKeysDo)
{
  add(7, 0.5f, 0.75f);
  view.press(Key::Help, table.rows());
  const auto texts = page(80, 24);
  EXPECT_THAT(texts.at(1), "Keys");
  EXPECT_THAT(texts.at(2), HasSubstr("choose a person"));
  for (const std::string& text : texts)
    EXPECT_LT(KV::tools::displayWidth(text), 80U) << "nothing of it is cut: " << text;
}

TEST_F(WatchPageTest, SaysWhatItWaitsFor)
{
  status.lines = 0;
  const auto texts = page(90, 24);
  EXPECT_THAT(texts.at(1), HasSubstr("Waiting for the first line on standard input"));
  EXPECT_THAT(texts.at(2), HasSubstr("{\"person\":1,"));
  EXPECT_EQ("q quits, ? helps", texts.back());
  status.ended = true;
  EXPECT_THAT(page(90, 24).at(1), Not(HasSubstr("Waiting")));
}

TEST_F(WatchPageTest, ReportsTheInput)
{
  add(1, 0.5f, 0.75f);
  status.lines = 12;
  EXPECT_EQ("skeigiot  1 person, 12 lines", page(80, 24).front());
  status.ended = true;
  EXPECT_EQ("skeigiot  1 person, 12 lines, the input has ended", page(80, 24).front());
  view.press(Key::Pause, table.rows());
  EXPECT_EQ("skeigiot  paused  1 person, 12 lines, the input has ended", page(80, 24).front());
}

TEST_F(WatchPageTest, ReportsTheRecording)
{
  add(1, 0.5f, 0.75f);
  status.name = "face\033.csv";
  status.reached = inNanoseconds(62.5);
  EXPECT_EQ("skeigiot  1 person, 1:02.5: face\\u001b.csv", page(80, 24).front());
  status.speed = 2.5;
  EXPECT_EQ("skeigiot  1 person, 1:02.5 at speed 2.5: face\\u001b.csv", page(80, 24).front());
  status.speed = 10.;
  status.ended = true;
  EXPECT_EQ("skeigiot  1 person, 1:02.5 at speed 10, the recording has ended: face\\u001b.csv", page(120, 24).front());
}

TEST_F(WatchPageTest, ReportsRefusedLines)
{
  const auto errorIn = [](const std::vector<std::string>& texts) { return texts.at(texts.size() - 2); };
  EXPECT_EQ("", errorIn(page(80, 24)));
  status.refused = 2;
  status.lastError = "line 5: smile\033: is missing";
  EXPECT_EQ("2 lines refused, the last: line 5: smile\\u001b: is missing", errorIn(page(80, 24)));
  status.name = "face.csv";
  EXPECT_EQ("2 lines skipped, the last: line 5: smile\\u001b: is missing", errorIn(page(80, 24)));
}

TEST_F(WatchPageTest, ReportsTheMessagesOfABus)
{
  status.isBus = true;
  status.name = "ROS 2, domain 7";
  status.lines = 0;
  EXPECT_EQ("Waiting for the first message about a person", page(80, 24).at(1));
  add(1, 0.5f, 0.75f);
  status.lines = 12;
  status.refused = 2;
  status.lastError = "a message on the topic /tf\033 is left out";
  const auto texts = page(80, 24);
  EXPECT_EQ("skeigiot  1 person, 12 messages: ROS 2, domain 7", texts.front());
  EXPECT_EQ("2 messages refused, the last: a message on the topic /tf\\u001b is left out", texts.at(texts.size() - 2));
}

TEST_F(WatchPageTest, ColorsTheMoodOfThoseWhoAreThere)
{
  add(1, 0.5f, 0.5f);
  add(2, -0.5f, 0.5f);
  add(3, 0.5f, 0.5f, false);
  const auto all = lines(200, 24);
  EXPECT_EQ(Look::Good, all.at(2).back().look);
  EXPECT_EQ(Look::Bad, all.at(3).back().look);
  for (const auto& span : all.at(4))
    EXPECT_NE(Look::Good, span.look);
}

TEST_F(WatchPageTest, ShowsConfidencesFaint)
{
  add(1, 0.5f, 0.5f);
  const auto all = lines(200, 24);
  for (const auto& span : all.at(2))
    if (span.text == " 0.30" || span.text == " 1.00")
      EXPECT_EQ(Look::Faint, span.look);
    else
      EXPECT_NE(Look::Faint, span.look);
}

}  // namespace
