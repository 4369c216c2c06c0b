#include <skeigiot/session/persontable.hpp>

#include <skeigiot/session/forcenames.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/pacer.hpp>
#include <skeigiot/session/wording.hpp>

#include <boost/chrono/duration.hpp>

#include <cmath>
#include <iterator>
#include <utility>

namespace KV::session
{

namespace
{

const boost::chrono::seconds minute(History::seconds);
const boost::chrono::milliseconds longestCycle(500);  // between two looks at a person who is there

/// ", valence +0.25 by touch": what moved valence or attention most; empty if nothing did so visibly.
std::string strongestSource(const Changes& changes)
{
  constexpr double leastShown = 0.005;
  SourceChange strongest;
  for (const KV::Quantity quantity : {KV::ValenceQuantity, KV::AttentionQuantity})
  {
    for (const SourceChange& change : changes.of(quantity))
    {
      if (std::abs(change.net()) > std::abs(strongest.net()))
        strongest = change;
    }
  }
  if (!(std::abs(strongest.net()) >= leastShown))
    return {};
  return ", " + quantityName(strongest.quantity) + " " + signedNumber(strongest.net()) + " by " +
         plainSource(strongest.source);
}

}  // namespace

std::string PersonRow::why(TimePoint now) const
{
  std::string text = last.pleasure == KV::PleasureUnknown ? "mood unknown" : pleasureName(last.pleasure);
  text += strongestSource(changes);
  if (last.ease.confidence > 0.f)
    text += ", body " + easeName(last.ease);
  if (!lastSeen)
    return text + ", never seen";
  if (now - *lastSeen > longestCycle)
    text += ", last seen " + clockText(now - *lastSeen, 0) + " ago";
  return text;
}

void PersonTable::stepBegins(const recordings::Step& step)
{
  _newcomer = boost::none;
  if (!step.person)
    return;
  const auto row = _rows.find(*step.person);
  if (row != _rows.end())
  {
    takeNewest(row->second.readings, step.observation);
    return;
  }
  _newcomer = step.person;
  _readingsOfNewcomer = step.observation;
}

void PersonTable::forceActed(const KV::Force& force)
{
  _changes.add(force);
  _forces.emplace_back(force);
}

void PersonTable::personUpdated(const Snapshot& snapshot)
{
  PersonRow& row = _rows[snapshot.person];
  row.last = snapshot;
  row.changes = std::exchange(_changes, {});
  row.forces = std::exchange(_forces, {});
  if (_newcomer == snapshot.person)
  {
    takeNewest(row.readings, _readingsOfNewcomer);
    _newcomer = boost::none;
  }
  if (snapshot.seen)
    row.lastSeen = snapshot.time;
  if (snapshot.isValenceKnown())
    row.valence.add(snapshot.time, snapshot.valence.value);
  if (snapshot.isAttentionKnown())
    row.attention.add(snapshot.time, snapshot.attention.value);
}

void PersonTable::removeOld(TimePoint now)
{
  for (auto row = _rows.begin(); row != _rows.end();)
  {
    const bool isOld = now - row->second.lastSeen.value_or(row->second.last.time) > minute;
    row = isOld ? _rows.erase(row) : std::next(row);
  }
}

}  // namespace KV::session
