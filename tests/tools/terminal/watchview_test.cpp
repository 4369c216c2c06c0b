#include "terminal/watchview.hpp"

#include <gtest/gtest.h>

#include <initializer_list>

namespace
{

using KV::tools::Key;
using KV::tools::keyOf;
using KV::tools::PersonRows;
using KV::tools::WatchView;

PersonRows rowsOf(std::initializer_list<std::int32_t> persons)
{
  PersonRows rows;
  for (const std::int32_t person : persons)
    rows[person].last.person = person;
  return rows;
}

PersonRows rowsUpTo(std::int32_t count)
{
  PersonRows rows;
  for (std::int32_t person = 0; person < count; ++person)
    rows[person];
  return rows;
}

/// Returns the person whom the keys choose.
std::int32_t chosenBy(WatchView& view, const PersonRows& rows, std::initializer_list<Key> keys)
{
  for (const Key key : keys)
    view.press(key, rows);
  return view.chosen(rows)->first;
}

TEST(WatchView, ChoosesTheFirstPersonByDefault)
{
  const WatchView view;
  const PersonRows rows = rowsOf({3, 7});
  EXPECT_EQ(3, view.chosen(rows)->first);
  const PersonRows nobody;
  EXPECT_EQ(nobody.end(), view.chosen(nobody));
}

TEST(WatchView, ChoosesByKeys)
{
  WatchView view;
  const PersonRows rows = rowsOf({3, 7, 9, 12});
  EXPECT_EQ(7, chosenBy(view, rows, {Key::Down}));
  EXPECT_EQ(12, chosenBy(view, rows, {Key::Down, Key::Down, Key::Down}));
  EXPECT_EQ(9, chosenBy(view, rows, {Key::Up}));
  EXPECT_EQ(3, chosenBy(view, rows, {Key::First}));
  EXPECT_EQ(3, chosenBy(view, rows, {Key::Up}));
  EXPECT_EQ(12, chosenBy(view, rows, {Key::Last}));
}

TEST(WatchView, GoesPageByPage)
{
  WatchView view;
  const PersonRows rows = rowsUpTo(25);
  view.scroll(rows, 10);
  EXPECT_EQ(10, chosenBy(view, rows, {Key::PageDown}));
  EXPECT_EQ(24, chosenBy(view, rows, {Key::PageDown, Key::PageDown}));
  EXPECT_EQ(14, chosenBy(view, rows, {Key::PageUp}));
  EXPECT_EQ(0, chosenBy(view, rows, {Key::PageUp, Key::PageUp}));
}

TEST(WatchView, KeepsAPersonChosenWhenOthersComeAndGo)
{
  WatchView view;
  view.press(Key::Down, rowsOf({3, 7, 9}));
  EXPECT_EQ(7, view.chosen(rowsOf({1, 2, 3, 7, 9}))->first);
  const PersonRows without = rowsOf({3, 9});
  EXPECT_EQ(9, view.chosen(without)->first) << "the next one";
  const PersonRows fewer = rowsOf({3});
  EXPECT_EQ(3, view.chosen(fewer)->first);
}

TEST(WatchView, ScrollsNoFurtherThanItMust)
{
  WatchView view;
  const PersonRows rows = rowsUpTo(10);
  EXPECT_EQ(0U, view.scroll(rows, 4));
  chosenBy(view, rows, {Key::Down, Key::Down, Key::Down});
  EXPECT_EQ(0U, view.scroll(rows, 4));
  view.press(Key::Down, rows);
  EXPECT_EQ(1U, view.scroll(rows, 4));
  view.press(Key::Last, rows);
  EXPECT_EQ(6U, view.scroll(rows, 4));
  chosenBy(view, rows, {Key::Up, Key::Up, Key::Up});
  EXPECT_EQ(6U, view.scroll(rows, 4));
  view.press(Key::Up, rows);
  EXPECT_EQ(5U, view.scroll(rows, 4));
}

TEST(WatchView, ShowsAsManyRowsAsThereIsRoomFor)
{
  WatchView view;
  const PersonRows rows = rowsUpTo(10);
  view.press(Key::Last, rows);
  EXPECT_EQ(6U, view.scroll(rows, 4));
  EXPECT_EQ(0U, view.scroll(rows, 20)) << "the terminal became higher";
  EXPECT_EQ(9U, view.scroll(rows, 1));
  EXPECT_EQ(0U, view.scroll(rowsUpTo(1), 1));
  EXPECT_EQ(9U, view.scroll(rows, 0));
  EXPECT_EQ(0U, view.scroll(PersonRows(), 5));
}

TEST(WatchView, TurnsPanePauseAndHelpOnAndOff)
{
  WatchView view;
  const PersonRows rows = rowsUpTo(2);
  EXPECT_TRUE(view.showsPane());
  view.press(Key::Pane, rows);
  EXPECT_FALSE(view.showsPane());
  view.press(Key::Pause, rows);
  EXPECT_TRUE(view.isPaused());
  view.press(Key::Pause, rows);
  EXPECT_FALSE(view.isPaused());
  view.press(Key::Help, rows);
  EXPECT_TRUE(view.showsHelp());
  view.press(Key::Help, rows);
  EXPECT_FALSE(view.showsHelp());
  view.press(Key::Help, rows);
  view.press(Key::Down, rows);
  EXPECT_FALSE(view.showsHelp()) << "choosing shows the table again";
  EXPECT_FALSE(view.quits());
  view.press(Key::Quit, rows);
  EXPECT_TRUE(view.quits());
}

TEST(WatchView, IgnoresOtherKeys)
{
  WatchView view;
  const PersonRows rows = rowsOf({3, 7});
  view.press(Key::Other, rows);
  view.press(Key::None, rows);
  EXPECT_EQ(3, view.chosen(rows)->first);
  EXPECT_FALSE(view.quits());
  EXPECT_FALSE(view.isPaused());
}

TEST(WatchView, ChoosesNobodyWhereNobodyIs)
{
  WatchView view;
  for (const Key key : {Key::Up, Key::Down, Key::PageUp, Key::PageDown, Key::First, Key::Last})
    view.press(key, PersonRows());
  EXPECT_EQ(0U, view.scroll(PersonRows(), 0));
}

TEST(Key, IsKnownByItsCharacter)
{
  EXPECT_EQ(Key::Up, keyOf('k'));
  EXPECT_EQ(Key::Down, keyOf('j'));
  EXPECT_EQ(Key::First, keyOf('g'));
  EXPECT_EQ(Key::Last, keyOf('G'));
  EXPECT_EQ(Key::Pane, keyOf('\n'));
  EXPECT_EQ(Key::Pane, keyOf('\r'));
  EXPECT_EQ(Key::Pause, keyOf(' '));
  EXPECT_EQ(Key::Pause, keyOf('p'));
  EXPECT_EQ(Key::Help, keyOf('?'));
  EXPECT_EQ(Key::Help, keyOf('h'));
  EXPECT_EQ(Key::Quit, keyOf('q'));
  EXPECT_EQ(Key::Quit, keyOf('Q'));
  EXPECT_EQ(Key::Other, keyOf('x'));
}

}  // namespace
