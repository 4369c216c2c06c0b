#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace KV::session
{

/// Returns the page of a report, in which the data is missing; empty if the library was built without it.
std::string_view reportTemplate();

/// Writes the page with the data, which must be fit to stand in a script element.
///
/// \throws std::logic_error if the template has no place for it.
void writeReport(std::ostream& stream, std::string_view page, const std::string& data);

}  // namespace KV::session
