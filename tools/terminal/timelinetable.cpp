#include "terminal/timelinetable.hpp"

#include "terminal/bar.hpp"
#include "terminal/text.hpp"

#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace KV::tools
{

namespace
{

// Columns of fixed width
constexpr int signedNumberWidth = 5;
constexpr int plainNumberWidth = 4;
constexpr int confidenceWidth = 4;
constexpr int zoneWidth = 16;
constexpr int pleasureWidth = 8;
constexpr int easeWidth = 7;
constexpr int timeWidthAtLeast = 6;

const std::string gap = "  ";

/// What adapts to the recording and to the terminal.
struct Layout
{
  int decimals;     ///< of the seconds in the time
  int time;         ///< width of the time
  int valenceHalf;  ///< width of the valence bar to each side of its centre line
  int attention;    ///< width of the attention bar
};

int decimalsFor(session::Duration step)
{
  if (step.count() % 100'000'000 == 0)
    return 1;
  return step.count() % 10'000'000 == 0 ? 2 : 3;
}

Layout layoutFor(const std::vector<session::TimelineRow>& rows, session::Duration step, int width)
{
  Layout layout{};
  layout.decimals = decimalsFor(step);
  const auto longestTime = static_cast<int>(session::clockText(rows.back().from(), layout.decimals).size());
  layout.time = std::max(timeWidthAtLeast, longestTime);

  constexpr int gaps = 6 * 2;
  constexpr int blanksBeforeBars = 2;
  const int withoutBars = layout.time + signedNumberWidth + confidenceWidth + plainNumberWidth + zoneWidth +
                          pleasureWidth + easeWidth + gaps + blanksBeforeBars;
  const int bars = width - withoutBars;
  layout.attention = bars * 2 / 5;
  layout.valenceHalf = (bars - layout.attention - 1) / 2;
  return layout;
}

std::string padRight(const std::string& text, int width)
{
  return tools::padRight(text, static_cast<std::size_t>(width));
}

std::string padLeft(const std::string& text, int width)
{
  return tools::padLeft(text, static_cast<std::size_t>(width));
}

/// The name of the valence, with 0 above the centre line of the bars and +1 above their end.
std::string valenceHeader(const Layout& layout)
{
  const std::string upToCentre = padRight("valence", signedNumberWidth + 1 + layout.valenceHalf);
  return upToCentre + "0" + padLeft("+1", layout.valenceHalf);
}

/// The name of the attention, with 1 above the end of the bars.
std::string attentionHeader(const Layout& layout)
{
  return padRight("attention", plainNumberWidth + layout.attention) + "1";
}

std::string header(const Layout& layout)
{
  return padLeft("time", layout.time) + gap + valenceHeader(layout) + gap + padRight("conf", confidenceWidth) + gap +
         attentionHeader(layout) + gap + padRight("zone", zoneWidth) + gap + padRight("pleasure", pleasureWidth) + gap +
         "ease";
}

std::string coloredByPleasure(const std::string& text, KV::PleasureState pleasure, const Style& style)
{
  switch (pleasure)
  {
    case KV::PleasureNegative:
      return style.red(text);
    case KV::PleasurePositive:
      return style.green(text);
    case KV::PleasureUnknown:
      return style.dim(text);
    default:
      return text;
  }
}

std::string withoutTrailingBlanks(std::string line)
{
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

/// Where nothing was ever observed the value is 0 and so is the confidence: that is no estimate to show.
bool isEstimate(double confidence)
{
  return confidence >= 0.005;
}

std::string valenceCell(const session::TimelineRow& row, const Layout& layout)
{
  const std::string number = isEstimate(row.valenceConfidence()) ? session::signedNumber(row.valence()) : "-";
  return padLeft(number, signedNumberWidth) + " " + centredBar(row.valence(), layout.valenceHalf);
}

std::string attentionCell(const session::TimelineRow& row, const Layout& layout)
{
  const std::string number = isEstimate(row.attentionConfidence()) ? session::plainNumber(row.attention()) : "-";
  return padLeft(number, plainNumberWidth) + " " + bar(row.attention(), layout.attention);
}

std::string line(const session::TimelineRow& row, const Layout& layout, const Style& style)
{
  const std::string time = padLeft(session::clockText(row.from(), layout.decimals), layout.time);
  const std::string valence = valenceCell(row, layout);
  const std::string confidence = bar(row.valenceConfidence(), confidenceWidth);
  const std::string attention = attentionCell(row, layout);
  const std::string zone = padRight(row.seen() ? session::zoneName(row.zone()) : "not visible", zoneWidth);
  const std::string pleasure = padRight(session::pleasureName(row.pleasure()), pleasureWidth);
  return withoutTrailingBlanks(
      time + gap + coloredByPleasure(valence, row.pleasure(), style) + gap + style.dim(confidence) + gap + attention +
      gap + (row.seen() ? zone : style.yellow(zone)) + gap + coloredByPleasure(pleasure, row.pleasure(), style) + gap +
      session::easeName(row.ease()));
}

std::string gapLine(session::Duration from, session::Duration to, const Layout& layout, const Style& style)
{
  const std::string time = padLeft(session::clockText(from, layout.decimals), layout.time);
  return time + gap + style.dim("no updates until " + session::clockText(to, layout.decimals));
}

/// "valence: touch +0.98, body language -0.11", with the three that moved it most; empty if none did.
std::string strongestSources(const session::Changes& changes, KV::Quantity quantity)
{
  constexpr std::size_t most = 3;
  constexpr double leastShown = 0.005;
  std::vector<session::SourceChange> strongest = changes.of(quantity);
  strongest.resize(std::min(strongest.size(), most));
  std::string text;
  for (const session::SourceChange& change : strongest)
  {
    if (std::abs(change.net()) >= leastShown)
      text += (text.empty() ? session::quantityName(quantity) + ": " : ", ") + session::plainSource(change.source) +
              " " + session::signedNumber(change.net());
  }
  return text;
}

/// What moved the row most, with a line break; empty if it is not known, or nothing did.
std::string explanation(const session::Changes& changes, const Layout& layout, int width, const Style& style)
{
  const std::string valence = strongestSources(changes, KV::ValenceQuantity);
  const std::string attention = strongestSources(changes, KV::AttentionQuantity);
  const std::string text = valence + (valence.empty() || attention.empty() ? "" : "; ") + attention;
  if (text.empty())
    return {};
  const auto indentation = static_cast<std::size_t>(layout.time) + gap.size();
  return std::string(indentation, ' ') +
         style.dim(wrapped(text, static_cast<std::size_t>(width) - indentation, indentation)) + "\n";
}

}  // namespace

std::string timelineTable(const std::vector<session::TimelineRow>& rows, session::Duration step, int width,
                          const Style& style)
{
  if (rows.empty())
    return {};
  const Layout layout = layoutFor(rows, step, width);
  std::string table = style.bold(header(layout)) + "\n";
  session::Duration next = rows.front().from();
  for (const session::TimelineRow& row : rows)
  {
    if (row.from() > next)
      table += gapLine(next, row.from(), layout, style) + "\n";
    table += line(row, layout, style) + "\n" + explanation(row.changes(), layout, width, style);
    next = row.from() + step;
  }
  return table;
}

}  // namespace KV::tools
