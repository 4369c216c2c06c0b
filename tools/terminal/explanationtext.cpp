#include "terminal/explanationtext.hpp"

#include "terminal/personheading.hpp"
#include "terminal/text.hpp"
#include "terminal/texttable.hpp"

#include <skeigiot/session/combinedforces.hpp>
#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/sentence.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iterator>

namespace KV::tools
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

std::string sourceText(const session::CombinedForce& combined)
{
  return session::sourceName(combined.force.source) + (combined.count > 1 ? " ×" + std::to_string(combined.count) : "");
}

std::vector<session::CombinedForce> eachAlone(const std::vector<session::ActedForce>& forces)
{
  std::vector<session::CombinedForce> result;
  std::transform(forces.begin(), forces.end(), std::back_inserter(result),
                 [](const session::ActedForce& force) { return session::CombinedForce{force}; });
  return result;
}

/// Combines repeated forces, and leaves out forces on an unsmoothed quantity that equal those on the smoothed one.
std::vector<session::CombinedForce> withoutRepetition(const std::vector<session::ActedForce>& forces)
{
  std::vector<session::CombinedForce> result;
  for (const session::CombinedForce& next : session::combined(forces))
  {
    const bool isEcho =
        isUnsmoothed(next.force.quantity) && !result.empty() && result.back().force.source == next.force.source &&
        result.back().force.before == next.force.before && result.back().force.after == next.force.after;
    if (!isEcho)
      result.push_back(next);
  }
  return result;
}

std::string capitalised(std::string text)
{
  text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
  return text;
}

TextTable tableOf(const session::Explanation& explanation, bool showsEach)
{
  TextTable table(
      {{"source", false, true}, {"quantity"}, {"weight", true}, {"target", true}, {"from", true}, {"to", true}});
  for (const session::CombinedForce& row :
       showsEach ? eachAlone(explanation.forces) : withoutRepetition(explanation.forces))
  {
    const session::ActedForce& force = row.force;
    table.add({sourceText(row), session::quantityName(force.quantity), weightText(force.weight),
               valueText(force.quantity, force.target), valueText(force.quantity, force.before),
               valueText(force.quantity, force.after)});
  }
  for (const session::SeenZoneChange& change : explanation.zoneChanges)
    table.add({capitalised(session::evidenceName(change.evidence)), "zone", "", "", session::zoneName(change.from),
               session::zoneName(change.to)});
  return table;
}

KV::Quantity smoothedOf(KV::Quantity quantity)
{
  return quantity == KV::UnsmoothedValenceQuantity ? KV::ValenceQuantity : KV::ValenceConfidenceQuantity;
}

bool moveAlike(const std::vector<session::SourceChange>& left, const std::vector<session::SourceChange>& right)
{
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const auto& one, const auto& other) {
    return one.source == other.source && one.up == other.up && one.down == other.down;
  });
}

/// Returns the quantities whose shares are shown: an unsmoothed one only if it moved differently from the smoothed one.
std::vector<KV::Quantity> shownQuantities(const session::Changes& changes, bool showsEach)
{
  std::vector<KV::Quantity> quantities;
  for (const KV::Quantity quantity : session::allQuantities)
  {
    const bool isEcho = isUnsmoothed(quantity) && moveAlike(changes.of(quantity), changes.of(smoothedOf(quantity)));
    if (showsEach || !isEcho)
      quantities.push_back(quantity);
  }
  return quantities;
}

TextTable tableOf(const session::SpanExplanation& explanation, bool showsEach)
{
  TextTable table(
      {{"quantity"}, {"source", false, true}, {"forces", true}, {"share", true}, {"moved", true}, {"net", true}});
  for (const KV::Quantity quantity : shownQuantities(explanation.changes, showsEach))
  {
    const std::vector<session::SourceChange> changes = explanation.changes.of(quantity);
    const std::vector<int> shares = session::sharesInTenthsOfPercent(changes);
    for (std::size_t i = 0; i < changes.size(); ++i)
    {
      const session::SourceChange& change = changes[i];
      table.add({i == 0 ? session::quantityName(quantity) : "", session::sourceName(change.source),
                 std::to_string(change.forces), formatted("%.1f %%", shares[i] / 10.),
                 formatted("%.3f", change.distance()), signedText(change.net())});
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

std::string timeText(session::Duration time)
{
  std::string seconds;
  session::appendExactSeconds(seconds, time);
  return session::clockText(time) + " (" + seconds + " s)";
}

std::string heading(const session::Explanation& explanation, const ExplanationLayout& layout)
{
  const session::Snapshot& after = explanation.after;
  return layout.style.bold(personHeading(after.person, after.name)) + " at " + timeText(after.sinceStart) +
         (after.seen ? "" : ", not seen") + (layout.remark.empty() ? "" : ", " + layout.remark) + "\n";
}

std::string heading(const session::SpanExplanation& explanation, const ExplanationLayout& layout)
{
  const session::Snapshot& after = explanation.after;
  return layout.style.bold(personHeading(after.person, after.name)) + " from " + timeText(explanation.first) + " to " +
         timeText(after.sinceStart) + ", " + session::counted(explanation.updates, "update") + "\n";
}

template <typename Explained>
std::string textOf(const Explained& explanation, const ExplanationLayout& layout)
{
  return heading(explanation, layout) + "\n" +
         tableOf(explanation, layout.showsEach).text(layout.style, static_cast<std::size_t>(layout.width)) + "\n" +
         paragraph(session::sentencesOn(explanation), layout.width);
}

}  // namespace

std::string explanationText(const session::Explanation& explanation, const ExplanationLayout& layout)
{
  return textOf(explanation, layout);
}

std::string explanationText(const session::SpanExplanation& explanation, const ExplanationLayout& layout)
{
  return textOf(explanation, layout);
}

}  // namespace KV::tools
