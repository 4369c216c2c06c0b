#pragma once

#include <skeigiot/session/inspectionreport.hpp>

#include <ostream>

namespace KV::tools
{

/// Writes the report for people, in lines of that width where that can be.
void writeAsText(std::ostream& stream, const session::InspectionReport& report, int width);

}  // namespace KV::tools
