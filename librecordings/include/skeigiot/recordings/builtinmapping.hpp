#pragma once

#include <skeigiot/api.hpp>

#include <string>

namespace KV::recordings
{

/// Returns the built-in tables by which scores become readings, as the JSON that ReadingOptions::mapping takes.
///
/// A mapping of one's own begins best with a copy of it: read again as it is, it changes nothing.
///
/// \par Thread safety
///   May be called from any thread.
SKEIGIOT_API std::string builtInMapping();

}  // namespace KV::recordings
