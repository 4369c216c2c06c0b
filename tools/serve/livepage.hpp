#pragma once

#include <string_view>

namespace KV::tools
{

/// Returns the page of a live session; empty if the command was built without it.
std::string_view livePage();

}  // namespace KV::tools
