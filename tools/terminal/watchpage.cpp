#include "terminal/watchpage.hpp"

#include "terminal/bar.hpp"
#include "terminal/text.hpp"

#include <skeigiot/session/names.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>

namespace KV::tools
{

namespace
{

/// How many columns the parts of a row take.
struct Widths
{
  int valenceHalf;
  int attention;
  std::size_t history;  // a divisor of 60
};

constexpr Widths narrow{3, 6, 10};
constexpr Widths wide{6, 12, 30};
constexpr std::size_t wideFrom = 140;

constexpr std::size_t personWidth = 6;
constexpr std::size_t numberWidth = 5;
constexpr std::size_t zoneWidth = 16;
constexpr std::size_t linesAround = 4;  // status, heading, error, help
const std::string gap = "  ";

std::size_t widthOfValence(const Widths& widths)
{
  return static_cast<std::size_t>(2 * widths.valenceHalf + 1) + numberWidth + widths.history + 2;
}

std::size_t widthOfAttention(const Widths& widths)
{
  return static_cast<std::size_t>(widths.attention) + numberWidth + widths.history + 2;
}

/// Cuts the text at that many columns.
std::string cut(const std::string& text, std::size_t width)
{
  const auto startsCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  std::size_t columns = 0;
  const auto end = std::find_if(text.begin(), text.end(), [&](char c) {
    columns += startsCharacter(c) ? 1 : 0;
    return columns > width;
  });
  return {text.begin(), end};
}

PageLine cut(const PageLine& line, std::size_t width)
{
  PageLine result;
  for (const Span& span : line)
  {
    const std::string text = cut(span.text, width);
    width -= displayWidth(text);
    result.push_back({text, span.look});
  }
  return result;
}

Look lookOf(KV::PleasureState pleasure)
{
  if (pleasure == KV::PleasurePositive)
    return Look::Good;
  return pleasure == KV::PleasureNegative ? Look::Bad : Look::Plain;
}

PageLine rowOf(const session::PersonRow& row, session::TimePoint now, const Widths& widths)
{
  const auto valence = static_cast<double>(row.last.valence.value);
  const auto attention = static_cast<double>(row.last.attention.value);
  const Look plain = row.last.seen ? Look::Plain : Look::Faint;
  const Look colored = row.last.seen ? lookOf(row.last.pleasure) : Look::Faint;
  return {
      {padLeft(std::to_string(row.last.person), personWidth) + gap, plain},
      {centredBar(valence, widths.valenceHalf) + " " + padLeft(session::signedNumber(valence), numberWidth), colored},
      {" " + session::sparkline(row.valence.means(now, widths.history), -1., 1.) + gap, plain},
      {bar(attention, widths.attention) + " " + padLeft(session::plainNumber(attention), numberWidth) + " " +
           session::sparkline(row.attention.means(now, widths.history), 0., 1.) + gap,
       plain},
      {padRight(session::zoneName(row.last.zone), zoneWidth) + gap, plain},
      {row.why(now), colored}};
}

PageLine heading(const Widths& widths)
{
  return {{padLeft("person", personWidth) + gap + padRight("valence, last minute", widthOfValence(widths)) + gap +
               padRight("attention, last minute", widthOfAttention(widths)) + gap + padRight("zone", zoneWidth) + gap +
               "why",
           Look::Heading}};
}

PageLine statusLine(const session::PersonTable& table, const InputStatus& status)
{
  return {{"skeigiot" + gap, Look::Heading},
          {session::counted(table.rows().size(), "person") + ", " + session::counted(status.lines, "line") +
               (status.ended ? ", the input has ended" : ""),
           Look::Plain}};
}

PageLine errorLine(const InputStatus& status)
{
  if (status.refused == 0)
    return {};
  return {{session::counted(status.refused, "line") + " refused, the last: " + status.lastError, Look::Bad}};
}

}  // namespace

std::vector<PageLine> watchPage(const session::PersonTable& table, const InputStatus& status, session::TimePoint now,
                                std::size_t width, std::size_t height)
{
  const Widths& widths = width < wideFrom ? narrow : wide;
  const std::size_t room = height > linesAround ? height - linesAround : 0;

  std::vector<PageLine> page{statusLine(table, status), heading(widths)};
  std::size_t shown = 0;
  for (const auto& [person, row] : table.rows())
  {
    if (shown == room)
      break;
    page.push_back(rowOf(row, now, widths));
    ++shown;
  }
  page.push_back(errorLine(status));
  const std::size_t hidden = table.rows().size() - shown;
  page.push_back(
      {{"q quits" + (hidden > 0 ? ", " + session::counted(hidden, "more person") + " below" : ""), Look::Faint}});

  page.resize(std::min(page.size(), height));
  for (PageLine& line : page)
    line = cut(line, width);
  return page;
}

}  // namespace KV::tools
