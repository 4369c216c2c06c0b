#pragma once

#include "cli/exitstatus.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"

#include <skeigiot/session/sessionplan.hpp>

#include <ostream>
#include <vector>

namespace KV::tools
{

/// Reads one recording after the other, and writes a table with a line for each, or a JSON array. It continues after a
/// recording that cannot be read.
ExitStatus inspectFolder(const std::vector<session::SessionInputs>& sessions, const ReadingArguments& reading,
                         bool asJson, std::ostream& output, Messages& messages);

}  // namespace KV::tools
