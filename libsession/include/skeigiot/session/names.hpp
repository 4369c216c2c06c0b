#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/bodylanguageease.hpp>
#include <skeigiot/personstate.hpp>

#include <ko/human/attentionstate.hpp>

#include <cstdint>
#include <string>

namespace KV::session
{

/// Returns the library's name of the zone; "Unknown" if it has none.
SKEIGIOT_API std::string zoneName(ko::human::AttentionState zone);

/// Returns "unknown", "negative", "neutral" or "positive".
SKEIGIOT_API std::string pleasureName(KV::PleasureState pleasure);

/// Returns "uneasy", "neutral" or "at ease", and "-" before the first estimate.
///
/// The limits are those of the library's own, longer text.
SKEIGIOT_API std::string easeName(const KV::BodyLanguageEase& ease);

/// Returns "person 3" or, if the recording gives the person a name, "anna (person 3)".
SKEIGIOT_API std::string personText(std::int32_t person, const std::string& name);

}  // namespace KV::session
