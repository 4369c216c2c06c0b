#pragma once

#include "terminal/terminal.hpp"

#include <skeigiot/session/agreement.hpp>

#include <string>

namespace KV::tools
{

/// Returns the agreement for a terminal: for each two sides a table of measures of all persons and of each, the
/// confusion table of all, and the labels that were left out.
std::string agreementText(const session::Agreement& agreement, const Style& style);

}  // namespace KV::tools
