#include "terminal/watchpage.hpp"

#include "terminal/bar.hpp"
#include "terminal/shown.hpp"
#include "terminal/text.hpp"
#include "terminal/watchpane.hpp"

#include <skeigiot/session/names.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t shortestPerson = 6;
constexpr std::size_t longestPerson = 18;

/// How many columns the parts of a row take.
struct Widths
{
  std::size_t from;  ///< the least number of columns of the terminal
  int valenceHalf;
  int attention;
  std::size_t history;  ///< a divisor of 60; 0 without a history
  std::size_t person = shortestPerson;
};

constexpr std::array<Widths, 3> allWidths{{{170, 6, 12, 30}, {112, 3, 6, 10}, {0, 3, 6, 0}}};

constexpr std::size_t signedWidth = 5;
constexpr std::size_t plainWidth = 4;
constexpr std::size_t zoneWidth = 16;
constexpr std::size_t linesAround = 4;      // status, heading, error, keys
constexpr std::size_t heightWithPane = 14;  // on a lower terminal, the rows need all of it
const std::string gap = "  ";

const Widths& widthsFor(std::size_t width)
{
  return *std::find_if(allWidths.begin(), allWidths.end(), [width](const Widths& one) { return width >= one.from; });
}

/// "7", or "anna (7)" of a person with a name: a long name is cut.
std::string personLabel(const session::Snapshot& snapshot)
{
  std::string number = std::to_string(snapshot.person);
  if (snapshot.name.empty())
    return number;
  const std::string behind = " (" + number + ")";
  return cut(shown(snapshot.name), longestPerson - std::min(longestPerson, behind.size())) + behind;
}

Look lookOf(KV::PleasureState pleasure)
{
  if (pleasure == KV::PleasurePositive)
    return Look::Good;
  return pleasure == KV::PleasureNegative ? Look::Bad : Look::Plain;
}

/// Returns the estimate, NaN if it is unknown.
double known(bool isKnown, const KV::ValueConfidence<float>& estimate)
{
  return isKnown ? static_cast<double>(estimate.value) : std::numeric_limits<double>::quiet_NaN();
}

std::string numberOr(double value, std::string (*text)(double), std::size_t width)
{
  return padLeft(std::isnan(value) ? "-" : text(value), width);
}

Span confidenceOf(const KV::ValueConfidence<float>& estimate)
{
  return {" " + padLeft(session::plainNumber(static_cast<double>(estimate.confidence)), plainWidth), Look::Faint};
}

std::string historyOf(const session::History& history, session::TimePoint now, const Widths& widths, double least)
{
  return widths.history == 0 ? "" : " " + session::sparkline(history.means(now, widths.history), least, 1.);
}

/// Returns as many whole parts of a list as fit, but at least the first.
std::string partsWithin(const std::string& list, std::size_t room)
{
  if (displayWidth(list) <= room)
    return list;
  const std::string separator = ", ";
  std::size_t end = list.find(separator);
  for (std::size_t next = end; next != std::string::npos; next = list.find(separator, next + 1))
  {
    if (displayWidth(list.substr(0, next)) > room)
      break;
    end = next;
  }
  return list.substr(0, end);
}

PageLine rowOf(const session::PersonRow& row, bool isChosen, const WatchContents& contents, const Widths& widths,
               std::size_t width)
{
  const session::TimePoint now = contents.now;
  const double valence = known(row.last.isValenceKnown(), row.last.valence);
  const double attention = known(row.last.isAttentionKnown(), row.last.attention);
  const Look plain = row.last.seen ? Look::Plain : Look::Faint;
  const Look colored = row.last.seen ? lookOf(row.last.pleasure) : Look::Faint;
  PageLine line{
      {(isChosen ? "›" : " ") + padLeft(personLabel(row.last), widths.person) + gap, isChosen ? Look::Heading : plain},
      {centredBar(valence, widths.valenceHalf) + " " + numberOr(valence, session::signedNumber, signedWidth), colored},
      confidenceOf(row.last.valence),
      {historyOf(row.valence, now, widths, -1.) + gap, plain},
      {bar(attention, widths.attention) + " " + numberOr(attention, session::plainNumber, plainWidth), plain},
      confidenceOf(row.last.attention),
      {historyOf(row.attention, now, widths, 0.) + gap + padRight(session::zoneName(row.last.zone), zoneWidth) + gap,
       plain}};
  line.push_back({partsWithin(row.why(now), width - std::min(width, displayWidth(line))), colored});
  return line;
}

std::string headingOf(const std::string& quantity, std::size_t barAndNumber, const Widths& widths)
{
  return padRight(quantity, barAndNumber) + " conf" +
         (widths.history == 0 ? "" : " " + fitted("last 60 s", widths.history)) + gap;
}

PageLine heading(const Widths& widths)
{
  const auto valence = static_cast<std::size_t>(2 * widths.valenceHalf + 1) + 1 + signedWidth;
  const auto attention = static_cast<std::size_t>(widths.attention) + 1 + plainWidth;
  return {{" " + padLeft("person", widths.person) + gap + headingOf("valence", valence, widths) +
               headingOf("attention", attention, widths) + padRight("zone", zoneWidth) + gap + "why",
           Look::Heading}};
}

std::string textOf(const InputStatus& status)
{
  if (status.name.empty())
    return session::counted(status.lines, "line") + (status.ended ? ", the input has ended" : "");
  if (status.isBus)
    return session::counted(status.lines, "message") + ": " + shown(status.name);
  std::string speed = session::plainNumber(status.speed);
  speed.erase(speed.find_last_not_of('0') + 1);
  speed.erase(speed.find_last_not_of('.') + 1);
  return session::clockText(status.reached) + (status.speed == 1. ? "" : " at speed " + speed) +
         (status.ended ? ", the recording has ended" : "") + ": " + shown(status.name);
}

PageLine statusLine(const WatchContents& contents, const WatchView& view)
{
  PageLine line{{"skeigiot" + gap, Look::Heading}};
  if (view.isPaused())
    line.push_back({"paused" + gap, Look::Heading});
  line.push_back({session::counted(contents.rows.size(), "person") + ", " + textOf(contents.status), Look::Plain});
  return line;
}

PageLine errorLine(const InputStatus& status)
{
  if (status.refused == 0)
    return {};
  const std::string what = status.name.empty() || status.isBus ? " refused" : " skipped";
  return {{session::counted(status.refused, status.isBus ? "message" : "line") + what +
               ", the last: " + shown(status.lastError),
           Look::Bad}};
}

/// Describes the keys, and the number of rows that do not fit.
PageLine keysLine(std::size_t above, std::size_t below)
{
  std::string text = "q quits, ? helps";
  if (above > 0)
    text += ", " + session::counted(above, "more person") + " above";
  if (below > 0)
    text += ", " + session::counted(below, "more person") + " below";
  return {{text, Look::Faint}};
}

std::vector<PageLine> waitingText(const InputStatus& status)
{
  if (status.isBus)
    return {{{"Waiting for the first message about a person", Look::Plain}}};
  return {{{"Waiting for the first line on standard input: a step of a recording as JSON, such as", Look::Plain}},
          {{R"(  {"person":1,"observation":{"gaze":{"yaw":0,"pitch":0},"smile":{"value":1,"confidence":1}}})",
            Look::Plain}},
          {{"'skeigiot stream --help' describes the lines.", Look::Plain}}};
}

std::vector<PageLine> helpText()
{
  static constexpr std::array<std::pair<const char*, const char*>, 7> keys = {
      {{"up, down", "choose a person, as do k and j"},
       {"page up, page down", "choose a person a page further"},
       {"home, end", "choose the first or the last person, as do g and G"},
       {"enter", "show or hide the forces and readings of the chosen person"},
       {"space", "pause, or go on; input is taken in meanwhile"},
       {"?", "show or hide this help, as does h"},
       {"q", "quit"}}};
  static constexpr std::array<std::pair<const char*, const char*>, 5> columns = {
      {{"valence, attention", "from -1 to 1 and from 0 to 1; faint their confidence"},
       {"last 60 s", "the older to the left, where the terminal is wide enough"},
       {"zone", "where the person looks; left and right are the person's"},
       {"why", "the mood, and what moved the estimate most"},
       {"faint rows", "persons who are not seen now; gone after a minute"}}};
  constexpr std::size_t width = 20;
  std::vector<PageLine> lines{{{"Keys", Look::Heading}}};
  for (const auto& [key, text] : keys)
    lines.push_back({{gap + padRight(key, width) + text, Look::Plain}});
  lines.push_back({{"Table", Look::Heading}});
  for (const auto& [column, text] : columns)
    lines.push_back({{gap + padRight(column, width) + text, Look::Plain}});
  return lines;
}

/// The pane about the chosen person: at most half of the room, or the room that the rows leave.
std::vector<PageLine> paneOf(const WatchContents& contents, const WatchView& view, std::size_t width,
                             std::size_t height)
{
  const auto chosen = view.chosen(contents.rows);
  if (!view.showsPane() || chosen == contents.rows.end() || height < heightWithPane)
    return {};
  const std::size_t room = height - linesAround;
  const std::size_t free = room - std::min(room, contents.rows.size());
  return watchPane(chosen->second, contents.now, width, std::max(room / 2, free));
}

std::vector<PageLine> rowsOf(const WatchContents& contents, const WatchView& view, std::size_t top, std::size_t count,
                             const Widths& widths, std::size_t width)
{
  std::vector<PageLine> lines;
  const auto chosen = view.chosen(contents.rows);
  auto row = std::next(contents.rows.begin(), static_cast<std::ptrdiff_t>(top));
  for (; lines.size() < count; ++row)
    lines.push_back(rowOf(row->second, row == chosen, contents, widths, width));
  return lines;
}

void append(std::vector<PageLine>& page, std::vector<PageLine> lines)
{
  std::move(lines.begin(), lines.end(), std::back_inserter(page));
}

std::vector<PageLine> table(const WatchContents& contents, WatchView& view, std::size_t width, std::size_t height)
{
  Widths widths = widthsFor(width);
  for (const auto& [number, row] : contents.rows)
    widths.person = std::max(widths.person, displayWidth(personLabel(row.last)));
  std::vector<PageLine> pane = paneOf(contents, view, width, height);
  const std::size_t taken = linesAround + pane.size();
  const std::size_t room = height > taken ? height - taken : 0;
  const std::size_t top = view.scroll(contents.rows, room);
  const std::size_t count = std::min(room, contents.rows.size() - top);

  std::vector<PageLine> page{heading(widths)};
  append(page, rowsOf(contents, view, top, count, widths, width));
  append(page, std::move(pane));
  page.push_back(errorLine(contents.status));
  page.push_back(keysLine(top, contents.rows.size() - top - count));
  return page;
}

}  // namespace

std::vector<PageLine> watchPage(const WatchContents& contents, WatchView& view, std::size_t width, std::size_t height)
{
  const InputStatus& status = contents.status;
  std::vector<PageLine> page{statusLine(contents, view)};
  if (view.showsHelp())
    append(page, helpText());
  else if ((status.name.empty() || status.isBus) && status.lines == 0 && !status.ended)
  {
    append(page, waitingText(status));
    page.push_back(keysLine(0, 0));
  }
  else
    append(page, table(contents, view, width, height));

  page.resize(std::min(page.size(), height));
  for (PageLine& line : page)
    line = cut(line, width);
  return page;
}

}  // namespace KV::tools
