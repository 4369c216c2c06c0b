#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/scopespan.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// A file of labels whose spans are scopes.
struct SKEIGIOT_API LabelScopes
{
  std::string path;  ///< of the file
  std::string tier;  ///< only labels of this tier or person; empty: all labels
};

/// Reads "FILE" or "FILE:TIER". A file may have a colon in its name: of several that exist, the shortest name counts.
SKEIGIOT_API LabelScopes parseLabelScopes(const std::string& text);

/// Makes a scope of each label that has a duration.
///
/// The name of a scope is the label. If the labels are of several tiers or, without tiers, of several persons, the name
/// begins with the tier or person: "gesture: stroke". Labels that are repeated make several scopes of one name.
///
/// Labels without duration, and those that end before the recording starts, are left out, with a warning. A span that
/// starts before the recording is cut.
///
/// \param labels    read from `from.path`; its warnings are not repeated
/// \param from      says which labels
/// \param offset    [s] added to all times
/// \param warnings  where warnings are added, without the path
/// \throws recordings::Error that names the file if it has no such tier, no label with a duration, or more than
///   recordings::limits::mostScopesOfLabels of them.
SKEIGIOT_API std::vector<ScopeSpan> scopesOf(const recordings::Labels& labels, const LabelScopes& from, double offset,
                                             std::vector<std::string>& warnings);

}  // namespace KV::session
