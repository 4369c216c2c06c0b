#include "terminal/screen.hpp"

#include "terminal/shown.hpp"

#include <clocale>
#include <cstring>
#include <stdexcept>
#include <string>

#include <langinfo.h>

#define NCURSES_NOMACROS
#include <curses.h>

namespace KV::tools
{

namespace
{

constexpr short goodColors = 1;
constexpr short badColors = 2;
constexpr int greatestCharacter = 0x7f;

/// Bars are made of blocks. If the environment does not ask for UTF-8 (often so with ssh), UTF-8 is assumed.
void speakUtf8()
{
  std::setlocale(LC_CTYPE, "");
  if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
    std::setlocale(LC_CTYPE, "C.UTF-8");
}

std::FILE* openTerminal()
{
  std::FILE* const terminal = std::fopen("/dev/tty", "r+e");
  if (terminal == nullptr)
    throw std::runtime_error("there is no terminal to show the persons on");
  return terminal;
}

attr_t coloredBy(short pair, bool colors)
{
  return colors ? static_cast<attr_t>(COLOR_PAIR(pair)) : A_NORMAL;
}

attr_t attributesOf(Look look, bool colors)
{
  switch (look)
  {
    case Look::Heading:
      return A_BOLD;
    case Look::Faint:
      return A_DIM;
    case Look::Good:
      return coloredBy(goodColors, colors);
    case Look::Bad:
      return coloredBy(badColors, colors);
    default:
      return A_NORMAL;
  }
}

SCREEN* startScreen(std::FILE* terminal)
{
  speakUtf8();
  SCREEN* const screen = newterm(nullptr, terminal, terminal);
  if (screen == nullptr)
    throw std::runtime_error("this terminal cannot show a page: is TERM set right?");
  return screen;
}

}  // namespace

Screen::Screen(bool colors)
  : _terminal(openTerminal()), _screen(startScreen(_terminal.get())), _colors(colors && has_colors())
{
  cbreak();
  noecho();
  keypad(stdscr, true);
  nodelay(stdscr, true);
  curs_set(0);
  if (_colors)
  {
    start_color();
    use_default_colors();
    init_pair(goodColors, COLOR_GREEN, -1);
    init_pair(badColors, COLOR_RED, -1);
  }
}

Screen::~Screen()
{
  endwin();
  delscreen(static_cast<SCREEN*>(_screen));
}

Key Screen::key()
{
  const int pressed = getch();
  switch (pressed)
  {
    case ERR:
      return Key::None;
    case KEY_UP:
      return Key::Up;
    case KEY_DOWN:
      return Key::Down;
    case KEY_PPAGE:
      return Key::PageUp;
    case KEY_NPAGE:
      return Key::PageDown;
    case KEY_HOME:
      return Key::First;
    case KEY_END:
      return Key::Last;
    case KEY_ENTER:
      return Key::Pane;
    default:
      return pressed >= 0 && pressed <= greatestCharacter ? keyOf(static_cast<char>(pressed)) : Key::Other;
  }
}

int Screen::fileDescriptor() const
{
  return fileno(_terminal.get());
}

std::size_t Screen::width() const
{
  return static_cast<std::size_t>(getmaxx(stdscr));
}

std::size_t Screen::height() const
{
  return static_cast<std::size_t>(getmaxy(stdscr));
}

void Screen::show(const std::vector<PageLine>& page)
{
  erase();
  int y = 0;
  for (const PageLine& line : page)
  {
    move(y++, 0);
    for (const Span& span : line)
    {
      attrset(static_cast<int>(attributesOf(span.look, _colors)));
      addstr(shown(span.text).c_str());
    }
  }
  attrset(A_NORMAL);
  refresh();
}

}  // namespace KV::tools
