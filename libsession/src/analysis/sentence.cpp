#include <skeigiot/session/sentence.hpp>

#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <cstddef>

namespace KV::session
{

namespace
{

constexpr std::size_t mostNamed = 3;
constexpr double leastNamedShare = 0.005;
constexpr double leastNamedDistance = 0.005;  // smaller changes do not show in two decimals

enum class Direction
{
  None,
  Rise,
  Fall
};

/// Numbers with the same text are equal for a reader.
Direction directionBetween(double before, double after)
{
  if (plainNumber(before) == plainNumber(after))
    return Direction::None;
  return after > before ? Direction::Rise : Direction::Fall;
}

bool isOpposed(const SourceChange& change, Direction direction)
{
  return direction == Direction::Rise ? change.net() < 0. : change.net() > 0.;
}

/// Returns the sources to name, the greatest first; those that caused the change come before those that opposed it.
std::vector<SourceChange> namedOf(const std::vector<SourceChange>& changes, double total, Direction direction)
{
  std::vector<SourceChange> named;
  for (const SourceChange& change : changes)
  {
    if (named.size() < mostNamed && change.distance() / total >= leastNamedShare)
      named.push_back(change);
  }
  if (direction != Direction::None)
    std::stable_partition(named.begin(), named.end(),
                          [direction](const SourceChange& change) { return !isOpposed(change, direction); });
  return named;
}

std::string wayOf(const SourceChange& change, Direction direction)
{
  if (direction == Direction::None)
    return change.net() < 0. ? " down" : " up";
  return isOpposed(change, direction) ? " the other way" : "";
}

std::string describePulls(const std::vector<SourceChange>& changes, Direction direction)
{
  const double total = totalDistance(changes);
  if (!(total >= leastNamedDistance))
    return total > 0. ? "hardly anything moved it" : "nothing moved it";
  std::string text;
  double rest = total;
  for (const SourceChange& change : namedOf(changes, total, direction))
  {
    text += (text.empty() ? "" : ", ") + describeSource(change) + " pulled " + percentage(change.distance() / total) +
            wayOf(change, direction);
    rest -= change.distance();
  }
  return rest / total < leastNamedShare ? text : text + ", others pulled " + percentage(rest / total);
}

}  // namespace

std::string describeChange(KV::Quantity quantity, float before, float after, const std::vector<SourceChange>& changes)
{
  const auto from = static_cast<double>(before);
  const auto to = static_cast<double>(after);
  const Direction direction = directionBetween(from, to);
  const std::string howItChanged = direction == Direction::None
                                       ? " stayed at " + plainNumber(to)
                                       : (direction == Direction::Rise ? " rose from " : " fell from ") +
                                             plainNumber(from) + " to " + plainNumber(to);
  return quantityName(quantity) + howItChanged + ": " + describePulls(changes, direction);
}

namespace
{

/// An estimate at one end of a change.
struct End
{
  float value;
  bool isKnown;  ///< false: the value has no meaning
};

/// Describes how the quantity changed; it may have been unknown before or after.
std::string sentenceOn(KV::Quantity quantity, const End& before, const End& after, const Changes& all)
{
  const std::vector<SourceChange> changes = all.of(quantity);
  const auto from = static_cast<double>(before.value);
  const auto to = static_cast<double>(after.value);
  if (before.isKnown && after.isKnown)
    return describeChange(quantity, before.value, after.value, changes);
  if (!before.isKnown && !after.isKnown)
    return quantityName(quantity) + " is unknown";
  const std::string howItChanged = after.isKnown ? " was unknown, and is now " + plainNumber(to)
                                                 : " was " + plainNumber(from) + ", and is now unknown";
  return quantityName(quantity) + howItChanged + ": " + describePulls(changes, directionBetween(from, to));
}

std::vector<std::string> sentencesOnChange(const Snapshot& before, const Snapshot& after, const Changes& changes)
{
  return {sentenceOn(KV::ValenceQuantity, {before.valence.value, before.isValenceKnown()},
                     {after.valence.value, after.isValenceKnown()}, changes),
          sentenceOn(KV::AttentionQuantity, {before.attention.value, before.isAttentionKnown()},
                     {after.attention.value, after.isAttentionKnown()}, changes)};
}

}  // namespace

std::vector<std::string> sentencesOn(const Explanation& explanation)
{
  Changes changes;
  for (const ActedForce& force : explanation.forces)
    changes.add(force.source, force.quantity, force.target, force.before, force.after);
  std::vector<std::string> sentences = sentencesOnChange(explanation.before, explanation.after, changes);
  for (const SeenZoneChange& change : explanation.zoneChanges)
    sentences.push_back("the zone changed from " + zoneName(change.from) + " to " + zoneName(change.to) +
                        ", decided by: " + evidenceName(change.evidence));
  return sentences;
}

std::vector<std::string> sentencesOn(const SpanExplanation& explanation)
{
  return sentencesOnChange(explanation.before, explanation.after, explanation.changes);
}

}  // namespace KV::session
