#pragma once

#include <string>
#include <vector>

namespace KV::tools
{

/// Returns the names of columns, with names that differ only in their last number as one: "eye_lmk_x_0..55".
///
/// A family has three members or more, and takes the place of its first member. If numbers between the least and the
/// greatest are missing, the count follows: "AU01..45_c (18)".
std::vector<std::string> columnFamilies(const std::vector<std::string>& columns);

}  // namespace KV::tools
