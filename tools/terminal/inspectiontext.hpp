#pragma once

#include <skeigiot/session/inspectionreport.hpp>

#include <ostream>

namespace KV::tools
{

/// Which columns are named.
enum class ShownColumns
{
  Families,  ///< those that differ only in a number as one: "eye_lmk_x_0..55"
  All
};

/// Writes the report for people, in lines of that width where that can be.
void writeAsText(std::ostream& stream, const session::InspectionReport& report, int width,
                 ShownColumns which = ShownColumns::Families);

}  // namespace KV::tools
