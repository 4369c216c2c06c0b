#pragma once

#include <skeigiot/session/names.hpp>
#include <skeigiot/session/sessionname.hpp>
#include <skeigiot/session/summary.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace KV::session
{

/// Subject of a row; null where the row has no such subject.
struct SummaryRow
{
  const ScopeVerdict* scope = nullptr;
  const PersonSummary* person = nullptr;  ///< of the whole recording, finished
  std::int32_t number = 0;                ///< of the person
  const Summary::Ambiance* ambiance = nullptr;
  const std::string& error;
};

/// Returns what there is to say of the person in the scope; of the whole recording, if there is no scope.
inline ScopeVerdict::OfPerson ofPersonIn(const SummaryRow& row)
{
  if (row.person == nullptr)
    return {};
  if (row.scope != nullptr)
    return row.scope->of(row.number);
  return {"", row.person->updates(), *row.person};
}

/// Hands every column to `field`, which is called with its name and a number, a duration or a text, or with its name
/// alone where there is no value. The one place that says what a summary holds.
template <typename Field>
void forEachSummaryColumn(const SessionName& session, const SummaryRow& row, Field&& field)
{
  const auto maybe = [&field](const char* name, bool isThere, auto value) {
    if (isThere)
      field(name, value());
    else
      field(name);
  };
  const bool hasScope = row.scope != nullptr;
  const bool hasPerson = row.person != nullptr;
  const ScopeVerdict::OfPerson verdict = ofPersonIn(row);
  const PersonSummary& summary = verdict.summary;
  const bool hasUpdates = summary.updates() > 0;

  field("recording", session.number);
  field("file", session.file);
  maybe("person", hasPerson, [&] { return row.number; });
  field("name", hasPerson ? row.person->name() : std::string());
  maybe("scope", hasScope, [&] { return row.scope->name; });
  maybe("start", hasScope, [&] { return row.scope->from; });
  maybe("stop", hasScope, [&] { return row.scope->to; });
  maybe("end", hasScope, [&] { return std::string(scopeEndName(row.scope->end)); });
  field("verdict", verdict.word);
  maybe("updates", hasPerson, [&] { return static_cast<int>(verdict.updates); });
  maybe("first", hasUpdates, [&] { return summary.from(); });
  maybe("last", hasUpdates, [&] { return summary.to(); });
  maybe("seen", hasUpdates, [&] { return summary.seenShare(); });

  const bool hasValence = hasUpdates && summary.isValenceKnown();
  maybe("valence", hasValence, [&] { return summary.valence(); });
  maybe("valence_confidence", hasValence, [&] { return summary.valenceConfidence(); });
  maybe("valence_known", hasUpdates, [&] { return summary.valenceKnownShare(); });
  const bool hasAttention = hasUpdates && summary.isAttentionKnown();
  maybe("attention", hasAttention, [&] { return summary.attention(); });
  maybe("attention_confidence", hasAttention, [&] { return summary.attentionConfidence(); });
  maybe("attention_known", hasUpdates, [&] { return summary.attentionKnownShare(); });
  maybe("engaged", hasAttention, [&] { return summary.lookingAtRobotShare(); });
  maybe("strictly_engaged", hasAttention, [&] { return summary.strictlyLookingAtRobotShare(); });

  for (std::int32_t zone = 0; zone <= static_cast<std::int32_t>(ko::human::AttentionState::LookingDownRight); ++zone)
  {
    const auto state = static_cast<ko::human::AttentionState>(zone);
    maybe(("zone_" + zoneName(state)).c_str(), hasUpdates, [&] { return summary.share(state); });
  }
  for (const KV::PleasureState pleasure :
       {KV::PleasurePositive, KV::PleasureNeutral, KV::PleasureNegative, KV::PleasureUnknown})
    maybe(("pleasure_" + pleasureName(pleasure)).c_str(), hasUpdates, [&] { return summary.share(pleasure); });

  const bool hasAmbiance = row.ambiance != nullptr && row.ambiance->updates > 0;
  const auto perUpdate = [&row](double sum) { return sum / static_cast<double>(row.ambiance->updates); };
  maybe("agitation", hasAmbiance, [&] { return perUpdate(row.ambiance->agitation); });
  maybe("agitation_at_end", hasAmbiance, [&] { return static_cast<double>(row.ambiance->lastAgitation); });
  maybe("excited", hasAmbiance, [&] { return perUpdate(static_cast<double>(row.ambiance->excited)); });
  field("error", row.error);
}

}  // namespace KV::session
