#pragma once

#include <skeigiot/session/inspectionreport.hpp>

#include <ostream>

namespace KV::tools
{

/// The names of columns that are listed.
enum class ShownColumns
{
  Families,  ///< names that differ only in a number as one: "eye_lmk_x_0..55"
  All
};

/// Writes the report for people, in lines of that width if possible.
void writeAsText(std::ostream& stream, const session::InspectionReport& report, int width,
                 ShownColumns which = ShownColumns::Families);

}  // namespace KV::tools
