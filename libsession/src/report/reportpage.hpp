#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace KV::session
{

/// Returns the page of a report without its data; empty if the library was built without the page.
std::string_view reportTemplate();

/// Writes the page with the data, which must be safe inside a script element.
///
/// \throws std::logic_error if the template has no place for it.
void writeReport(std::ostream& stream, std::string_view page, const std::string& data);

}  // namespace KV::session
