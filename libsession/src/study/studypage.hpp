#pragma once

#include <string_view>

namespace KV::session
{

/// Returns the page of a study without its data; empty if the library was built without the page.
std::string_view studyTemplate();

}  // namespace KV::session
