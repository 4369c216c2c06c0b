#include "explanationtext.hpp"

#include "combinedforces.hpp"
#include "exactnumber.hpp"
#include "forcenames.hpp"
#include "names.hpp"
#include "sentence.hpp"
#include "text.hpp"
#include "texttable.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <numeric>

namespace tools
{

namespace
{

std::string formatted(const char* format, double number)
{
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

/// Three decimals, with a sign unless it looks like 0.
std::string signedText(double number)
{
  const double shown = std::round(number * 1000.) / 1000. + 0.;
  return formatted(shown == 0. ? "%.3f" : "%+.3f", shown);
}

bool isSigned(KV::Quantity quantity)
{
  return quantity == KV::ValenceQuantity || quantity == KV::UnsmoothedValenceQuantity;
}

bool isUnsmoothed(KV::Quantity quantity)
{
  return quantity == KV::UnsmoothedValenceQuantity || quantity == KV::UnsmoothedValenceConfidenceQuantity;
}

std::string valueText(KV::Quantity quantity, float value)
{
  const auto number = static_cast<double>(value);
  return isSigned(quantity) ? signedText(number) : formatted("%.3f", number);
}

std::string weightText(float weight)
{
  return formatted("%.1f %%", 100. * static_cast<double>(weight));
}

std::string sourceText(const CombinedForce& combined)
{
  return combined.force.source + (combined.count > 1 ? " ×" + std::to_string(combined.count) : "");
}

std::vector<CombinedForce> eachAlone(const std::vector<ActedForce>& forces)
{
  std::vector<CombinedForce> result;
  std::transform(forces.begin(), forces.end(), std::back_inserter(result),
                 [](const ActedForce& force) { return CombinedForce{force}; });
  return result;
}

/// Combines repeated forces, and leaves out what did to an unsmoothed quantity just what it did to the smoothed one.
std::vector<CombinedForce> withoutRepetition(const std::vector<ActedForce>& forces)
{
  std::vector<CombinedForce> result;
  for (const CombinedForce& next : combined(forces))
  {
    const bool isEcho =
        isUnsmoothed(next.force.quantity) && !result.empty() && result.back().force.source == next.force.source &&
        result.back().force.before == next.force.before && result.back().force.after == next.force.after;
    if (!isEcho)
      result.push_back(next);
  }
  return result;
}

TextTable tableOf(const Explanation& explanation, bool showsEach)
{
  TextTable table({{"source"}, {"quantity"}, {"weight", true}, {"target", true}, {"from", true}, {"to", true}});
  for (const CombinedForce& row : showsEach ? eachAlone(explanation.forces) : withoutRepetition(explanation.forces))
  {
    const ActedForce& force = row.force;
    table.add({sourceText(row), quantityName(force.quantity), weightText(force.weight),
               valueText(force.quantity, force.target), valueText(force.quantity, force.before),
               valueText(force.quantity, force.after)});
  }
  for (const SeenZoneChange& change : explanation.zoneChanges)
    table.add({evidenceName(change.evidence), "zone", "", "", zoneName(change.from), zoneName(change.to)});
  return table;
}

KV::Quantity smoothedOf(KV::Quantity quantity)
{
  return quantity == KV::UnsmoothedValenceQuantity ? KV::ValenceQuantity : KV::ValenceConfidenceQuantity;
}

bool moveAlike(const std::vector<SourceMovement>& left, const std::vector<SourceMovement>& right)
{
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const auto& one, const auto& other) {
    return one.source == other.source && one.up == other.up && one.down == other.down;
  });
}

/// Returns the quantities whose shares are shown: an unsmoothed one only if it moved otherwise than the smoothed one.
std::vector<KV::Quantity> shownQuantities(const Movements& movements, bool showsEach)
{
  std::vector<KV::Quantity> quantities;
  for (const KV::Quantity quantity : allQuantities)
  {
    const bool isEcho = isUnsmoothed(quantity) && moveAlike(movements.of(quantity), movements.of(smoothedOf(quantity)));
    if (showsEach || !isEcho)
      quantities.push_back(quantity);
  }
  return quantities;
}

TextTable tableOf(const SpanExplanation& explanation, bool showsEach)
{
  TextTable table({{"quantity"}, {"source"}, {"forces", true}, {"share", true}, {"moved", true}, {"net", true}});
  for (const KV::Quantity quantity : shownQuantities(explanation.movements, showsEach))
  {
    const std::vector<SourceMovement> movements = explanation.movements.of(quantity);
    const std::vector<int> shares = sharesInTenthsOfPercent(movements);
    for (std::size_t i = 0; i < movements.size(); ++i)
    {
      const SourceMovement& movement = movements[i];
      table.add({i == 0 ? quantityName(quantity) : "", movement.source, std::to_string(movement.forces),
                 formatted("%.1f %%", shares[i] / 10.), formatted("%.3f", movement.distance()),
                 signedText(movement.net())});
    }
  }
  return table;
}

std::string paragraph(const std::vector<std::string>& sentences, int width)
{
  std::string text;
  for (const std::string& sentence : sentences)
    text += wrapped(sentence, static_cast<std::size_t>(width), 2) + "\n";
  return text;
}

std::vector<std::string> sentencesOnChange(const Snapshot& before, const Snapshot& after, const Movements& movements)
{
  return {
      describeChange(KV::ValenceQuantity, before.valence.value, after.valence.value, movements.of(KV::ValenceQuantity)),
      describeChange(KV::AttentionQuantity, before.attention.value, after.attention.value,
                     movements.of(KV::AttentionQuantity))};
}

std::string timeText(Duration time)
{
  std::string seconds;
  appendExactSeconds(seconds, time);
  return clockText(time) + " (" + seconds + " s)";
}

std::string heading(const Explanation& explanation, const Style& style)
{
  const Snapshot& after = explanation.after;
  return style.bold("Person " + std::to_string(after.person)) + " at " + timeText(after.sinceStart) +
         (after.seen ? "" : ", not seen") + "\n";
}

std::string heading(const SpanExplanation& explanation, const Style& style)
{
  const Snapshot& after = explanation.after;
  return style.bold("Person " + std::to_string(after.person)) + " from " + timeText(explanation.first) + " to " +
         timeText(after.sinceStart) + ", " + counted(explanation.updates, "update") + "\n";
}

template <typename Explained>
std::string textOf(const Explained& explanation, const ExplanationLayout& layout)
{
  return heading(explanation, layout.style) + "\n" + tableOf(explanation, layout.showsEach).text(layout.style) + "\n" +
         paragraph(sentencesOn(explanation), layout.width);
}

}  // namespace

std::string explanationText(const Explanation& explanation, const ExplanationLayout& layout)
{
  return textOf(explanation, layout);
}

std::string explanationText(const SpanExplanation& explanation, const ExplanationLayout& layout)
{
  return textOf(explanation, layout);
}

std::vector<std::string> sentencesOn(const Explanation& explanation)
{
  Movements movements;
  for (const ActedForce& force : explanation.forces)
    movements.add(force.source, force.quantity, force.target, force.before, force.after);
  std::vector<std::string> sentences = sentencesOnChange(explanation.before, explanation.after, movements);
  for (const SeenZoneChange& change : explanation.zoneChanges)
    sentences.push_back("the zone changed from " + zoneName(change.from) + " to " + zoneName(change.to) +
                        ", decided by: " + evidenceName(change.evidence));
  return sentences;
}

std::vector<std::string> sentencesOn(const SpanExplanation& explanation)
{
  return sentencesOnChange(explanation.before, explanation.after, explanation.movements);
}

std::vector<int> sharesInTenthsOfPercent(const std::vector<SourceMovement>& movements)
{
  constexpr int whole = 1000;
  std::vector<int> shares(movements.size(), 0);
  const double total = totalDistance(movements);
  if (!(total > 0.))
    return shares;

  std::vector<double> remainders;
  for (std::size_t i = 0; i < movements.size(); ++i)
  {
    const double exact = whole * movements[i].distance() / total;
    shares[i] = static_cast<int>(exact);
    remainders.push_back(exact - shares[i]);
  }
  // What rounding down left over goes to those who lost most by it.
  for (int left = whole - std::accumulate(shares.begin(), shares.end(), 0); left > 0; --left)
  {
    const auto greatest = std::max_element(remainders.begin(), remainders.end());
    ++shares[static_cast<std::size_t>(greatest - remainders.begin())];
    *greatest = -1.;
  }
  return shares;
}

}  // namespace tools
