#pragma once

#include <boost/optional/optional.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Returns the candidate that needs the fewest changes to be the word, upper case and lower case being the same; the
/// first of several. A change adds, removes or replaces a letter, or exchanges two neighbours. Returns none if all need
/// more than a third of the word's letters, or more than three.
boost::optional<std::string> nearest(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace KV::tools
