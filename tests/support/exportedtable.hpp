#pragma once

#include <string>

namespace replaytests
{

/// Returns an exported table without its last column, which names the file that was replayed.
std::string withoutFile(const std::string& csv);

}  // namespace replaytests
