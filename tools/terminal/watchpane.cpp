#include "terminal/watchpane.hpp"

#include "terminal/personheading.hpp"
#include "terminal/text.hpp"

#include <skeigiot/readings.hpp>
#include <skeigiot/session/combinedforces.hpp>
#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <type_traits>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t sideBySideFrom = 150;  // columns
constexpr std::size_t sourceWidth = 26;
constexpr std::size_t quantityWidth = 20;
constexpr std::size_t numberWidth = 8;
constexpr std::size_t forceWidth = sourceWidth + quantityWidth + 4 * numberWidth;
constexpr std::size_t readingWidth = 18;
constexpr float leastShown = 0.005f;  // of a move
const std::string gap = "  ";

// Forces

std::string valueText(KV::Quantity quantity, float value)
{
  const auto number = static_cast<double>(value);
  return quantity == KV::ValenceQuantity ? session::signedNumber(number) : session::plainNumber(number);
}

float moveOf(const session::CombinedForce& force)
{
  return std::abs(force.force.after - force.force.before);
}

/// Returns the forces that moved something, the strongest first; those on the unsmoothed valence repeat others.
std::vector<session::CombinedForce> strongestOf(const std::vector<session::ActedForce>& forces)
{
  std::vector<session::CombinedForce> strongest;
  for (session::CombinedForce& force : session::combined(forces))
  {
    const bool repeats = force.force.quantity == KV::UnsmoothedValenceQuantity ||
                         force.force.quantity == KV::UnsmoothedValenceConfidenceQuantity;
    if (!repeats && moveOf(force) >= leastShown)
      strongest.push_back(std::move(force));
  }
  std::stable_sort(strongest.begin(), strongest.end(),
                   [](const auto& left, const auto& right) { return moveOf(left) > moveOf(right); });
  return strongest;
}

std::string forceLine(const session::CombinedForce& combined)
{
  const session::ActedForce& force = combined.force;
  return fitted(session::plainSource(force.source), sourceWidth - 1) + " " +
         padRight(session::quantityName(force.quantity), quantityWidth) +
         padLeft(valueText(force.quantity, force.target), numberWidth) +
         padLeft(session::percentage(static_cast<double>(force.weight)), numberWidth) +
         padLeft(valueText(force.quantity, force.before), numberWidth) +
         padLeft(valueText(force.quantity, force.after), numberWidth);
}

std::vector<PageLine> forceLines(const std::vector<session::ActedForce>& forces, std::size_t height)
{
  std::string header = padRight("forces of the last update", sourceWidth) + padRight("on", quantityWidth);
  for (const char* const column : {"to", "share", "from", "result"})
    header += padLeft(column, numberWidth);
  std::vector<PageLine> lines{{{header, Look::Heading}}};
  const std::vector<session::CombinedForce> strongest = strongestOf(forces);
  if (strongest.empty())
    lines.push_back({{"no visible change", Look::Faint}});
  for (std::size_t i = 0; i < strongest.size(); ++i)
  {
    const bool isLastLine = lines.size() + 1 >= height;
    if (isLastLine && i + 1 < strongest.size())
    {
      lines.push_back({{session::counted(strongest.size() - i, "weaker force"), Look::Faint}});
      break;
    }
    lines.push_back({{forceLine(strongest[i]), Look::Plain}});
  }
  lines.resize(std::min(lines.size(), height));
  return lines;
}

// Readings

std::string textOf(bool value)
{
  return value ? "yes" : "no";
}

template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number> && !std::is_same_v<Number, bool>>>
std::string textOf(Number number)
{
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.2f", static_cast<double>(number));
  return text.data();
}

/// "0.80 (0.90)": with the confidence in brackets.
template <typename Value>
std::string withConfidence(const Value& value)
{
  return textOf(value.value) + " (" + textOf(value.confidence) + ")";
}

template <typename T>
std::string textOf(const KV::ValueConfidence<T>& value)
{
  return withConfidence(value);
}

std::string textOf(const KV::Smile& smile)
{
  return withConfidence(smile);
}

std::string textOf(const KV::FacialPoints& points)
{
  return "confidence " + textOf(points.globalConfidence());
}

/// "yaw 2.00, pitch -1.00"; scores of confidence 0 were not measured.
template <typename Value>
std::string partsText(const Value& value)
{
  std::string text;
  KV::forEachPart<Value>([&](const auto& part) {
    const auto& inside = part.in(value);
    if constexpr (std::is_same_v<std::decay_t<decltype(inside)>, KV::ValueConfidence<float>>)
      if (inside.confidence == 0.f)
        return;
    text += (text.empty() ? "" : ", ") + std::string(part.name) + " " + textOf(inside);
  });
  return text.empty() ? "no scores" : text;
}

template <typename Value>
std::string readingText(const Value& value)
{
  if constexpr (std::is_arithmetic_v<Value> || std::is_same_v<Value, KV::Smile> ||
                std::is_same_v<Value, KV::FacialPoints> || std::is_same_v<Value, KV::ValueConfidence<bool>> ||
                std::is_same_v<Value, KV::ValueConfidence<unsigned int>> ||
                std::is_same_v<Value, KV::ValueConfidence<float>>)
    return textOf(value);
  else
    return partsText(value);
}

struct ReadingText
{
  std::string name;
  std::string value;
  std::string age;
};

std::vector<ReadingText> readingsOf(const KV::PersonObservation& observation, session::TimePoint now)
{
  std::vector<ReadingText> texts;
  KV::forEachReading([&](const auto& reading) {
    const auto& latest = reading.in(observation);
    if (latest)
      texts.push_back({reading.name, readingText(latest->value),
                       session::clockText(std::max(session::Duration(0), session::Duration(now - latest->time)))});
  });
  return texts;
}

/// A line for each reading.
std::vector<PageLine> readingLines(const std::vector<ReadingText>& readings)
{
  std::vector<PageLine> lines{{{"newest readings, and how old they are", Look::Heading}}};
  for (const ReadingText& reading : readings)
    lines.push_back({{padRight(reading.name, readingWidth), Look::Plain},
                     {reading.value + gap, Look::Plain},
                     {reading.age, Look::Faint}});
  return lines;
}

/// A few lines, each filled with readings.
std::vector<PageLine> readingParagraph(const std::vector<ReadingText>& readings, std::size_t width)
{
  std::vector<PageLine> lines{{{"readings" + gap, Look::Heading}}};
  for (const ReadingText& reading : readings)
  {
    const PageLine spans{
        {reading.name + " ", Look::Plain}, {reading.value + " ", Look::Plain}, {reading.age + gap, Look::Faint}};
    const bool isFirst = lines.back().size() == 1;
    if (!isFirst && displayWidth(lines.back()) + displayWidth(spans) > width + gap.size())
      lines.push_back({{gap, Look::Plain}});
    lines.back().insert(lines.back().end(), spans.begin(), spans.end());
  }
  return lines;
}

// Both

Span title(const session::PersonRow& row, session::TimePoint now)
{
  const session::Snapshot& last = row.last;
  return {personHeading(last.person, last.name) + ", updated " +
              session::clockText(std::max(session::Duration(0), session::Duration(now - last.time))) +
              " ago: " + row.why(now),
          Look::Heading};
}

void append(std::vector<PageLine>& lines, std::vector<PageLine> more)
{
  std::move(more.begin(), more.end(), std::back_inserter(lines));
}

std::vector<PageLine> sideBySide(const std::vector<PageLine>& left, const std::vector<PageLine>& right)
{
  std::vector<PageLine> lines(std::max(left.size(), right.size()));
  for (std::size_t i = 0; i < lines.size(); ++i)
  {
    if (i < left.size())
      lines[i] = left[i];
    const std::size_t taken = displayWidth(lines[i]);
    lines[i].push_back({std::string(forceWidth + 2 * gap.size() - std::min(forceWidth, taken), ' '), Look::Plain});
    if (i < right.size())
      lines[i].insert(lines[i].end(), right[i].begin(), right[i].end());
  }
  return lines;
}

}  // namespace

std::vector<PageLine> watchPane(const session::PersonRow& row, session::TimePoint now, std::size_t width,
                                std::size_t height)
{
  if (height < 2)
    return {};
  const std::vector<ReadingText> texts = readingsOf(row.readings, now);
  std::vector<PageLine> lines{{}, {title(row, now)}};
  if (width >= sideBySideFrom)
    append(lines, sideBySide(forceLines(row.forces, height - 2), readingLines(texts)));
  else
  {
    std::vector<PageLine> paragraph = readingParagraph(texts, width);
    const std::size_t mostForReadings = (height - 2) / 2;
    paragraph.resize(std::min(paragraph.size(), mostForReadings));
    append(lines, forceLines(row.forces, height - 2 - paragraph.size()));
    append(lines, std::move(paragraph));
  }
  lines.resize(std::min(lines.size(), height));
  return lines;
}

}  // namespace KV::tools
