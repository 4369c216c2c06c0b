#pragma once

#include <boost/optional/optional.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Returns the candidate that needs the fewest changes to become the word, in upper or lower case; the first of
/// several. A change adds, removes or replaces a letter, or exchanges two neighbours. Returns an empty text if all need
/// more than a third of the word's letters, or more than three changes.
boost::optional<std::string> nearest(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace KV::tools
