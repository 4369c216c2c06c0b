#include <skeigiot/session/timelinerow.hpp>

#include <algorithm>

namespace KV::session
{

namespace
{

template <typename Counts>
std::size_t mostFrequent(const Counts& counts)
{
  return static_cast<std::size_t>(std::max_element(counts.begin(), counts.end()) - counts.begin());
}

template <typename Counts>
void addTo(Counts& sum, const Counts& counts)
{
  std::transform(sum.begin(), sum.end(), counts.begin(), sum.begin(), std::plus<>());
}

}  // namespace

void TimelineRow::add(const Snapshot& snapshot)
{
  ++_updates;
  _seen += snapshot.seen ? 1 : 0;
  if (snapshot.isValenceKnown())
  {
    ++_valenceKnown;
    _valence += static_cast<double>(snapshot.valence.value);
    _valenceConfidence += static_cast<double>(snapshot.valence.confidence);
  }
  if (snapshot.isAttentionKnown())
  {
    ++_attentionKnown;
    _attention += static_cast<double>(snapshot.attention.value);
    _attentionConfidence += static_cast<double>(snapshot.attention.confidence);
  }
  ++_zones.at(static_cast<std::size_t>(snapshot.zone));
  ++_pleasures.at(static_cast<std::size_t>(snapshot.pleasure));
  _ease = snapshot.ease;
}

void TimelineRow::add(const HeadDirections& directions)
{
  addTo(_headDirections, directions);
}

void TimelineRow::add(const TimelineRow& later)
{
  _updates += later._updates;
  _seen += later._seen;
  _valenceKnown += later._valenceKnown;
  _valence += later._valence;
  _valenceConfidence += later._valenceConfidence;
  _attentionKnown += later._attentionKnown;
  _attention += later._attention;
  _attentionConfidence += later._attentionConfidence;
  addTo(_zones, later._zones);
  addTo(_pleasures, later._pleasures);
  addTo(_headDirections, later._headDirections);
  _ease = later._ease;
  _changes.add(later._changes);
}

ko::human::AttentionState TimelineRow::zone() const
{
  return static_cast<ko::human::AttentionState>(mostFrequent(_zones));
}

boost::optional<HeadDirection> TimelineRow::headDirection() const
{
  if (_headDirections == HeadDirections{})
    return boost::none;
  return static_cast<HeadDirection>(mostFrequent(_headDirections));
}

KV::PleasureState TimelineRow::pleasure() const
{
  return static_cast<KV::PleasureState>(mostFrequent(_pleasures));
}

}  // namespace KV::session
