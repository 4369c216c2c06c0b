#include "report/thinning.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace KV::session
{

namespace
{

constexpr std::size_t estimateCount = 4;
constexpr std::size_t numberCount = estimateCount + reportInputCount;

float numberOf(const Moment& moment, std::size_t index)
{
  const Snapshot& snapshot = moment.snapshot;
  const std::array<float, estimateCount> estimates{snapshot.valence.value, snapshot.valence.confidence,
                                                   snapshot.attention.value, snapshot.attention.confidence};
  return index < estimateCount ? estimates.at(index) : moment.inputs.at(index - estimateCount);
}

bool sameState(const Snapshot& left, const Snapshot& right)
{
  return left.seen == right.seen && left.zone == right.zone && left.pleasure == right.pleasure &&
         left.isValenceKnown() == right.isValenceKnown() && left.isAttentionKnown() == right.isAttentionKnown();
}

void addChange(std::vector<MomentChange>& changes, const MomentChange& added)
{
  const auto isSame = [&added](const MomentChange& change) {
    return change.source == added.source && change.quantity == added.quantity;
  };
  const auto found = std::find_if(changes.begin(), changes.end(), isSame);
  if (found == changes.end())
    changes.push_back(added);
  else
    found->distance += added.distance;
}

/// Decides which of the moments stay.
class Selection
{
public:
  explicit Selection(const std::vector<Moment>& moments) : _moments(moments), _stays(moments.size(), false) {}

  void keep(std::size_t index) { _stays[index] = true; }

  /// Keeps the moments of a stretch that stay.
  void keepOf(std::size_t begin, std::size_t end)
  {
    keep(begin);
    for (std::size_t number = 0; number < numberCount; ++number)
      _keepExtremes(begin, end, number);
    for (std::size_t input = 0; input < reportInputCount; ++input)
    {
      if (reportInputs().at(input).isEvent)
        _keepFirst(begin, end, [&](std::size_t index) { return !std::isnan(_moments[index].inputs.at(input)); });
    }
    _keepFirst(begin, end, [&](std::size_t index) {
      return index > 0 && !sameState(_moments[index - 1].snapshot, _moments[index].snapshot);
    });
  }

  bool stays(std::size_t index) const { return _stays[index]; }

private:
  void _keepExtremes(std::size_t begin, std::size_t end, std::size_t number)
  {
    std::size_t least = end;
    std::size_t greatest = end;
    for (std::size_t index = begin; index < end; ++index)
    {
      const float value = numberOf(_moments[index], number);
      if (std::isnan(value))
        continue;
      if (least == end || value < numberOf(_moments[least], number))
        least = index;
      if (greatest == end || value > numberOf(_moments[greatest], number))
        greatest = index;
    }
    if (least == end)
      return;
    keep(least);
    keep(greatest);
  }

  template <typename Condition>
  void _keepFirst(std::size_t begin, std::size_t end, Condition condition)
  {
    for (std::size_t index = begin; index < end; ++index)
    {
      if (!condition(index))
        continue;
      keep(index);
      return;
    }
  }

  const std::vector<Moment>& _moments;
  std::vector<bool> _stays;
};

Selection select(const std::vector<Moment>& moments, Duration stretch)
{
  Selection selection(moments);
  const auto numberOfStretch = [&](std::size_t index) { return moments[index].snapshot.sinceStart / stretch; };
  for (std::size_t begin = 0; begin < moments.size();)
  {
    std::size_t end = begin;
    while (end < moments.size() && numberOfStretch(end) == numberOfStretch(begin))
      ++end;
    selection.keepOf(begin, end);
    begin = end;
  }
  selection.keep(moments.size() - 1);
  return selection;
}

}  // namespace

void thin(std::vector<Moment>& moments, Duration stretch)
{
  if (moments.empty())
    return;
  const Selection selection = select(moments, stretch);
  std::vector<Moment> kept;
  std::vector<MomentChange> changes;  // of those that were left out
  std::size_t updates = 0;
  for (std::size_t index = 0; index < moments.size(); ++index)
  {
    for (const MomentChange& change : moments[index].changes)
      addChange(changes, change);
    updates += moments[index].updates;
    if (!selection.stays(index))
      continue;
    kept.push_back(std::move(moments[index]));
    kept.back().changes = std::exchange(changes, {});
    kept.back().updates = std::exchange(updates, 0);
  }
  moments = std::move(kept);
}

}  // namespace KV::session
