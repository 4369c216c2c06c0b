#include <skeigiot/session/nonfinitereadings.hpp>

#include <skeigiot/isfinite.hpp>
#include <skeigiot/session/wording.hpp>

namespace KV::session
{

const KV::PersonObservation& NonFiniteReadings::withoutThem(const recordings::Step& step, Duration sinceStart)
{
  if (KV::isFinite(step.observation))
    return step.observation;

  if (_count == 0)
    _firstPlace = "of person " + std::to_string(step.person.value_or(0)) + " at " + clockText(sinceStart, 3);
  _rest = step.observation;
  _count += KV::leaveOutNonFinite(_rest);
  return _rest;
}

std::string NonFiniteReadings::take()
{
  if (_count == 0)
    return {};
  std::string text =
      "left out " + counted(_count, "reading") + " with numbers that are not finite, the first " + _firstPlace;
  _count = 0;
  return text;
}

}  // namespace KV::session
