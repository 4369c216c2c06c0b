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
constexpr double leastNamedDistance = 0.005;  // less does not show in two decimals

enum class Change
{
  None,
  Rise,
  Fall
};

/// Numbers that look the same are the same to a reader.
Change changeBetween(double before, double after)
{
  if (plainNumber(before) == plainNumber(after))
    return Change::None;
  return after > before ? Change::Rise : Change::Fall;
}

bool isOpposed(const SourceMovement& movement, Change change)
{
  return change == Change::Rise ? movement.net() < 0. : movement.net() > 0.;
}

/// Returns those to be named, the greatest first, but behind those that made the change those that opposed it.
std::vector<SourceMovement> namedOf(const std::vector<SourceMovement>& movements, double total, Change change)
{
  std::vector<SourceMovement> named;
  for (const SourceMovement& movement : movements)
  {
    if (named.size() < mostNamed && movement.distance() / total >= leastNamedShare)
      named.push_back(movement);
  }
  if (change != Change::None)
    std::stable_partition(named.begin(), named.end(),
                          [change](const SourceMovement& movement) { return !isOpposed(movement, change); });
  return named;
}

std::string wayOf(const SourceMovement& movement, Change change)
{
  if (change == Change::None)
    return movement.net() < 0. ? " down" : " up";
  return isOpposed(movement, change) ? " the other way" : "";
}

std::string describePulls(const std::vector<SourceMovement>& movements, Change change)
{
  const double total = totalDistance(movements);
  if (!(total >= leastNamedDistance))
    return total > 0. ? "hardly anything moved it" : "nothing moved it";
  std::string text;
  double rest = total;
  for (const SourceMovement& movement : namedOf(movements, total, change))
  {
    text += (text.empty() ? "" : ", ") + describeSource(movement) + " pulled " +
            percentage(movement.distance() / total) + wayOf(movement, change);
    rest -= movement.distance();
  }
  return rest / total < leastNamedShare ? text : text + ", others pulled " + percentage(rest / total);
}

}  // namespace

std::string describeChange(KV::Quantity quantity, float before, float after,
                           const std::vector<SourceMovement>& movements)
{
  const auto from = static_cast<double>(before);
  const auto to = static_cast<double>(after);
  const Change change = changeBetween(from, to);
  const std::string howItChanged = change == Change::None ? " stayed at " + plainNumber(to)
                                                          : (change == Change::Rise ? " rose from " : " fell from ") +
                                                                plainNumber(from) + " to " + plainNumber(to);
  return quantityName(quantity) + howItChanged + ": " + describePulls(movements, change);
}

namespace
{

std::vector<std::string> sentencesOnChange(const Snapshot& before, const Snapshot& after, const Movements& movements)
{
  return {
      describeChange(KV::ValenceQuantity, before.valence.value, after.valence.value, movements.of(KV::ValenceQuantity)),
      describeChange(KV::AttentionQuantity, before.attention.value, after.attention.value,
                     movements.of(KV::AttentionQuantity))};
}

}  // namespace

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

}  // namespace KV::session
