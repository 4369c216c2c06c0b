#include "terminal/timelinetable.hpp"

#include "terminal/bar.hpp"
#include "terminal/text.hpp"
#include "terminal/zonewords.hpp"

#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/headdirection.hpp>
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
constexpr int zoneWidth = 12;
constexpr int pleasureWidth = 8;
constexpr int directionWidth = 10;  // "head right"
constexpr int easeWidth = 9;        // ", at ease"
constexpr int timeWidthAtLeast = 6;
constexpr int barsAtLeast = 11;  // so that their headers fit

const std::string gap = "  ";
const std::string unknown = "unknown";

/// The parts that adapt to the recording and to the terminal.
struct Layout
{
  int decimals;        ///< of the seconds in the time
  int time;            ///< width of the time
  int valenceHalf;     ///< width of the valence bar to each side of its centre line
  int attention;       ///< width of the attention bar
  bool showsPleasure;  ///< it has room
  bool showsEase;      ///< it has room, besides the body language
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
  int bars = width - (layout.time + signedNumberWidth + 2 * confidenceWidth + plainNumberWidth + zoneWidth +
                      directionWidth + gaps + blanksBeforeBars);
  constexpr int pleasureWithGap = pleasureWidth + 2;
  layout.showsPleasure = bars - pleasureWithGap >= barsAtLeast;
  bars -= layout.showsPleasure ? pleasureWithGap : 0;
  layout.showsEase = bars - easeWidth >= barsAtLeast;
  bars -= layout.showsEase ? easeWidth : 0;
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

int widthOfValence(const Layout& layout)
{
  return signedNumberWidth + 1 + 2 * layout.valenceHalf + 1;
}

int widthOfAttention(const Layout& layout)
{
  return plainNumberWidth + 1 + layout.attention;
}

/// The name of the valence, with 0 above the centre line of the bars and +1 above their end.
std::string valenceHeader(const Layout& layout)
{
  const std::string upToCentre = padRight("valence", signedNumberWidth + 1 + layout.valenceHalf);
  return upToCentre + "0" + padLeft("+1", layout.valenceHalf);
}

/// The name of the attention, with 1 above the end of the bars where there is room for it.
std::string attentionHeader(const Layout& layout)
{
  const std::string name = "attention";
  const int width = widthOfAttention(layout);
  return width > static_cast<int>(name.size()) ? padRight(name, width - 1) + "1" : padRight(name, width);
}

std::string header(const Layout& layout)
{
  const std::string confidence = gap + padRight("conf", confidenceWidth);
  return padLeft("time", layout.time) + gap + valenceHeader(layout) + confidence + gap + attentionHeader(layout) +
         confidence + gap + padRight("looking", zoneWidth) +
         (layout.showsPleasure ? gap + padRight("pleasure", pleasureWidth) : "") + gap +
         (layout.showsEase ? "body language" : "body");
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

std::string valenceCell(const session::TimelineRow& row, const Layout& layout, const Style& style)
{
  if (!row.isValenceKnown())
    return style.dim(padRight(unknown, widthOfValence(layout)));
  const std::string number = padLeft(session::signedNumber(row.valence()), signedNumberWidth);
  return coloredByPleasure(number + " " + centredBar(row.valence(), layout.valenceHalf), row.pleasure(), style);
}

std::string attentionCell(const session::TimelineRow& row, const Layout& layout, const Style& style)
{
  if (!row.isAttentionKnown())
    return style.dim(padRight(unknown, widthOfAttention(layout)));
  const std::string number = padLeft(session::plainNumber(row.attention()), plainNumberWidth);
  return style.cyan(number + " " + bar(row.attention(), layout.attention));
}

std::string confidenceCell(bool isKnown, double confidence, const Style& style)
{
  return isKnown ? style.dim(bar(confidence, confidenceWidth)) : std::string(confidenceWidth, ' ');
}

std::string zoneCell(const session::TimelineRow& row, const Style& style)
{
  return row.seen() ? padRight(zoneWords(row.zone()), zoneWidth) : style.yellow(padRight("not visible", zoneWidth));
}

/// The posture seen by the body language, and its meaning: "head up, uneasy".
std::string bodyText(const session::TimelineRow& row, const Layout& layout)
{
  if (!(row.ease().confidence > 0.f))
    return "-";
  std::string ease = session::easeName(row.ease());
  if (!row.headDirection())
    return ease;
  return session::headDirectionName(*row.headDirection()) + (layout.showsEase ? ", " + ease : "");
}

std::string bodyCell(const session::TimelineRow& row, const Layout& layout, const Style& style)
{
  const std::string text = bodyText(row, layout);
  const std::string ease = session::easeName(row.ease());
  if (ease == "uneasy")
    return style.red(text);
  return ease == "at ease" ? style.green(text) : text;
}

std::string line(const session::TimelineRow& row, const Layout& layout, const Style& style)
{
  const std::string pleasure = padRight(session::pleasureName(row.pleasure()), pleasureWidth);
  return withoutTrailingBlanks(
      padLeft(session::clockText(row.from(), layout.decimals), layout.time) + gap + valenceCell(row, layout, style) +
      gap + confidenceCell(row.isValenceKnown(), row.valenceConfidence(), style) + gap +
      attentionCell(row, layout, style) + gap +
      confidenceCell(row.isAttentionKnown(), row.attentionConfidence(), style) + gap + zoneCell(row, style) +
      (layout.showsPleasure ? gap + coloredByPleasure(pleasure, row.pleasure(), style) : "") + gap +
      bodyCell(row, layout, style));
}

/// Returns whether the numbers look the same in a bar, or both are unknown.
bool lookAlike(double left, double right)
{
  constexpr double noticed = 0.025;
  return std::isnan(left) ? std::isnan(right) : std::abs(left - right) < noticed;
}

bool lookAlike(const session::TimelineRow& left, const session::TimelineRow& right, const Layout& layout)
{
  return lookAlike(left.valence(), right.valence()) && lookAlike(left.attention(), right.attention()) &&
         lookAlike(left.valenceConfidence(), right.valenceConfidence()) &&
         lookAlike(left.attentionConfidence(), right.attentionConfidence()) && left.seen() == right.seen() &&
         left.zone() == right.zone() && left.pleasure() == right.pleasure() &&
         bodyText(left, layout) == bodyText(right, layout);
}

/// "valence: touch +0.98, body language -0.11", with the three that moved it most; empty if nothing moved it.
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

/// The causes of the row's change, with a line break; empty if they are unknown, or nothing changed.
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

/// Writes rows; one line replaces several rows that look like the one before them.
class Table
{
public:
  Table(const std::vector<session::TimelineRow>& rows, session::Duration step, int width, const Style& style)
    : _rows(rows), _step(step), _width(width), _style(style), _layout(layoutFor(rows, step, width))
  {}

  std::string text() const
  {
    std::string table = _style.bold(header(_layout)) + "\n";
    session::Duration next = _rows.front().from();
    for (std::size_t i = 0; i < _rows.size();)
    {
      if (_rows[i].from() > next)
        table += _remark(next, "no updates until " + _timeOf(_rows[i].from()));
      table += line(_rows[i], _layout, _style) + "\n" + _explanationOf(i);
      const std::size_t alike = _countSimilarAfter(i);
      if (alike >= leastFolded)
        table += _remark(_rows[i + 1].from(), "the same until " + _timeOf(_rows[i + alike].from() + _step));
      i += alike >= leastFolded ? alike + 1 : 1;
      next = _rows[i - 1].from() + _step;
    }
    return table;
  }

private:
  static constexpr std::size_t leastFolded = 2;

  std::string _timeOf(session::Duration time) const { return session::clockText(time, _layout.decimals); }

  std::string _remark(session::Duration from, const std::string& text) const
  {
    return padLeft(_timeOf(from), _layout.time) + gap + _style.dim(text) + "\n";
  }

  std::string _explanationOf(std::size_t i) const { return explanation(_rows[i].changes(), _layout, _width, _style); }

  /// The number of rows that follow without a gap and look like this one; 0 if a row has causes to show.
  std::size_t _countSimilarAfter(std::size_t first) const
  {
    std::size_t i = first;
    while (i + 1 < _rows.size() && _rows[i + 1].from() == _rows[i].from() + _step &&
           lookAlike(_rows[first], _rows[i + 1], _layout) && _explanationOf(i).empty() && _explanationOf(i + 1).empty())
      ++i;
    return i - first;
  }

  const std::vector<session::TimelineRow>& _rows;
  session::Duration _step;
  int _width;
  const Style& _style;
  Layout _layout;
};

}  // namespace

std::string timelineTable(const std::vector<session::TimelineRow>& rows, session::Duration step, int width,
                          const Style& style)
{
  return rows.empty() ? "" : Table(rows, step, width, style).text();
}

}  // namespace KV::tools
