#pragma once

#include <skeigiot/session/names.hpp>
#include <skeigiot/session/sessionname.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <boost/optional/optional.hpp>

#include <string_view>
#include <type_traits>

namespace KV::session
{

/// Returns whether the field is the name of a person who has none: JSON leaves it out.
template <typename Value>
bool isNameOfNobody(std::string_view field, const Value& value)
{
  if constexpr (std::is_convertible_v<const Value&, std::string_view>)
    return field == "name" && std::string_view(value).empty();
  else
    return false;
}

/// Hands every exported field of a snapshot to `field(name, value)`, in the order of the columns.
///
/// The one list of the fields of an export; the help of the command explains the fields. The clock is an optional
/// Duration: nothing where the recording has no date. Numbers are those of the library also where the estimate is
/// unknown, see the last fields.
///
/// New fields are added at the end.
template <typename Field>
void forEachExportedField(const SessionName& session, const Snapshot& snapshot, Field&& field)
{
  field("recording", session.number);
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
  field("name", snapshot.name);
  field("file", session.file);
}

}  // namespace KV::session
