#pragma once

#include <string>
#include <vector>

namespace KV::session
{

/// Returns the names of the columns of a summary, in their order.
std::vector<std::string> summaryColumns();

}  // namespace KV::session
