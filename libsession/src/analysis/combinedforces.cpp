#include <skeigiot/session/combinedforces.hpp>

#include <algorithm>

namespace KV::session
{

namespace
{

void add(CombinedForce& sum, const ActedForce& next)
{
  ActedForce& force = sum.force;
  const float weight = 1.f - (1.f - force.weight) * (1.f - next.weight);
  // The second pull reduces the effect of the first one.
  const float pull = (1.f - next.weight) * force.weight * force.target + next.weight * next.target;
  force.target = weight == 0.f ? next.target : pull / weight;
  force.weight = weight;
  force.after = next.after;
  ++sum.count;
}

}  // namespace

std::vector<CombinedForce> combined(const std::vector<ActedForce>& forces)
{
  std::vector<CombinedForce> result;
  for (const ActedForce& force : forces)
  {
    const auto last = std::find_if(result.rbegin(), result.rend(), [&force](const CombinedForce& other) {
      return other.force.quantity == force.quantity;
    });
    if (last != result.rend() && last->force.source == force.source)
      add(*last, force);
    else
      result.push_back({force});
  }
  return result;
}

}  // namespace KV::session
