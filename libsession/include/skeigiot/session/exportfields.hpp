#pragma once

#include <skeigiot/session/names.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <boost/optional/optional.hpp>

namespace KV::session
{

/// Hands every exported field of a snapshot to `field(name, value)`, in the order of the columns.
///
/// The one place that says what an export holds; the help of the command explains the fields. The clock is an optional
/// Duration: nothing where the recording has no date. Numbers are those of the library also where the estimate is
/// unknown, which the last fields tell.
template <typename Field>
void forEachExportedField(int recording, const Snapshot& snapshot, Field&& field)
{
  field("recording", recording);
  field("person", snapshot.person);
  field("time", snapshot.sinceStart);
  field("clock", boost::make_optional(snapshot.isDated, snapshot.time.time_since_epoch()));
  field("seen", snapshot.seen);
  field("valence", snapshot.valence.value);
  field("valence_confidence", snapshot.valence.confidence);
  field("valence_binary", snapshot.valenceBinary.value);
  field("unsmoothed_valence_binary", snapshot.unsmoothedValenceBinary.value);
  field("unsmoothed_valence_confidence", snapshot.unsmoothedValenceBinary.confidence);
  field("attention", snapshot.attention.value);
  field("attention_confidence", snapshot.attention.confidence);
  field("zone", zoneName(snapshot.zone));
  field("pleasure", pleasureName(snapshot.pleasure));
  field("ease", snapshot.ease.level);
  field("ease_confidence", snapshot.ease.confidence);
  field("valence_known", snapshot.isValenceKnown());
  field("attention_known", snapshot.isAttentionKnown());
}

}  // namespace KV::session
