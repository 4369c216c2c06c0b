#pragma once

#include <skeigiot/api.hpp>

#include <ostream>
#include <string>
#include <string_view>

namespace KV::session
{

/// Returns the page of a report, in which the data is missing; empty if the command was built without it.
SKEIGIOT_API std::string_view reportTemplate();

/// Writes the page with the data, which must be fit to stand in a script element.
///
/// \throws std::logic_error if the template has no place for it.
SKEIGIOT_API void writeReport(std::ostream& stream, std::string_view page, const std::string& data);

}  // namespace KV::session
