#pragma once

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/agreementoptions.hpp>

#include <nlohmann/json.hpp>

#include <cstdint>
#include <set>
#include <vector>

namespace KV::session
{

/// Returns the labels of coders for these persons, as the page of a report draws them: ribbons of states and of labels
/// without a state, lines of values, and warnings on labels that were left out.
nlohmann::ordered_json reportLabels(const std::vector<recordings::Labels>& labels,
                                    const std::set<std::int32_t>& persons, const AgreementOptions& options);

}  // namespace KV::session
