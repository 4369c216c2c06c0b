#include <skeigiot/session/movements.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>

namespace KV::session
{

void Movements::add(std::string_view source, KV::Quantity quantity, float target, float before, float after)
{
  SourceMovement& movement = _movement(source, quantity, target);
  const double difference = static_cast<double>(after) - static_cast<double>(before);
  ++movement.forces;
  (difference < 0. ? movement.down : movement.up) += difference < 0. ? -difference : difference;
  movement.leastTarget = std::min(movement.leastTarget, target);
  movement.greatestTarget = std::max(movement.greatestTarget, target);
}

void Movements::add(const Movements& others)
{
  for (const SourceMovement& other : others._movements)
  {
    SourceMovement& movement = _movement(other.source, other.quantity, other.leastTarget);
    movement.forces += other.forces;
    movement.up += other.up;
    movement.down += other.down;
    movement.leastTarget = std::min(movement.leastTarget, other.leastTarget);
    movement.greatestTarget = std::max(movement.greatestTarget, other.greatestTarget);
  }
}

std::vector<SourceMovement> Movements::of(KV::Quantity quantity) const
{
  std::vector<SourceMovement> result;
  std::copy_if(_movements.begin(), _movements.end(), std::back_inserter(result),
               [quantity](const SourceMovement& movement) { return movement.quantity == quantity; });
  std::stable_sort(result.begin(), result.end(), [](const SourceMovement& left, const SourceMovement& right) {
    return left.distance() > right.distance();
  });
  return result;
}

SourceMovement& Movements::_movement(std::string_view source, KV::Quantity quantity, float target)
{
  const auto found = std::find_if(_movements.begin(), _movements.end(), [=](const SourceMovement& movement) {
    return movement.quantity == quantity && movement.source == source;
  });
  if (found != _movements.end())
    return *found;
  _movements.push_back({std::string(source), quantity, 0, 0., 0., target, target});
  return _movements.back();
}

double totalDistance(const std::vector<SourceMovement>& movements)
{
  return std::accumulate(movements.begin(), movements.end(), 0.,
                         [](double sum, const SourceMovement& movement) { return sum + movement.distance(); });
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

}  // namespace KV::session
