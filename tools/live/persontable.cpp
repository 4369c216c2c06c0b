#include "persontable.hpp"

#include "names.hpp"
#include "text.hpp"

#include <boost/chrono/duration.hpp>

#include <iterator>

namespace tools
{

namespace
{

const boost::chrono::seconds minute(History::seconds);
const boost::chrono::milliseconds longestCycle(500);  // between two looks at a person who is there

}  // namespace

std::string PersonRow::why(TimePoint now) const
{
  std::string text = last.pleasure == KV::PleasureUnknown ? "mood unknown" : pleasureName(last.pleasure);
  if (last.ease.confidence > 0.f)
    text += ", body " + easeName(last.ease);
  if (!lastSeen)
    return text + ", never seen";
  if (now - *lastSeen > longestCycle)
    text += ", last seen " + clockText(now - *lastSeen, 0) + " ago";
  return text;
}

void PersonTable::personUpdated(const Snapshot& snapshot)
{
  PersonRow& row = _rows[snapshot.person];
  row.last = snapshot;
  if (snapshot.seen)
    row.lastSeen = snapshot.time;
  row.valence.add(snapshot.time, snapshot.valence.value);
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

}  // namespace tools
