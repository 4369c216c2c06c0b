#pragma once

#include "agreement/bootstrap.hpp"
#include "study/database.hpp"

#include <skeigiot/session/studycomparison.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace KV::session
{

/// Returns the comparisons of all these scopes, of all these quantities each. One pass over the summaries makes all.
///
/// Comparisons without a group are left out. If `by` is "scope", there is one comparison for each quantity, and its
/// groups are the scopes; without scopes it has all except the whole recording.
std::vector<StudyComparison> compareAll(Database& database, const std::vector<std::string>& quantities,
                                        const std::vector<std::string>& scopes, const std::string& by);

/// Returns what resamples persons for all intervals of a study.
Bootstrap personBootstrap();

/// Returns the name by which a person is counted: the participant. A person without one is a participant of its own in
/// each session.
std::string participantOf(const std::string& participant, const std::string& session, std::int64_t person);

}  // namespace KV::session
