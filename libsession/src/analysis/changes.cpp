#include <skeigiot/session/changes.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>

namespace KV::session
{

void Changes::add(std::string_view source, KV::Quantity quantity, float target, float before, float after)
{
  SourceChange& change = _change(source, quantity, target);
  const double difference = static_cast<double>(after) - static_cast<double>(before);
  ++change.forces;
  (difference < 0. ? change.down : change.up) += difference < 0. ? -difference : difference;
  change.leastTarget = std::min(change.leastTarget, target);
  change.greatestTarget = std::max(change.greatestTarget, target);
}

void Changes::add(const Changes& others)
{
  for (const SourceChange& other : others._changes)
  {
    SourceChange& change = _change(other.source, other.quantity, other.leastTarget);
    change.forces += other.forces;
    change.up += other.up;
    change.down += other.down;
    change.leastTarget = std::min(change.leastTarget, other.leastTarget);
    change.greatestTarget = std::max(change.greatestTarget, other.greatestTarget);
  }
}

std::vector<SourceChange> Changes::of(KV::Quantity quantity) const
{
  std::vector<SourceChange> result;
  std::copy_if(_changes.begin(), _changes.end(), std::back_inserter(result),
               [quantity](const SourceChange& change) { return change.quantity == quantity; });
  std::stable_sort(result.begin(), result.end(), [](const SourceChange& left, const SourceChange& right) {
    return left.distance() > right.distance();
  });
  return result;
}

SourceChange& Changes::_change(std::string_view source, KV::Quantity quantity, float target)
{
  const auto found = std::find_if(_changes.begin(), _changes.end(), [=](const SourceChange& change) {
    return change.quantity == quantity && change.source == source;
  });
  if (found != _changes.end())
    return *found;
  _changes.push_back({std::string(source), quantity, 0, 0., 0., target, target});
  return _changes.back();
}

double totalDistance(const std::vector<SourceChange>& changes)
{
  return std::accumulate(changes.begin(), changes.end(), 0.,
                         [](double sum, const SourceChange& change) { return sum + change.distance(); });
}

std::vector<int> sharesInTenthsOfPercent(const std::vector<SourceChange>& changes)
{
  constexpr int whole = 1000;
  std::vector<int> shares(changes.size(), 0);
  const double total = totalDistance(changes);
  if (!(total > 0.))
    return shares;

  std::vector<double> remainders;
  for (std::size_t i = 0; i < changes.size(); ++i)
  {
    const double exact = whole * changes[i].distance() / total;
    shares[i] = static_cast<int>(exact);
    remainders.push_back(exact - shares[i]);
  }
  // The rest of rounding down goes to the changes that lost most by it.
  for (int left = whole - std::accumulate(shares.begin(), shares.end(), 0); left > 0; --left)
  {
    const auto greatest = std::max_element(remainders.begin(), remainders.end());
    ++shares[static_cast<std::size_t>(greatest - remainders.begin())];
    *greatest = -1.;
  }
  return shares;
}

}  // namespace KV::session
